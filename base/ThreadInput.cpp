#include "base/ThreadInput.h"

#include <QByteArray>
#include <QDir>
#include <QFile>

namespace vx {

namespace {

// Linux has such a folder for each thread; elsewhere there is none.
const char taskFolder[] = "/proc/self/task";

constexpr int longestName = 15;
constexpr int longestText = 1024; // bytes

/** A small file that the system makes up while it is read. */
QByteArray textOf(int thread, const char* name)
{
    QFile file(QStringLiteral("%1/%2/%3")
                   .arg(QLatin1String(taskFolder))
                   .arg(thread)
                   .arg(QLatin1String(name)));
    const bool isOpen = file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    return isOpen ? file.read(longestText) : QByteArray();
}

/** The number of the line of @p text that begins with @p label; below 0 if there is none. */
qint64 numberOf(const QByteArray& text, const QByteArray& label)
{
    for (const QByteArray& line : text.split('\n')) {
        if (line.startsWith(label)) {
            bool isNumber = false;
            const qint64 number = line.mid(label.size()).trimmed().toLongLong(&isNumber);
            return isNumber ? number : -1;
        }
    }
    return -1;
}

} // namespace

QList<int> threadsOfProcess()
{
    QList<int> threads;
    for (const QString& name : QDir(QLatin1String(taskFolder)).entryList(QDir::Dirs)) {
        const int thread = name.toInt();
        if (thread > 0) {
            threads.append(thread);
        }
    }
    return threads;
}

QList<int> threadsOfName(const QList<int>& threads, const char* name)
{
    const QByteArray known = QByteArray(name).left(longestName);
    QList<int> found;
    for (const int thread : threads) {
        if (textOf(thread, "comm").trimmed() == known) {
            found.append(thread);
        }
    }
    return found;
}

std::optional<ThreadInput> inputOf(int thread)
{
    const QByteArray text = textOf(thread, "io");
    const ThreadInput input{numberOf(text, "rchar:"), numberOf(text, "syscr:")};
    return input.bytes >= 0 && input.calls >= 0 ? std::make_optional(input) : std::nullopt;
}

} // namespace vx
