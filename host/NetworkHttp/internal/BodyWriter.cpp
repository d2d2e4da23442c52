#include "host/NetworkHttp/internal/BodyWriter.h"

#include <QFileDevice>

#include <algorithm>

namespace vx {

BodyWriter::BodyWriter(QIODevice* device, qint64 limit)
    : m_device(device)
    , m_hasDevice(device != nullptr)
    , m_limit(limit)
{}

bool BodyWriter::write(const char* bytes, qint64 size)
{
    const qint64 allowed = std::min(size, m_limit - m_written);
    const bool taken = !m_hasDevice || put(bytes, allowed);
    if (taken) {
        m_written += allowed;
    }
    return taken && allowed == size;
}

bool BodyWriter::put(const char* bytes, qint64 size)
{
    // A closed device would put a warning of its own into the application's log.
    return m_device && m_device->isWritable() && m_device->write(bytes, size) == size;
}

void BodyWriter::flush()
{
    auto* const file = qobject_cast<QFileDevice*>(m_device.data());
    if (file != nullptr && file->isOpen()) {
        file->flush();
    }
}

void BodyWriter::close()
{
    flush();
    if (m_device && m_device->isOpen()) {
        m_device->close();
    }
}

} // namespace vx
