#include <optional>

#include "download/DownloadManager.h"
#include "host/CoreQt/DeprecatedQt.h"

namespace vx {

namespace {

/** The value that stands at one level, or none. An empty one is a value. */
std::optional<QString> valueAt(const QDomNode& level, const QString& tagname)
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

/** The value nearest to @p level, from there upwards. */
QString climb(QDomNode level, const QString& tagname)
{
    for (; !level.isNull(); level = level.parentNode()) {
        if (const std::optional<QString> value = valueAt(level, tagname)) {
            return *value;
        }
    }
    return {};
}

/**
 * One field of the translated URLs of a level. Elements that do not say it themselves all inherit
 * the same value, which is looked up once for all of them: many would each search the others.
 */
class UrlField
{
public:
    UrlField(const QDomNode& level, const QString& tagname)
        : m_level(level)
        , m_tagname(tagname)
    {}

    /** The value for @p element, a child of the level. */
    QString of(const QDomElement& element)
    {
        QDomNode node = DownloadManager::startSearchAt(element);
        for (; node != m_level; node = node.parentNode()) {
            if (const std::optional<QString> own = valueAt(node, m_tagname)) {
                return *own;
            }
        }
        if (!m_inherited) {
            m_inherited = climb(m_level, m_tagname);
        }
        return *m_inherited;
    }

private:
    QDomNode m_level;
    QString m_tagname;
    std::optional<QString> m_inherited;
};

void insertUrl(UrlMap& urls, const QString& language, const QString& address)
{
    insertMulti(urls, language.isEmpty() ? QStringLiteral("en") : language, QUrl(address));
}

} // namespace

QDomNode DownloadManager::startSearchAt(const QDomNode& elm)
{
    const QDomElement file = elm.firstChildElement(FILE);
    return file.isNull() ? elm : file;
}

QString DownloadManager::findString(const QDomNode& elm, const QString& tagname)
{
    return climb(startSearchAt(elm), tagname);
}

int DownloadManager::findAllStrings(const QDomNode& elm, const QString& tagname, QStringSet& result)
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

int DownloadManager::findAllTranslatedUrls(const QDomNode& elm, const QString& tagname,
                                           UrlMap& result)
{
    int count = 0;
    for (QDomNode level = startSearchAt(elm); !level.isNull(); level = level.parentNode()) {
        UrlField language(level, LANGUAGE);
        UrlField address(level, URL);
        for (QDomElement child = level.firstChildElement(tagname); !child.isNull();
             child = child.nextSiblingElement(tagname)) {
            insertUrl(result, language.of(child), address.of(child));
            ++count;
        }
        const QDomElement element = level.toElement();
        if (element.hasAttribute(tagname)) {
            insertUrl(result, findString(level, LANGUAGE), element.attribute(tagname));
            ++count;
        }
    }
    return count;
}

} // namespace vx
