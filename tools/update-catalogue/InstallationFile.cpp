#include <QFile>
#include <QTextStream>

#include "host/CoreQt/QtVersions.h"
#include "tools/update-catalogue/Command.h"
#include "tools/update-catalogue/Installation.h"
#include "tools/update-catalogue/ReadableVersion.h"

namespace vx {

namespace {

using Columns = QMap<QString, int>;

/** A cell, and where it begins; both count from 1. */
struct Cell
{
    QString text;
    int line = 1;
    int column = 1;
};

using Record = QList<Cell>;

/** Tells where in the list something is wrong. */
CommandFailure failure(ExitCode code, const QString& path, const Cell& cell, const QString& reason)
{
    return CommandFailure(
        code, QString("%1:%2:%3: %4").arg(path).arg(cell.line).arg(cell.column).arg(reason));
}

CommandFailure unreadable(const QString& path, const Cell& cell, const QString& reason)
{
    return failure(ExitUnreadable, path, cell, reason);
}

CommandFailure notUnderstood(const QString& path, const Cell& cell, const QString& reason)
{
    return failure(ExitUsage, path, cell, reason);
}

/** Takes records apart one after the other; a quoted cell may hold commas, quotes and line ends. */
class RecordReader
{
public:
    explicit RecordReader(const QString& text)
        : m_text(text)
    {}

    bool atEnd() const { return m_at >= m_text.size(); }
    Record next()
    {
        Record cells;
        bool more = true;
        while (more) {
            Cell cell{QString(), m_line, m_at - m_lineStart + 1};
            const bool quoted = m_at < m_text.size() && m_text.at(m_at) == '"';
            cell.text = quoted ? quotedCell() : plainCell();
            cells.append(cell);
            more = m_at < m_text.size() && m_text.at(m_at) == ',';
            ++m_at;
        }
        ++m_line;
        m_lineStart = m_at;
        return cells;
    }

private:
    QString plainCell()
    {
        const int start = m_at;
        while (m_at < m_text.size() && m_text.at(m_at) != ',' && m_text.at(m_at) != '\n') {
            ++m_at;
        }
        return m_text.mid(start, m_at - start).trimmed();
    }

    QString quotedCell()
    {
        QString cell;
        for (++m_at; m_at < m_text.size(); ++m_at) {
            const QChar character = m_text.at(m_at);
            if (character == '"' && m_text.mid(m_at + 1, 1) == "\"") {
                ++m_at;
            } else if (character == '"') {
                ++m_at;
                break;
            } else if (character == '\n') {
                ++m_line;
                m_lineStart = m_at + 1;
            }
            cell.append(character);
        }
        plainCell(); // what follows the closing quote is only blanks
        return cell;
    }

    QString m_text;
    int m_at = 0;
    int m_line = 1;
    int m_lineStart = 0;
};

QString readText(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw CommandFailure(ExitUnreadable, QString("%1: %2").arg(path, file.errorString()));
    }
    QTextStream stream(&file);
    useUtf8(stream);
    return stream.readAll().remove('\r');
}

void checkName(const QString& path, const Cell& cell, const Columns& columns)
{
    static const QStringList known{"name", "version", "platforms", "cameras",
                                   "beta", "types",   "count",     "label"};
    const QString name = cell.text.toLower();
    if (columns.contains(name)) {
        throw notUnderstood(path, cell,
                            QString("the column \"%1\" stands there twice").arg(cell.text));
    }
    if (known.contains(name)) {
        return;
    }
    if (known.contains(name.section(';', 0, 0))) {
        throw notUnderstood(path, cell,
                            "the columns are separated by semicolons: save the list with commas "
                            "between them");
    }
    throw unreadable(
        path, cell,
        QString("no column is called \"%1\"; there are %2").arg(cell.text, known.join(", ")));
}

Columns readHeader(const QString& path, const Record& names)
{
    Columns columns;
    for (int i = 0; i < names.size(); ++i) {
        checkName(path, names.at(i), columns);
        columns.insert(names.at(i).text.toLower(), i);
    }
    for (const QString& needed : {QString("name"), QString("version")}) {
        if (!columns.contains(needed)) {
            throw unreadable(path, Cell(), QString("the column \"%1\" is missing").arg(needed));
        }
    }
    return columns;
}

/** Makes an installation of a record. */
class RecordMeaning
{
public:
    RecordMeaning(const QString& path, const Columns& columns, const Record& record)
        : m_path(path)
        , m_columns(columns)
        , m_record(record)
    {}

    Installation installation() const
    {
        Installation installation;
        installation.criteria = defaultCriteria();
        OfferCriteria& criteria = installation.criteria;
        criteria.applicationName = text("name");
        criteria.versionNumber = version(cell("version"), text("version"));
        if (!text("platforms").isEmpty()) {
            criteria.supportedPlatforms = splitWordList(text("platforms"));
        }
        if (!text("types").isEmpty()) {
            criteria.supportedPackageTypes = splitWordList(text("types"));
        }
        for (const QString& word : splitWordList(text("cameras"))) {
            criteria.currentCameraVersions.append(camera(word));
        }
        criteria.checkForBeta = flag(cell("beta"));
        installation.count = text("count").isEmpty() ? 1 : count(cell("count"));
        const QString label = text("label");
        installation.label = label.isEmpty() ? text("name") + ' ' + text("version") : label;
        return installation;
    }

private:
    Cell cell(const char* name) const { return m_record.value(m_columns.value(name, -1)); }
    QString text(const char* name) const { return cell(name).text; }

    VersionNumber version(const Cell& cell, const QString& text) const
    {
        if (!isReadableVersion(text)) {
            throw notUnderstood(m_path, cell, QString("\"%1\" is no version").arg(text));
        }
        return releaseNumber(text);
    }

    QPair<QString, VersionNumber> camera(const QString& word) const
    {
        const int at = word.indexOf('=');
        if (at <= 0 || at == word.size() - 1) {
            throw unreadable(m_path, cell("cameras"),
                             QString("\"%1\" is no camera: write NAME=VERSION").arg(word));
        }
        return {word.left(at), version(cell("cameras"), word.mid(at + 1))};
    }

    bool flag(const Cell& cell) const
    {
        static const QStringList yes{"1", "yes", "true", "on"};
        static const QStringList no{"", "0", "no", "false", "off"};
        const QString word = cell.text.toLower();
        if (!yes.contains(word) && !no.contains(word)) {
            throw notUnderstood(
                m_path, cell,
                QString("\"%1\" says neither yes nor no: write one of the two").arg(cell.text));
        }
        return yes.contains(word);
    }

    int count(const Cell& cell) const
    {
        bool isNumber = false;
        const int count = cell.text.toInt(&isNumber);
        if (!isNumber || count < 0) {
            throw unreadable(m_path, cell, QString("\"%1\" is no count").arg(cell.text));
        }
        return count;
    }

    const QString& m_path;
    const Columns& m_columns;
    const Record& m_record;
};

bool isBlank(const Record& record)
{
    return record.size() == 1 && record.first().text.isEmpty();
}

} // namespace

InstallationList readInstallations(const QString& path)
{
    RecordReader reader(readText(path));
    const Columns columns = readHeader(path, reader.next());
    InstallationList installations;
    while (!reader.atEnd()) {
        const Record record = reader.next();
        if (isBlank(record)) {
            continue;
        }
        if (record.size() != columns.size()) {
            throw unreadable(path, record.first(),
                             QString("%1 cells, and the header has %2 columns")
                                 .arg(record.size())
                                 .arg(columns.size()));
        }
        installations.append(RecordMeaning(path, columns, record).installation());
    }
    if (installations.isEmpty()) {
        throw notUnderstood(path, Cell{QString(), 2, 1},
                            "there is no installation below the line of columns");
    }
    return installations;
}

} // namespace vx
