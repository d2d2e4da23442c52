#include <QtTest>

#include "host/CoreQt/QtVersions.h"
#include "package/PackageInfo.h"
#include "tests/support/TestMain.h"

using namespace vx;

Q_DECLARE_METATYPE(vx::UrlMap)

namespace {

QUrl url(const QString& name)
{
    return QUrl("http://host/" + name);
}

/** One URL per key, named after it. */
UrlMap keyed(const QStringList& keys)
{
    UrlMap urls;
    for (const QString& key : keys) {
        insertMulti(urls, key, url(key));
    }
    return urls;
}

} // namespace

class TranslatedUrlsTest : public QObject
{
    Q_OBJECT

private slots:
    void choice_data();
    void choice();
    void lastInsertedUrlOfAKeyIsGiven();
    void emptyMapGivesAnEmptyUrl();
    void releaseNotesAndReadmeAreApart();
};

void TranslatedUrlsTest::choice_data()
{
    QTest::addColumn<UrlMap>("urls");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("fallback");
    QTest::addColumn<QString>("chosen");

    QTest::newRow("the language") << keyed({"de", "de_CH", "en"}) << "de_CH"
                                  << "en"
                                  << "de_CH";
    QTest::newRow("its first two letters") << keyed({"de", "en"}) << "de_CH"
                                           << "en"
                                           << "de";
    QTest::newRow("these before the fallback") << keyed({"de", "fr"}) << "de_CH"
                                               << "fr"
                                               << "de";
    QTest::newRow("the fallback") << keyed({"de", "fr"}) << "it"
                                  << "fr"
                                  << "fr";
    QTest::newRow("the fallback before its letters") << keyed({"de", "fr", "fr_CH"}) << "it"
                                                     << "fr_CH"
                                                     << "fr_CH";
    QTest::newRow("the fallback's letters") << keyed({"de", "fr"}) << "it"
                                            << "fr_CH"
                                            << "fr";
    QTest::newRow("the smallest key") << keyed({"fr", "de"}) << "it"
                                      << "es"
                                      << "de";
    QTest::newRow("a single key") << keyed({"ja"}) << "it"
                                  << "es"
                                  << "ja";
    QTest::newRow("case matters") << keyed({"DE", "fr"}) << "de"
                                  << "fr"
                                  << "fr";
    QTest::newRow("an empty language has a key") << keyed({"", "fr"}) << ""
                                                 << "fr"
                                                 << "";
    QTest::newRow("one letter") << keyed({"d", "fr"}) << "d"
                                << "fr"
                                << "d";
}

void TranslatedUrlsTest::choice()
{
    QFETCH(UrlMap, urls);
    QFETCH(QString, language);
    QFETCH(QString, fallback);
    QFETCH(QString, chosen);
    QCOMPARE(PackageInfo::translatedUrl(urls, language, fallback), url(chosen));
}

void TranslatedUrlsTest::lastInsertedUrlOfAKeyIsGiven()
{
    UrlMap urls;
    for (const char* name : {"first", "second", "third"}) {
        insertMulti(urls, QString("de"), url(name));
    }
    QCOMPARE(PackageInfo::translatedUrl(urls, "de", "en"), url("third"));
    QCOMPARE(PackageInfo::translatedUrl(urls, "de_CH", "en"), url("third"));
    QCOMPARE(PackageInfo::translatedUrl(urls, "it", "de"), url("third"));
    QCOMPARE(PackageInfo::translatedUrl(urls, "it", "de_CH"), url("third"));
    QCOMPARE(PackageInfo::translatedUrl(urls, "it", "en"), url("third"));
}

void TranslatedUrlsTest::emptyMapGivesAnEmptyUrl()
{
    QVERIFY(PackageInfo::translatedUrl({}, "de", "en").isEmpty());
}

void TranslatedUrlsTest::releaseNotesAndReadmeAreApart()
{
    PackageInfo package;
    package.relNotes.insert("de", url("notes"));
    package.readme.insert("de", url("readme"));
    QCOMPARE(package.releaseNotesUrl("de_CH", "en"), url("notes"));
    QCOMPARE(package.readmeUrl("it", "de"), url("readme"));
    QVERIFY(PackageInfo().releaseNotesUrl("de", "en").isEmpty());
    QVERIFY(PackageInfo().readmeUrl("de", "en").isEmpty());
}

VX_TEST_MAIN(TranslatedUrlsTest)
#include "tst_TranslatedUrls.moc"
