#include <QtTest>

#include "package/PackageInfo.h"
#include "package/internal/CandidateMatcher.h"
#include "tests/support/TestMain.h"

using namespace vx;

Q_DECLARE_METATYPE(vx::CandidateRefusal)

namespace {

const QDateTime day(QDate(2012, 6, 1), QTime(12, 0));

/** A package that passes every filter below unless one field is made to fail. */
PackageInfo camera()
{
    PackageInfo package("Camera Firmware", "fw", "4.2", "STABLE", day, {"Dome-24", "Mini-12"},
                        {"en", "de"}, "zip");
    package.publicRelease = "0"; // which every filter by release would refuse
    return package;
}

/** A filter that camera() passes, and would not if public releases counted. */
PackageInfo publicReleaseAbove()
{
    PackageInfo filter("", "", "4.1");
    filter.publicRelease = "9";
    return filter;
}

PackageInfo everythingTested()
{
    return PackageInfo("another type", "fw", "4.1", "STABLE", day.addYears(1), {"Dome-24"}, {"en"},
                       "another package type");
}

} // namespace

class PackageMatchingTest : public QObject
{
    Q_OBJECT

private slots:
    void matchesPackageAlways_data();
    void matchesPackageAlways();
    void defaultFilterPassesEverything();
    void matchesFilter_data();
    void matchesFilter();
    void packageWithoutLanguagesSharesNone();
    void packageWithoutDateIsEarlierThanAny();
    void candidate_data();
    void candidate();
    void firstFailingTestIsNamed();
    void matcherKeepsItsOwnFilter();
};

void PackageMatchingTest::matchesPackageAlways_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");

    QTest::newRow("its own") << "Camera Firmware"
                             << "fw";
    QTest::newRow("others") << "Application"
                            << "viewer";
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("null") << QString() << QString();
    QTest::newRow("no pattern") << "[*"
                                << "(?";
}

void PackageMatchingTest::matchesPackageAlways()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QVERIFY(camera().matchesPackage(first, second));
    QVERIFY(PackageInfo().matchesPackage(first, second));
}

void PackageMatchingTest::defaultFilterPassesEverything()
{
    for (const PackageInfo& package : {camera(), PackageInfo(), everythingTested()}) {
        QVERIFY(package.matchesFilter(PackageInfo()));
        QVERIFY(package.filterPackageCandidate(PackageInfo(), {}));
    }
}

void PackageMatchingTest::matchesFilter_data()
{
    QTest::addColumn<PackageInfo>("filter");
    QTest::addColumn<bool>("matches");

    const auto release = [](const char* text) { return PackageInfo("", "", text); };
    const auto status = [](const char* text) { return PackageInfo("", "", "", text); };
    const auto date = [](const QDateTime& time) { return PackageInfo("", "", "", "", time); };
    const auto languages = [](const QStringSet& words) {
        return PackageInfo("", "", "", "", QDateTime(), {}, words);
    };
    QTest::newRow("lower release") << release("4.1") << true;
    QTest::newRow("equal release") << release("4.2") << false;
    QTest::newRow("higher release") << release("4.3") << false;
    QTest::newRow("release as text") << release("10.0") << true;
    QTest::newRow("equal status") << status("STABLE") << true;
    QTest::newRow("status above") << status("TEST") << true;
    QTest::newRow("status below") << status("BETA") << false;
    QTest::newRow("status by character code") << status("stable") << true;
    QTest::newRow("equal time") << date(day) << true;
    QTest::newRow("earlier") << date(day.addSecs(-1)) << true;
    QTest::newRow("later") << date(day.addSecs(1)) << false;
    QTest::newRow("shared language") << languages({"en", "fr"}) << false;
    QTest::newRow("no shared language") << languages({"fr"}) << true;
    QTest::newRow("public release above") << publicReleaseAbove() << true;
    QTest::newRow("what plays no part")
        << PackageInfo("x", "x", "", "", QDateTime(), {"x"}, {}, "x", "x") << true;
}

void PackageMatchingTest::matchesFilter()
{
    QFETCH(PackageInfo, filter);
    QTEST(camera().matchesFilter(filter), "matches");
}

void PackageMatchingTest::packageWithoutLanguagesSharesNone()
{
    PackageInfo bare = camera();
    bare.languages.clear();
    PackageInfo filter;
    filter.languages = {"en"};
    QVERIFY(bare.matchesFilter(filter));
}

void PackageMatchingTest::packageWithoutDateIsEarlierThanAny()
{
    for (const int year : {1965, 1970, 2012}) {
        PackageInfo filter;
        filter.date = QDateTime(QDate(year, 6, 1), QTime(12, 0));
        QVERIFY2(!PackageInfo().matchesFilter(filter), qPrintable(QString::number(year)));
    }
}

void PackageMatchingTest::candidate_data()
{
    QTest::addColumn<PackageInfo>("filter");
    QTest::addColumn<QStringList>("fileTypes");
    QTest::addColumn<CandidateRefusal>("refusal");

    const auto add = [](const char* row, const PackageInfo& filter, const QStringList& types,
                        CandidateRefusal refusal) {
        QTest::newRow(row) << filter << types << refusal;
    };
    const auto release = [](const char* text) { return PackageInfo("", "", text); };
    const auto platforms = [](const QStringSet& words) {
        return PackageInfo("", "", "", "", QDateTime(), words);
    };
    using R = CandidateRefusal;
    add("everything at once", everythingTested(), {"zip"}, R::None);
    add("another name", PackageInfo("", "viewer"), {}, R::Name);
    add("name in capitals", PackageInfo("", "FW"), {}, R::Name);
    add("equal release", release("4.2"), {}, R::Release);
    add("equal value", release("4.2.0"), {}, R::Release);
    add("higher release", release("4.10"), {}, R::Release);
    add("lower release", release("4.1.9"), {}, R::None);
    add("lower as a number only", release("03.9"), {}, R::None);
    add("unreadable release", release("none"), {}, R::None);
    add("another status", PackageInfo("", "", "", "BETA"), {}, R::Status);
    add("status in small letters", PackageInfo("", "", "", "stable"), {}, R::Status);
    add("one platform of several", platforms({"Mini-12", "Mini-99"}), {}, R::None);
    add("beginning of a platform", platforms({"Dome"}), {}, R::None);
    add("begun by a platform", platforms({"Dome-24-Wide"}), {}, R::None);
    add("another platform", platforms({"Box"}), {}, R::Platforms);
    add("platform in capitals", platforms({"DOME-24"}), {}, R::Platforms);
    add("allowed type", PackageInfo(), {"mpkg", "zip"}, R::None);
    add("type not allowed", PackageInfo(), {"mpkg"}, R::FileType);
    add("type in capitals", PackageInfo(), {"ZIP"}, R::FileType);
    add("public release above", publicReleaseAbove(), {}, R::None);
    add("what plays no part", PackageInfo("x", "", "", "", day.addYears(9), {}, {"x"}, "x", "x"),
        {}, R::None);
}

void PackageMatchingTest::candidate()
{
    QFETCH(PackageInfo, filter);
    QFETCH(QStringList, fileTypes);
    QFETCH(CandidateRefusal, refusal);
    const PackageInfo package = camera();
    QCOMPARE(package.candidateRefusal(filter, fileTypes), refusal);
    const bool accepted = refusal == CandidateRefusal::None;
    QCOMPARE(package.filterPackageCandidate(filter, fileTypes), accepted);
    const CandidateMatcher matcher(filter, fileTypes);
    QCOMPARE(matcher.refusal(package), refusal);
    QCOMPARE(matcher.accepts(package), accepted);
}

void PackageMatchingTest::firstFailingTestIsNamed()
{
    const PackageInfo filter("", "fw", "4.1", "STABLE", QDateTime(), {"Dome-24"});
    const QStringList types = {"zip"};
    PackageInfo package("", "other", "4.0", "BETA", QDateTime(), {"Box"}, {}, "exe");

    QCOMPARE(package.candidateRefusal(filter, types), CandidateRefusal::Name);
    package.name = "fw";
    QCOMPARE(package.candidateRefusal(filter, types), CandidateRefusal::Release);
    package.release = "4.2";
    QCOMPARE(package.candidateRefusal(filter, types), CandidateRefusal::Status);
    package.status = "STABLE";
    QCOMPARE(package.candidateRefusal(filter, types), CandidateRefusal::Platforms);
    package.platforms = QStringSet{"Dome-24"};
    QCOMPARE(package.candidateRefusal(filter, types), CandidateRefusal::FileType);
    package.packageType = "zip";
    QCOMPARE(package.candidateRefusal(filter, types), CandidateRefusal::None);
}

void PackageMatchingTest::matcherKeepsItsOwnFilter()
{
    PackageInfo filter("", "fw");
    const CandidateMatcher matcher(filter, {});
    filter.name = "viewer";
    QVERIFY(matcher.accepts(camera()));
}

VX_TEST_MAIN(PackageMatchingTest)
#include "tst_PackageMatching.moc"
