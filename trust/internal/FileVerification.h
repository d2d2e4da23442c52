#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTimer>

#include <atomic>
#include <thread>

namespace vx {

/**
 * Finds out, on a thread of its own, whether a file is the one that was announced.
 *
 * The file must be the user's alone; see openPrivately(). The object deletes itself after it has
 * ended or was cancelled.
 */
class FileVerification : public QObject
{
    Q_OBJECT

public:
    /** @param sha256 the hash that the file should have, 32 bytes. */
    FileVerification(const QString& path, const QByteArray& sha256, QObject* parent);

    /** Ends the work, without a signal, and waits for the thread. */
    ~FileVerification() override;

    /** Begins; to be called once. Both signals come from the event loop. */
    void start();

public slots:
    /** Ends the work soon, without a further signal. Does not wait. */
    void cancel();

signals:
    /** @param value how much of @p total is done; both are scaled to fit. */
    void progressed(int value, int total);

    /** The end, once, unless it was cancelled. @param isSame whether it is the announced file. */
    void ended(bool isSame);

private slots:
    void showProgress();
    void report();
    void stopForGood();

private:
    void work();

    QString m_path;
    QByteArray m_sha256;
    QTimer m_progress;
    std::thread m_thread;
    std::atomic<bool> m_isCanceled{false};
    std::atomic<int> m_done{0}; ///< thousandths
    std::atomic<bool> m_isSame{false};
};

} // namespace vx
