#include <QtTest>

#include <limits>

#include "host/NetworkHttp/internal/ProgressMeter.h"
#include "tests/support/TestMain.h"

using vx::Progress;
using vx::ProgressMeter;

namespace {

constexpr qint64 largestInt = std::numeric_limits<int>::max();
constexpr qint64 gib = 1LL << 30;

} // namespace

class ProgressMeterTest : public QObject
{
    Q_OBJECT

private slots:
    void scales_data();
    void scales();
    void hasATurnOnceInAnInterval();
};

void ProgressMeterTest::scales_data()
{
    QTest::addColumn<qint64>("done");
    QTest::addColumn<qint64>("total");
    QTest::addColumn<int>("scaledDone");
    QTest::addColumn<int>("scaledTotal");

    QTest::newRow("nothing") << 0LL << 0LL << 0 << 0;
    QTest::newRow("small") << 5LL << 10LL << 5 << 10;
    QTest::newRow("just fits") << 1LL << largestInt << 1 << int(largestInt);
    QTest::newRow("just doesn't") << 3LL << largestInt + 1 << 1 << int(gib);
    QTest::newRow("3 GiB") << gib << 3 * gib << int(gib / 2) << int(3 * gib / 2);
    QTest::newRow("3 GiB done") << 3 * gib << 3 * gib << int(3 * gib / 2) << int(3 * gib / 2);
    QTest::newRow("1 TiB") << 512 * gib << 1024 * gib << int(gib / 2) << int(gib);
    QTest::newRow("total unknown") << 3 * gib << 0LL << int(3 * gib / 2) << 0;
    QTest::newRow("more than announced") << 4 * gib << gib << int(gib) << int(gib / 4);
    QTest::newRow("largest") << 1LL << std::numeric_limits<qint64>::max() << 0 << int(largestInt);
}

void ProgressMeterTest::scales()
{
    QFETCH(qint64, done);
    QFETCH(qint64, total);
    const Progress progress = vx::scaledProgress(done, total);
    QTEST(progress.done, "scaledDone");
    QTEST(progress.total, "scaledTotal");
}

void ProgressMeterTest::hasATurnOnceInAnInterval()
{
    ProgressMeter meter;
    QElapsedTimer clock;
    clock.start();
    int due = 0;
    while (due < 5) {
        due += meter.takeTurn() ? 1 : 0;
    }
    QVERIFY(clock.elapsed() >= 4 * ProgressMeter::interval);
}

VX_TEST_MAIN(ProgressMeterTest)
#include "tst_ProgressMeter.moc"
