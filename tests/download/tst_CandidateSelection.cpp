#include "download/internal/CandidateSelection.h"

#include <QtTest>

#include "download/DownloadManager.h"
#include "tests/support/TestMain.h"

using namespace vx;

namespace {

const QDateTime day(QDate(2012, 6, 1), QTime(12, 0));

PackageInfo package(const QString& name, const QString& release)
{
    return PackageInfo("catalogue's type", name, release);
}

PackageInfo sized(const QString& name, const QDateTime& date, quintptr size)
{
    PackageInfo package("", name, "", "", date);
    package.fileSize = size;
    return package;
}

QStringList namesOf(const PackageInfoList& packages)
{
    QStringList names;
    for (const PackageInfo& package : packages) {
        names.append(package.name);
    }
    return names;
}

QStringList typesOf(const PackageInfoList& packages)
{
    QStringList types;
    for (const PackageInfo& package : packages) {
        types.append(package.type);
    }
    return types;
}

} // namespace

class CandidateSelectionTest : public QObject
{
    Q_OBJECT

private slots:
    void keepsTheHighestReleaseInOrder();
    void tagsEveryAcceptedPackage();
    void laterCallsOverwriteTags();
    void nothingAcceptedChangesNothing();
    void doesNotTouchASharedList();
    void highestRelease_data();
    void highestRelease();
    void keepsEqualTextsOnly();
    void releaseNought();
    void allowedFileTypes();
    void stepsMakeTheWhole();
    void eliminateDuplicates_data();
    void eliminateDuplicates();
    void countsNew();
};

void CandidateSelectionTest::keepsTheHighestReleaseInOrder()
{
    PackageInfoList all = {package("a", "4.9"), package("b", "4.10"), package("c", "4.2"),
                           package("d", "4.10"), package("e", "4.10")};
    const PackageInfoList found =
        DownloadManager::findPackageCandidates(all, PackageInfo("", "", "4.1"), "Tag", {});
    QCOMPARE(namesOf(found), QStringList({"b", "d", "e"}));
    QCOMPARE(typesOf(found), QStringList({"Tag", "Tag", "Tag"}));
}

void CandidateSelectionTest::tagsEveryAcceptedPackage()
{
    PackageInfoList all = {package("old", "1.0"), package("newer", "3.0"),
                           package("newest", "4.0")};
    DownloadManager::findPackageCandidates(all, PackageInfo("", "", "2.0"), "Tag", {});
    // Also the one that is accepted and then dropped for a newer one.
    QCOMPARE(typesOf(all), QStringList({"catalogue's type", "Tag", "Tag"}));
}

void CandidateSelectionTest::laterCallsOverwriteTags()
{
    PackageInfoList all = {package("a", "2.0")};
    const PackageInfoList camera =
        DownloadManager::findPackageCandidates(all, PackageInfo(), "Camera Firmware", {});
    const PackageInfoList application =
        DownloadManager::findPackageCandidates(all, PackageInfo(), "Application", {});
    QCOMPARE(typesOf(all), QStringList({"Application"}));
    QCOMPARE(typesOf(camera), QStringList({"Camera Firmware"}));
    QCOMPARE(typesOf(application), QStringList({"Application"}));
}

void CandidateSelectionTest::nothingAcceptedChangesNothing()
{
    PackageInfoList all = {package("a", "1.0"), package("b", "2.0")};
    QVERIFY(DownloadManager::findPackageCandidates(all, PackageInfo("", "", "2.0"), "Tag", {})
                .isEmpty());
    QCOMPARE(typesOf(all), QStringList({"catalogue's type", "catalogue's type"}));
    PackageInfoList none;
    QVERIFY(DownloadManager::findPackageCandidates(none, PackageInfo(), "Tag", {}).isEmpty());
}

void CandidateSelectionTest::doesNotTouchASharedList()
{
    PackageInfoList all = {package("a", "1.0")};
    const PackageInfoList shared = all;
    DownloadManager::findPackageCandidates(all, PackageInfo(), "Tag", {});
    QCOMPARE(typesOf(shared), QStringList({"catalogue's type"}));
    QCOMPARE(typesOf(all), QStringList({"Tag"}));
}

void CandidateSelectionTest::highestRelease_data()
{
    QTest::addColumn<QStringList>("releases");
    QTest::addColumn<QString>("highest");
    QTest::addColumn<int>("kept");

    const auto add = [](const char* row, const QStringList& releases, const char* highest,
                        int kept) { QTest::newRow(row) << releases << highest << kept; };
    add("none", {}, "0", 0);
    add("as versions", {"9.0", "10.0", "1.99"}, "10.0", 1);
    add("the first of equal values", {"2.0", "2.00", "2"}, "2.0", 1);
    add("the first spelling, several times", {"2.00", "2.0", "2.00"}, "2.00", 2);
    add("preliminary", {"2.0b1", "2.0", "2.0b2"}, "2.0", 1);
    add("unreadable only", {"none", "", "x"}, "0", 0);
    add("unreadable and nought", {"none", "0", "0.0"}, "0", 1);
    add("unreadable among others", {"none", "1"}, "1", 1);
}

void CandidateSelectionTest::highestRelease()
{
    QFETCH(QStringList, releases);
    QFETCH(QString, highest);
    QFETCH(int, kept);
    PackageInfoList all;
    for (const QString& release : qAsConst(releases)) {
        all.append(package("x", release));
    }
    QCOMPARE(CandidateSelection::highestRelease(all), highest);
    const PackageInfoList found =
        DownloadManager::findPackageCandidates(all, PackageInfo(), "Tag", {});
    QCOMPARE(found.size(), kept);
    for (const PackageInfo& candidate : found) {
        QCOMPARE(candidate.release, highest);
    }
}

void CandidateSelectionTest::keepsEqualTextsOnly()
{
    PackageInfoList candidates = {package("a", "2.0"), package("b", "2.00"), package("c", "2.0")};
    CandidateSelection::keepRelease(candidates, "2.0");
    QCOMPARE(namesOf(candidates), QStringList({"a", "c"}));
    CandidateSelection::keepRelease(candidates, "2");
    QVERIFY(candidates.isEmpty());
}

void CandidateSelectionTest::releaseNought()
{
    PackageInfoList all = {package("a", "0"), package("b", "0.0"), package("c", "")};
    QCOMPARE(namesOf(DownloadManager::findPackageCandidates(all, PackageInfo(), "Tag", {})),
             QStringList({"a"}));
    QCOMPARE(typesOf(all), QStringList({"Tag", "Tag", "Tag"}));
}

void CandidateSelectionTest::allowedFileTypes()
{
    PackageInfoList all = {package("a", "2.0"), package("b", "3.0")};
    all[0].packageType = "mpkg";
    all[1].packageType = "zip";
    QCOMPARE(namesOf(DownloadManager::findPackageCandidates(all, PackageInfo(), "Tag", {"mpkg"})),
             QStringList({"a"}));
    QCOMPARE(typesOf(all), QStringList({"Tag", "catalogue's type"}));
}

void CandidateSelectionTest::stepsMakeTheWhole()
{
    const PackageInfoList catalogue = {package("a", "2.0"), package("b", "3.0"),
                                       package("c", "1.0"), package("d", "3.0")};
    const PackageInfo filter("", "", "1.0");
    PackageInfoList inSteps = catalogue;
    PackageInfoList candidates =
        CandidateSelection::tagAccepted(inSteps, CandidateMatcher(filter, {}), "Tag");
    QCOMPARE(namesOf(candidates), QStringList({"a", "b", "d"}));
    CandidateSelection::keepRelease(candidates, CandidateSelection::highestRelease(candidates));

    PackageInfoList atOnce = catalogue;
    QCOMPARE(namesOf(DownloadManager::findPackageCandidates(atOnce, filter, "Tag", {})),
             namesOf(candidates));
    QCOMPARE(typesOf(atOnce), typesOf(inSteps));
}

void CandidateSelectionTest::eliminateDuplicates_data()
{
    QTest::addColumn<PackageInfoList>("list");
    QTest::addColumn<QStringList>("kept");

    const auto add = [](const char* row, const PackageInfoList& list, const QStringList& kept) {
        QTest::newRow(row) << list << kept;
    };
    add("none", {}, {});
    add("one", {sized("a", day, 1)}, {"a"});
    add("two equal", {sized("a", day, 1), sized("b", day, 1)}, {"a"});
    add("another size", {sized("a", day, 1), sized("b", day, 2)}, {"a", "b"});
    add("another date", {sized("a", day, 1), sized("b", day.addDays(1), 1)}, {"a", "b"});
    add("first occurrence, in order",
        {sized("a", day, 2), sized("b", day, 1), sized("c", day, 2), sized("d", day, 3),
         sized("e", day, 1)},
        {"a", "b", "d"});
    add("without date and size", {sized("a", QDateTime(), 0), sized("b", QDateTime(), 0)}, {"a"});
}

void CandidateSelectionTest::eliminateDuplicates()
{
    QFETCH(PackageInfoList, list);
    DownloadManager::eliminateDuplicatePackages(list);
    QTEST(namesOf(list), "kept");
}

void CandidateSelectionTest::countsNew()
{
    QCOMPARE(DownloadManager::countNew({}), 0);
    PackageInfoList list = {package("a", "1"), package("b", "1"), package("c", "1")};
    QCOMPARE(DownloadManager::countNew(list), 3);
    list[1].flags.known = true;
    list[2].flags.superseded = true;
    QCOMPARE(DownloadManager::countNew(list), 2);
}

VX_TEST_MAIN(CandidateSelectionTest)
#include "tst_CandidateSelection.moc"
