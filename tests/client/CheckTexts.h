#pragma once

#include <QString>

#include "tests/client/ClientFixture.h"

namespace vx::test {

/** How lines of the log end that tell what has become of a check, or begin those that do. */
const QString timeoutLine = QStringLiteral(
    "SoftwareUpdateClient::requestTimeout() -> Timeout occurred requesting update server!");
const QString upToDateLine =
    QStringLiteral("SoftwareUpdateClient::productUpToDate() -> product is up to date!");
const QString evaluation = QStringLiteral("SoftwareUpdateClient::evaluateServerResponse() -> ");

/** A catalogue whose one package is older than the application. */
inline QList<PackageFields> nothingNew()
{
    PackageFields fields = applicationPackage();
    fields[QStringLiteral("release")] = QStringLiteral("0.1");
    return {fields};
}

} // namespace vx::test
