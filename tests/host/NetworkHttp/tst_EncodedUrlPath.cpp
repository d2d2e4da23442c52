#include <QtTest>

#include "host/NetworkHttp/HttpClient.h"
#include "tests/support/TestMain.h"

class EncodedUrlPathTest : public QObject
{
    Q_OBJECT

private slots:
    void encodesOnce_data();
    void encodesOnce();
    void readsBarePaths();
    void comesBackFromARequest();
};

void EncodedUrlPathTest::encodesOnce_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("path");

    QTest::newRow("plain") << "http://h/a/b.zip"
                           << "/a/b.zip";
    QTest::newRow("blank") << "http://h/a b.zip"
                           << "/a%20b.zip";
    QTest::newRow("encoded blank") << "http://h/a%20b.zip"
                                   << "/a%20b.zip";
    QTest::newRow("umlaut") << QString::fromUtf8("http://h/\xc3\xbc.zip") << "/%C3%BC.zip";
    QTest::newRow("encoded umlaut") << "http://h/%C3%BC.zip"
                                    << "/%C3%BC.zip";
    QTest::newRow("encoded slash") << "http://h/a%2Fb"
                                   << "/a%2Fb";
    QTest::newRow("encoded percent") << "http://h/100%25"
                                     << "/100%25";
    QTest::newRow("encoded encoding") << "http://h/a%2520b"
                                      << "/a%2520b";
    QTest::newRow("encoded question mark") << "http://h/a%3Fb"
                                           << "/a%3Fb";
    QTest::newRow("query") << "http://h/get?file=x.zip"
                           << "/get";
    QTest::newRow("fragment") << "http://h/a#b"
                              << "/a";
    QTest::newRow("login and port") << "http://user:pw@h:8080/a"
                                    << "/a";
    QTest::newRow("no path") << "http://h"
                             << "";
    QTest::newRow("root") << "http://h/"
                          << "/";
    QTest::newRow("double slash") << "http://h//a//b"
                                  << "//a//b";
    QTest::newRow("dots") << "http://h/a/../b"
                          << "/a/../b";
    QTest::newRow("plus") << "http://h/a+b"
                          << "/a+b";
    QTest::newRow("line break") << "http://h/a%0D%0Ab"
                                << "/a%0D%0Ab";
    QTest::newRow("empty") << ""
                           << "";
}

void EncodedUrlPathTest::encodesOnce()
{
    QFETCH(QString, url);
    QTEST(HttpClient::encodedUrlPath(url), "path");
    QTEST(HttpClient::encodedUrlPath(QUrl(url)), "path");
}

void EncodedUrlPathTest::readsBarePaths()
{
    QCOMPARE(HttpClient::encodedUrlPath(QString("/a b?c")), QString("/a%20b"));
    QCOMPARE(HttpClient::encodedUrlPath(QString("a b")), QString("a%20b"));
}

void EncodedUrlPathTest::comesBackFromARequest()
{
    const QUrl url("http://h/a%2Fb/100%25/c d/%C3%BC.zip");
    HttpClient client(vx::HttpHost(vx::HttpAccess("h", 80, "", ""), vx::HttpAccess(), ""));
    const RequestPtr request =
        client.prepareGet(HttpClient::encodedUrlPath(url), {}, nullptr, nullptr, nullptr, {});
    QCOMPARE(request->requestUrls, QList<QUrl>({url}));
}

VX_TEST_MAIN(EncodedUrlPathTest)
#include "tst_EncodedUrlPath.moc"
