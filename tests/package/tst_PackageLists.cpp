#include <QTranslator>
#include <QtTest>

#include "package/PackageInfo.h"
#include "tests/support/TestMain.h"

using namespace vx;

namespace {

/** Puts brackets around every text of the context "Download" and notes how it was asked. */
class BracketTranslator : public QTranslator
{
public:
    QString translate(const char* context, const char* sourceText, const char* disambiguation,
                      int n) const override
    {
        if (QLatin1String(context) != QLatin1String("Download")) {
            return {};
        }
        plainly = plainly && disambiguation == nullptr && n == -1;
        return '[' + QString::fromLatin1(sourceText) + ']';
    }
    bool isEmpty() const override { return false; }

    mutable bool plainly = true;
};

PackageInfoList packages()
{
    return {PackageInfo("Application", "a", "4.2", "", QDateTime(), {"Mac32", "Mac64"}, {"en"}),
            PackageInfo("Application", "b", "4.3", "", QDateTime(), {"Mac64"}, {"en", "de"}),
            PackageInfo("", "c", "4.2")};
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

} // namespace

class PackageListsTest : public QObject
{
    Q_OBJECT

private slots:
    void givesEachEntryOnce();
    void emptyListGivesNothing();
    void publicReleaseIsNotGathered();
    void emptyWordsAreKept();
    void translatesTypesAndReleasesWhenAsked();
    void languagesAndPlatformsIgnoreTheQuestion();
    void passesTheSourceTextAsLatin1();
    void keepsAnyTextWithoutTranslation();
};

void PackageListsTest::givesEachEntryOnce()
{
    for (const bool translated : {false, true}) {
        QCOMPARE(sorted(PackageInfo::allTypes(packages(), translated)),
                 QStringList({"", "Application"}));
        QCOMPARE(sorted(PackageInfo::allReleases(packages(), translated)),
                 QStringList({"4.2", "4.3"}));
        QCOMPARE(sorted(PackageInfo::allLanguages(packages(), translated)),
                 QStringList({"de", "en"}));
        QCOMPARE(sorted(PackageInfo::allPlatforms(packages(), translated)),
                 QStringList({"Mac32", "Mac64"}));
    }
}

void PackageListsTest::emptyListGivesNothing()
{
    QVERIFY(PackageInfo::allTypes({}, true).isEmpty());
    QVERIFY(PackageInfo::allReleases({}, true).isEmpty());
    QVERIFY(PackageInfo::allLanguages({}, true).isEmpty());
    QVERIFY(PackageInfo::allPlatforms({}, true).isEmpty());
}

void PackageListsTest::publicReleaseIsNotGathered()
{
    PackageInfo package("", "", "4.2");
    package.publicRelease = "V4";
    for (const bool translated : {false, true}) {
        QCOMPARE(PackageInfo::allReleases({package}, translated), QStringList({"4.2"}));
    }
}

// No parser makes them, but hosts fill records on their own.
void PackageListsTest::emptyWordsAreKept()
{
    const PackageInfoList list = {
        PackageInfo("", "", "", "", QDateTime(), {"", "Mac64"}, {"", "en"})};
    for (const bool translated : {false, true}) {
        QCOMPARE(sorted(PackageInfo::allLanguages(list, translated)), QStringList({"", "en"}));
        QCOMPARE(sorted(PackageInfo::allPlatforms(list, translated)), QStringList({"", "Mac64"}));
    }
}

void PackageListsTest::translatesTypesAndReleasesWhenAsked()
{
    BracketTranslator translator;
    QCoreApplication::installTranslator(&translator);
    const PackageInfoList list = {PackageInfo("Application", "", "4.2")};
    QCOMPARE(PackageInfo::allTypes(list, true), QStringList({"[Application]"}));
    QCOMPARE(PackageInfo::allTypes(list, false), QStringList({"Application"}));
    QCOMPARE(PackageInfo::allReleases(list, true), QStringList({"[4.2]"}));
    QCOMPARE(PackageInfo::allReleases(list, false), QStringList({"4.2"}));
    QVERIFY(translator.plainly);
}

void PackageListsTest::languagesAndPlatformsIgnoreTheQuestion()
{
    BracketTranslator translator;
    QCoreApplication::installTranslator(&translator);
    const PackageInfoList list = packages();
    QCOMPARE(sorted(PackageInfo::allLanguages(list, true)),
             sorted(PackageInfo::allLanguages(list, false)));
    QCOMPARE(sorted(PackageInfo::allPlatforms(list, true)),
             sorted(PackageInfo::allPlatforms(list, false)));
    // What the host's appendAll makes of the context, it makes of both.
    QStringSet expected;
    StringUtils::appendAll(expected, {"de", "en"}, "Download");
    QCOMPARE(sorted(PackageInfo::allLanguages(list, false)), sorted(expected.values()));
}

void PackageListsTest::passesTheSourceTextAsLatin1()
{
    BracketTranslator translator;
    QCoreApplication::installTranslator(&translator);
    const QString word = QString::fromUtf8("M\xc3\xbcnchen");
    QCOMPARE(PackageInfo::allTypes({PackageInfo(word)}, true), QStringList({'[' + word + ']'}));
}

void PackageListsTest::keepsAnyTextWithoutTranslation()
{
    for (const char* word : {"M\xc3\xbcnchen", "\xe6\x9d\xb1\xe4\xba\xac", "50 %"}) {
        const QString text = QString::fromUtf8(word);
        QCOMPARE(PackageInfo::allTypes({PackageInfo(text)}, true), QStringList({text}));
    }
}

VX_TEST_MAIN(PackageListsTest)
#include "tst_PackageLists.moc"
