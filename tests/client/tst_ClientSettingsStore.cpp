#include <QLabel>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include "dialogs/SoftwareUpdateDialog.h"
#include "tests/client/ClientFixture.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

void useIniFilesIn(const QTemporaryDir& folder, QSettings::Scope scope)
{
    QSettings::setPath(QSettings::IniFormat, scope, folder.path());
    SoftwareUpdateClient::sSoftUpQSettingsFormat = QSettings::IniFormat;
    SoftwareUpdateClient::sSoftUpQSettingsScope = scope;
}

QString iniFileIn(const QTemporaryDir& folder)
{
    return folder.filePath("Fixture Works/Fixture Application.ini");
}

/** A time of a zone that no system has, as a settings file writes times. */
QByteArray timeOfNoZone()
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_6);
    const auto type = quint32(QMetaType::QDateTime);
    const quint8 isNull = 0;
    stream << type << isNull << QDate(2012, 3, 4) << QTime(5, 6) << qint8(Qt::TimeZone)
           << QString("Nowhere/At_All");
    QByteArray text = "@DateTime(";
    for (const char byte : bytes) {
        text += "\\x" + QByteArray::number(uchar(byte), 16);
    }
    return text + ')';
}

} // namespace

class tst_ClientSettingsStore : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void formatAndScopeAreTheHosts_data();
    void formatAndScopeAreTheHosts();
    void noGroupIsLeftOpen();
    void unwritableStoreIsNotNoticed();
    void lettersOfVersionsStayAsTheyAre();
    void timesThatCannotBeWritten();
};

void tst_ClientSettingsStore::cleanup()
{
    SoftwareUpdateClient::sSoftUpQSettingsFormat = QSettings::NativeFormat;
    SoftwareUpdateClient::sSoftUpQSettingsScope = QSettings::UserScope;
}

void tst_ClientSettingsStore::formatAndScopeAreTheHosts_data()
{
    QTest::addColumn<QSettings::Scope>("scope");
    QTest::newRow("user") << QSettings::UserScope;
    QTest::newRow("system") << QSettings::SystemScope;
}

void tst_ClientSettingsStore::formatAndScopeAreTheHosts()
{
    QFETCH(QSettings::Scope, scope);
    QCOMPARE(SoftwareUpdateClient::sSoftUpQSettingsFormat, QSettings::NativeFormat);
    QCOMPARE(SoftwareUpdateClient::sSoftUpQSettingsScope, QSettings::UserScope);
    QTemporaryDir folder;
    useIniFilesIn(folder, scope);
    ClientFixture fixture;
    fixture.start();
    QVERIFY(storedKeys().isEmpty());
    const QSettings ini(iniFileIn(folder), QSettings::IniFormat);
    QCOMPARE(ini.value("product").toString(), QStringLiteral("Fixture Product"));
}

void tst_ClientSettingsStore::noGroupIsLeftOpen()
{
    ClientFixture fixture;
    fixture.start().setCurrentCameraVersions({qMakePair(QString("M15"), VersionNumber("1.5"))});
    for (const QString& key : storedKeys()) {
        QVERIFY2(!key.contains('/'), qPrintable(key));
    }
}

void tst_ClientSettingsStore::unwritableStoreIsNotNoticed()
{
    QTemporaryDir folder;
    QFile occupied(folder.filePath("Fixture Works"));
    QVERIFY(occupied.open(QIODevice::WriteOnly)); // a file where the folder would have to be
    useIniFilesIn(folder, QSettings::UserScope);
    ClientFixture fixture;
    TestClient& client = fixture.start();
    client.setVersionNumber(VersionNumber("2.0"));
    QCOMPARE(client.record().doUpdateCheck, true);
    QVERIFY(client.hourlyTimer()->isActive());
    QVERIFY(fixture.log.lines(3).isEmpty());
}

void tst_ClientSettingsStore::lettersOfVersionsStayAsTheyAre()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    const QString version = QString::fromUtf8("1.0ä");
    const QString cameras = QString::fromUtf8("M15:1.5ä,M24:2.0ÿ");
    writeStored("versionNumber", version);
    writeStored("currentCameraVersions", cameras);
    for (int round = 0; round < 3; ++round) {
        client.store(client.record());
        QCOMPARE(stored("versionNumber").toString(), version);
        QCOMPARE(stored("currentCameraVersions").toString(), cameras);
    }
    const SoftwareUpdateDialog* dialog = fixture.openSettingsDialog();
    QCOMPARE(dialog->findChild<QLabel*>("currentVersionNumberLabel")->text(), version);
}

// Qt crashes when it writes such a time, and writes all of a file when one value of it changes.
void tst_ClientSettingsStore::timesThatCannotBeWritten()
{
    QTemporaryDir folder;
    useIniFilesIn(folder, QSettings::UserScope);
    ClientFixture fixture;
    TestClient& client = fixture.start();
    const QDateTime kept(QDate(2012, 3, 4), QTime(5, 6, 7));
    const QString file = iniFileIn(folder);
    {
        QSettings ini(file, QSettings::IniFormat);
        ini.setValue("others/text", "some text");
        ini.setValue("others/time", kept);
    }
    QFile text(file);
    QVERIFY(text.open(QIODevice::Append));
    text.write("damaged=" + timeOfNoZone() + "\n[General]\nlastCheck=" + timeOfNoZone() + '\n');
    text.close();
    QCOMPARE(QSettings(file, QSettings::IniFormat).value("others/damaged").type(),
             QVariant::DateTime);

    const SoftwareUpdateSettings record = client.record();
    QVERIFY(record.lastCheck.isNull());
    QCOMPARE(record.product, QStringLiteral("Fixture Product"));
    QStringList keys = QSettings(file, QSettings::IniFormat).allKeys();
    client.store(record);

    const QSettings after(file, QSettings::IniFormat);
    QVERIFY(keys.removeOne("lastCheck"));
    QVERIFY(keys.removeOne("others/damaged"));
    QCOMPARE(after.allKeys(), keys);
    QCOMPARE(after.value("others/text").toString(), QStringLiteral("some text"));
    QCOMPARE(after.value("others/time").toDateTime(), kept);
    QCOMPARE(after.value("product").toString(), QStringLiteral("Fixture Product"));
}

VX_TEST_MAIN(tst_ClientSettingsStore)
#include "tst_ClientSettingsStore.moc"
