#pragma once

#include <QList>

#include <optional>

namespace vx {

/** The threads of this process by their numbers in the system; empty where that doesn't tell. */
QList<int> threadsOfProcess();

/** Those of @p threads that run and that the system knows as @p name, cut to 15 characters. */
QList<int> threadsOfName(const QList<int>& threads, const char* name);

/** What one thread has read since it began, from files and connections alike. */
struct ThreadInput
{
    qint64 bytes = 0;
    /** Calls to the system that read. */
    qint64 calls = 0;
};

/** What @p thread of this process has read; nothing where the system doesn't tell. */
std::optional<ThreadInput> inputOf(int thread);

} // namespace vx
