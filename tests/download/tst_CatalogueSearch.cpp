#include <QtTest>
#include <QtXml/QDomDocument>

#include "tests/download/CatalogueProbe.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

/** A document in which the search usually begins at its first "package" element. */
class Tree
{
public:
    explicit Tree(const QByteArray& text) { m_document.setContent(text); }

    QDomElement root() const { return m_document.documentElement(); }
    QDomElement package() const
    {
        return m_document.elementsByTagName("package").at(0).toElement();
    }
    const QDomDocument& document() const { return m_document; }

private:
    QDomDocument m_document;
};

} // namespace

class CatalogueSearchTest : public QObject
{
    Q_OBJECT

private slots:
    void startsAtTheFirstFile();
    void startsAtTheNodeWithoutFile();
    void findsFromAnyNode();
    void findsAnyTag();
    void countsWhatItGathers();
    void keepsWhatWasGathered();
    void countsUrls();
    void keepsUrlsThatWereThere();
};

void CatalogueSearchTest::startsAtTheFirstFile()
{
    const Tree tree("<list><package><name/><file name='a'/><file name='b'/></package></list>");
    QCOMPARE(DownloadManager::startSearchAt(tree.package()).toElement().attribute("name"),
             QString("a"));
}

void CatalogueSearchTest::startsAtTheNodeWithoutFile()
{
    const Tree tree("<list><package><x><file/></x></package></list>");
    QCOMPARE(DownloadManager::startSearchAt(tree.package()), QDomNode(tree.package()));
    QCOMPARE(DownloadManager::startSearchAt(tree.document()), QDomNode(tree.document()));
    QVERIFY(DownloadManager::startSearchAt(QDomNode()).isNull());
}

void CatalogueSearchTest::findsFromAnyNode()
{
    const Tree tree("<list name='a'><package><x>text</x></package></list>");
    const QDomNode text = tree.package().firstChild().firstChild();
    QVERIFY(text.isText());
    QCOMPARE(CatalogueProbe::findString(text, "name"), QString("a"));
    QCOMPARE(CatalogueProbe::findString(tree.document(), "name"), QString());
    QCOMPARE(CatalogueProbe::findString(tree.document(), "list"), QString("text"));
    QCOMPARE(CatalogueProbe::findString(QDomNode(), "name"), QString());
}

void CatalogueSearchTest::findsAnyTag()
{
    const Tree tree("<list><package package='own'/><package>sibling</package></list>");
    QCOMPARE(CatalogueProbe::findString(tree.package(), "package"), QString("own"));
    QCOMPARE(CatalogueProbe::findString(tree.root(), "package"), QString());
    QCOMPARE(CatalogueProbe::findString(tree.package(), "unknown"), QString());
}

void CatalogueSearchTest::countsWhatItGathers()
{
    const Tree tree("<list platform='a'><platform>b c</platform><package platform=''>"
                    "<platform/><platform>a</platform><file platform='d'/></package></list>");
    QStringSet words;
    QCOMPARE(CatalogueProbe::findAllStrings(tree.package(), "platform", words), 6);
    QCOMPARE(words, QStringSet({"a", "b", "c", "d"}));
    QCOMPARE(CatalogueProbe::findAllStrings(tree.package(), "language", words), 0);
}

void CatalogueSearchTest::keepsWhatWasGathered()
{
    const Tree tree("<list><package platform='a'/></list>");
    QStringSet words = {"kept"};
    QCOMPARE(CatalogueProbe::findAllStrings(tree.package(), "platform", words), 1);
    QCOMPARE(words, QStringSet({"kept", "a"}));
}

void CatalogueSearchTest::countsUrls()
{
    const Tree tree("<list readme='http://list'><package readme='http://package'>"
                    "<readme url='http://first'/><readme/></package></list>");
    UrlMap urls;
    QCOMPARE(CatalogueProbe::findAllTranslatedUrls(tree.package(), "readme", urls), 4);
    const QList<QUrl> expected = {QUrl("http://list"), QUrl("http://package"), QUrl(),
                                  QUrl("http://first")};
    QCOMPARE(urls.values(), expected);
    QCOMPARE(CatalogueProbe::findAllTranslatedUrls(tree.package(), "release-notes", urls), 0);
}

void CatalogueSearchTest::keepsUrlsThatWereThere()
{
    const Tree tree("<list><package readme='http://package' language='de'/></list>");
    UrlMap urls = {{"de", QUrl("http://kept")}};
    QCOMPARE(CatalogueProbe::findAllTranslatedUrls(tree.package(), "readme", urls), 1);
    QCOMPARE(urls.values(), QList<QUrl>({QUrl("http://package"), QUrl("http://kept")}));
}

VX_TEST_MAIN(CatalogueSearchTest)
#include "tst_CatalogueSearch.moc"
