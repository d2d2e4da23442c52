#include <QtTest>

#include "tests/download/CatalogueProbe.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

const QDateTime early(QDate(2012, 6, 1), QTime(12, 0));
const QDateTime late = early.addDays(1);

PackageInfo package(const QString& name, const QString& release,
                    const QStringSet& platforms = {"p"}, const QString& status = "S",
                    const QDateTime& date = early)
{
    return PackageInfo("type", name, release, status, date, platforms);
}

/** @p package with a release for users that differs from its own. */
PackageInfo calledInPublic(PackageInfo package, const QString& publicRelease)
{
    package.publicRelease = publicRelease;
    return package;
}

/** The names of the winners, sorted: their order has no meaning. */
QStringList winners(const PackageInfoList& all, const PackageInfo& filter = PackageInfo())
{
    const CatalogueProbe probe;
    QStringList names;
    const PackageInfoList best = probe.findBestMatches(all, filter);
    for (const PackageInfo& winner : best) {
        names.append(winner.name);
    }
    names.sort();
    return names;
}

} // namespace

class BestMatchesTest : public QObject
{
    Q_OBJECT

private slots:
    void winner_data();
    void winner();
    void filterHasItsSay();
    void filterTypeNameAndPlatformPlayNoPart();
    void givesCopies();
};

void BestMatchesTest::winner_data()
{
    QTest::addColumn<PackageInfoList>("all");
    QTest::addColumn<QStringList>("names");

    const auto add = [](const char* row, const PackageInfoList& all, const QStringList& names) {
        QTest::newRow(row) << all << names;
    };
    add("none", {}, {});
    add("higher release", {package("a", "1"), package("b", "2"), package("c", "1")}, {"b"});
    add("release as text", {package("a", "1.10"), package("b", "1.9")}, {"b"});
    add("lower release, status below", {package("a", "2"), package("b", "1", {"p"}, "B")}, {"b"});
    add("lower release, later", {package("a", "2"), package("b", "1", {"p"}, "S", late)}, {"b"});
    add("the order decides", {package("b", "1", {"p"}, "S", late), package("a", "2")}, {"a"});
    add("higher release, lower in public",
        {calledInPublic(package("a", "1"), "2"), calledInPublic(package("b", "2"), "1")}, {"b"});
    add("lower release, higher in public",
        {calledInPublic(package("a", "2"), "1"), calledInPublic(package("b", "1"), "2")}, {"a"});
    add("equal: the first stays", {package("a", "1"), package("b", "1")}, {"a"});
    add("each platform", {package("a", "1", {"p"}), package("b", "1", {"q"})}, {"a", "b"});
    add("several platforms, once", {package("a", "1", {"p", "q"})}, {"a"});
    add("one platform lost", {package("a", "1", {"p", "q"}), package("b", "2", {"q"})}, {"a", "b"});
    add("all platforms lost",
        {package("a", "1", {"p", "q"}), package("b", "2", {"q"}), package("c", "2", {"p"})},
        {"b", "c"});
    add("no platform", {package("a", "1", {})}, {});
    PackageInfo otherType = package("b", "1");
    otherType.type = "other";
    add("each type", {package("a", "2"), otherType}, {"a", "b"});
    PackageInfo shortType = package("a", "2", {"BC"});
    shortType.type = "A";
    PackageInfo longType = package("b", "1", {"C"});
    longType.type = "AB";
    add("type and platform that read alike together", {shortType, longType}, {"a", "b"});
}

void BestMatchesTest::winner()
{
    QFETCH(PackageInfoList, all);
    QFETCH(QStringList, names);
    QCOMPARE(winners(all), names);
}

void BestMatchesTest::filterHasItsSay()
{
    const PackageInfoList all = {package("a", "1"), package("b", "2")};
    QCOMPARE(winners(all, PackageInfo("", "", "1")), QStringList({"b"}));
    QCOMPARE(winners(all, PackageInfo("", "", "2")), QStringList());
    QCOMPARE(winners(all, PackageInfo("", "", "", "B")), QStringList());
}

void BestMatchesTest::filterTypeNameAndPlatformPlayNoPart()
{
    const PackageInfo filter("x", "x", "", "", QDateTime(), {"x"});
    QCOMPARE(winners({package("a", "1")}, filter), QStringList({"a"}));
}

void BestMatchesTest::givesCopies()
{
    const CatalogueProbe probe;
    PackageInfoList all = {package("a", "1")};
    const PackageInfoList best = probe.findBestMatches(all, PackageInfo());
    all[0].name = "changed";
    QCOMPARE(best.first().name, QString("a"));
}

VX_TEST_MAIN(BestMatchesTest)
#include "tst_BestMatches.moc"
