#include "tests/client/ClientFixture.h"

#include <QApplication>
#include <QDialog>
#include <QTimer>
#include <QtTest>

#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "dialogs/SoftwareUpdateDialog.h"
#include "host/NodeDB/NodeDB.h"

namespace vx::test {

namespace {

const QString organization = QStringLiteral("Fixture Works");
const QString application = QStringLiteral("Fixture Application");

QSettings store()
{
    return {QSettings::NativeFormat, QSettings::UserScope, organization, application};
}

template <typename Dialog>
Dialog* openDialog()
{
    for (QWidget* widget : QApplication::allWidgets()) {
        if (auto* dialog = qobject_cast<Dialog*>(widget)) {
            return dialog;
        }
    }
    return nullptr;
}

// What a client leaves to its host, and the windows of the test itself spared.
void deleteDialogs()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        // Children of another dialog of the list are gone by the time that the loop gets there.
        if (QApplication::topLevelWidgets().contains(window) && qobject_cast<QDialog*>(window)) {
            delete window;
        }
    }
}

} // namespace

SoftwareUpdateSettings TestClient::record()
{
    SoftwareUpdateSettings record;
    getCurrentSettings(&record);
    return record;
}

void TestClient::call(const char* slot)
{
    QVERIFY(QMetaObject::invokeMethod(this, slot, Qt::DirectConnection));
}

QTimer* TestClient::hourlyTimer() const
{
    const auto timers = findChildren<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
    return timers.value(0);
}

QTimer* TestClient::requestTimer() const
{
    for (QTimer* timer : findChildren<QTimer*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (timer->isSingleShot() && timer->interval() == 15000) {
            return timer;
        }
    }
    return nullptr;
}

QList<QTimer*> TestClient::delayTimers() const
{
    QList<QTimer*> timers = findChildren<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
    timers.removeOne(hourlyTimer());
    timers.removeOne(requestTimer());
    return timers;
}

PackageFields applicationPackage()
{
    return {{QStringLiteral("name"), application},
            {QStringLiteral("release"), QStringLiteral("2.0")},
            {QStringLiteral("status"), QStringLiteral("STABLE")},
            {QStringLiteral("platform"), QStringLiteral("Mac64")},
            {QStringLiteral("release-date"), QStringLiteral("2012-03-04")},
            {QStringLiteral("file-size"), QStringLiteral("10")},
            {QStringLiteral("url"), QStringLiteral("http://download.example.com/files/app.mpkg")}};
}

PackageFields cameraPackage()
{
    PackageFields fields = applicationPackage();
    fields[QStringLiteral("name")] = QStringLiteral("Firmware");
    fields[QStringLiteral("platform")] = QStringLiteral("Mini-12");
    fields[QStringLiteral("file-size")] = QStringLiteral("20");
    fields[QStringLiteral("url")] =
        QStringLiteral("http://download.example.com/files/mini-12.mpkg");
    return fields;
}

PackageFields changed(PackageFields fields,
                      std::initializer_list<std::pair<const char*, const char*>> with)
{
    for (const auto& field : with) {
        fields[QString::fromLatin1(field.first)] = QString::fromUtf8(field.second);
    }
    return fields;
}

QByteArray catalogueXml(const QList<PackageFields>& packages)
{
    QString text = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?><softwareList>");
    for (const PackageFields& fields : packages) {
        text += QStringLiteral("<package>");
        for (auto field = fields.begin(); field != fields.end(); ++field) {
            text += QStringLiteral("<%1>%2</%1>").arg(field.key(), field.value().toHtmlEscaped());
        }
        text += QStringLiteral("</package>");
    }
    return (text + QStringLiteral("</softwareList>")).toUtf8();
}

ClientFixture::ClientFixture()
{
    QCoreApplication::setOrganizationName(organization);
    QCoreApplication::setApplicationName(application);
    store().clear();
    NodeDB::getDB().setGlobalProxy(NetworkProxy());
    if (!server.start()) {
        qFatal("no port to serve on");
    }
    offer({});
}

ClientFixture::~ClientFixture()
{
    m_client.reset();
    deleteDialogs();
    deleteDeferred();
    NodeDB::getDB().setGlobalProxy(NetworkProxy());
}

TestClient& ClientFixture::start(QWidget* parent)
{
    m_client = std::make_unique<TestClient>(QStringLiteral("Fixture Product"), VersionNumber("1.0"),
                                            server.url().toString(), parent);
    return *m_client;
}

TestClient& ClientFixture::startBehindProxy(QWidget* parent)
{
    NodeDB::getDB().setGlobalProxy(
        NetworkProxy(true, QStringLiteral("127.0.0.1"), server.port(), QString(), QString()));
    m_client = std::make_unique<TestClient>(QStringLiteral("Fixture Product"), VersionNumber("1.0"),
                                            QStringLiteral("http://update.example.com/"), parent);
    return *m_client;
}

void ClientFixture::offer(const QList<PackageFields>& packages)
{
    ServedReply reply;
    reply.body = catalogueXml(packages);
    server.setReply(QStringLiteral("/"), reply);
}

bool ClientFixture::check()
{
    m_client->checkForUpdate();
    QTimer* timer = m_client->requestTimer();
    return timer && QTest::qWaitFor([timer] { return !timer->isActive(); }, 10000);
}

SoftwareUpdateAvailableDialog*
ClientFixture::openAvailableDialog(const QList<PackageFields>& packages)
{
    offer(packages);
    return check() ? availableDialog() : nullptr;
}

SoftwareUpdateDialog* ClientFixture::openSettingsDialog()
{
    m_client->queryForUpdate();
    return settingsDialog();
}

SoftwareUpdateDialog* settingsDialog()
{
    return openDialog<SoftwareUpdateDialog>();
}

SoftwareUpdateAvailableDialog* availableDialog()
{
    return openDialog<SoftwareUpdateAvailableDialog>();
}

void deleteDeferred()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QVariant stored(const QString& key)
{
    return store().value(key);
}

void writeStored(const QString& key, const QVariant& value)
{
    store().setValue(key, value);
}

QStringList storedKeys()
{
    return store().allKeys();
}

} // namespace vx::test
