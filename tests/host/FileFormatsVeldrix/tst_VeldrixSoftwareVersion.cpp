#include <QtTest>

#include <limits>

#include "host/FileFormatsVeldrix/VeldrixSoftwareVersion.h"
#include "tests/support/TestMain.h"

class VeldrixSoftwareVersionTest : public QObject
{
    Q_OBJECT

private slots:
    void showsAVersion_data();
    void showsAVersion();
};

void VeldrixSoftwareVersionTest::showsAVersion_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("expected");
    QTest::newRow("as it is") << "2.0" << 0 << "2.0";
    QTest::newRow("all numbers") << "4.1.9.29" << 0 << "4.1.9.29";
    QTest::newRow("word") << "2.0-beta.2" << 0 << "2.0-beta.2";
    QTest::newRow("white space around") << "\n 2.0 beta \t" << 0 << "2.0 beta";
    QTest::newRow("no number") << "Dome-V4" << 0 << "Dome-V4";
    QTest::newRow("not ASCII") << QString::fromUtf8("2.0 \xc3\xa4") << 0
                               << QString::fromUtf8("2.0 \xc3\xa4");
    QTest::newRow("empty") << "" << 0 << "?";
    QTest::newRow("null") << QString() << 0 << "?";
    QTest::newRow("blank") << " \n" << 0 << "?";
    QTest::newRow("below 0") << "4.1.9.29" << -1 << "4.1.9.29";
    QTest::newRow("first number") << "4.1.9.29" << 1 << "4";
    QTest::newRow("first two") << "4.1.9.29" << 2 << "4.1";
    QTest::newRow("first two and word") << "4.1.9.29-rc.1" << 2 << "4.1-rc.1";
    QTest::newRow("more than there are") << "4.1" << 3 << "4.1";
    QTest::newRow("far more") << "4.1" << int(std::numeric_limits<short>::max()) << "4.1";
    QTest::newRow("limit without number") << "Dome-V4.1.2" << 1 << "Dome-V4.1.2";
    QTest::newRow("limit and trailing dot") << "4.1." << 1 << "4.";
}

void VeldrixSoftwareVersionTest::showsAVersion()
{
    QFETCH(QString, version);
    QFETCH(int, number);
    QFETCH(QString, expected);
    QCOMPARE(
        vx::VeldrixSoftwareVersion::applicationVersion(version, QStringLiteral("?"), short(number)),
        expected);
}

VX_TEST_MAIN(VeldrixSoftwareVersionTest)
#include "tst_VeldrixSoftwareVersion.moc"
