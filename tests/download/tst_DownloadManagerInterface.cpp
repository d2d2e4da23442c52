#include <QMetaMethod>
#include <QtTest>

#include "host/NetworkHttp/HttpAccessHistory.h"
#include "tests/download/EngineProbe.h"
#include "tests/support/TestMain.h"

using namespace vx;
using vx::test::EngineProbe;

namespace {

QString textOf(const QMetaMethod& method)
{
    static const char* const access[] = {"private", "protected", "public"};
    static const char* const kind[] = {"method", "signal", "slot"};
    QString text =
        QStringLiteral("%1 %2 %3 %4")
            .arg(QLatin1String(access[method.access()]), QLatin1String(kind[method.methodType()]),
                 QLatin1String(method.typeName()), QString::fromLatin1(method.methodSignature()));
    if (method.attributes() & QMetaMethod::Cloned) {
        text += QStringLiteral(" clone");
    }
    return text;
}

QStringList ownMethods()
{
    const QMetaObject& meta = DownloadManager::staticMetaObject;
    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        methods << textOf(meta.method(i));
    }
    return methods;
}

/** "name(A,B,C)" with all of its shorter forms down to @p shortest parameters. */
QStringList withClones(const QString& prefix, const QString& name, const QStringList& types,
                       int shortest)
{
    QStringList forms;
    for (int count = types.size(); count >= shortest; --count) {
        const QString form = prefix + name + QLatin1Char('(') +
                             QStringList(types.mid(0, count)).join(QLatin1Char(',')) +
                             QLatin1Char(')');
        forms << (count == types.size() ? form : form + QStringLiteral(" clone"));
    }
    return forms;
}

QStringList expectedMethods()
{
    const QStringList filter{"QString",   "QString",    "QString",   "QString",
                             "QDateTime", "QStringSet", "QStringSet"};
    const QStringList callback{"QObject*", "const char*"};
    QStringList list{
        "public signal void packageFound(PackageInfoList)",
        "public signal void noPackageFound()",
        "public signal void queryStarted(QString)",
        "public signal void queryFinished()",
        "public signal void downloadStarted(PackageInfo,QString)",
        "public signal void downloadProgress(int,int)",
        "public signal void downloadSuccess(PackageInfo,QString)",
        "public signal void downloadSuccess()",
        "public signal void downloadFailure(PackageInfo,QString)",
        "public signal void downloadFailure(int)",
        "public signal void downloadAborted()",
        "public signal void releaseNotesDownloaded(QUrl,QString)",
        "public signal void unzippingDone(QString)",
    };
    const QString slot("public slot void ");
    const QString listSlot("public slot PackageInfoList ");
    list += withClones(slot, "queryUpdate", filter + callback, 0);
    list += withClones(slot, "queryUpdate", QStringList{"PackageInfo"} + callback, 1);
    list += withClones(listSlot, "recentPackages", filter, 0);
    list += withClones(listSlot, "recentPackages", {"PackageInfo"}, 1);
    list += withClones(slot, "queryCameraFirmwareUpdate", {"QString", "QString", "QStringSet"}, 0);
    list += QStringList{
        "public slot bool isQueryBusy()",
        "public slot bool isRegularCheck()",
        "public slot bool setRegularCheck(bool)",
        "public slot void startDownload(PackageInfo,QString)",
        "public slot void downloadReleaseNotes(QUrl)",
        "public slot void installLater(PackageInfo,bool)",
    };
    list += withClones(slot, "installLater", {"QString", "QString", "QString", "QString"}, 3);
    list += QStringList{
        "public slot void unzipPackage(QString)",
        "public slot void unzippingFinished(QString)",
        "public slot void unzippingFailed(QString)",
        "public slot void abortDownload()",
        "public slot void startUpdate(QString,QString,QString,QString)",
        "public slot void runInstaller(QString)",
        "protected slot void queryResult(RequestPtr)",
        "protected slot void queryResult(QIODevice*,RequestData*)",
        "protected slot void downloadStarting(RequestPtr)",
        "protected slot void downloadResult(RequestPtr)",
        "protected slot void releaseNotesResult(RequestPtr)",
        "protected slot void runZipInstaller(QString)",
        "protected slot QString findDefaultExecutable(QDir)",
        "protected slot void parseSet(QDomElement,PackageInfoList&)",
        "protected slot void parsePackage(QDomElement,PackageInfo&)",
        "protected slot QString findString(QDomNode,QString)",
        "protected slot int findAllStrings(QDomNode,QString,QStringSet&)",
        "protected slot int findAllTranslatedUrls(QDomNode,QString,UrlMap&)",
        "protected slot PackageInfoList findBestMatches(PackageInfoList,PackageInfo)",
    };
    return list;
}

HttpHost hostAt(const QString& name)
{
    return HttpHost(HttpAccess(name, 80, QString(), QString()), HttpAccess(), QString());
}

} // namespace

class DownloadManagerInterfaceTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void methodsStandInTheirOrder();
    void parametersHaveTheirNames_data();
    void parametersHaveTheirNames();
    void listIsDeliveredByName();
    void slotsAreCalledByName();
    void metaTypesAreRegisteredOnLoading();
    void builtFromHost();
    void builtFromUrl();
    void builtFromSettings();
    void builtFromNothing();
    void serverIsReadAndChanged();
    void setServerResetsThePreference();
    void setServerLeavesTheClientAlone();
    void setProxyParsesAndRemembers_data();
    void setProxyParsesAndRemembers();
    void queryUrlIsTheServerAlone();
    void regularCheckGivesThePreviousValue();
    void freshObjectIsNotBusy();
};

void DownloadManagerInterfaceTest::init()
{
    HttpAccessHistory::proxies.clear();
}

// Hosts connect by signature and by name, so the list is an interface of its own.
void DownloadManagerInterfaceTest::methodsStandInTheirOrder()
{
    const QStringList actual = ownMethods();
    const QStringList expected = expectedMethods();
    for (int i = 0; i < qMin(actual.size(), expected.size()); ++i) {
        QCOMPARE(actual.at(i), expected.at(i));
    }
    QCOMPARE(actual.size(), expected.size());
}

void DownloadManagerInterfaceTest::parametersHaveTheirNames_data()
{
    QTest::addColumn<QString>("names");

    const auto add = [](const char* signature, const QString& names) {
        QTest::newRow(signature) << names;
    };
    const QString filter("filterTypes,filterNames,filterReleaseVersion,filterReleaseStatus,"
                         "filterTime,filterPlatform,filterLanguages");
    const QString callback(",callbackReceiver,callbackSlot");
    add("packageFound(PackageInfoList)", "allPackages");
    add("queryStarted(QString)", "url");
    add("downloadStarted(PackageInfo,QString)", "pack,fileName");
    add("downloadProgress(int,int)", "bytes,totalBytes");
    add("downloadSuccess(PackageInfo,QString)", "pack,fileName");
    add("downloadFailure(PackageInfo,QString)", "pack,fileName");
    add("downloadFailure(int)", "httpStatusCode");
    add("releaseNotesDownloaded(QUrl,QString)", "url,text");
    add("queryUpdate(QString,QString,QString,QString,QDateTime,QStringSet,QStringSet,QObject*,"
        "const char*)",
        filter + callback);
    add("queryUpdate(PackageInfo,QObject*,const char*)", "filter" + callback);
    add("recentPackages(QString,QString,QString,QString,QDateTime,QStringSet,QStringSet)", filter);
    add("recentPackages(PackageInfo)", "filter");
    add("queryCameraFirmwareUpdate(QString,QString,QStringSet)",
        "filterVersion,filterRelease,filterLanguages");
    add("startDownload(PackageInfo,QString)", "pack,fileName");
    add("downloadReleaseNotes(QUrl)", "url");
    add("installLater(PackageInfo,bool)", "info,confirmInstall");
    add("installLater(QString,QString,QString,QString)",
        "packageFile,updaterExe,targetFolder,applicationExe");
    add("unzipPackage(QString)", "packageFile");
    add("startUpdate(QString,QString,QString,QString)",
        "updateApplicationPath,installationPath,tempApplicationPath,newApplication");
    add("runInstaller(QString)", "installerFile");
    add("queryResult(RequestPtr)", "resp");
    add("queryResult(QIODevice*,RequestData*)", "input,data");
    add("downloadStarting(RequestPtr)", "resp");
    add("downloadResult(RequestPtr)", "resp");
    add("releaseNotesResult(RequestPtr)", "resp");
    add("runZipInstaller(QString)", "installerFile");
    add("findDefaultExecutable(QDir)", "dir");
    add("parseSet(QDomElement,PackageInfoList&)", "elm,result");
    add("parsePackage(QDomElement,PackageInfo&)", "elm,info");
    add("findString(QDomNode,QString)", "elm,tagname");
    add("findAllStrings(QDomNode,QString,QStringSet&)", "elm,tagname,result");
    add("findAllTranslatedUrls(QDomNode,QString,UrlMap&)", "elm,tagname,result");
    add("findBestMatches(PackageInfoList,PackageInfo)", "allPackages,filter");
}

void DownloadManagerInterfaceTest::parametersHaveTheirNames()
{
    const QMetaObject& meta = DownloadManager::staticMetaObject;
    const QMetaMethod method = meta.method(meta.indexOfMethod(QTest::currentDataTag()));
    QVERIFY(method.isValid());
    QTEST(QString::fromLatin1(method.parameterNames().join(',')), "names");
}

void DownloadManagerInterfaceTest::listIsDeliveredByName()
{
    EngineProbe engine;
    PackageInfoList result{PackageInfo(), PackageInfo()};
    QVERIFY(QMetaObject::invokeMethod(&engine, "recentPackages", Qt::DirectConnection,
                                      Q_RETURN_ARG(PackageInfoList, result)));
    QVERIFY(result.isEmpty());
}

void DownloadManagerInterfaceTest::slotsAreCalledByName()
{
    EngineProbe engine;
    bool previous = true;
    QVERIFY(QMetaObject::invokeMethod(&engine, "setRegularCheck", Qt::DirectConnection,
                                      Q_RETURN_ARG(bool, previous), Q_ARG(bool, true)));
    QVERIFY(!previous);
    QVERIFY(engine.isRegularCheck());

    QVERIFY(QMetaObject::invokeMethod(&engine, "installLater", Qt::DirectConnection,
                                      Q_ARG(QString, "/p"), Q_ARG(QString, "/u"),
                                      Q_ARG(QString, "/t")));
    QCOMPARE(engine.installPackage().localFile, QString("/p"));

    QString executable("x");
    QVERIFY(QMetaObject::invokeMethod(&engine, "findDefaultExecutable", Qt::DirectConnection,
                                      Q_RETURN_ARG(QString, executable),
                                      Q_ARG(QDir, QDir("/nowhere/at/all"))));
    QCOMPARE(executable, QString());
}

void DownloadManagerInterfaceTest::metaTypesAreRegisteredOnLoading()
{
    QCOMPARE(DownloadManager::qMetaTypes[0], metaTypeId("vx::PackageInfo"));
    QCOMPARE(DownloadManager::qMetaTypes[1], metaTypeId("vx::PackageInfoList"));
    QVERIFY(DownloadManager::qMetaTypes[0] != QMetaType::UnknownType);
    QVERIFY(DownloadManager::qMetaTypes[1] > DownloadManager::qMetaTypes[0]);
}

void DownloadManagerInterfaceTest::builtFromHost()
{
    const HttpHost host = hostAt("updates.example.com");
    EngineProbe engine(host, "/catalogue");
    QCOMPARE(engine.server().server.address, QString("updates.example.com"));
    QCOMPARE(engine.server().proxyPreference, HttpHost::NoProxy);
    QCOMPARE(engine.serverPath, QString("/catalogue"));
    QVERIFY(engine.isRegularCheck());
    QVERIFY(engine.lastCheck.isNull());
    QVERIFY(engine.lastCatalogue.isEmpty());
    QVERIFY(engine.updateHistory.isEmpty());
    QVERIFY(engine.serverCookie.isEmpty());
    QVERIFY(engine.unzipper == nullptr);
    QVERIFY(engine.installPackage().localFile.isEmpty());
}

void DownloadManagerInterfaceTest::builtFromUrl()
{
    EngineProbe engine(QUrl("http://updates.example.com:8080/a%20b"));
    QCOMPARE(engine.server().server.address, QString("updates.example.com"));
    QCOMPARE(engine.server().server.port, 8080);
    QCOMPARE(int(engine.server().proxyPreference), 2);
    QCOMPARE(engine.serverPath, QString("/a%20b"));
    QVERIFY(engine.isRegularCheck());
    QVERIFY(engine.unzipper == nullptr);
}

void DownloadManagerInterfaceTest::builtFromSettings()
{
    QTemporaryDir folder;
    QSettings settings(folder.filePath("empty.ini"), QSettings::IniFormat);
    EngineProbe engine(settings, QString());
    QVERIFY(!engine.isRegularCheck());
    QCOMPARE(int(engine.server().proxyPreference), 2);
    QCOMPARE(engine.queryUrl().host(), QUrl(DownloadManager::UPDATE_URL).host());
    QVERIFY(engine.lastCheck.isNull());
    QVERIFY(engine.unzipper == nullptr);
}

void DownloadManagerInterfaceTest::builtFromNothing()
{
    EngineProbe engine;
    QCOMPARE(engine.server().server.address, QString());
    QCOMPARE(engine.server().proxyPreference, HttpHost::NoProxy);
    QCOMPARE(engine.serverPath, QString());
    QVERIFY(engine.lastCheck.isNull());
    QVERIFY(engine.lastCatalogue.isEmpty());
    QVERIFY(engine.unzipper == nullptr);
}

void DownloadManagerInterfaceTest::serverIsReadAndChanged()
{
    EngineProbe engine(hostAt("a.example.com"), QString());
    engine.server().server.setAddress("b.example.com", 81, false);
    const EngineProbe& constant = engine;
    QCOMPARE(constant.server().server.address, QString("b.example.com"));
    QCOMPARE(&constant.server(), &engine.server());
}

void DownloadManagerInterfaceTest::setServerResetsThePreference()
{
    EngineProbe engine;
    engine.setProxy(HttpHost::OwnProxy, "proxy.example.com:3128");
    QCOMPARE(engine.server().proxyPreference, HttpHost::OwnProxy);
    engine.setServer(QUrl("http://updates.example.com/c/d%2Fe?q=1"));
    QCOMPARE(int(engine.server().proxyPreference), 2);
    QCOMPARE(engine.server().server.address, QString("updates.example.com"));
    QCOMPARE(engine.serverPath, QString("/c/d%2Fe"));
}

void DownloadManagerInterfaceTest::setServerLeavesTheClientAlone()
{
    EngineProbe engine(hostAt("a.example.com"), QString());
    engine.setServer(QUrl("http://b.example.com/"));
    const RequestPtr request =
        engine.httpClient.prepareGet("/x", {}, nullptr, nullptr, nullptr, {});
    QCOMPARE(request->requestUrls.value(0), QUrl("http://a.example.com/x"));
}

void DownloadManagerInterfaceTest::setProxyParsesAndRemembers_data()
{
    QTest::addColumn<int>("preference");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("remembered");
    QTest::newRow("own, with port") << 1 << "proxy.example.com:3128"
                                    << "proxy.example.com" << 3128 << 1;
    QTest::newRow("own, default port") << 1 << "proxy.example.com"
                                       << "proxy.example.com" << 80 << 1;
    QTest::newRow("own, no address") << 1 << ""
                                     << "" << 80 << 0;
    QTest::newRow("none, with address") << 0 << "proxy.example.com:8080"
                                        << "proxy.example.com" << 8080 << 0;
    QTest::newRow("none at all") << 0 << ""
                                 << "" << 80 << 0;
    // The application has no proxy here, and with preference 2 its word counts.
    QTest::newRow("the application's") << 2 << "proxy.example.com"
                                       << "" << 80 << 0;
}

void DownloadManagerInterfaceTest::setProxyParsesAndRemembers()
{
    QFETCH(int, preference);
    QFETCH(QString, text);
    EngineProbe engine;
    engine.setProxy(static_cast<HttpHost::ProxyPreference>(preference), text);
    QCOMPARE(int(engine.server().proxyPreference), preference);
    QTEST(engine.server().proxy.address, "address");
    QTEST(engine.server().proxy.port, "port");
    QTEST(int(HttpAccessHistory::proxies.entries().size()), "remembered");
}

void DownloadManagerInterfaceTest::queryUrlIsTheServerAlone()
{
    EngineProbe engine(QUrl("http://updates.example.com:8080/catalogue.xml?x=y"));
    QCOMPARE(engine.queryUrl(), engine.server().makeURL(QString(), {}, true));
    QCOMPARE(engine.queryUrl().host(), QString("updates.example.com"));
    QCOMPARE(engine.queryUrl().port(), 8080);
    QVERIFY(!engine.queryUrl().hasQuery());
    QVERIFY(!engine.queryUrl().path().contains("catalogue"));
}

void DownloadManagerInterfaceTest::regularCheckGivesThePreviousValue()
{
    EngineProbe engine(hostAt("a.example.com"), QString());
    QCOMPARE(engine.setRegularCheck(false), true);
    QCOMPARE(engine.isRegularCheck(), false);
    QCOMPARE(engine.setRegularCheck(true), false);
    QCOMPARE(engine.isRegularCheck(), true);
    QCOMPARE(engine.setRegularCheck(true), true);
}

void DownloadManagerInterfaceTest::freshObjectIsNotBusy()
{
    const EngineProbe engine;
    QVERIFY(!engine.isQueryBusy());
}

VX_TEST_MAIN(DownloadManagerInterfaceTest)
#include "tst_DownloadManagerInterface.moc"
