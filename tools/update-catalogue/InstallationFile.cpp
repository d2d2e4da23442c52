#include <QFile>
#include <QTextStream>

#include "package/ReleaseNumber.h"
#include "tools/update-catalogue/Command.h"
#include "tools/update-catalogue/Installation.h"

namespace vx {

namespace {

using Columns = QMap<QString, int>;

CommandFailure unreadable(const QString& path, int line, const QString& reason)
{
    return CommandFailure(ExitUnreadable, QString("%1:%2: %3").arg(path).arg(line).arg(reason));
}

/** Takes records apart one after the other; a quoted cell may hold commas, quotes and line ends. */
class RecordReader
{
public:
    explicit RecordReader(const QString& text)
        : m_text(text)
    {}

    bool atEnd() const { return m_at >= m_text.size(); }
    int line() const { return m_line; }

    QStringList next()
    {
        QStringList cells;
        bool more = true;
        while (more) {
            cells.append(m_at < m_text.size() && m_text.at(m_at) == '"' ? quotedCell()
                                                                        : plainCell());
            more = m_at < m_text.size() && m_text.at(m_at) == ',';
            ++m_at;
        }
        ++m_line;
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
            }
            cell.append(character);
        }
        plainCell(); // what follows the closing quote is only blanks
        return cell;
    }

    QString m_text;
    int m_at = 0;
    int m_line = 1;
};

QString readText(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw CommandFailure(ExitUnreadable, QString("%1: %2").arg(path, file.errorString()));
    }
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    return stream.readAll().remove('\r');
}

Columns readHeader(const QString& path, const QStringList& names)
{
    static const QStringList known{"name", "version", "platforms", "cameras",
                                   "beta", "types",   "count",     "label"};
    Columns columns;
    for (int i = 0; i < names.size(); ++i) {
        if (!known.contains(names.at(i).toLower())) {
            throw unreadable(path, 1,
                             QString("no column is called \"%1\"; there are %2")
                                 .arg(names.at(i), known.join(", ")));
        }
        columns.insert(names.at(i).toLower(), i);
    }
    for (const QString& needed : {QString("name"), QString("version")}) {
        if (!columns.contains(needed)) {
            throw unreadable(path, 1, QString("the column \"%1\" is missing").arg(needed));
        }
    }
    return columns;
}

bool flagFrom(const QString& text)
{
    return QStringList{"1", "yes", "true", "on"}.contains(text.toLower());
}

int countFrom(const QString& text)
{
    bool isNumber = false;
    const int count = text.toInt(&isNumber);
    if (!isNumber || count < 0) {
        throw CommandFailure(ExitUnreadable, QString("\"%1\" is no count").arg(text));
    }
    return count;
}

Installation installationFromCells(const Columns& columns, const QStringList& cells)
{
    const auto cell = [&](const char* name) { return cells.value(columns.value(name, -1)); };
    Installation installation;
    installation.criteria = defaultCriteria();
    OfferCriteria& criteria = installation.criteria;
    criteria.applicationName = cell("name");
    criteria.versionNumber = releaseNumber(cell("version"));
    if (!cell("platforms").isEmpty()) {
        criteria.supportedPlatforms = splitWordList(cell("platforms"));
    }
    if (!cell("types").isEmpty()) {
        criteria.supportedPackageTypes = splitWordList(cell("types"));
    }
    for (const QString& camera : splitWordList(cell("cameras"))) {
        criteria.currentCameraVersions.append(cameraFromText(camera, ExitUnreadable));
    }
    criteria.checkForBeta = flagFrom(cell("beta"));
    installation.count = cell("count").isEmpty() ? 1 : countFrom(cell("count"));
    const QString label = cell("label");
    installation.label = label.isEmpty() ? cell("name") + ' ' + cell("version") : label;
    return installation;
}

} // namespace

InstallationList readInstallations(const QString& path)
{
    RecordReader reader(readText(path));
    const Columns columns = readHeader(path, reader.next());
    InstallationList installations;
    while (!reader.atEnd()) {
        const int line = reader.line();
        const QStringList cells = reader.next();
        if (cells == QStringList{QString()}) {
            continue;
        }
        if (cells.size() != columns.size()) {
            throw unreadable(path, line,
                             QString("%1 cells, and the header has %2 columns")
                                 .arg(cells.size())
                                 .arg(columns.size()));
        }
        try {
            installations.append(installationFromCells(columns, cells));
        } catch (const CommandFailure& failure) {
            throw unreadable(path, line, failure.message());
        }
    }
    return installations;
}

} // namespace vx
