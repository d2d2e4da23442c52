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

class tst_MetaTypes : public QObject
{
    Q_OBJECT

private slots:
    // First, before anything else could have registered them.
    void registeredWhenTheLibraryIsLoaded();
    void registeredOnce();
    void constructsDefaultsAndCopies();
    void travelsThroughQueuedSignals();
    void travelsThroughQueuedCalls();
};

void tst_MetaTypes::registeredWhenTheLibraryIsLoaded()
{
    const int package = DownloadManager::qMetaTypes[0];
    const int list = DownloadManager::qMetaTypes[1];
    QCOMPARE(QByteArray(QMetaType::typeName(package)), QByteArray("vx::PackageInfo"));
    QCOMPARE(QByteArray(QMetaType::typeName(list)), QByteArray("vx::PackageInfoList"));
    QCOMPARE(QMetaType::type("vx::PackageInfo"), package);
    QCOMPARE(QMetaType::type("vx::PackageInfoList"), list);
    QVERIFY(package < list);
}

void tst_MetaTypes::registeredOnce()
{
    QCOMPARE(qRegisterMetaType<PackageInfo>("vx::PackageInfo"), DownloadManager::qMetaTypes[0]);
    QCOMPARE(qRegisterMetaType<PackageInfoList>("vx::PackageInfoList"),
             DownloadManager::qMetaTypes[1]);
    QCOMPARE(qMetaTypeId<PackageInfo>(), DownloadManager::qMetaTypes[0]);
    QCOMPARE(qMetaTypeId<PackageInfoList>(), DownloadManager::qMetaTypes[1]);
}

void tst_MetaTypes::constructsDefaultsAndCopies()
{
    const int type = DownloadManager::qMetaTypes[0];
    const PackageInfo source("Application", "viewer");
    void* copy = QMetaType::create(type, &source);
    QCOMPARE(static_cast<PackageInfo*>(copy)->name, QString("viewer"));
    QMetaType::destroy(type, copy);
    void* fresh = QMetaType::create(type, nullptr);
    QVERIFY(static_cast<PackageInfo*>(fresh)->name.isEmpty());
    QMetaType::destroy(type, fresh);

    const int listType = DownloadManager::qMetaTypes[1];
    const PackageInfoList list = packages();
    void* listCopy = QMetaType::create(listType, &list);
    QCOMPARE(static_cast<PackageInfoList*>(listCopy)->size(), 2);
    QMetaType::destroy(listType, listCopy);
    void* freshList = QMetaType::create(listType, nullptr);
    QVERIFY(static_cast<PackageInfoList*>(freshList)->isEmpty());
    QMetaType::destroy(listType, freshList);
}

void tst_MetaTypes::travelsThroughQueuedSignals()
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

void tst_MetaTypes::travelsThroughQueuedCalls()
{
    Receiver receiver;
    invokeQueued(&receiver, SLOT(take(PackageInfoList)), Q_ARG(vx::PackageInfoList, packages()));
    QVERIFY(receiver.taken.isEmpty());
    QTRY_COMPARE(receiver.taken.size(), 2);
}

VX_TEST_MAIN(tst_MetaTypes)
#include "tst_MetaTypes.moc"
