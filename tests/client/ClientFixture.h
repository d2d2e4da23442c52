#pragma once

#include <QByteArrayList>
#include <QList>
#include <QMap>
#include <QSettings>
#include <QString>
#include <QUrl>
#include <QVariant>

#include <initializer_list>
#include <memory>
#include <utility>

#include "client/SoftwareUpdateClient.h"
#include "tests/support/BoxWatcher.h"
#include "tests/support/LogCapture.h"
#include "tools/server/UpdateServer.h"

class QTimer;

namespace vx {

class SoftwareUpdateAvailableDialog;
class SoftwareUpdateDialog;

namespace test {

/** A client that lets a test reach what is protected and calls private slots by their name. */
class TestClient : public SoftwareUpdateClient
{
public:
    using SoftwareUpdateClient::installMPKGPackage;
    using SoftwareUpdateClient::networkProxy;
    using SoftwareUpdateClient::parseServerResponse;
    using SoftwareUpdateClient::performUpdateCheck;
    using SoftwareUpdateClient::productUpToDate;
    using SoftwareUpdateClient::SoftwareUpdateClient;
    using SoftwareUpdateClient::transformReleaseStatus;

    SoftwareUpdateSettings record();
    void store(const SoftwareUpdateSettings& record) { setCurrentSettings(&record); }

    /** Calls the slot without arguments, as a timer or a dialog would. */
    void call(const char* slot);

    QTimer* hourlyTimer() const;
    /** The timer of a running check; null before the first. */
    QTimer* requestTimer() const;
    /** The timers of delayed checks, fired or not. */
    QList<QTimer*> delayTimers() const;
};

/** The fields of one catalogue entry, by tag. */
using PackageFields = QMap<QString, QString>;

/** An application package of release 2.0 that a client of version 1.0 is offered. */
PackageFields applicationPackage();

/** A firmware package of release 2.0 for the camera "Mini-12". */
PackageFields cameraPackage();

/** @p fields with some replaced or added; texts are UTF-8. */
PackageFields changed(PackageFields fields,
                      std::initializer_list<std::pair<const char*, const char*>> with);

QByteArray catalogueXml(const QList<PackageFields>& packages);

/**
 * One client with all it needs: an empty store, a server, the log and whoever answers its boxes.
 *
 * Create one per test function, on the stack.
 */
class ClientFixture
{
public:
    ClientFixture();
    ~ClientFixture();
    ClientFixture(const ClientFixture&) = delete;
    ClientFixture& operator=(const ClientFixture&) = delete;

    /** Creates the client of version 1.0, with the server's address as its default. */
    TestClient& start(QWidget* parent = nullptr);

    /** Creates the client, with the server as the application's proxy for every host. */
    TestClient& startBehindProxy(QWidget* parent = nullptr);

    void deleteClient() { m_client.reset(); }
    TestClient& client() { return *m_client; }

    /** Serves a catalogue at "/". */
    void offer(const QList<PackageFields>& packages);

    /** Checks now and waits until the check has ended; false if it doesn't. */
    bool check();

    /** offer() and check(), and the dialog that comes; null if none comes. */
    SoftwareUpdateAvailableDialog* openAvailableDialog(const QList<PackageFields>& packages);

    /** Opens the settings dialog as a host does. */
    SoftwareUpdateDialog* openSettingsDialog();

    UpdateServer server;
    LogCapture log;
    BoxWatcher boxes;

private:
    std::unique_ptr<TestClient> m_client;
};

/** The open dialog of each kind; null if there is none. */
SoftwareUpdateDialog* settingsDialog();
SoftwareUpdateAvailableDialog* availableDialog();

/** Deletes what is waiting for it. */
void deleteDeferred();

/** One value of the store, read apart from the client. */
QVariant stored(const QString& key);
void writeStored(const QString& key, const QVariant& value);
QStringList storedKeys();

} // namespace test
} // namespace vx
