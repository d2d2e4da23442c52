#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include "host/NetworkHttp/HttpHost.h"
#include "host/NodeDB/NodeDB.h"
#include "tests/support/TestMain.h"

using vx::HttpAccess;
using vx::HttpHost;
using vx::NetworkProxy;
using vx::NodeDB;

using Params = QMap<QString, QVariant>;

class HttpHostTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void isEmptyAtFirst();
    void prefersItsOwnProxyIfItHasOne();
    void takesTheGlobalProxyOnlyIfPreferred_data();
    void takesTheGlobalProxyOnlyIfPreferred();
    void followsTheGlobalProxy();
    void makesUrlOfPath_data();
    void makesUrlOfPath();
    void makesUrlOfParams_data();
    void makesUrlOfParams();
    void makesUrlOfServer_data();
    void makesUrlOfServer();
    void makesNoUrlWithoutServer();
    void readsBackWhatItStored();
    void storesPasswordsOnlyIfTold();
    void removesOldPasswords();
    void staysInTheOpenGroup();
    void readsAnEmptyGroupAsDefault();
    void readsInvalidValuesAsDefault_data();
    void readsInvalidValuesAsDefault();

private:
    QTemporaryDir m_folder;
    QString m_file;
};

void HttpHostTest::init()
{
    m_file = m_folder.filePath(QString("%1.ini").arg(QTest::currentTestFunction()));
    QFile::remove(m_file);
    NodeDB::getDB().setGlobalProxy(NetworkProxy());
}

void HttpHostTest::isEmptyAtFirst()
{
    const HttpHost host;
    QCOMPARE(host.server.address, QString());
    QCOMPARE(int(host.proxyPreference), 0);
    QCOMPARE(host.proxy.address, QString());
    QCOMPARE(sizeof(HttpHost::ProxyPreference), sizeof(int));
}

void HttpHostTest::prefersItsOwnProxyIfItHasOne()
{
    const HttpAccess server("server", 80, "", "");
    const HttpHost direct(server, HttpAccess("", 0, "", ""), "");
    QCOMPARE(direct.proxyPreference, HttpHost::NoProxy);
    const HttpHost proxied(HttpAccess(), HttpAccess("proxy", 3128, "", ""), "agent");
    QCOMPARE(proxied.proxyPreference, HttpHost::OwnProxy);
    QCOMPARE(proxied.proxy.port, 3128);
    QCOMPARE(proxied.userAgent, QString("agent"));
    const HttpHost copy(proxied);
    QCOMPARE(copy.proxyPreference, HttpHost::OwnProxy);
    QCOMPARE(copy.proxy.address, QString("proxy"));
}

void HttpHostTest::takesTheGlobalProxyOnlyIfPreferred_data()
{
    QTest::addColumn<int>("preference");
    QTest::addColumn<QString>("proxy");
    QTest::newRow("none") << 0 << "http://own:1";
    QTest::newRow("own") << 1 << "http://own:1";
    QTest::newRow("global") << 2 << "http://global:8080";
    QTest::newRow("unknown") << 7 << "http://own:1";
}

void HttpHostTest::takesTheGlobalProxyOnlyIfPreferred()
{
    QFETCH(int, preference);
    NodeDB::getDB().setGlobalProxy(NetworkProxy(true, "global", 8080, "user", "secret"));
    HttpHost host(HttpAccess(), HttpAccess("own", 1, "", ""), "");
    host.proxyPreference = static_cast<HttpHost::ProxyPreference>(preference);
    host.updateProxy(QUrl());
    QTEST(QString(host.proxy), "proxy");
    QCOMPARE(int(host.proxyPreference), preference);
}

void HttpHostTest::followsTheGlobalProxy()
{
    HttpHost host;
    host.proxyPreference = HttpHost::GlobalProxy;
    NodeDB::getDB().setGlobalProxy(NetworkProxy(true, "global", 8080, "user", "secret"));
    host.updateProxy(QUrl());
    QCOMPARE(host.proxy.user, QString("user"));
    QCOMPARE(host.proxy.password, QString("secret"));
    NodeDB::getDB().setGlobalProxy(NetworkProxy(false, "global", 8080, "user", "secret"));
    host.updateProxy(QUrl("http://any.example.com/"));
    QCOMPARE(host.proxy.address, QString());
    QCOMPARE(host.proxy.password, QString());
}

void HttpHostTest::makesUrlOfPath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("full");
    QTest::addColumn<QByteArray>("relative");

    QTest::newRow("empty") << "" << QByteArray("http://h/") << QByteArray();
    QTest::newRow("root") << "/" << QByteArray("http://h/") << QByteArray("/");
    QTest::newRow("path") << "/a/b.xml" << QByteArray("http://h/a/b.xml") << QByteArray("/a/b.xml");
    QTest::newRow("no slash") << "a/b" << QByteArray("http://h/a/b") << QByteArray("/a/b");
    QTest::newRow("blank") << "/a b" << QByteArray("http://h/a%20b") << QByteArray("/a%20b");
    QTest::newRow("encoded blank")
        << "/a%20b" << QByteArray("http://h/a%20b") << QByteArray("/a%20b");
    QTest::newRow("encoded slash")
        << "/a%2Fb" << QByteArray("http://h/a%2Fb") << QByteArray("/a%2Fb");
    QTest::newRow("encoded percent")
        << "/100%25" << QByteArray("http://h/100%25") << QByteArray("/100%25");
    QTest::newRow("bare percent") << "/100%" << QByteArray("http://h/100%25")
                                  << QByteArray("/100%25");
    QTest::newRow("umlaut") << QString::fromUtf8("/\xc3\xbc") << QByteArray("http://h/%C3%BC")
                            << QByteArray("/%C3%BC");
    QTest::newRow("query mark") << "/a?b=c" << QByteArray("http://h/a%3Fb=c")
                                << QByteArray("/a%3Fb=c");
    QTest::newRow("fragment mark")
        << "/a#b" << QByteArray("http://h/a%23b") << QByteArray("/a%23b");
    QTest::newRow("line break") << "/a\r\nX-Evil: 1" << QByteArray("http://h/a%0D%0AX-Evil:%201")
                                << QByteArray("/a%0D%0AX-Evil:%201");
}

void HttpHostTest::makesUrlOfPath()
{
    QFETCH(QString, path);
    const HttpHost host(HttpAccess("h", 80, "", ""), HttpAccess(), "");
    QTEST(host.makeURL(path, Params(), true).toEncoded(), "full");
    QTEST(host.makeURL(path, Params(), false).toEncoded(), "relative");
}

void HttpHostTest::makesUrlOfParams_data()
{
    QTest::addColumn<Params>("params");
    QTest::addColumn<QByteArray>("url");

    QTest::newRow("none") << Params() << QByteArray("http://h/p");
    QTest::newRow("one") << Params{{"a", "b"}} << QByteArray("http://h/p?a=b");
    QTest::newRow("in order") << Params{{"b", 2}, {"a", true}}
                              << QByteArray("http://h/p?a=true&b=2");
    QTest::newRow("marks") << Params{{"a&=b", "c&d=e#f?"}}
                           << QByteArray("http://h/p?a%26%3Db=c%26d%3De%23f%3F");
    QTest::newRow("plus and blank")
        << Params{{"a", "b+c d"}} << QByteArray("http://h/p?a=b%2Bc%20d");
    QTest::newRow("percent") << Params{{"a", "100%25"}} << QByteArray("http://h/p?a=100%2525");
    QTest::newRow("umlaut") << Params{{"a", QString::fromUtf8("\xc3\xbc")}}
                            << QByteArray("http://h/p?a=%C3%BC");
    QTest::newRow("line break") << Params{{"a\r\nX", "b\r\nX-Evil: 1"}}
                                << QByteArray("http://h/p?a%0D%0AX=b%0D%0AX-Evil%3A%201");
    QTest::newRow("empty value") << Params{{"a", ""}} << QByteArray("http://h/p?a=");
}

void HttpHostTest::makesUrlOfParams()
{
    QFETCH(Params, params);
    const HttpHost host(HttpAccess("h", 80, "", ""), HttpAccess(), "");
    QTEST(host.makeURL("/p", params, true).toEncoded(), "url");
}

void HttpHostTest::makesUrlOfServer_data()
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<QUrl>("url");

    QTest::newRow("name") << "example.com" << QUrl("http://example.com/");
    QTest::newRow("port") << "example.com:8080" << QUrl("http://example.com:8080/");
    QTest::newRow("https") << "https://example.com" << QUrl("https://example.com/");
    QTest::newRow("IPv6") << "[::1]:8080" << QUrl("http://[::1]:8080/");
    QTest::newRow("login") << "user:secret@example.com" << QUrl("http://example.com/");
}

void HttpHostTest::makesUrlOfServer()
{
    QFETCH(QString, server);
    HttpHost host;
    host.server.parseAddress(server, 80);
    QTEST(host.makeURL("", Params(), true), "url");
}

void HttpHostTest::makesNoUrlWithoutServer()
{
    const HttpHost host;
    QVERIFY(host.makeURL("/path", Params{{"a", 1}}, true).isEmpty());
    QCOMPARE(host.makeURL("/path", Params{{"a", 1}}, false), QUrl("/path?a=1"));
}

void HttpHostTest::readsBackWhatItStored()
{
    HttpHost host(HttpAccess("server", 8080, "admin", ""), HttpAccess("::1", 3128, "user", ""), "");
    host.server.secure = true;
    host.proxyPreference = HttpHost::GlobalProxy;
    {
        QSettings settings(m_file, QSettings::IniFormat);
        host.store(settings, false);
    }
    HttpHost again;
    again.userAgent = "stays";
    again.load(QSettings(m_file, QSettings::IniFormat));
    QCOMPARE(QString(again.server), QString("https://server:8080"));
    QCOMPARE(again.server.user, QString("admin"));
    QCOMPARE(again.proxyPreference, HttpHost::GlobalProxy);
    QCOMPARE(QString(again.proxy), QString("http://[::1]:3128"));
    QCOMPARE(again.proxy.user, QString("user"));
    QCOMPARE(again.userAgent, QString("stays"));
}

void HttpHostTest::storesPasswordsOnlyIfTold()
{
    const HttpHost host(HttpAccess("server", 80, "a", "server-secret"),
                        HttpAccess("proxy", 80, "b", "proxy-secret"), "");
    QSettings settings(m_file, QSettings::IniFormat);
    host.store(settings, true);
    HttpHost again;
    again.load(settings);
    QCOMPARE(again.server.password, QString("server-secret"));
    QCOMPARE(again.proxy.password, QString("proxy-secret"));
}

void HttpHostTest::removesOldPasswords()
{
    const HttpHost host(HttpAccess("server", 80, "a", "server-secret"),
                        HttpAccess("proxy", 80, "b", "proxy-secret"), "");
    QSettings settings(m_file, QSettings::IniFormat);
    host.store(settings, true);
    host.store(settings, false);
    settings.sync();
    QFile file(m_file);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(!file.readAll().contains("secret"));
}

void HttpHostTest::staysInTheOpenGroup()
{
    QSettings settings(m_file, QSettings::IniFormat);
    settings.beginGroup("Download");
    HttpHost(HttpAccess("server", 80, "", ""), HttpAccess(), "").store(settings, false);
    QCOMPARE(settings.group(), QString("Download"));
    settings.endGroup();
    QCOMPARE(settings.childGroups(), QStringList({"Download"}));
    QVERIFY(settings.childKeys().isEmpty());
    QCOMPARE(settings.value("Download/server-address").toString(), QString("server"));
}

void HttpHostTest::readsAnEmptyGroupAsDefault()
{
    HttpHost host(HttpAccess("server", 8080, "", ""), HttpAccess("proxy", 1, "", ""), "");
    host.load(QSettings(m_file, QSettings::IniFormat));
    QCOMPARE(host.server.address, QString());
    QCOMPARE(host.proxyPreference, HttpHost::NoProxy);
    QCOMPARE(host.proxy.address, QString());
}

void HttpHostTest::readsInvalidValuesAsDefault_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("server");
    QTest::addColumn<int>("preference");

    const QString good = "http://server:8080";
    QTest::newRow("good") << "other" << QVariant(1) << good << 2;
    QTest::newRow("preference text") << "proxy-preference" << QVariant("yes") << good << 0;
    QTest::newRow("preference unknown") << "proxy-preference" << QVariant(3) << good << 0;
    QTest::newRow("preference negative") << "proxy-preference" << QVariant(-2) << good << 0;
    QTest::newRow("preference huge") << "proxy-preference" << QVariant("4294967298") << good << 0;
    QTest::newRow("port text") << "server-port" << QVariant("http") << "http://server" << 2;
    QTest::newRow("port huge") << "server-port" << QVariant(70000) << "http://server" << 2;
    QTest::newRow("host evil") << "server-address" << QVariant("a\r\nb") << "" << 2;
    QTest::newRow("host list") << "server-address" << QVariant(QStringList{"a", "b"}) << "" << 2;
}

void HttpHostTest::readsInvalidValuesAsDefault()
{
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    HttpHost host(HttpAccess("server", 8080, "", ""), HttpAccess(), "");
    host.proxyPreference = HttpHost::GlobalProxy;
    QSettings settings(m_file, QSettings::IniFormat);
    host.store(settings, false);
    settings.setValue(key, value);
    HttpHost again;
    again.load(settings);
    QTEST(QString(again.server), "server");
    QTEST(int(again.proxyPreference), "preference");
}

VX_TEST_MAIN(HttpHostTest)
#include "tst_HttpHost.moc"
