#pragma once

#include <QList>
#include <QNetworkAccessManager>
#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>

#include "base/ConnectionSearch.h"
#include "base/ThreadInput.h"

class QNetworkReply;
class QNetworkRequest;

namespace vx {

/**
 * Sends the requests of one network manager and sees to it that their answers have an end to their
 * header. See getWithHeaderLimit.
 *
 * A manager receives on a thread of its own. What that thread has read since the last sign of an
 * answer is the header, or the beginning of one. By http without a proxy the network stack asks the
 * system for each byte of a header, and for many at once of a body, so that the number of its calls
 * tells one from the other to the byte. Otherwise they can't be told apart, and the body of a
 * refused login gives no sign either; there the limit is far above what such a page may have.
 */
class HeaderWatch : public QObject
{
    Q_OBJECT

public:
    /** The watch of @p manager, which becomes its owner. */
    static HeaderWatch* of(QNetworkAccessManager& manager);

    QNetworkReply* get(const QNetworkRequest& request);

private slots:
    void look();
    void judge();
    void noteHeader();
    void noteAnswer();

private:
    explicit HeaderWatch(QNetworkAccessManager* manager);

    std::optional<ThreadInput> input();
    void countFrom(const ThreadInput& input);
    void count(const ThreadInput& input);
    void searchConnection();
    void judgeLater();

    QNetworkAccessManager* m_manager;
    QTimer m_timer;
    // Among these is the one that receives for the manager.
    QList<int> m_threads;
    int m_thread = 0;
    ThreadInput m_before;
    qint64 m_lastCount = 0;
    bool m_isAnswered = false;
    std::unique_ptr<ConnectionSearch> m_search;
    int m_looks = 0;
};

} // namespace vx
