#include "base/HeaderWatch.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>

#include <algorithm>

#include "base/HeaderLimit.h"

namespace vx {

namespace {

/** What is read without a sign of an answer, where a header can't be told from other bytes. */
constexpr qint64 largestUnanswered = 8LL * 1024 * 1024;

// Milliseconds.
constexpr int pauseOfCount = 100;
constexpr int pauseOfSearch = 10;

/** A connection that was opened meanwhile is found by another search. */
constexpr int looksOfSearch = 50;
constexpr int mostLooks = 4 * looksOfSearch;

/** As the network stack calls the thread of each manager. */
constexpr char threadName[] = "QNetworkAccessManager thread";

constexpr char mark[] = "vx_headerTooLong";

qint64 headerSize(const QNetworkReply& reply)
{
    constexpr int separators = 4; // ": " and the line's end
    qint64 size = 0;
    for (const QNetworkReply::RawHeaderPair& field : reply.rawHeaderPairs()) {
        size += field.first.size() + field.second.size() + separators;
    }
    return size;
}

bool hasHeader(const QNetworkReply& reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid();
}

QList<QPointer<QNetworkReply>> runningReplies(const QNetworkAccessManager& manager)
{
    QList<QPointer<QNetworkReply>> running;
    for (QNetworkReply* const reply :
         manager.findChildren<QNetworkReply*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (reply->isRunning()) {
            running.append(reply);
        }
    }
    return running;
}

void endReply(QNetworkReply* reply)
{
    reply->setProperty(mark, true);
    reply->abort();
}

} // namespace

QNetworkReply* getWithHeaderLimit(QNetworkAccessManager& manager, const QNetworkRequest& request)
{
    return HeaderWatch::of(manager)->get(request);
}

bool hasTooLongHeader(const QNetworkReply& reply)
{
    return reply.property(mark).toBool();
}

HeaderWatch* HeaderWatch::of(QNetworkAccessManager& manager)
{
    auto* const known = manager.findChild<HeaderWatch*>(QString(), Qt::FindDirectChildrenOnly);
    return known != nullptr ? known : new HeaderWatch(&manager);
}

HeaderWatch::HeaderWatch(QNetworkAccessManager* manager)
    : QObject(manager)
    , m_manager(manager)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, SIGNAL(timeout()), this, SLOT(look()));
}

QNetworkReply* HeaderWatch::get(const QNetworkRequest& request)
{
    // The first request begins the thread, before it returns.
    const bool isFirst = m_threads.isEmpty();
    const QList<int> before = isFirst ? threadsOfProcess() : QList<int>();
    QNetworkReply* const reply = m_manager->get(request);
    if (isFirst) {
        for (const int thread : threadsOfProcess()) {
            if (!before.contains(thread)) {
                m_threads.append(thread);
            }
        }
    } else {
        noteAnswer();
    }
    connect(reply, SIGNAL(metaDataChanged()), this, SLOT(noteHeader()));
    connect(reply, SIGNAL(readyRead()), this, SLOT(noteAnswer()));
    if (!m_threads.isEmpty()) {
        m_timer.start(pauseOfCount);
    }
    return reply;
}

void HeaderWatch::noteHeader()
{
    noteAnswer();
    auto* const reply = qobject_cast<QNetworkReply*>(sender());
    if (reply != nullptr && headerSize(*reply) > largestHeader) {
        endReply(reply);
    }
}

void HeaderWatch::noteAnswer()
{
    m_isAnswered = true;
}

void HeaderWatch::look()
{
    if (runningReplies(*m_manager).isEmpty()) {
        m_timer.stop();
        return;
    }
    const std::optional<ThreadInput> now = input();
    if (!now) {
        return;
    }
    if (m_isAnswered) {
        countFrom(*now);
    } else if (m_search != nullptr) {
        searchConnection();
    } else {
        count(*now);
    }
}

std::optional<ThreadInput> HeaderWatch::input()
{
    if (m_thread == 0) {
        // A thread names itself when it begins. If another manager has begun one at the same
        // moment, there is no telling which is which.
        const QList<int> named = threadsOfName(m_threads, threadName);
        m_thread = named.size() == 1 ? named.first() : 0;
    }
    return m_thread != 0 ? inputOf(m_thread) : std::nullopt;
}

void HeaderWatch::countFrom(const ThreadInput& input)
{
    m_before = input;
    m_lastCount = 0;
    m_isAnswered = false;
    m_search.reset();
    m_timer.start(pauseOfCount);
}

void HeaderWatch::count(const ThreadInput& input)
{
    const qint64 bytes = input.bytes - m_before.bytes;
    const qint64 calls = input.calls - m_before.calls;
    if (std::min(bytes, calls) > largestHeader) {
        m_search = std::make_unique<ConnectionSearch>(m_thread);
        m_looks = 0;
        m_timer.start(pauseOfSearch);
    } else if (m_lastCount > largestUnanswered && bytes > m_lastCount) {
        // What was there at the last look has been gone through, since more was read after it.
        judgeLater();
    }
    m_lastCount = bytes;
}

void HeaderWatch::searchConnection()
{
    m_search->look();
    ++m_looks;
    if (m_search->hasFound() || m_looks >= mostLooks) {
        judgeLater();
    } else if (m_looks % looksOfSearch == 0) {
        m_search = std::make_unique<ConnectionSearch>(m_thread);
    }
}

// An answer that came before is in the event queue and is told first.
void HeaderWatch::judgeLater()
{
    QMetaObject::invokeMethod(this, "judge", Qt::QueuedConnection);
}

void HeaderWatch::judge()
{
    if (m_isAnswered) {
        return;
    }
    m_timer.stop();
    const std::unique_ptr<ConnectionSearch> search = std::move(m_search);
    const bool hasFound = search != nullptr && search->hasFound();
    for (const QPointer<QNetworkReply>& reply : runningReplies(*m_manager)) {
        if (!reply) {
            continue;
        }
        if (hasFound && hasHeader(*reply)) {
            // The end of the connection ends a body, too, and the network stack minds two ends.
            reply->setProperty(mark, true);
        } else {
            endReply(reply);
        }
    }
    // Only now: the network stack would ask again if a connection ended without an answer.
    if (hasFound) {
        search->close();
    }
}

} // namespace vx
