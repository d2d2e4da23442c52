#include "tools/update-catalogue/DocumentFault.h"

#include <QBuffer>
#include <QDomDocument>
#include <QRegularExpression>
#include <QScopedPointer>

#include <algorithm>

#include "host/CoreQt/ParseException.h"
#include "host/FileFormatsXml/XmlUtils.h"

namespace vx {

namespace {

/** Beyond this a line is not searched for the very byte. */
constexpr int longestSearchedLine = 10000;

QString encodingIn(const QString& refusal)
{
    static const QRegularExpression form("is not in its encoding, (.*)\\.$");
    return form.match(refusal).captured(1);
}

/** Whether the library can decode @p bytes, be they well-formed or not. */
bool isDecoded(QByteArray bytes)
{
    try {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        const QScopedPointer<QDomDocument> document(XmlUtils::parseXml(&buffer, nullptr));
        return true;
    } catch (const ParseException& exception) {
        return encodingIn(exception.message()).isEmpty();
    }
}

/** The byte of @p line that the library cannot decode behind @p first, the line that names the
 * encoding. */
DocumentFault faultOfLine(const QByteArray& first, const QByteArray& line, int number,
                          const QString& encoding)
{
    int good = 0;
    for (int length = 0; length < std::min<int>(line.size(), longestSearchedLine); ++length) {
        good = isDecoded(first + line.left(length)) ? length : good;
    }
    const QString before = decodeCatalogue(first + line.left(good));
    const auto byte = static_cast<unsigned char>(line.at(good));
    return {{number, int(before.size() - before.lastIndexOf('\n'))},
            QString("The byte 0x%1 is no text in %2, the encoding of the file: save the file in "
                    "that encoding, or name in its first line the one that it is in.")
                .arg(QString::number(byte, 16).toUpper(), encoding)};
}

DocumentFault encodingFault(const QByteArray& bytes, const QString& encoding)
{
    const QList<QByteArray> lines = bytes.split('\n');
    const QByteArray first = isDecoded(lines.first()) ? lines.first() + '\n' : QByteArray("\n");
    for (int i = 0; i < lines.size(); ++i) {
        // The declaration in front tells the library of which encoding the line is.
        const QByteArray& line = lines.at(i);
        if (!line.isEmpty() && !isDecoded((i == 0 ? QByteArray() : first) + line)) {
            return faultOfLine(i == 0 ? QByteArray() : first, line, i + 1, encoding);
        }
    }
    return {{1, 1}, QString("The file is not in its encoding, %1.").arg(encoding)};
}

bool isBefore(const TextPosition& a, const TextPosition& b)
{
    return std::make_pair(a.line, a.column) <= std::make_pair(b.line, b.column);
}

} // namespace

DocumentFault documentFault(const QByteArray& bytes, const QString& refusal)
{
    static const QRegularExpression ofParser("^Line (\\d+), column (\\d+): (.*)$");
    const QString encoding = encodingIn(refusal);
    if (!encoding.isEmpty()) {
        return encodingFault(bytes, encoding);
    }
    const QRegularExpressionMatch parser = ofParser.match(refusal);
    const bool breaksOff = refusal.contains("ends");
    DocumentFault fault{{1, 1}, refusal};
    if (parser.hasMatch()) {
        fault = {{parser.captured(1).toInt(), parser.captured(2).toInt() + 1}, parser.captured(3)};
    } else if (!breaksOff) {
        return fault;
    }
    // What stands behind the place where the parser gave up cannot be its reason.
    const std::optional<DocumentFault> known = findMarkupFault(decodeCatalogue(bytes));
    return known && (breaksOff || isBefore(known->position, fault.position)) ? *known : fault;
}

} // namespace vx
