#include "tools/server/ReplyWriter.h"

#include <algorithm>
#include <memory>

#include "tools/server/ServedFile.h"

namespace vx {

namespace {

constexpr int slowPieceMs = 20;

QByteArray contentType(const ServedReply& reply)
{
    for (const auto& header : reply.headers) {
        if (header.first.toLower() == "content-type") {
            return header.second;
        }
    }
    return "application/octet-stream";
}

void writeHeaders(const ServedReply& reply, httplib::Response& response)
{
    for (const auto& header : reply.headers) {
        if (header.first.toLower() != "content-type") {
            response.set_header(header.first.toStdString(), header.second.toStdString());
        }
    }
}

bool cutsTheBody(ServedReply::Fault fault)
{
    return fault == ServedReply::CloseEarly || fault == ServedReply::Reset ||
           fault == ServedReply::Stall;
}

/** How much of the body goes out at all. */
size_t sentLength(const ServedReply& reply)
{
    const qint64 size = reply.body.size();
    return static_cast<size_t>(
        cutsTheBody(reply.fault) ? qBound(qint64(0), reply.bytesBeforeFault, size) : size);
}

httplib::ContentProvider wholeBody(const ServedReply& reply)
{
    return [body = reply.body, end = sentLength(reply)](size_t offset, size_t length,
                                                        httplib::DataSink& sink) {
        const size_t count = std::min(length, end - std::min(offset, end));
        return count > 0 && sink.write(body.constData() + offset, count);
    };
}

httplib::ContentProvider slowBody(const ServedReply& reply, ConnectionStream& stream)
{
    const int pieces = qBound(1, reply.delayMs / slowPieceMs, int(reply.body.size()));
    const size_t piece = (size_t(reply.body.size()) + size_t(pieces) - 1) / size_t(pieces);
    const int pieceMs = reply.delayMs / pieces;
    return [body = reply.body, piece, pieceMs, &stream](size_t offset, size_t length,
                                                        httplib::DataSink& sink) {
        return stream.pause(pieceMs) &&
               sink.write(body.constData() + offset, std::min(length, piece));
    };
}

void writeReply(const ServedReply& reply, ConnectionStream& stream, httplib::Response& response)
{
    response.status = reply.status;
    writeHeaders(reply, response);
    if (reply.body.isEmpty()) {
        return;
    }
    const bool slow = reply.fault == ServedReply::Slow;
    response.set_content_provider(size_t(reply.body.size()), contentType(reply).toStdString(),
                                  slow ? slowBody(reply, stream) : wholeBody(reply));
}

void delayAnswer(const ServedReply& reply, ConnectionStream& stream)
{
    if (reply.fault == ServedReply::Silent) {
        stream.mute();
    } else if (reply.fault != ServedReply::Slow && reply.delayMs > 0) {
        stream.pause(reply.delayMs);
    }
}

/** Sends the answer past the HTTP library, which then sends nothing. */
void writeRaw(const ServedReply& reply, ConnectionStream& stream)
{
    const std::string line = "X-Endless: 0123456789abcdef0123456789abcdef\r\n";
    bool isOpen = stream.write(reply.body.constData(), size_t(reply.body.size())) >= 0;
    while (isOpen && reply.fault == ServedReply::EndlessHeader) {
        isOpen = stream.write(line.data(), line.size()) >= 0;
    }
    stream.mute();
}

bool isRaw(const ServedReply& reply)
{
    return reply.fault == ServedReply::Raw || reply.fault == ServedReply::EndlessHeader;
}

} // namespace

void writeAnswer(const Answer& answer, httplib::Request& request, ConnectionStream& stream,
                 httplib::Response& response)
{
    if (!answer.file.isEmpty()) {
        writeFile(answer.file, request, response);
        return;
    }
    request.ranges.clear();
    delayAnswer(answer.reply, stream);
    if (isRaw(answer.reply)) {
        writeRaw(answer.reply, stream);
        return;
    }
    writeReply(answer.reply, stream, response);
}

void keepFirstContentLength(httplib::Response& response)
{
    const auto lengths = response.headers.equal_range("Content-Length");
    if (lengths.first != lengths.second) {
        response.headers.erase(std::next(lengths.first), lengths.second);
    }
}

} // namespace vx
