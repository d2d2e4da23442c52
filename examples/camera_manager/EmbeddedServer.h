#pragma once

#include <QString>
#include <QTemporaryDir>

#include "tools/server/UpdateServer.h"
#include "tools/signing/SigningKey.h"

/**
 * An update server inside the application, so that the demonstration needs nothing else to run.
 *
 * It serves a catalogue, release notes and packages on a free port of the loopback address. The
 * catalogue is sealed with a key that lives as long as the server.
 * Packages are always fetched from port 80 of the host that the catalogue names; the server takes
 * that place as the proxy of the whole application, which needs neither port 80 nor the rights for
 * it.
 */
class EmbeddedServer
{
public:
    /** @param packages the folder of the packages that the catalogue names. */
    explicit EmbeddedServer(const QString& packages);

    /** Lays out what is served and begins to serve it. @return false if it can't; see problem(). */
    bool start();

    /** Why the server did not start, for the user. */
    QString problem() const { return m_problem; }

    /** The key that the catalogue is sealed with, for vx::UpdateTrust::requireSignatures(). */
    QString publicKey() const { return m_key.publicKey(); }

    /** The address to pass to the update client. */
    QString catalogueUrl() const;

    /** Sends the requests of the application, whichever host they are for, to this server. */
    void becomeProxy() const;

    /** Changes what the server does; the names are those of tools/server/Scenario.h. */
    void play(const QString& scenario);

private:
    bool copyPackages();
    bool writeCatalogue();

    QString m_packages;
    QString m_problem;
    const vx::SigningKey m_key = vx::SigningKey::generate();
    QTemporaryDir m_folder;
    vx::UpdateServer m_server;
};
