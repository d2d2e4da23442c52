#pragma once

#include <QList>
#include <QSslError>
#include <QString>

namespace vx {

/** What is wrong with the certificate of @p host, and what to do about it; for the log. */
QString tlsReason(const QList<QSslError>& errors, const QString& host);

} // namespace vx
