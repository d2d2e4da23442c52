#pragma once

#include "tests/client/ClientFixture.h"

class QProgressDialog;

namespace vx::test {

/**
 * A client before an open list of packages, which the server hands out as the application's proxy.
 *
 * Packages are offered as firmware, for which every file type is accepted and installable.
 */
class InstallationFixture : public ClientFixture
{
public:
    explicit InstallationFixture(QWidget* parent = nullptr);

    /** Opens the list with one package of @p size bytes at each address. */
    void openList(const QStringList& urls, qint64 size);

    /** Serves @p body at @p path of every host. */
    void serve(const QString& path, const QByteArray& body, int status = 200);
    void serve(const QString& path, const ServedReply& reply) { server.setReply(path, reply); }

    /** Opens the list with one package, served from /files/@p fileName, and installs it. */
    void install(const QString& fileName, const QByteArray& body);

    /** Clicks "Install Package" on @p row and "Proceed" in the box that comes. */
    void proceedWith(int row);

    /** The path that the log names as the target of the latest download. */
    QString downloadPath() const;
};

/** The open progress dialog; null if there is none. */
QProgressDialog* progressDialog();

/** Selects @p row alone and clicks "Install Package". */
void clickInstall(int row);

} // namespace vx::test
