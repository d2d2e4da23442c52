// The application's next version may be built with another Qt: it must find what this one stored.
#include <QTemporaryDir>
#include <QtTest>

#include "tests/client/ClientFixture.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

class StoreOfOtherQtTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void reads_data() { addFiles(); }
    void reads();
    void keepsTheValuesOfOthers_data() { addFiles(); }
    void keepsTheValuesOfOthers();
    void writesTheFileOfItsOwn_data() { addFiles(); }
    void writesTheFileOfItsOwn();

private:
    static void addFiles();
    QString storeFile() const;

    QScopedPointer<QTemporaryDir> m_folder;
};

void StoreOfOtherQtTest::addFiles()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("Qt 5") << "written-by-qt5.ini";
    QTest::newRow("Qt 6") << "written-by-qt6.ini";
}

QString StoreOfOtherQtTest::storeFile() const
{
    return m_folder->filePath("Example/CameraManager.ini");
}

void StoreOfOtherQtTest::init()
{
    m_folder.reset(new QTemporaryDir);
    QCoreApplication::setOrganizationName("Example");
    QCoreApplication::setApplicationName("CameraManager");
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_folder->path());
    SoftwareUpdateClient::sSoftUpQSettingsFormat = QSettings::IniFormat;
    QVERIFY(QDir(m_folder->path()).mkdir("Example"));
}

void StoreOfOtherQtTest::cleanup()
{
    SoftwareUpdateClient::sSoftUpQSettingsFormat = QSettings::NativeFormat;
}

void StoreOfOtherQtTest::reads()
{
    QFETCH(QString, name);
    QVERIFY(QFile::copy(QFINDTESTDATA("stores/" + name), storeFile()));
    TestClient client("Camera Manager", VersionNumber("6.0"), "http://default.example.com/",
                      nullptr);

    const SoftwareUpdateSettings record = client.record();
    QCOMPARE(record.serverURL,
             QString::fromUtf8("http://updates.example.com/Überwachung.xml?a=1;b,c=\"2\""));
    QCOMPARE(record.doUpdateCheck, true);
    QCOMPARE(record.checkForBeta, true);
    QCOMPARE(record.updateInterval, 2);
    QCOMPARE(record.lastCheck, QDateTime(QDate(2024, 3, 30), QTime(12, 30, 15, 250)));
    QCOMPARE(record.currentCameraVersions.size(), 2);
    QCOMPARE(record.currentCameraVersions.at(0).first, QString::fromUtf8("Dome-24 Süd"));
    QCOMPARE(record.currentCameraVersions.at(1).first, QString::fromUtf8("Mini-12 監視"));
    QCOMPARE(record.currentCameraVersions.at(1).second.toString(), std::string("2.0.7"));
}

void StoreOfOtherQtTest::keepsTheValuesOfOthers()
{
    QFETCH(QString, name);
    QVERIFY(QFile::copy(QFINDTESTDATA("stores/" + name), storeFile()));
    TestClient client("Camera Manager", VersionNumber("6.0"), "http://default.example.com/",
                      nullptr);
    client.store(client.record());

    // As the application itself reads its store, which knows nothing of the other Qt.
    const QSettings store(storeFile(), QSettings::IniFormat);
    QCOMPARE(store.value("versionNumber").toString(), QString("6.0"));
    QCOMPARE(store.value("others/text").toString(),
             QString::fromUtf8("Wächter \xF0\x9F\x93\xB7 abc"));
    QCOMPARE(store.value("others/list").toStringList(),
             QStringList({QString::fromUtf8("é, ü"), "b"}));
}

// What this Qt writes is one of the two files that both of them read.
void StoreOfOtherQtTest::writesTheFileOfItsOwn()
{
    QFETCH(QString, name);
    QVERIFY(QFile::copy(QFINDTESTDATA("stores/" + name), storeFile()));
    TestClient client("Camera Manager", VersionNumber("5.2.1"), "http://default.example.com/",
                      nullptr);
    SoftwareUpdateSettings record = client.record();
    // Every client of a process adds its words once more.
    record.supportedPlatforms = QStringList({"Mac32", "Mac64", "MacPP"});
    record.supportedPackageTypes = QStringList({"mpkg", "dmg"});
    record.installablePackageTypes = QStringList("mpkg");
    client.store(record);

    QFile written(storeFile());
    QVERIFY(written.open(QIODevice::ReadOnly));
    QFile expected(QFINDTESTDATA(QString("stores/written-by-qt%1.ini").arg(QT_VERSION_MAJOR)));
    QVERIFY(expected.open(QIODevice::ReadOnly));
    QCOMPARE(written.readAll(), expected.readAll());
}

VX_TEST_MAIN(StoreOfOtherQtTest)
#include "tst_StoreOfOtherQt.moc"
