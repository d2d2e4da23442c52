#include "tools/server/BrokenAnswers.h"

namespace vx {

namespace {

QByteArray headerOf(const ServedReply& reply)
{
    QByteArray header = "HTTP/1.1 " + QByteArray::number(reply.status) + " Answer\r\n";
    for (const auto& field : reply.headers) {
        header += field.first + ": " + field.second + "\r\n";
    }
    return header + "Connection: close\r\n";
}

ServedReply raw(ServedReply::Fault fault, const QByteArray& bytes)
{
    ServedReply reply;
    reply.fault = fault;
    reply.body = bytes;
    return reply;
}

} // namespace

ServedReply afterEarlyHints(const ServedReply& reply)
{
    return raw(ServedReply::Raw,
               "HTTP/1.1 103 Early Hints\r\nLink: </style.css>; rel=preload\r\n\r\n" +
                   headerOf(reply) + "Content-Length: " + QByteArray::number(reply.body.size()) +
                   "\r\n\r\n" + reply.body);
}

ServedReply withEndlessHeader()
{
    return raw(ServedReply::EndlessHeader, "HTTP/1.1 200 OK\r\n");
}

ServedReply withoutLastChunk(const ServedReply& reply)
{
    return raw(ServedReply::Raw, headerOf(reply) + "Transfer-Encoding: chunked\r\n\r\n" +
                                     QByteArray::number(reply.body.size(), 16) + "\r\n" +
                                     reply.body + "\r\n");
}

ServedReply withHalfTheLength(ServedReply reply)
{
    reply.headers.append({"Content-Length", QByteArray::number(reply.body.size() / 2)});
    return reply;
}

} // namespace vx
