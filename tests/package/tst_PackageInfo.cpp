#include "package/PackageInfo.h"

#include <QtTest>

#include <cstring>
#include <limits>

#include "host/FileFormatsVeldrix/VeldrixSoftwareVersion.h"
#include "tests/support/TestMain.h"

using namespace vx;

namespace {

const QDateTime noon(QDate(2012, 6, 1), QTime(12, 30));

PackageInfo withDateAndSize(const QDateTime& date, quintptr size)
{
    PackageInfo package;
    package.date = date;
    package.fileSize = size;
    return package;
}

quint32 wordOf(const PackageInfo::Flags& flags)
{
    quint32 word = 0;
    std::memcpy(&word, &flags, sizeof(word));
    return word;
}

template <typename... Fields>
QVector<quintptr> addresses(const Fields&... fields)
{
    return {reinterpret_cast<quintptr>(&fields)...};
}

} // namespace

class PackageInfoTest : public QObject
{
    Q_OBJECT

private slots:
    void startsEmpty();
    void takesItsArgumentsInOrder();
    void doesNotKeepThePublicNamesEqual();
    void declaresItsFieldsInOrder();
    void copiesEveryField();
    void copyOutOfAListIsIndependent();
    void keepsItsFlagsInOneWord();
    void displayName_data();
    void displayName();
    void displayReleaseVersion_data();
    void displayReleaseVersion();
    void timeToString_data();
    void timeToString();
    void isInstallable_data();
    void isInstallable();
    void stringID_data();
    void stringID();
    void equality_data();
    void equality();
    void fileName_data();
    void fileName();
};

void PackageInfoTest::startsEmpty()
{
    const PackageInfo package;
    for (const QString& text :
         {package.type, package.name, package.publicName, package.release, package.publicRelease,
          package.status, package.localFile, package.packageType, package.comment}) {
        QVERIFY(text.isEmpty());
    }
    QVERIFY(package.localFile.isNull());
    QVERIFY(package.url.isEmpty());
    QVERIFY(package.date.isNull());
    QVERIFY(package.platforms.isEmpty());
    QVERIFY(package.languages.isEmpty());
    QVERIFY(package.relNotes.isEmpty());
    QVERIFY(package.readme.isEmpty());
    QCOMPARE(package.fileSize, quintptr(0));
    QCOMPARE(wordOf(package.flags), 0U);
    QVERIFY(!package.confirmInstall);
}

void PackageInfoTest::takesItsArgumentsInOrder()
{
    const PackageInfo package("Application", "viewer", "4.2", "STABLE", noon, {"Mac64"}, {"en"},
                              "mpkg", "Read me");
    QCOMPARE(package.type, QString("Application"));
    QCOMPARE(package.name, QString("viewer"));
    QCOMPARE(package.publicName, QString("viewer"));
    QCOMPARE(package.release, QString("4.2"));
    QCOMPARE(package.publicRelease, QString("4.2"));
    QCOMPARE(package.status, QString("STABLE"));
    QCOMPARE(package.date, noon);
    QCOMPARE(package.platforms, QStringSet({"Mac64"}));
    QCOMPARE(package.languages, QStringSet({"en"}));
    QCOMPARE(package.packageType, QString("mpkg"));
    QCOMPARE(package.comment, QString("Read me"));
    QVERIFY(package.url.isEmpty());
    QVERIFY(package.localFile.isNull());
}

void PackageInfoTest::doesNotKeepThePublicNamesEqual()
{
    PackageInfo package(QString(), "viewer", "4.2");
    package.name = "editor";
    package.release = "5.0";
    QCOMPARE(package.publicName, QString("viewer"));
    QCOMPARE(package.publicRelease, QString("4.2"));
}

void PackageInfoTest::declaresItsFieldsInOrder()
{
    const PackageInfo p;
    const QVector<quintptr> places =
        addresses(p.type, p.name, p.publicName, p.platforms, p.url, p.release, p.publicRelease,
                  p.status, p.date, p.fileSize, p.languages, p.relNotes, p.readme, p.flags,
                  p.localFile, p.confirmInstall, p.packageType, p.comment);
    QCOMPARE(places.size(), 18);
    QVERIFY(std::is_sorted(places.begin(), places.end()));
    QCOMPARE(sizeof(p.fileSize), sizeof(void*));
}

void PackageInfoTest::copiesEveryField()
{
    PackageInfo package("t", "n", "r", "s", noon, {"p"}, {"l"}, "zip", "c");
    package.publicName = "pn";
    package.publicRelease = "pr";
    package.url = QUrl("http://host/file.zip");
    package.fileSize = 7;
    package.relNotes.insert("en", QUrl("http://host/notes"));
    package.readme.insert("de", QUrl("http://host/readme"));
    package.flags.known = true;
    package.flags.superseded = true;
    package.localFile = "/tmp/file.zip";
    package.confirmInstall = true;

    PackageInfo assigned;
    assigned = package;
    for (const PackageInfo& copy : {PackageInfo(package), assigned}) {
        QCOMPARE(copy.type, QString("t"));
        QCOMPARE(copy.name, QString("n"));
        QCOMPARE(copy.publicName, QString("pn"));
        QCOMPARE(copy.platforms, QStringSet({"p"}));
        QCOMPARE(copy.url, QUrl("http://host/file.zip"));
        QCOMPARE(copy.release, QString("r"));
        QCOMPARE(copy.publicRelease, QString("pr"));
        QCOMPARE(copy.status, QString("s"));
        QCOMPARE(copy.date, noon);
        QCOMPARE(copy.fileSize, quintptr(7));
        QCOMPARE(copy.languages, QStringSet({"l"}));
        QCOMPARE(copy.relNotes, package.relNotes);
        QCOMPARE(copy.readme, package.readme);
        QCOMPARE(wordOf(copy.flags), 3U);
        QCOMPARE(copy.localFile, QString("/tmp/file.zip"));
        QVERIFY(copy.confirmInstall);
        QCOMPARE(copy.packageType, QString("zip"));
        QCOMPARE(copy.comment, QString("c"));
    }
}

void PackageInfoTest::copyOutOfAListIsIndependent()
{
    PackageInfoList list;
    list.append(PackageInfo("Application"));
    PackageInfo copy = list.first();
    copy.type = "Camera Firmware";
    QCOMPARE(list.first().type, QString("Application"));
    list.clear();
    QCOMPARE(copy.type, QString("Camera Firmware"));
}

void PackageInfoTest::keepsItsFlagsInOneWord()
{
    QCOMPARE(sizeof(PackageInfo::Flags), sizeof(quint32));
    PackageInfo package;
    package.flags.known = true;
    QCOMPARE(wordOf(package.flags), 1U);
    package.flags.known = false;
    package.flags.superseded = true;
    QCOMPARE(wordOf(package.flags), 2U);
}

void PackageInfoTest::displayName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("publicName");
    QTest::addColumn<bool>("usePublic");
    QTest::addColumn<QString>("shown");

    QTest::newRow("public name") << "fw"
                                 << "Firmware" << true << "Firmware";
    QTest::newRow("no public name") << "fw"
                                    << "" << true << "fw";
    QTest::newRow("not asked for") << "fw"
                                   << "Firmware" << false << "fw";
    QTest::newRow("public name alone, not asked for") << ""
                                                      << "Firmware" << false << "";
    QTest::newRow("nothing") << ""
                             << "" << true << "";
}

void PackageInfoTest::displayName()
{
    QFETCH(QString, name);
    QFETCH(QString, publicName);
    QFETCH(bool, usePublic);
    PackageInfo package;
    package.name = name;
    package.publicName = publicName;
    QTEST(package.displayName(usePublic), "shown");
}

void PackageInfoTest::displayReleaseVersion_data()
{
    QTest::addColumn<QString>("release");
    QTest::addColumn<QString>("publicRelease");
    QTest::addColumn<bool>("usePublic");
    QTest::addColumn<QString>("shown");

    const QString formatted = VeldrixSoftwareVersion::applicationVersion("4.2.1.77", "?", 0);
    QTest::newRow("public release") << "4.2.1.77"
                                    << "V4" << true << "V4";
    QTest::newRow("no public release") << "4.2.1.77"
                                       << "" << true << formatted;
    QTest::newRow("not asked for") << "4.2.1.77"
                                   << "V4" << false << formatted;
    QTest::newRow("public release alone, not asked for") << ""
                                                         << "V4" << false << "V4";
    QTest::newRow("nothing") << ""
                             << "" << true << "";
    QTest::newRow("nothing, not asked for") << ""
                                            << "" << false << "";
}

void PackageInfoTest::displayReleaseVersion()
{
    QFETCH(QString, release);
    QFETCH(QString, publicRelease);
    QFETCH(bool, usePublic);
    PackageInfo package;
    package.release = release;
    package.publicRelease = publicRelease;
    QTEST(package.displayReleaseVersion(usePublic), "shown");
}

void PackageInfoTest::timeToString_data()
{
    QTest::addColumn<QDateTime>("date");
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("shown");

    const QDateTime midnight(QDate(2012, 6, 1), QTime(0, 0));
    const QDateTime justAfter(QDate(2012, 6, 1), QTime(0, 0, 0, 1));
    QTest::newRow("with a time") << noon << int(Qt::ISODate) << "2012-06-01T12:30:00";
    QTest::newRow("midnight") << midnight << int(Qt::ISODate) << "2012-06-01";
    QTest::newRow("a millisecond after") << justAfter << int(Qt::ISODate) << "2012-06-01T00:00:00";
    QTest::newRow("null") << QDateTime() << int(Qt::ISODate) << "";
    QTest::newRow("text form") << noon << int(Qt::TextDate) << noon.toString(Qt::TextDate);
    QTest::newRow("text form at midnight")
        << midnight << int(Qt::TextDate) << midnight.date().toString(Qt::TextDate);
}

void PackageInfoTest::timeToString()
{
    QFETCH(QDateTime, date);
    QFETCH(int, format);
    QTEST(withDateAndSize(date, 0).timeToString(static_cast<Qt::DateFormat>(format)), "shown");
}

void PackageInfoTest::isInstallable_data()
{
    QTest::addColumn<bool>("installable");

    for (const char* type : {"zip", "exe", "msi", "ZIP", "EXE", "Msi"}) {
        QTest::newRow(type) << true;
    }
    for (const char* type :
         {"", "mpkg", "dmg", "tar.gz", "tar.bz2", "deb", "rpk", "zipx", ".zip"}) {
        QTest::newRow(type) << false;
    }
}

void PackageInfoTest::isInstallable()
{
    const QString type = QTest::currentDataTag();
    QTEST(PackageInfo::isInstallable(type), "installable");
    PackageInfo package;
    package.packageType = type;
    QTEST(package.isInstallable(), "installable");
}

void PackageInfoTest::stringID_data()
{
    QTest::addColumn<QDateTime>("date");
    QTest::addColumn<quintptr>("size");
    QTest::addColumn<QString>("id");

    constexpr quintptr largest = std::numeric_limits<quintptr>::max();
    QTest::newRow("default record") << QDateTime() << quintptr(0) << "1--0";
    QTest::newRow("time and size") << noon << quintptr(1024) << "1-2012-06-01T12:30:00-1024";
    QTest::newRow("unsigned") << QDateTime() << largest
                              << QString("1--%1").arg(static_cast<qulonglong>(largest));
}

void PackageInfoTest::stringID()
{
    QFETCH(QDateTime, date);
    QFETCH(quintptr, size);
    QTEST(withDateAndSize(date, size).stringID(), "id");
}

void PackageInfoTest::equality_data()
{
    QTest::addColumn<QDateTime>("date");
    QTest::addColumn<quintptr>("size");
    QTest::addColumn<bool>("equal");

    QTest::newRow("same date and size") << noon << quintptr(10) << true;
    QTest::newRow("another size") << noon << quintptr(11) << false;
    QTest::newRow("another date") << noon.addSecs(1) << quintptr(10) << false;
    QTest::newRow("milliseconds apart") << noon.addMSecs(1) << quintptr(10) << true;
}

void PackageInfoTest::equality()
{
    QFETCH(QDateTime, date);
    QFETCH(quintptr, size);
    const PackageInfo one("Application", "viewer", "4.2", "STABLE", noon, {"Mac64"});
    PackageInfo first = one;
    first.fileSize = 10;
    // Every other field differs.
    QTEST(first == withDateAndSize(date, size), "equal");
    QVERIFY(PackageInfo("a") == PackageInfo("b"));
}

void PackageInfoTest::fileName_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("fileName");

    QTest::newRow("plain") << "http://host/a/b/file.mpkg.zip"
                           << "file.mpkg.zip";
    QTest::newRow("query") << "http://host/a/file.zip?key=1.2/3"
                           << "file.zip";
    QTest::newRow("slash at the end") << "http://host/a/"
                                      << "";
    QTest::newRow("no path") << "http://host"
                             << "";
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("encoded") << "http://host/a%20b.zip"
                             << "a b.zip";
}

void PackageInfoTest::fileName()
{
    QFETCH(QString, url);
    PackageInfo package;
    package.url = QUrl(url);
    QTEST(package.fileName(), "fileName");
}

VX_TEST_MAIN(PackageInfoTest)
#include "tst_PackageInfo.moc"
