#include "host/NetworkHttp/HttpClient.h"

#include <QPointer>

#include <utility>

#include "host/NetworkHttp/internal/HttpTransfer.h"
#include "host/NetworkHttp/internal/RequestPlan.h"
#include "host/NetworkHttp/internal/ResultSlot.h"

namespace {

/** The device value that asks for the client's own buffer. */
bool isOwnBuffer(const QIODevice* device)
{
    return reinterpret_cast<qintptr>(device) == -1;
}

std::unique_ptr<QBuffer> openBuffer()
{
    auto buffer = std::make_unique<QBuffer>();
    buffer->open(QIODevice::ReadWrite);
    return buffer;
}

} // namespace

HttpClient::HttpClient()
    : HttpClient(vx::HttpHost())
{}

HttpClient::HttpClient(const vx::HttpHost& host)
    : m_host(host)
{
    qRegisterMetaType<RequestPtr>("RequestPtr");
}

HttpClient::~HttpClient()
{
    reset();
    // What reset leaves is the transfer whose result slot is destroying this object.
    qDeleteAll(m_transfers);
}

void HttpClient::setHost(const vx::HttpHost& host)
{
    m_host = host;
}

void HttpClient::setIdleTimeout(int milliseconds)
{
    m_idleTimeout = milliseconds >= 1 ? milliseconds : defaultIdleTimeout;
}

RequestPtr HttpClient::prepareGet(const QString& path, const QMap<QString, QVariant>& params,
                                  QObject* receiver, const char* slot, QIODevice* device,
                                  boost::shared_ptr<QIODevice> sharedDevice)
{
    RequestPtr request(new RequestData);
    vx::RequestPlan& plan = *request->m_plan;
    plan.host = m_host;
    plan.host.updateProxy(QUrl());
    plan.receiver = receiver;
    plan.slot = vx::resultSlot(receiver, slot);
    plan.sharedDevice = std::move(sharedDevice);
    request->requestUrls.append(m_host.makeURL(path, params, true));
    if (isOwnBuffer(device)) {
        request->m_buffer = openBuffer();
        request->responseDevice = request->m_buffer.get();
    } else {
        request->responseDevice = device != nullptr ? device : plan.sharedDevice.get();
    }
    return request;
}

RequestPtr HttpClient::get(const QString& path, const QMap<QString, QVariant>& params,
                           QObject* receiver, const char* slot, QIODevice* device,
                           boost::shared_ptr<QIODevice> sharedDevice)
{
    RequestPtr request = prepareGet(path, params, receiver, slot, device, std::move(sharedDevice));
    execute(request);
    return request;
}

RequestPtr HttpClient::get(const QString& path, QObject* receiver, const char* slot,
                           QIODevice* device)
{
    return get(path, QMap<QString, QVariant>(), receiver, slot, device,
               boost::shared_ptr<QIODevice>());
}

void HttpClient::execute(const RequestPtr& request)
{
    if (!request || request->m_plan->executed) {
        return;
    }
    request->m_plan->executed = true;
    const QPointer<vx::HttpTransfer> transfer(new vx::HttpTransfer(request, m_idleTimeout));
    m_transfers.append(transfer);
    connect(transfer, SIGNAL(progressed(int, int)), this, SIGNAL(downloadProgress(int, int)));
    connect(transfer, SIGNAL(ended(vx::HttpTransfer*)), this, SLOT(finish(vx::HttpTransfer*)));
    emit requestStarted(request);
    // A slot may have reset or destroyed this client.
    if (transfer) {
        transfer->start();
    }
}

bool HttpClient::isExecutingRequest() const
{
    return !m_transfers.isEmpty();
}

void HttpClient::finish(vx::HttpTransfer* transfer)
{
    // Every slot called here may reset or destroy this client, and the transfer with it.
    const QPointer<vx::HttpTransfer> guard(transfer);
    const RequestPtr request = transfer->request();
    transfer->reportProgress();
    if (!guard) {
        return;
    }
    transfer->setDelivering();
    const vx::RequestPlan& plan = *request->m_plan;
    if (!vx::callResultSlot(plan.receiver, plan.slot, request)) {
        transfer->closeDevice();
        emit requestReset(request);
    }
    if (guard) {
        m_transfers.removeOne(transfer);
        delete transfer;
    }
}

void HttpClient::reset()
{
    const QPointer<HttpClient> self(this);
    QList<QPointer<vx::HttpTransfer>> running;
    for (vx::HttpTransfer* const transfer : qAsConst(m_transfers)) {
        running.append(transfer);
    }
    for (const QPointer<vx::HttpTransfer>& transfer : qAsConst(running)) {
        // The slots of requestReset may have reset or destroyed this client in their turn.
        if (self && transfer && !transfer->isDelivering()) {
            discard(transfer);
        }
    }
}

void HttpClient::discard(vx::HttpTransfer* transfer)
{
    const RequestPtr request = transfer->request();
    m_transfers.removeOne(transfer);
    transfer->cancel();
    transfer->closeDevice();
    delete transfer;
    emit requestReset(request);
}
