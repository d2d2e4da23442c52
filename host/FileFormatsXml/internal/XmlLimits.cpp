#include "host/FileFormatsXml/internal/XmlLimits.h"

#include "host/FileFormatsXml/XmlUtils.h"
#include "host/FileFormatsXml/internal/XmlScanning.h"

namespace vx {

namespace {

// More than any document needs; entities that contain one another are cut off here.
constexpr int maximumOpenEntities = 32;

/** The place of the next "<" or, if @p withReferences, "&" at or after @p from, or the end. */
int nextMarkup(QStringView text, int from, bool withReferences)
{
    if (!withReferences) {
        const qsizetype found = text.indexOf(QLatin1Char('<'), from);
        return static_cast<int>(found < 0 ? text.size() : found);
    }
    while (from < text.size() && text[from] != QLatin1Char('<') && text[from] != QLatin1Char('&')) {
        ++from;
    }
    return from;
}

} // namespace

void XmlLimits::check(const QString& document)
{
    XmlLimits().walkContent(document);
}

void XmlLimits::walkContent(QStringView text)
{
    int i = 0;
    while (i < text.size()) {
        const int markup = nextMarkup(text, i, !m_type.entities.isEmpty());
        // The parser drops white space between elements, of which there may be much.
        if (!isBlankXml(text.mid(i, markup - i))) {
            addNodes(1);
        }
        if (markup == text.size()) {
            return;
        }
        i = text[markup] == QLatin1Char('<') ? walkMarkup(text, markup)
                                             : walkReference(text, markup, &XmlLimits::walkContent);
    }
}

int XmlLimits::walkMarkup(QStringView text, int from)
{
    const auto startsWith = [text, from](const char* word) {
        return hasXmlAt(text, from, QLatin1String(word));
    };
    if (startsWith("</")) {
        --m_depth;
        const qsizetype end = text.indexOf(QLatin1Char('>'), from);
        return static_cast<int>(end < 0 ? text.size() : end + 1);
    }
    if (startsWith("<!DOCTYPE")) {
        return walkDocumentType(text, from);
    }
    if (!startsWith("<!") && !startsWith("<?")) {
        return walkStartTag(text, from);
    }
    addNodes(1);
    if (startsWith("<?")) {
        return skipXmlPast(text, from, QLatin1String("?>"));
    }
    if (startsWith("<!--")) {
        // From behind the hyphens, which must not count for the end as well.
        return skipXmlPast(text, from + 4, QLatin1String("-->"));
    }
    return skipXmlPast(text, from, QLatin1String("]]>"));
}

int XmlLimits::walkStartTag(QStringView text, int from)
{
    int attributes = 0;
    int i = from + 1;
    while (i < text.size() && text[i] != QLatin1Char('>')) {
        if (text[i] == QLatin1Char('"') || text[i] == QLatin1Char('\'')) {
            const int end = endOfXmlLiteral(text, i);
            walkAttributeValue(text.mid(i + 1, end - i - 1));
            ++attributes;
            i = end;
        }
        ++i;
    }
    if (i == text.size()) {
        refuseXml("The document ends within a tag.");
    }
    addElement(text.mid(from + 1, i - from - 1), attributes);
    if (text[i - 1] == QLatin1Char('/')) {
        --m_depth;
    }
    return i + 1;
}

int XmlLimits::walkDocumentType(QStringView text, int from)
{
    if (m_type.nodes > 0) {
        refuseXml("The document has more than one document type.");
    }
    const int end = readDocumentType(text, from, m_type);
    addNodes(m_type.nodes);
    // The parser expands default values where they are declared, even if no element has them.
    for (const QStringList& values : qAsConst(m_type.defaultValues)) {
        for (const QString& value : values) {
            walkAttributeValue(value);
        }
    }
    return end;
}

int XmlLimits::walkReference(QStringView text, int from, void (XmlLimits::*walkEntity)(QStringView))
{
    const int nameEnd = skipXmlName(text, from + 1);
    const auto entity =
        m_type.entities.constFind(text.mid(from + 1, nameEnd - from - 1).toString());
    if (entity != m_type.entities.constEnd()) {
        if (++m_openEntities > maximumOpenEntities) {
            refuseXml("An entity of the document contains itself.");
        }
        // An entity may be empty; it is the number of references that takes time then.
        addNodes(1);
        addExpansion(*entity);
        (this->*walkEntity)(*entity);
        --m_openEntities;
    }
    return nameEnd;
}

void XmlLimits::walkAttributeValue(QStringView text)
{
    if (m_type.entities.isEmpty()) {
        return;
    }
    qsizetype i = text.indexOf(QLatin1Char('&'));
    while (i >= 0) {
        const int next = walkReference(text, static_cast<int>(i), &XmlLimits::walkAttributeValue);
        i = text.indexOf(QLatin1Char('&'), next);
    }
}

void XmlLimits::addElement(QStringView tag, int attributes)
{
    if (m_type.attributes > 0) {
        const QString name = tag.left(skipXmlName(tag, 0)).toString();
        const QStringList defaultValues = m_type.defaultValues.value(name);
        for (const QString& value : defaultValues) {
            addExpansion(value);
            walkAttributeValue(value);
        }
        attributes += int(defaultValues.size());
    }
    if (attributes > XmlUtils::maximumAttributes) {
        refuseXml("An element of the document has too many attributes.");
    }
    if (++m_depth > XmlUtils::maximumDepth) {
        refuseXml("The elements of the document are nested too deeply.");
    }
    addNodes(1 + attributes);
}

void XmlLimits::addNodes(qint64 count)
{
    m_nodes += count;
    if (m_nodes > XmlUtils::maximumNodes) {
        refuseXml("The document has too many elements.");
    }
}

void XmlLimits::addExpansion(QStringView text)
{
    m_expansion += text.size();
    if (m_expansion > XmlUtils::maximumEntityExpansion) {
        refuseXml("The entities of the document expand to too much text.");
    }
}

} // namespace vx
