#include <QtTest>
#include <QtXml/QDomDocument>

#include "host/Core/Log.h"
#include "tests/download/CatalogueProbe.h"
#include "tests/download/RandomCatalogue.h"
#include "tests/support/PlainClimb.h"
#include "tests/support/Repeats.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

constexpr quint32 firstSeed = 20120601;
constexpr int catalogueCount = vx::test::repeats(2000);

/** The seed to begin with and how many to try; VX_TEST_SEED repeats a single one. */
struct Seeds
{
    quint32 first = firstSeed;
    quint32 count = catalogueCount;
};

Seeds seeds()
{
    if (qEnvironmentVariableIsSet("VX_TEST_SEED")) {
        return {static_cast<quint32>(qEnvironmentVariable("VX_TEST_SEED").toULong()), 1};
    }
    return {};
}

QVector<QDomNode> allNodes(const QDomNode& top)
{
    QVector<QDomNode> nodes = {top};
    for (QDomNode child = top.firstChild(); !child.isNull(); child = child.nextSibling()) {
        nodes += allNodes(child);
    }
    return nodes;
}

QString compareSearches(const QDomNode& node, const QString& tag)
{
    if (CatalogueProbe::findString(node, tag) != PlainClimb::findString(node, tag)) {
        return "findString " + tag;
    }
    QStringSet words = {"kept"};
    QStringSet expectedWords = words;
    if (CatalogueProbe::findAllStrings(node, tag, words) !=
            PlainClimb::findAllStrings(node, tag, expectedWords) ||
        words != expectedWords) {
        return "findAllStrings " + tag;
    }
    UrlMap urls = {{"en", QUrl("http://kept")}};
    UrlMap expectedUrls = urls;
    if (CatalogueProbe::findAllTranslatedUrls(node, tag, urls) !=
            PlainClimb::findAllTranslatedUrls(node, tag, expectedUrls) ||
        urls != expectedUrls) {
        return "findAllTranslatedUrls " + tag;
    }
    return {};
}

/** Reads the set or package @p elm, whatever it is really called, in both ways. */
QString compareReading(const QDomElement& elm)
{
    PackageInfoList list = {PackageInfo("kept")};
    PackageInfoList expectedList = list;
    CatalogueProbe::parseSet(elm, list);
    PlainClimb::parseSet(elm, expectedList);
    PackageInfo info("replaced", "replaced", "", "", QDateTime(), {"kept"}, {"kept"});
    PackageInfo expectedInfo = info;
    CatalogueProbe::parsePackage(elm, info);
    PlainClimb::parsePackage(elm, expectedInfo);
    return difference(list, expectedList) + difference(info, expectedInfo);
}

/** What fails for a catalogue, or an empty text. */
using Property = QString (*)(RandomCatalogue& random, const QByteArray& document);

QString sameFromText(RandomCatalogue&, const QByteArray& document)
{
    return difference(parseText(document), PlainClimb::parse(document));
}

QString sameFromAnyNode(RandomCatalogue& random, const QByteArray& document)
{
    QDomDocument tree;
    tree.setContent(document);
    const QVector<QDomNode> nodes = allNodes(tree);
    const QStringList tags = {"language", "url", "platform", "name", "release-notes", "package"};
    const QDomNode node = nodes.at(random.below(nodes.size()));
    return compareSearches(node, tags.at(random.below(tags.size()))) +
           (node.isElement() ? compareReading(node.toElement()) : QString());
}

QString leavesTheTree(RandomCatalogue& random, const QByteArray& document)
{
    QDomDocument tree;
    tree.setContent(document);
    const QVector<QDomNode> nodes = allNodes(tree);
    const QString before = tree.toString(-1);
    PackageInfoList list;
    CatalogueProbe::parseSet(nodes.at(random.below(nodes.size())).toElement(), list);
    CatalogueProbe::parseSet(tree.documentElement(), list);
    return allNodes(tree) == nodes && tree.toString(-1) == before ? QString() : "tree changed";
}

} // namespace

Q_DECLARE_METATYPE(Property)

class CatalogueClimbTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void randomCatalogues_data();
    void randomCatalogues();
    void generatorReachesTheOddities();
};

void CatalogueClimbTest::initTestCase()
{
    // Most of these packages have suspicious suffixes, and each would be a line of the log.
    Log::instance().setLogLevel(4);
}

void CatalogueClimbTest::randomCatalogues_data()
{
    QTest::addColumn<Property>("failureOf");

    QTest::newRow("text is read as the plain climb reads it") << Property(&sameFromText);
    QTest::newRow("any node is read as the plain climb reads it") << Property(&sameFromAnyNode);
    QTest::newRow("the tree is left as it was") << Property(&leavesTheTree);
}

void CatalogueClimbTest::randomCatalogues()
{
    QFETCH(Property, failureOf);
    const Seeds range = seeds();
    for (quint32 seed = range.first; seed < range.first + range.count; ++seed) {
        RandomCatalogue random(seed);
        const QByteArray document = random.document();
        const QString failure = failureOf(random, document);
        QVERIFY2(failure.isEmpty(), qPrintable(QString("VX_TEST_SEED=%1: %2\n%3")
                                                   .arg(seed)
                                                   .arg(failure, QString::fromUtf8(document))));
    }
}

void CatalogueClimbTest::generatorReachesTheOddities()
{
    int withPackages = 0;
    int withSeveral = 0;
    int namedLikeAField = 0;
    for (quint32 seed = firstSeed; seed < firstSeed + 500; ++seed) {
        const QByteArray document = RandomCatalogue(seed).document();
        const PackageInfoList list = parseText(document);
        withPackages += int(!list.isEmpty());
        withSeveral += int(list.size() > 5);
        QDomDocument tree;
        QVERIFY(tree.setContent(document));
        namedLikeAField += int(tree.documentElement().tagName() == "platform");
    }
    QVERIFY(withPackages > 200);
    QVERIFY(withSeveral > 20);
    QVERIFY(namedLikeAField > 2);
}

VX_TEST_MAIN(CatalogueClimbTest)
#include "tst_CatalogueClimb.moc"
