#include "host/NetworkHttp/HttpClient.h"

QString HttpClient::encodedUrlPath(const QUrl& url)
{
    return url.path(QUrl::FullyEncoded);
}

QString HttpClient::encodedUrlPath(const QString& url)
{
    return encodedUrlPath(QUrl(url, QUrl::TolerantMode));
}
