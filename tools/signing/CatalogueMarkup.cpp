#include "tools/signing/CatalogueMarkup.h"

#include <QBuffer>

#include <algorithm>

#include "host/CoreQt/ParseException.h"
#include "host/FileFormatsXml/XmlUtils.h"

namespace vx {

namespace {

QDomDocument* parse(const QByteArray& document)
{
    if (isWideEncoding(viewOf(document))) {
        throw ParseException("It is in UTF-16 or the like. Save it in UTF-8.");
    }
    QBuffer buffer;
    buffer.setData(document);
    buffer.open(QIODevice::ReadOnly);
    return XmlUtils::parseXml(&buffer, nullptr);
}

/** In the order of their start tags. */
void collect(const QDomElement& element, std::vector<QDomElement>& elements)
{
    elements.push_back(element);
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        collect(child, elements);
    }
}

bool isAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char character) { return static_cast<signed char>(character) > 0; });
}

/** Letters beyond ASCII depend on the encoding, and no name that matters has any. */
bool isSameName(const QDomElement& element, const MarkupElement& markup)
{
    const QByteArray name = element.tagName().toUtf8();
    return isAscii(viewOf(name)) ? viewOf(name) == markup.name : !isAscii(markup.name);
}

} // namespace

QString PackageMarkup::value(const QString& name) const
{
    const QDomElement file = element.firstChildElement("file");
    for (QDomNode level = file.isNull() ? element : file; !level.isNull();
         level = level.parentNode()) {
        const QDomElement found = level.firstChildElement(name);
        if (!found.isNull()) {
            return found.text();
        }
        if (level.toElement().hasAttribute(name)) {
            return level.toElement().attribute(name);
        }
    }
    return QString();
}

QUrl PackageMarkup::address() const
{
    return QUrl(value("base-url") + value("url"));
}

CatalogueMarkup::CatalogueMarkup(const QByteArray& document)
    : m_tree(parse(document))
    , m_elements(scanMarkup(viewOf(document)))
{
    std::vector<QDomElement> elements;
    collect(m_tree->documentElement(), elements);
    if (!std::equal(elements.begin(), elements.end(), m_elements.begin(), m_elements.end(),
                    isSameName)) {
        throw ParseException("Its text does not show its elements one by one: write out what "
                             "stands in entities, and save it in UTF-8.");
    }
    visitSet(m_elements.front(), elements);
}

void CatalogueMarkup::visitSet(const MarkupElement& set, const std::vector<QDomElement>& elements)
{
    for (const size_t child : set.children) {
        if (m_elements[child].name == "package") {
            m_packages.push_back({elements[child], &m_elements[child]});
        }
    }
    for (const size_t child : set.children) {
        if (m_elements[child].name == "package-set") {
            visitSet(m_elements[child], elements);
        }
    }
}

const MarkupElement* CatalogueMarkup::firstChild(const MarkupElement& parent,
                                                 std::string_view name) const
{
    for (const size_t child : parent.children) {
        if (m_elements[child].name == name) {
            return &m_elements[child];
        }
    }
    return nullptr;
}

const MarkupElement& CatalogueMarkup::innermost(const MarkupElement& package) const
{
    const MarkupElement* file = firstChild(package, "file");
    return file != nullptr ? *file : package;
}

MarkupValue CatalogueMarkup::ownValue(const MarkupElement& package, std::string_view name) const
{
    for (const MarkupElement* level : {&innermost(package), &package}) {
        if (const MarkupElement* element = firstChild(*level, name)) {
            return {element, nullptr};
        }
        if (const MarkupAttribute* attribute = level->attribute(name)) {
            return {nullptr, attribute};
        }
    }
    return {};
}

} // namespace vx
