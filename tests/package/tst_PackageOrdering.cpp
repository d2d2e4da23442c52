#include <QtTest>

#include "package/PackageInfo.h"
#include "tests/support/TestMain.h"

using namespace vx;

namespace {

const QDateTime early(QDate(2012, 6, 1), QTime(12, 0));
const QDateTime late = early.addDays(1);

int signOf(int number)
{
    return (number > 0) - (number < 0);
}

PackageInfo package(const char* release, const char* status, const QDateTime& date)
{
    return PackageInfo("", "", release, status, date);
}

/** @p package with a release for users that differs from its own. */
PackageInfo calledInPublic(PackageInfo package, const char* publicRelease)
{
    package.publicRelease = publicRelease;
    return package;
}

} // namespace

class PackageOrderingTest : public QObject
{
    Q_OBJECT

private slots:
    void compare_data();
    void compare();
    void isBetterMatch_data();
    void isBetterMatch();
};

void PackageOrderingTest::compare_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<int>("sign");

    QTest::newRow("equal") << "4.2"
                           << "4.2" << 0;
    QTest::newRow("below") << "4.1"
                           << "4.2" << -1;
    QTest::newRow("as text") << "10.0"
                             << "9.0" << -1;
    QTest::newRow("equal in value only") << "2.0"
                                         << "2.00" << -1;
    QTest::newRow("capitals first") << "A"
                                    << "a" << -1;
    QTest::newRow("by code, not by locale") << QString::fromUtf8("\xc3\xa4") << "z" << 1;
    QTest::newRow("empty") << ""
                           << "" << 0;
    QTest::newRow("empty and not") << ""
                                   << "0" << -1;
}

void PackageOrderingTest::compare()
{
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(int, sign);
    QCOMPARE(signOf(PackageInfo::compareVersion(a, b)), sign);
    QCOMPARE(PackageInfo::compareVersion(a, b), a.compare(b));
    QCOMPARE(signOf(PackageInfo::compareVersion(b, a)), -sign);
    QCOMPARE(PackageInfo::compareRelease(a, b), -PackageInfo::compareVersion(a, b));
}

void PackageOrderingTest::isBetterMatch_data()
{
    QTest::addColumn<PackageInfo>("one");
    QTest::addColumn<PackageInfo>("other");
    QTest::addColumn<bool>("better");

    const auto add = [](const char* row, const PackageInfo& one, const PackageInfo& other,
                        bool better) { QTest::newRow(row) << one << other << better; };
    add("higher release", package("2", "S", early), package("1", "S", early), true);
    add("lower release", package("1", "S", early), package("2", "S", early), false);
    add("release as text", package("9.0", "S", early), package("10.0", "S", early), true);
    add("lower release, status below", package("1", "B", early), package("2", "S", early), true);
    add("lower release, later", package("1", "S", late), package("2", "S", early), true);
    add("status above, later", package("1", "S", late), package("1", "B", early), true);
    add("status above", package("1", "S", early), package("1", "B", early), false);
    add("earlier", package("1", "S", early), package("1", "S", late), false);
    add("equal", package("1", "S", early), package("1", "S", early), false);
    add("higher release, lower in public", calledInPublic(package("2", "S", early), "1"),
        calledInPublic(package("1", "S", early), "2"), true);
    add("lower release, higher in public", calledInPublic(package("1", "S", early), "2"),
        calledInPublic(package("2", "S", early), "1"), false);
    add("any date is later than none", package("1", "S", early), package("1", "S", QDateTime()),
        true);
}

void PackageOrderingTest::isBetterMatch()
{
    QFETCH(PackageInfo, one);
    QFETCH(PackageInfo, other);
    QTEST(one.isBetterMatch(other), "better");
}

VX_TEST_MAIN(PackageOrderingTest)
#include "tst_PackageOrdering.moc"
