#include <QRegExp>
#include <QtTest>

#include <iostream>
#include <sstream>
#include <thread>
#include <vector>

#include "host/Core/Log.h"
#include "host/Core/MutexLocker.h"
#include "tests/support/TestMain.h"

using vx::Log;

namespace {

constexpr auto unusedLevel = Log::ELevel(7);

/** Sets @p stream for a level for the length of a scope. */
class StreamOf
{
public:
    StreamOf(Log::ELevel level, std::ostream* stream)
        : m_level(level)
        , m_before(Log::instance().getStream(level))
    {
        Log::instance().setStream(level, stream);
    }
    ~StreamOf() { Log::instance().setStream(m_level, m_before); }
    Q_DISABLE_COPY(StreamOf)

private:
    Log::ELevel m_level;
    std::ostream* m_before;
};

/** Writes a line of @p level in several pieces, as any caller of the log does. */
void writeLine(Log::ELevel level, const std::string& text)
{
    Log& log = Log::instance();
    if (std::ostream* const stream = log.getStream(level)) {
        const vx::MutexLocker locker(log.mutex(), true);
        log.pre(level);
        for (const char c : text) {
            *stream << c;
        }
        *stream << std::endl;
    }
}

QString prefix(Log::ELevel level)
{
    std::ostringstream stream;
    const StreamOf streamOf(level, &stream);
    Log::instance().pre(level);
    return QString::fromStdString(stream.str());
}

} // namespace

class LogTest : public QObject
{
    Q_OBJECT

private slots:
    void isCalmByDefault();
    void isOne();
    void keepsTheLevelsApart();
    void ignoresLevelsOutOfRange();
    void keepsTheThreshold();
    void numbersTheLevels();
    void prefixesWithLocalTimeAndLevel();
    void prefixIgnoresTheStreamsFormat();
    void prefixWithoutStreamWritesNothing();
    void linesOfThreadsDoNotMix();
    void streamsMayChangeWhileOthersAsk();
    void setStreamWaitsForTheLineInHand();
};

void LogTest::isCalmByDefault()
{
    QCOMPARE(Log::instance().logLevel(), 3);
    for (const Log::ELevel level : {Log::Info, Log::ParserMessage, Log::Failure}) {
        QCOMPARE(Log::instance().getStream(level), &std::clog);
    }
    QVERIFY(Log::instance().getStream(unusedLevel) == nullptr);
}

void LogTest::isOne()
{
    QCOMPARE(&Log::instance(), &Log::instance());
    QCOMPARE(&Log::instance().mutex(), &Log::instance().mutex());
}

void LogTest::keepsTheLevelsApart()
{
    std::ostringstream info;
    std::ostringstream failure;
    const StreamOf infoStream(Log::Info, &info);
    const StreamOf failureStream(Log::Failure, &failure);
    const StreamOf noStream(Log::ParserMessage, nullptr);
    QCOMPARE(Log::instance().getStream(Log::Info), &info);
    QCOMPARE(Log::instance().getStream(Log::Failure), &failure);
    QVERIFY(Log::instance().getStream(Log::ParserMessage) == nullptr);
}

void LogTest::ignoresLevelsOutOfRange()
{
    for (const int number : {-1, Log::highestLevel + 1, 1000000}) {
        const auto level = Log::ELevel(number);
        Log::instance().setStream(level, &std::cout);
        QVERIFY(Log::instance().getStream(level) == nullptr);
        Log::instance().pre(level);
    }
    const StreamOf lowest(Log::ELevel(0), &std::cout);
    const StreamOf highest(Log::ELevel(Log::highestLevel), &std::cout);
    QCOMPARE(Log::instance().getStream(Log::ELevel(0)), &std::cout);
    QCOMPARE(Log::instance().getStream(Log::ELevel(Log::highestLevel)), &std::cout);
}

void LogTest::keepsTheThreshold()
{
    const int before = Log::instance().logLevel();
    Log::instance().setLogLevel(1);
    QCOMPARE(Log::instance().logLevel(), 1);
    Log::instance().setLogLevel(before);
    QCOMPARE(Log::instance().logLevel(), before);
}

void LogTest::numbersTheLevels()
{
    QCOMPARE(int(Log::Info), 1);
    QCOMPARE(int(Log::ParserMessage), 2);
    QCOMPARE(int(Log::Failure), 3);
}

void LogTest::prefixesWithLocalTimeAndLevel()
{
    const QDateTime before = QDateTime::currentDateTime();
    const QString text = prefix(Log::ParserMessage);
    const QDateTime after = QDateTime::currentDateTime();
    QVERIFY2(text.endsWith(QLatin1String(" [2] ")), qPrintable(text));
    const QDateTime time =
        QDateTime::fromString(text.chopped(5), QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"));
    QVERIFY2(time.isValid(), qPrintable(text));
    QVERIFY(before <= time);
    QVERIFY(time <= after);
}

void LogTest::prefixIgnoresTheStreamsFormat()
{
    std::ostringstream stream;
    stream << std::hex << std::showbase << std::left << std::showpos;
    stream.fill('*');
    const StreamOf streamOf(Log::ELevel(12), &stream);
    Log::instance().pre(Log::ELevel(12));
    const QString text = QString::fromStdString(stream.str());
    const QRegExp form(
        QStringLiteral("\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} \\[12\\] "));
    QVERIFY2(form.exactMatch(text), qPrintable(text));
    QCOMPARE(stream.fill(), '*');
}

void LogTest::prefixWithoutStreamWritesNothing()
{
    Log::instance().pre(unusedLevel);
    QVERIFY(Log::instance().getStream(unusedLevel) == nullptr);
}

void LogTest::linesOfThreadsDoNotMix()
{
    constexpr int threadCount = 4;
    constexpr int lineCount = 500;
    std::ostringstream stream;
    const StreamOf streamOf(unusedLevel, &stream);
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([i] {
            for (int line = 0; line < lineCount; ++line) {
                writeLine(unusedLevel, std::string(40, char('a' + i)));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const QStringList lines = QString::fromStdString(stream.str()).split('\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), threadCount * lineCount);
    const QRegExp whole(QStringLiteral("[-\\d:. ]+\\[7\\] (a{40}|b{40}|c{40}|d{40})"));
    for (const QString& line : lines) {
        QVERIFY2(whole.exactMatch(line), qPrintable(line));
    }
}

void LogTest::streamsMayChangeWhileOthersAsk()
{
    Log& log = Log::instance();
    const int levelBefore = log.logLevel();
    std::ostringstream first;
    std::ostringstream second;
    std::atomic<bool> done{false};
    int strange = 0;
    std::thread asking([&] {
        while (!done) {
            const std::ostream* const seen = log.getStream(unusedLevel);
            const bool known = seen == nullptr || seen == &first || seen == &second;
            strange += int(!known) + int(log.logLevel() < 1 || log.logLevel() > 3);
        }
    });
    for (int i = 0; i < 3000; ++i) {
        log.setStream(unusedLevel, i % 2 == 0 ? &first : &second);
        log.setLogLevel(1 + i % 3);
    }
    done = true;
    asking.join();
    log.setStream(unusedLevel, nullptr);
    log.setLogLevel(levelBefore);
    QCOMPARE(strange, 0);
}

void LogTest::setStreamWaitsForTheLineInHand()
{
    std::ostringstream stream;
    std::atomic<bool> replaced{false};
    Log::instance().setStream(unusedLevel, &stream);
    std::thread replacing;
    {
        const vx::MutexLocker locker(Log::instance().mutex(), true);
        replacing = std::thread([&] {
            Log::instance().setStream(unusedLevel, nullptr);
            replaced = true;
        });
        for (int i = 0; i < 100 && !replaced; ++i) {
            std::this_thread::yield();
        }
        QVERIFY(!replaced);
        QCOMPARE(Log::instance().getStream(unusedLevel), &stream);
    }
    replacing.join();
    QVERIFY(replaced);
    QVERIFY(Log::instance().getStream(unusedLevel) == nullptr);
}

VX_TEST_MAIN(LogTest)
#include "tst_Log.moc"
