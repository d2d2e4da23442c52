#include <QSignalSpy>
#include <QThread>
#include <QtTest>

#include "download/DownloadManager.h"
#include "host/CoreQt/InvokeQueued.h"
#include "tests/support/TestMain.h"

using namespace vx;

namespace {

PackageInfoList packages()
{
    return {PackageInfo("Application", "viewer"), PackageInfo("Camera Firmware", "fw")};
}

} // namespace

class Receiver : public QObject
{
    Q_OBJECT

public slots:
    void take(const PackageInfoList& list) { taken = list; }
    void takeOne(const PackageInfo& package, const QString&) { taken = {package}; }

public:
    PackageInfoList taken;
};

class MetaTypesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void registeredWhenTheLibraryIsLoaded();
    void registeredOnce();
    void constructsDefaultsAndCopies();
    void travelsThroughQueuedSignals();
    void travelsThroughQueuedCalls();

private:
    int m_package = 0;
    int m_list = 0;
};

// Before anything here registers them.
void MetaTypesTest::initTestCase()
{
    m_package = metaTypeId("vx::PackageInfo");
    m_list = metaTypeId("vx::PackageInfoList");
}

void MetaTypesTest::registeredWhenTheLibraryIsLoaded()
{
    const int package = DownloadManager::qMetaTypes[0];
    const int list = DownloadManager::qMetaTypes[1];
    // Qt 6 has a name of its own for a list, and the registered one leads to the same type.
    const QByteArray listName =
        QT_VERSION_MAJOR == 5 ? "vx::PackageInfoList" : "QList<vx::PackageInfo>";
    QCOMPARE(QByteArray(QMetaType(package).name()), QByteArray("vx::PackageInfo"));
    QCOMPARE(QByteArray(QMetaType(list).name()), listName);
    QCOMPARE(m_package, package);
    QCOMPARE(m_list, list);
    QVERIFY(package < list);
}

void MetaTypesTest::registeredOnce()
{
    QCOMPARE(qRegisterMetaType<PackageInfo>("vx::PackageInfo"), DownloadManager::qMetaTypes[0]);
    QCOMPARE(qRegisterMetaType<PackageInfoList>("vx::PackageInfoList"),
             DownloadManager::qMetaTypes[1]);
    QCOMPARE(qMetaTypeId<PackageInfo>(), DownloadManager::qMetaTypes[0]);
    QCOMPARE(qMetaTypeId<PackageInfoList>(), DownloadManager::qMetaTypes[1]);
}

void MetaTypesTest::constructsDefaultsAndCopies()
{
    const int type = DownloadManager::qMetaTypes[0];
    const PackageInfo source("Application", "viewer");
    void* copy = QMetaType(type).create(&source);
    QCOMPARE(static_cast<PackageInfo*>(copy)->name, QString("viewer"));
    QMetaType(type).destroy(copy);
    void* fresh = QMetaType(type).create();
    QVERIFY(static_cast<PackageInfo*>(fresh)->name.isEmpty());
    QMetaType(type).destroy(fresh);

    const int listType = DownloadManager::qMetaTypes[1];
    const PackageInfoList list = packages();
    void* listCopy = QMetaType(listType).create(&list);
    QCOMPARE(static_cast<PackageInfoList*>(listCopy)->size(), 2);
    QMetaType(listType).destroy(listCopy);
    void* freshList = QMetaType(listType).create();
    QVERIFY(static_cast<PackageInfoList*>(freshList)->isEmpty());
    QMetaType(listType).destroy(freshList);
}

void MetaTypesTest::travelsThroughQueuedSignals()
{
    DownloadManager manager;
    Receiver receiver;
    QVERIFY(QObject::connect(&manager, SIGNAL(packageFound(PackageInfoList)), &receiver,
                             SLOT(take(PackageInfoList)), Qt::QueuedConnection));
    emit manager.packageFound(packages());
    QVERIFY(receiver.taken.isEmpty());
    QTRY_COMPARE(receiver.taken.size(), 2);
    QCOMPARE(receiver.taken.at(1).name, QString("fw"));

    QVERIFY(QObject::connect(&manager, SIGNAL(downloadSuccess(PackageInfo, QString)), &receiver,
                             SLOT(takeOne(PackageInfo, QString)), Qt::QueuedConnection));
    emit manager.downloadSuccess(packages().first(), QString());
    QTRY_COMPARE(receiver.taken.size(), 1);
}

void MetaTypesTest::travelsThroughQueuedCalls()
{
    Receiver receiver;
    invokeQueued(&receiver, SLOT(take(PackageInfoList)), Q_ARG(vx::PackageInfoList, packages()));
    QVERIFY(receiver.taken.isEmpty());
    QTRY_COMPARE(receiver.taken.size(), 2);
}

VX_TEST_MAIN(MetaTypesTest)
#include "tst_MetaTypes.moc"
