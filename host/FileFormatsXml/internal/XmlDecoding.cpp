#include "host/FileFormatsXml/internal/XmlDecoding.h"

#include <QRegularExpression>
#include <QTextCodec>

#include "host/CoreQt/ParseException.h"

namespace vx {

namespace {

constexpr int longestDeclaration = 1024;

/** The codec in whose form the first character is written, a "<" without a byte-order mark. */
QTextCodec* codecOfFirstCharacter(const QByteArray& document)
{
    struct Form
    {
        QByteArray start;
        const char* codec;
    };
    static const Form forms[] = {{QByteArrayLiteral("<\0\0\0"), "UTF-32LE"},
                                 {QByteArrayLiteral("\0\0\0<"), "UTF-32BE"},
                                 {QByteArrayLiteral("<\0"), "UTF-16LE"},
                                 {QByteArrayLiteral("\0<"), "UTF-16BE"}};
    for (const Form& form : forms) {
        if (document.startsWith(form.start)) {
            return QTextCodec::codecForName(form.codec);
        }
    }
    return nullptr;
}

QByteArray declaredEncoding(const QByteArray& document)
{
    static const QRegularExpression declaration(
        QStringLiteral("^<\\?xml\\s[^>]*?\\sencoding\\s*=\\s*([\"'])([^\"'>]+)\\1"));
    const QString start = QString::fromLatin1(document.left(longestDeclaration));
    return declaration.match(start).captured(2).toLatin1();
}

QTextCodec* codecOf(const QByteArray& document)
{
    if (QTextCodec* const marked = QTextCodec::codecForUtfText(document, nullptr)) {
        return marked;
    }
    if (QTextCodec* const seen = codecOfFirstCharacter(document)) {
        return seen;
    }
    const QByteArray encoding = declaredEncoding(document);
    return QTextCodec::codecForName(encoding.isEmpty() ? QByteArrayLiteral("UTF-8") : encoding);
}

} // namespace

QString decodeXml(const QByteArray& document)
{
    const QTextCodec* const codec = codecOf(document);
    if (codec == nullptr) {
        throw ParseException(QStringLiteral("The encoding of the document is unknown."));
    }
    QTextCodec::ConverterState state;
    QString text = codec->toUnicode(document.constData(), int(document.size()), &state);
    // The codecs of UTF-16 and UTF-32 do not look at surrogates.
    if (state.invalidChars > 0 || state.remainingChars > 0 || !text.isValidUtf16()) {
        throw ParseException(QStringLiteral("The document is not in its encoding, %1.")
                                 .arg(QString::fromLatin1(codec->name())));
    }
    return text;
}

} // namespace vx
