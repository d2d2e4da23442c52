#include "host/FileFormatsXml/internal/XmlDocumentType.h"

#include <QRegularExpression>

#include "host/FileFormatsXml/XmlUtils.h"
#include "host/FileFormatsXml/internal/XmlScanning.h"

namespace vx {

namespace {

const QLatin1String entityStart("<!ENTITY");
const QLatin1String attributesStart("<!ATTLIST");

/** @p value as the parser keeps it: character references are replaced where they are declared. */
QString withCharactersResolved(QStringView value)
{
    static const QRegularExpression reference(QStringLiteral("&#(x?)([0-9a-fA-F]+);"));
    QString literal = value.toString();
    if (!literal.contains(QLatin1String("&#"))) {
        return literal;
    }
    QString text;
    int copied = 0;
    QRegularExpressionMatchIterator matches = reference.globalMatch(literal);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const char32_t code =
            match.captured(2).toUInt(nullptr, match.capturedLength(1) > 0 ? 16 : 10);
        text += literal.mid(copied, int(match.capturedStart()) - copied);
        text += QString::fromUcs4(&code, 1);
        copied = int(match.capturedEnd());
    }
    return text + literal.mid(copied);
}

bool isQuote(QChar c)
{
    return c == QLatin1Char('"') || c == QLatin1Char('\'');
}

/** Notes what an entity stands for. Of several with one name the first counts. */
void readEntity(QStringView declaration, XmlDocumentType& type)
{
    const int nameStart = skipXmlSpace(declaration, int(entityStart.size()));
    const int nameEnd = skipXmlName(declaration, nameStart);
    const QString name = declaration.mid(nameStart, nameEnd - nameStart).toString();
    // A parameter entity has its name behind a "%"; it is refused where it is referred to.
    if (name.isEmpty() || type.entities.contains(name)) {
        return;
    }
    QString& text = type.entities[name];
    const int value = skipXmlSpace(declaration, nameEnd);
    if (value < declaration.size() && isQuote(declaration[value])) {
        const int length = endOfXmlLiteral(declaration, value) - value - 1;
        text = withCharactersResolved(declaration.mid(value + 1, length));
    }
}

/** Notes the default values; what has none says so with a word such as "#IMPLIED". */
void readAttributes(QStringView declaration, XmlDocumentType& type)
{
    const int nameStart = skipXmlSpace(declaration, int(attributesStart.size()));
    const int nameEnd = skipXmlName(declaration, nameStart);
    QStringList& defaultValues =
        type.defaultValues[declaration.mid(nameStart, nameEnd - nameStart).toString()];
    for (int i = nameEnd; i < declaration.size(); ++i) {
        if (isQuote(declaration[i])) {
            const int end = endOfXmlLiteral(declaration, i);
            defaultValues += declaration.mid(i + 1, end - i - 1).toString();
            i = end;
            ++type.attributes;
        } else if (declaration[i] == QLatin1Char('#')) {
            ++type.attributes;
        }
    }
    if (type.attributes > XmlUtils::maximumAttributes) {
        refuseXml("The document declares too many attributes.");
    }
}

/** Where the declaration that begins at @p from ends, with a ">" outside of quotes. */
int endOfDeclaration(QStringView text, int from)
{
    int i = from;
    while (i < text.size() && text[i] != QLatin1Char('>')) {
        i = isQuote(text[i]) ? endOfXmlLiteral(text, i) + 1 : i + 1;
    }
    if (i == text.size()) {
        refuseXml("The document type declaration does not end.");
    }
    return i + 1;
}

int readDeclaration(QStringView text, int from, XmlDocumentType& type)
{
    const int end = endOfDeclaration(text, from);
    const QStringView declaration = text.mid(from, end - from);
    if (declaration.startsWith(entityStart)) {
        readEntity(declaration, type);
    } else if (declaration.startsWith(attributesStart)) {
        readAttributes(declaration, type);
    }
    return end;
}

int readInternalSubset(QStringView text, int from, XmlDocumentType& type)
{
    int i = skipXmlSpace(text, from);
    while (!hasXmlAt(text, i, QLatin1String("]"))) {
        if (hasXmlAt(text, i, QLatin1String("<!--"))) {
            i = skipXmlPast(text, i + 4, QLatin1String("-->"));
        } else if (hasXmlAt(text, i, QLatin1String("<?"))) {
            i = skipXmlPast(text, i, QLatin1String("?>"));
        } else if (hasXmlAt(text, i, QLatin1String("<!"))) {
            i = readDeclaration(text, i, type);
        } else {
            refuseXml("The document type is not a list of declarations.");
        }
        ++type.nodes;
        i = skipXmlSpace(text, i);
    }
    return i + 1;
}

} // namespace

int readDocumentType(QStringView text, int from, XmlDocumentType& type)
{
    int i = from;
    while (i < text.size() && text[i] != QLatin1Char('>')) {
        if (isQuote(text[i])) {
            i = endOfXmlLiteral(text, i) + 1;
        } else if (text[i] == QLatin1Char('[')) {
            i = readInternalSubset(text, i + 1, type);
        } else {
            ++i;
        }
    }
    if (i == text.size()) {
        refuseXml("The document type declaration does not end.");
    }
    ++type.nodes;
    return i + 1;
}

} // namespace vx
