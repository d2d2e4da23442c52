#include <QRegExp>
#include <QtTest>

#include <atomic>
#include <sstream>
#include <thread>
#include <vector>

#include "base/LogLine.h"
#include "host/Core/Log.h"
#include "host/Core/MutexLocker.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestMain.h"

using vx::Log;
using vx::test::LogCapture;

namespace {

/** Counts how often it is flushed and whether someone else could have taken the log's mutex then.
 */
class WatchfulBuffer : public std::stringbuf
{
public:
    int flushes = 0;
    bool mutexWasHeld = true;

protected:
    int sync() override
    {
        ++flushes;
        std::thread([this] {
            if (Log::instance().mutex().tryLock()) {
                Log::instance().mutex().unlock();
                mutexWasHeld = false;
            }
        }).join();
        return std::stringbuf::sync();
    }
};

void setThreshold(int level)
{
    Log::instance().setLogLevel(level);
}

} // namespace

class LogLineTest : public QObject
{
    Q_OBJECT

private slots:
    void writesPrefixTextAndEnd();
    void writesOnlyFromTheThresholdOn_data();
    void writesOnlyFromTheThresholdOn();
    void writesNothingWithoutStream();
    void writesLatin1();
    void restoresTheFormatFlags();
    void flushesUnderTheMutex();
    void linesOfThreadsDoNotMix();
    void streamMayBeReplacedWhileOthersWrite();
};

void LogLineTest::writesPrefixTextAndEnd()
{
    std::ostringstream stream;
    const LogCapture capture;
    Log::instance().setStream(Log::Failure, &stream);
    vx::logLine(3, QStringLiteral("Class::operation() -> a text with %1, 0x and {}"));
    vx::logLine(3, QString());
    const QStringList lines = QString::fromStdString(stream.str()).split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 3);
    const QRegExp whole(
        QStringLiteral("[-\\d:. ]+\\[3\\] Class::operation\\(\\) -> a text with %1, "
                       "0x and \\{\\}"));
    QVERIFY2(whole.exactMatch(lines.at(0)), qPrintable(lines.at(0)));
    QVERIFY2(lines.at(1).endsWith(QLatin1String(" [3] ")), qPrintable(lines.at(1)));
    QCOMPARE(lines.at(2), QString());
}

void LogLineTest::writesOnlyFromTheThresholdOn_data()
{
    QTest::addColumn<int>("threshold");
    QTest::addColumn<QList<int>>("written");
    QTest::newRow("0") << 0 << QList<int>{1, 2, 3};
    QTest::newRow("1") << 1 << QList<int>{1, 2, 3};
    QTest::newRow("2") << 2 << QList<int>{2, 3};
    QTest::newRow("3") << 3 << QList<int>{3};
    QTest::newRow("4") << 4 << QList<int>{};
}

void LogLineTest::writesOnlyFromTheThresholdOn()
{
    QFETCH(int, threshold);
    QFETCH(QList<int>, written);
    const LogCapture capture;
    setThreshold(threshold);
    for (const int level : {1, 2, 3}) {
        vx::logLine(level, QStringLiteral("text"));
        QCOMPARE(capture.count(level, QStringLiteral("text")), int(written.contains(level)));
    }
}

void LogLineTest::writesNothingWithoutStream()
{
    const LogCapture capture;
    Log::instance().setStream(Log::ParserMessage, nullptr);
    vx::logLine(2, QStringLiteral("unheard"));
    vx::logLine(-5, QStringLiteral("unheard"));
    vx::logLine(1000, QStringLiteral("unheard"));
    for (const int level : {1, 2, 3}) {
        QVERIFY(capture.lines(level).isEmpty());
    }
}

void LogLineTest::writesLatin1()
{
    std::ostringstream stream;
    const LogCapture capture;
    Log::instance().setStream(Log::Info, &stream);
    vx::logLine(1, QString::fromUtf8("Gr\xc3\xb6\xc3\x9f"
                                     "e \xe2\x82\xac"));
    QVERIFY(QByteArray::fromStdString(stream.str())
                .endsWith("Gr\xf6\xdf"
                          "e ?\n"));
}

void LogLineTest::restoresTheFormatFlags()
{
    std::ostringstream stream;
    const LogCapture capture;
    Log::instance().setStream(Log::Info, &stream);
    stream << std::hex << std::showbase << std::left;
    stream.width(60);
    const std::ios_base::fmtflags before = stream.flags();
    vx::logLine(1, QStringLiteral("text 10"));
    QVERIFY(stream.flags() == before);
    QVERIFY(stream.str().find("[1] text 10\n") != std::string::npos);
}

void LogLineTest::flushesUnderTheMutex()
{
    WatchfulBuffer buffer;
    std::ostream stream(&buffer);
    const LogCapture capture;
    Log::instance().setStream(Log::Info, &stream);
    vx::logLine(1, QStringLiteral("one"));
    vx::logLine(1, QStringLiteral("two"));
    QCOMPARE(buffer.flushes, 2);
    QVERIFY(buffer.mutexWasHeld);
    QVERIFY(Log::instance().mutex().tryLock());
    Log::instance().mutex().unlock();
}

void LogLineTest::linesOfThreadsDoNotMix()
{
    const LogCapture capture;
    std::vector<std::thread> threads;
    for (const char letter : {'a', 'b', 'c', 'd'}) {
        threads.emplace_back([letter] {
            for (int i = 0; i < 300; ++i) {
                vx::logLine(1, QString(50, QLatin1Char(letter)));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    QCOMPARE(capture.lines(1).size(), 1200);
    const QRegExp whole(QStringLiteral("[-\\d:. ]+\\[1\\] (a{50}|b{50}|c{50}|d{50})"));
    for (const QString& line : capture.lines(1)) {
        QVERIFY2(whole.exactMatch(line), qPrintable(line));
    }
}

void LogLineTest::streamMayBeReplacedWhileOthersWrite()
{
    const LogCapture capture;
    std::atomic<bool> done{false};
    std::thread writing([&done] {
        while (!done) {
            vx::logLine(1, QStringLiteral("text"));
        }
    });
    for (int i = 0; i < 500; ++i) {
        std::ostringstream shortLived;
        Log::instance().setStream(Log::Info, &shortLived);
        std::this_thread::yield();
        Log::instance().setStream(Log::Info, nullptr);
        const std::string text = shortLived.str();
        QVERIFY(text.empty() || text.back() == '\n');
    }
    done = true;
    writing.join();
}

VX_TEST_MAIN(LogLineTest)
#include "tst_LogLine.moc"
