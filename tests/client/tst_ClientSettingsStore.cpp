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

/** Where Qt looks for the values of the organisation that the application's own file lacks. */
QString fallbackFileIn(const QTemporaryDir& folder)
{
    return folder.filePath("Fixture Works.ini");
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

void append(const QString& file, const QByteArray& lines)
{
    QFile text(file);
    if (text.open(QIODevice::Append)) {
        text.write(lines);
    }
}

QByteArray contents(const QString& file)
{
    QFile text(file);
    return text.open(QIODevice::ReadOnly) ? text.readAll() : QByteArray();
}

QVariant valueIn(const QString& file, const QString& key)
{
    return QSettings(file, QSettings::IniFormat).value(key);
}

} // namespace

class ClientSettingsStoreTest : public QObject
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
    void timesOfOtherFilesStayAsTheyAre();
    void timeOfARecordThatCannotBeWritten();
};

void ClientSettingsStoreTest::cleanup()
{
    SoftwareUpdateClient::sSoftUpQSettingsFormat = QSettings::NativeFormat;
    SoftwareUpdateClient::sSoftUpQSettingsScope = QSettings::UserScope;
}

void ClientSettingsStoreTest::formatAndScopeAreTheHosts_data()
{
    QTest::addColumn<QSettings::Scope>("scope");
    QTest::newRow("user") << QSettings::UserScope;
    QTest::newRow("system") << QSettings::SystemScope;
}

void ClientSettingsStoreTest::formatAndScopeAreTheHosts()
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

void ClientSettingsStoreTest::noGroupIsLeftOpen()
{
    ClientFixture fixture;
    fixture.start().setCurrentCameraVersions({qMakePair(QString("Mini-12"), VersionNumber("1.5"))});
    for (const QString& key : storedKeys()) {
        QVERIFY2(!key.contains('/'), qPrintable(key));
    }
}

void ClientSettingsStoreTest::unwritableStoreIsNotNoticed()
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

void ClientSettingsStoreTest::lettersOfVersionsStayAsTheyAre()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    const QString version = QString::fromUtf8("1.0ä");
    const QString cameras = QString::fromUtf8("Mini-12:1.5ä,Dome-24:2.0ÿ");
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
void ClientSettingsStoreTest::timesThatCannotBeWritten()
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
    append(file, "damaged=" + timeOfNoZone() + "\ndamaged\\below=healthy\nlist=first, " +
                     timeOfNoZone() + ", last\n[General]\nlastCheck=" + timeOfNoZone() + '\n');
    QCOMPARE(valueIn(file, "others/damaged").userType(), int(QMetaType::QDateTime));

    const SoftwareUpdateSettings record = client.record();
    QVERIFY(record.lastCheck.isNull());
    QCOMPARE(record.product, QStringLiteral("Fixture Product"));
    const QStringList keys = QSettings(file, QSettings::IniFormat).allKeys();
    client.store(record);

    QCOMPARE(QSettings(file, QSettings::IniFormat).allKeys(), keys);
    QVERIFY(valueIn(file, "lastCheck").toDateTime().isNull());
    QVERIFY(valueIn(file, "others/damaged").toDateTime().isNull());
    QCOMPARE(valueIn(file, "others/damaged/below").toString(), QStringLiteral("healthy"));
    QCOMPARE(valueIn(file, "others/list").toList(),
             QVariantList({QStringLiteral("first"), QDateTime(), QStringLiteral("last")}));
    QCOMPARE(valueIn(file, "others/text").toString(), QStringLiteral("some text"));
    QCOMPARE(valueIn(file, "others/time").toDateTime(), kept);
    QCOMPARE(valueIn(file, "product").toString(), QStringLiteral("Fixture Product"));
}

// They are not the client's, and nobody writes them here.
void ClientSettingsStoreTest::timesOfOtherFilesStayAsTheyAre()
{
    QTemporaryDir folder;
    useIniFilesIn(folder, QSettings::UserScope);
    ClientFixture fixture;
    TestClient& client = fixture.start();
    const QString file = iniFileIn(folder);
    const QString fallback = fallbackFileIn(folder);
    append(fallback, "damaged=" + timeOfNoZone() + "\nlastCheck=" + timeOfNoZone() + '\n');
    const QByteArray before = contents(fallback);
    const QStringList keys = QSettings(file, QSettings::IniFormat).allKeys();
    QVERIFY(client.record().lastCheck.isNull());
    client.store(client.record());

    QCOMPARE(QSettings(file, QSettings::IniFormat).allKeys(), keys);
    QCOMPARE(contents(fallback), before);
}

void ClientSettingsStoreTest::timeOfARecordThatCannotBeWritten()
{
    QTemporaryDir folder;
    useIniFilesIn(folder, QSettings::UserScope);
    ClientFixture fixture;
    TestClient& client = fixture.start();
    const QString source = folder.filePath("source.ini");
    append(source, "time=" + timeOfNoZone() + '\n');

    SoftwareUpdateSettings record = client.record();
    record.lastCheck = QDateTime(QDate(2012, 3, 4), QTime(5, 6, 7));
    client.store(record);
    record.lastCheck = valueIn(source, "time").toDateTime();
    QVERIFY(!record.lastCheck.isNull());
    client.store(record);
    QCOMPARE(client.record().lastCheck, QDateTime(QDate(2012, 3, 4), QTime(5, 6, 7)));
}

VX_TEST_MAIN(ClientSettingsStoreTest)
#include "tst_ClientSettingsStore.moc"
