#pragma once

#include <QIODevice>
#include <QPointer>

namespace vx {

/** Hands the body of an answer to its device and notices when the device takes no more. */
class BodyWriter
{
public:
    /**
     * @param device stays the caller's; null throws the body away.
     * @param limit how many bytes are taken at most.
     */
    BodyWriter(QIODevice* device, qint64 limit);

    /**
     * Writes @p size bytes.
     *
     * @return false if the device didn't take all of them, is not open for writing or has been
     *         destroyed, or if they go over the limit, up to which they are written.
     */
    bool write(const char* bytes, qint64 size);

    /** Bytes that went to the device, or were thrown away. */
    qint64 written() const { return m_written; }

    /** Whether there was a device and it was destroyed meanwhile. */
    bool hasLostDevice() const { return m_hasDevice && m_device.isNull(); }

    /** Whether as many bytes as the limit allows have been written. */
    bool isFull() const { return m_written >= m_limit; }

    /** Pushes what a file device still holds back to the system. */
    void flush();

    /** Flushes and closes the device. */
    void close();

private:
    bool put(const char* bytes, qint64 size);

    QPointer<QIODevice> m_device;
    bool m_hasDevice;
    qint64 m_limit;
    qint64 m_written = 0;
};

} // namespace vx
