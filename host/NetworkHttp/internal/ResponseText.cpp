#include "host/NetworkHttp/internal/ResponseText.h"

#include <QRegularExpression>
#include <QTextCodec>

namespace vx {

namespace {

QTextCodec* codecOf(const QString& contentType)
{
    static const QRegularExpression charset(QStringLiteral(";\\s*charset\\s*=\\s*\"?([^\";\\s]+)"),
                                            QRegularExpression::CaseInsensitiveOption);
    const QString name = charset.match(contentType).captured(1);
    QTextCodec* const named = QTextCodec::codecForName(name.toLatin1());
    return named != nullptr ? named : QTextCodec::codecForName("UTF-8");
}

} // namespace

QString decodedText(const QByteArray& bytes, const QString& contentType)
{
    return QTextCodec::codecForUtfText(bytes, codecOf(contentType))->toUnicode(bytes);
}

} // namespace vx
