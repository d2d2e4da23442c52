#include "client/internal/NoCatalogueReason.h"

#include <QNetworkReply>
#include <QUrl>

#include "base/FailureReason.h"
#include "download/DownloadManager.h"

namespace vx {

namespace {

QString targetOf(const QNetworkReply& reply)
{
    const QUrl target = QUrl::fromEncoded(reply.rawHeader("Location"));
    return printable(target.toString(QUrl::RemoveUserInfo | QUrl::RemoveQuery));
}

/** Of an answer whose status alone says that it is no catalogue. */
QString statusReason(const QNetworkReply& reply, int status)
{
    switch (status) {
    case 102:
    case 103:
        return interimReason(status);
    case 204:
    case 304:
        return QStringLiteral("the server answered with status %1, which has no body; let it send "
                              "the catalogue with status 200")
            .arg(status);
    case 308:
        return QStringLiteral("the server answered with status 308 and points to %1, which a check "
                              "does not follow; give the new address, or redirect with 301")
            .arg(targetOf(reply));
    default:
        return QString();
    }
}

/** The name of the first element; empty if something else comes first, or too much. */
QByteArray firstElement(QByteArray text)
{
    text = text.trimmed();
    while (text.startsWith("<?") || text.startsWith("<!--")) {
        const QByteArray end = text.startsWith("<?") ? "?>" : "-->";
        const int at = text.indexOf(end);
        text = at < 0 ? QByteArray() : text.mid(at + end.size()).trimmed();
    }
    int length = 1;
    while (length < text.size() && (isalnum(uchar(text[length])) || text[length] == '-')) {
        ++length;
    }
    return text.startsWith('<') ? text.mid(1, length - 1) : QByteArray();
}

bool isWebPage(const QByteArray& text)
{
    const QByteArray lower = text.trimmed().toLower();
    return lower.startsWith("<!doctype html") || firstElement(lower) == "html";
}

/** Not in the letters of ASCII, where a name could be read. */
bool isWide(const QByteArray& text)
{
    return text.startsWith("\xff\xfe") || text.startsWith("\xfe\xff") || text.startsWith('\0') ||
           text.mid(1, 1) == QByteArray(1, '\0');
}

QByteArray withoutMark(const QByteArray& text)
{
    return text.startsWith("\xef\xbb\xbf") ? text.mid(3) : text;
}

QString firstWord(const QByteArray& text)
{
    return printable(QString::fromLatin1(text.simplified().split(' ').value(0).left(40)));
}

QString bodyReason(const QByteArray& text, const QString& type)
{
    const QByteArray element = firstElement(text);
    if (isWebPage(text)) {
        return QStringLiteral("the answer is a web page (HTML, type \"%1\"): the sign-in page of a "
                              "network, or the server's own page; sign in, or correct the address")
            .arg(type);
    }
    if (element == DownloadManager::DOCUMENT_TAG.toLatin1() ||
        (element.isEmpty() && isWide(text))) {
        return QString();
    }
    return QStringLiteral("the answer is no catalogue: its type is \"%1\" and it begins with "
                          "\"%2\"; correct the address, or what is served there")
        .arg(type, element.isEmpty() ? firstWord(text)
                                     : QStringLiteral("<") + QString::fromLatin1(element));
}

} // namespace

QString noCatalogueReason(const QNetworkReply& reply, const QByteArray& beginning)
{
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QString byStatus = statusReason(reply, status);
    if (!byStatus.isEmpty()) {
        return byStatus;
    }
    const QString encoding = printable(QString::fromLatin1(reply.rawHeader("Content-Encoding")));
    // What was asked for is undone by now, and its name is gone from the header.
    const bool isEncoded =
        !encoding.isEmpty() && !beginning.trimmed().startsWith('<') && encoding != "identity";
    if (isEncoded) {
        return QStringLiteral("the answer is encoded as \"%1\", which was not asked for; let the "
                              "server send it plain or with gzip")
            .arg(encoding);
    }
    if (beginning.trimmed().isEmpty()) {
        return QStringLiteral("the answer with status %1 is empty; look what is served there")
            .arg(status);
    }
    const QString type = printable(reply.header(QNetworkRequest::ContentTypeHeader).toString());
    return bodyReason(withoutMark(beginning), type);
}

} // namespace vx
