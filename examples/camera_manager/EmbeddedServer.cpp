#include "examples/camera_manager/EmbeddedServer.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include "host/NodeDB/NodeDB.h"
#include "tools/server/Scenario.h"
#include "tools/signing/PackageFiles.h"

namespace {

QByteArray readFile(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

EmbeddedServer::EmbeddedServer(const QString& packages)
    : m_packages(packages)
{}

bool EmbeddedServer::start()
{
    if (!copyPackages()) {
        m_problem = QStringLiteral("The sample packages are missing: %1").arg(m_packages);
    } else if (!m_server.start()) {
        m_problem = "The update server cannot open a port.";
    } else if (!writeCatalogue()) {
        m_problem = QStringLiteral("Cannot write to %1").arg(m_folder.path());
    } else {
        // Slow, because the progress dialog does not appear for less than four seconds.
        play("slow");
    }
    return m_problem.isEmpty();
}

bool EmbeddedServer::copyPackages()
{
    const QFileInfoList packages = QDir(m_packages).entryInfoList(QDir::Files);
    for (const QFileInfo& package : packages) {
        if (!QFile::copy(package.filePath(), m_folder.filePath(package.fileName()))) {
            return false;
        }
    }
    return !packages.isEmpty();
}

bool EmbeddedServer::writeCatalogue()
{
    QString text = QString::fromUtf8(readFile(":/camera_manager/catalogue.xml"));
    text.replace("http://updates.example.com", m_server.url(QString()).toString());
    // Archives differ by some bytes from machine to machine, and what is announced must be exact.
    const QByteArray filledIn = vx::writeFactsOfFolder(text.toUtf8(), m_folder.path());
    const QByteArray catalogue = m_key.sealed(filledIn, QDateTime::currentSecsSinceEpoch());
    QFile file(m_folder.filePath("catalogue.xml"));
    return file.open(QIODevice::WriteOnly) && file.write(catalogue) == catalogue.size() &&
           QFile::copy(":/camera_manager/release-notes.html",
                       m_folder.filePath("release-notes.html"));
}

QString EmbeddedServer::catalogueUrl() const
{
    return m_server.url("/catalogue.xml").toString();
}

void EmbeddedServer::becomeProxy() const
{
    const QUrl address = m_server.url();
    vx::NodeDB::getDB().setGlobalProxy(
        vx::NetworkProxy(true, address.host(), m_server.port(), QString(), QString()));
}

void EmbeddedServer::play(const QString& scenario)
{
    vx::applyScenario(m_server, scenario, m_folder.path(), m_key);
}
