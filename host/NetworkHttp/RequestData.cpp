#include "host/NetworkHttp/RequestData.h"

#include "host/NetworkHttp/internal/RequestPlan.h"
#include "host/NetworkHttp/internal/ResponseText.h"

RequestData::RequestData()
    : m_plan(std::make_unique<vx::RequestPlan>())
{}

RequestData::~RequestData() = default;

QBuffer* RequestData::getResponseBuffer() const
{
    return m_buffer.get();
}

QString RequestData::getResponseText() const
{
    if (!m_buffer) {
        return QString();
    }
    const QString type = responseHeader.value(QStringLiteral("Content-Type"));
    return vx::decodedText(m_buffer->data(), type);
}
