#include "tools/update-catalogue/explain/CheckLog.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include "tools/update-catalogue/Command.h"

namespace vx {

namespace {

constexpr qint64 longestLine = 64LL * 1024; // bytes; the rest of a longer one is passed over

CommandFailure unreadable(const QString& path, const QString& reason)
{
    return CommandFailure(ExitUnreadable, QString("%1: %2").arg(path, reason));
}

/** A line of the client, taken apart. */
struct ClientLine
{
    int number = 0;
    QString time;
    QString operation;
    QString text;
};

/** Follows the lines of one log, one after the other. */
class CheckFollower
{
public:
    explicit CheckFollower(CheckLog& log)
        : m_log(log)
    {}

    void follow(const ClientLine& line)
    {
        const bool isFirst = !m_hasBegun;
        m_hasBegun = true;
        if (line.operation == "performUpdateCheck") {
            noteRequest(line);
            return;
        }
        if (line.operation == "queryLastUpdate" && !isFirst) {
            noteSchedule(line);
        } else if (line.operation == "evaluateServerResponse") {
            noteEvaluation(line);
        } else if (line.operation == "parseServerResponse") {
            noteReading(line);
        } else if (line.operation == "requestTimeout") {
            noteFailure(line);
        }
        m_isJustAsked = false;
    }

    void noteParserError()
    {
        if (isRunning()) {
            m_log.last.reasons.append("the answer is no well-formed XML");
        }
    }

private:
    bool isRunning() const
    {
        return m_log.checks > 0 && m_log.last.outcome == LoggedCheck::Unfinished;
    }

    void begin(const ClientLine& line)
    {
        ++m_log.checks;
        m_log.last = LoggedCheck();
        m_log.last.line = line.number;
        m_log.last.time = line.time;
        m_isRedirected = false;
        m_isGivenUp = false;
    }

    /** The check that is under way. Where its beginning is not in the log, this line begins it. */
    LoggedCheck& current(const ClientLine& line)
    {
        if (!isRunning()) {
            begin(line);
        }
        return m_log.last;
    }

    void noteRequest(const ClientLine& line)
    {
        m_log.tellsCourse = true;
        if (!isRunning() || !m_isRedirected) {
            begin(line);
        }
        m_isRedirected = false;
        m_isJustAsked = true;
        m_log.last.addresses.append(line.text);
    }

    /** The line stands behind that of the request, or alone if no request was made. */
    void noteSchedule(const ClientLine& line)
    {
        m_log.tellsCourse = true;
        if (m_isJustAsked) {
            m_log.last.schedule = line.text.section(' ', 0, 0);
        } else {
            m_log.heldBack = line.time.isEmpty() ? QString("line %1").arg(line.number) : line.time;
        }
    }

    void noteEvaluation(const ClientLine& line)
    {
        if (line.text.startsWith("redirect url ")) {
            m_isRedirected = isRunning();
        } else if (line.text.startsWith("product is up-to-date")) {
            m_log.tellsCourse = true;
            current(line).outcome = LoggedCheck::UpToDate;
        } else if (line.text == "update available") {
            m_log.tellsCourse = true;
            current(line).outcome = LoggedCheck::Available;
        } else if (!line.text.startsWith("reply->errorString(): ")) {
            // That one follows a failure, the reason for which has been given in a better way.
            current(line).reasons.append(line.text);
        }
    }

    void noteReading(const ClientLine& line)
    {
        static const QString refusal = "catalogue refused: ";
        if (line.text.startsWith(refusal)) {
            current(line).reasons.append(line.text.mid(refusal.size()));
            m_log.last.outcome = LoggedCheck::Refused;
        } else if (line.text == "no update available") {
            current(line).outcome = LoggedCheck::NoPackage;
        } else {
            current(line).reasons.append(line.text);
        }
    }

    /** Every failed request is called a timeout; a real one has its reason from here, too. */
    void noteFailure(const ClientLine& line)
    {
        LoggedCheck& check = current(line);
        if (line.text != "Timeout occurred requesting update server!") {
            check.reasons.append(line.text);
            m_isGivenUp = true;
        } else {
            check.outcome = m_isGivenUp || check.reasons.isEmpty() ? LoggedCheck::TimedOut
                                                                   : LoggedCheck::Failed;
        }
    }

    CheckLog& m_log;
    bool m_hasBegun = false;
    bool m_isJustAsked = false;
    bool m_isRedirected = false;
    bool m_isGivenUp = false;
};

/** Reads a file line by line, however long it and they are. */
class LineReader
{
public:
    explicit LineReader(QFile& file)
        : m_file(file)
    {}

    /** The next line without its end; false after the last one. */
    bool next(QString& line)
    {
        const QByteArray bytes = m_file.readLine(longestLine);
        QByteArray rest = bytes;
        while (!rest.isEmpty() && !rest.endsWith('\n')) {
            rest = m_file.readLine(longestLine);
        }
        // The log writes Latin-1.
        line = QString::fromLatin1(bytes);
        while (line.endsWith('\n') || line.endsWith('\r')) {
            line.chop(1);
        }
        return !bytes.isEmpty();
    }

private:
    QFile& m_file;
};

QString timeIn(const QString& prefix)
{
    static const QRegularExpression time(R"(\d{4}-\d\d-\d\d[ T]\d\d:\d\d:\d\d([.,]\d{1,9})?)");
    return time.match(prefix).captured();
}

void openLog(QFile& file)
{
    const QFileInfo info(file);
    if (info.exists() && !info.isFile()) {
        throw unreadable(file.fileName(), "is no regular file");
    }
    if (!file.open(QIODevice::ReadOnly)) {
        throw unreadable(file.fileName(), file.errorString());
    }
}

} // namespace

CheckLog readCheckLog(const QString& path)
{
    static const QRegularExpression clientLine(R"(SoftwareUpdateClient::(\w+)\(\) -> )");
    QFile file(path);
    openLog(file);
    CheckLog log;
    log.path = path;
    CheckFollower follower(log);
    bool isOurs = false;
    LineReader reader(file);
    QString text;
    for (int number = 1; reader.next(text); ++number) {
        const QRegularExpressionMatch match = clientLine.match(text);
        if (match.hasMatch()) {
            follower.follow({number, timeIn(text.left(match.capturedStart())), match.captured(1),
                             text.mid(match.capturedEnd())});
        } else if (text.endsWith("XML parser error")) {
            follower.noteParserError();
        }
        isOurs =
            isOurs || text.contains("SoftwareUpdateClient::") || text.contains("DownloadManager::");
    }
    if (file.error() != QFile::NoError) {
        throw unreadable(path, file.errorString());
    }
    if (!isOurs) {
        throw unreadable(path, "holds no line of the update client. By default the log is told of "
                               "failures alone; Log::setLogLevel(1) lets it tell of every check");
    }
    return log;
}

} // namespace vx
