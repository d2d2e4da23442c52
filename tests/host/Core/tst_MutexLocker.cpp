#include <QtTest>

#include <atomic>
#include <thread>

#include "host/Core/MutexLocker.h"
#include "tests/support/TestMain.h"

namespace {

/** Whether another thread could take @p mutex now. */
bool isFree(vx::Mutex& mutex)
{
    bool taken = false;
    std::thread([&] {
        taken = mutex.tryLock();
        if (taken) {
            mutex.unlock();
        }
    }).join();
    return taken;
}

} // namespace

class MutexLockerTest : public QObject
{
    Q_OBJECT

private slots:
    void takesAtOnceAndReleases();
    void takesLaterIfTheFlagIsFalse();
    void keepsOthersOut();
};

void MutexLockerTest::takesAtOnceAndReleases()
{
    vx::Mutex mutex;
    {
        const vx::MutexLocker locker(mutex, true);
        QVERIFY(!isFree(mutex));
    }
    QVERIFY(isFree(mutex));
}

void MutexLockerTest::takesLaterIfTheFlagIsFalse()
{
    vx::Mutex mutex;
    {
        vx::MutexLocker locker(mutex, false);
        QVERIFY(isFree(mutex));
        locker.lock();
        locker.lock();
        QVERIFY(!isFree(mutex));
    }
    QVERIFY(isFree(mutex));
    {
        const vx::MutexLocker untaken(mutex, false);
    }
    QVERIFY(isFree(mutex));
}

void MutexLockerTest::keepsOthersOut()
{
    vx::Mutex mutex;
    int counter = 0;
    const auto count = [&] {
        for (int i = 0; i < 10000; ++i) {
            const vx::MutexLocker locker(mutex, true);
            ++counter;
        }
    };
    std::thread first(count);
    std::thread second(count);
    first.join();
    second.join();
    QCOMPARE(counter, 20000);
}

VX_TEST_MAIN(MutexLockerTest)
#include "tst_MutexLocker.moc"
