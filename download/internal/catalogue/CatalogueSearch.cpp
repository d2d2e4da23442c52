#include "download/internal/catalogue/CatalogueSearch.h"

#include "download/internal/catalogue/CatalogueTags.h"
#include "host/CoreQt/QtVersions.h"

namespace vx {

std::optional<QString> CatalogueSearch::valueAt(const QDomNode& level, const QString& tagname)
{
    const QDomElement child = level.firstChildElement(tagname);
    if (!child.isNull()) {
        return child.text();
    }
    const QDomElement element = level.toElement();
    if (element.hasAttribute(tagname)) {
        return element.attribute(tagname);
    }
    return std::nullopt;
}

void CatalogueSearch::insertTranslatedUrl(UrlMap& urls, const QString& language,
                                          const QUrl& address)
{
    insertMulti(urls, language.isEmpty() ? QStringLiteral("en") : language, address);
}

QDomNode CatalogueSearch::startSearchAt(const QDomNode& elm)
{
    const QDomElement file = elm.firstChildElement(CatalogueTag::FILE);
    return file.isNull() ? elm : file;
}

QString CatalogueSearch::findString(const QDomNode& elm, const QString& tagname)
{
    for (QDomNode level = startSearchAt(elm); !level.isNull(); level = level.parentNode()) {
        // An empty value is one, too, and hides those above it.
        if (const std::optional<QString> value = valueAt(level, tagname)) {
            return *value;
        }
    }
    return {};
}

int CatalogueSearch::findAllStrings(const QDomNode& elm, const QString& tagname, QStringSet& result)
{
    int count = 0;
    const auto addWords = [&](const QString& text) {
        result.unite(StringUtils::splitStringSet(text, StringUtils::splitWords, skipEmptyParts));
        ++count;
    };
    for (QDomNode level = startSearchAt(elm); !level.isNull(); level = level.parentNode()) {
        for (QDomElement child = level.firstChildElement(tagname); !child.isNull();
             child = child.nextSiblingElement(tagname)) {
            addWords(child.text());
        }
        const QDomElement element = level.toElement();
        if (element.hasAttribute(tagname)) {
            addWords(element.attribute(tagname));
        }
    }
    return count;
}

int CatalogueSearch::findAllTranslatedUrls(const QDomNode& elm, const QString& tagname,
                                           UrlMap& result)
{
    int count = 0;
    for (QDomNode level = startSearchAt(elm); !level.isNull(); level = level.parentNode()) {
        for (QDomElement child = level.firstChildElement(tagname); !child.isNull();
             child = child.nextSiblingElement(tagname)) {
            insertTranslatedUrl(result, findString(child, CatalogueTag::LANGUAGE),
                                QUrl(findString(child, CatalogueTag::URL)));
            ++count;
        }
        const QDomElement element = level.toElement();
        if (element.hasAttribute(tagname)) {
            insertTranslatedUrl(result, findString(level, CatalogueTag::LANGUAGE),
                                QUrl(element.attribute(tagname)));
            ++count;
        }
    }
    return count;
}

} // namespace vx
