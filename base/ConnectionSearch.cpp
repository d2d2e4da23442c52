#include "base/ConnectionSearch.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "base/ThreadInput.h"

#ifdef Q_OS_LINUX
#include <QDir>

#include <fcntl.h>
#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#endif

namespace vx {

namespace {

/** Enough to tell a connection that is read from one that isn't. */
constexpr qint64 enoughRead = 16LL * 1024; // bytes

/** A thread is counted a moment after its connection: by one call, of one byte where it matters. */
constexpr qint64 slack = 16;

#ifdef Q_OS_LINUX

constexpr int listening = 10; // TCP_LISTEN, of a header that doesn't go together with this one

std::vector<int> openDescriptors()
{
    std::vector<int> descriptors;
    const QDir folder(QStringLiteral("/proc/self/fd"));
    for (const QString& name : folder.entryList(QDir::AllEntries | QDir::System | QDir::Hidden)) {
        bool isNumber = false;
        const int descriptor = name.toInt(&isNumber);
        if (isNumber) {
            descriptors.push_back(descriptor);
        }
    }
    return descriptors;
}

/** What no other connection has, as long as this one is open; nothing if it is no connection. */
std::optional<quint64> identityOf(int descriptor)
{
    struct stat state = {};
    int protocol = 0;
    socklen_t size = sizeof protocol;
    const bool isTcp = fstat(descriptor, &state) == 0 && S_ISSOCK(state.st_mode) &&
                       getsockopt(descriptor, SOL_SOCKET, SO_PROTOCOL, &protocol, &size) == 0 &&
                       protocol == IPPROTO_TCP;
    return isTcp ? std::make_optional<quint64>(state.st_ino) : std::nullopt;
}

std::optional<qint64> receivedBy(int descriptor)
{
    tcp_info info = {};
    socklen_t size = sizeof info;
    constexpr size_t needed = offsetof(tcp_info, tcpi_bytes_received) + sizeof(quint64);
    const bool isKnown = getsockopt(descriptor, IPPROTO_TCP, TCP_INFO, &info, &size) == 0 &&
                         size >= needed && info.tcpi_state != listening;
    return isKnown ? std::make_optional(static_cast<qint64>(info.tcpi_bytes_received))
                   : std::nullopt;
}

std::optional<qint64> unreadOf(int descriptor)
{
    int unread = 0;
    return ioctl(descriptor, FIONREAD, &unread) == 0 ? std::make_optional<qint64>(unread)
                                                     : std::nullopt;
}

// Both counts move while they are asked for. In this order what has been taken out by now is no
// less, in the other order no more.
std::optional<qint64> leastTakenFrom(int descriptor)
{
    const std::optional<qint64> received = receivedBy(descriptor);
    const std::optional<qint64> unread = unreadOf(descriptor);
    return received && unread ? std::make_optional(*received - *unread) : std::nullopt;
}

std::optional<qint64> mostTakenFrom(int descriptor)
{
    const std::optional<qint64> unread = unreadOf(descriptor);
    const std::optional<qint64> received = receivedBy(descriptor);
    return received && unread ? std::make_optional(*received - *unread) : std::nullopt;
}

void shutAndEmpty(int descriptor)
{
    // The other side hears at once that it is over, and not when it next asks for room to send.
    const linger noFarewell = {1, 0};
    setsockopt(descriptor, SOL_SOCKET, SO_LINGER, &noFarewell, sizeof noFarewell);
    shutdown(descriptor, SHUT_RDWR);
    std::array<char, 65536> bytes = {};
    // More than the system holds for any connection.
    constexpr int mostReads = 2048;
    for (int i = 0; i < mostReads; ++i) {
        if (recv(descriptor, bytes.data(), bytes.size(), MSG_DONTWAIT) <= 0) {
            return;
        }
    }
}

#endif

} // namespace

#ifdef Q_OS_LINUX

ConnectionSearch::ConnectionSearch(int thread)
    : m_thread(thread)
{
    for (const int descriptor : openDescriptors()) {
        const std::optional<quint64> identity = identityOf(descriptor);
        const auto isSame = [identity](const Candidate& other) {
            return other.identity == identity;
        };
        if (identity && std::none_of(m_candidates.begin(), m_candidates.end(), isSame)) {
            m_candidates.push_back({descriptor, *identity, std::numeric_limits<qint64>::min(),
                                    std::numeric_limits<qint64>::max()});
        }
    }
}

void ConnectionSearch::look()
{
    std::vector<std::optional<qint64>> least;
    least.reserve(m_candidates.size());
    for (const Candidate& candidate : m_candidates) {
        least.push_back(leastTakenFrom(candidate.descriptor));
    }
    const std::optional<ThreadInput> input = inputOf(m_thread);
    if (!input) {
        m_candidates.clear();
        return;
    }
    m_readAtFirst = m_readAtFirst < 0 ? input->bytes : m_readAtFirst;
    m_readSinceFirst = input->bytes - m_readAtFirst;
    std::vector<Candidate> left;
    for (size_t i = 0; i < m_candidates.size(); ++i) {
        Candidate candidate = m_candidates[i];
        const std::optional<qint64> most = mostTakenFrom(candidate.descriptor);
        if (!least[i] || !most || identityOf(candidate.descriptor) != candidate.identity) {
            continue;
        }
        candidate.least = std::max(candidate.least, *least[i] - input->bytes);
        candidate.most = std::min(candidate.most, *most - input->bytes);
        if (candidate.least <= candidate.most + slack) {
            left.push_back(candidate);
        }
    }
    m_candidates.swap(left);
}

void ConnectionSearch::close() const
{
    if (!hasFound()) {
        return;
    }
    // The copy keeps meaning this connection, whoever closes the descriptor meanwhile.
    const int copy = fcntl(m_candidates.front().descriptor, F_DUPFD_CLOEXEC, 0);
    if (copy < 0) {
        return;
    }
    if (identityOf(copy) == m_candidates.front().identity) {
        shutAndEmpty(copy);
    }
    ::close(copy);
}

#else

// No other system tells what a thread reads.
ConnectionSearch::ConnectionSearch(int thread)
    : m_thread(thread)
{}

void ConnectionSearch::look() {}

void ConnectionSearch::close() const {}

#endif

bool ConnectionSearch::hasFound() const
{
    if (m_candidates.size() != 1 || m_readSinceFirst < enoughRead) {
        return false;
    }
    const Candidate& candidate = m_candidates.front();
    return candidate.most - candidate.least < m_readSinceFirst / 4;
}

} // namespace vx
