#pragma once

class QNetworkReply;

namespace vx {

/**
 * Ends @p reply when it holds more than 64 MiB, counted after decompression: the parser refuses
 * longer documents, and a server that sends without end must not fill the memory.
 */
void stopAboveLargestAnswer(QNetworkReply* reply);

/** Whether that happened to @p reply, whose error is then not one of the network. */
bool wasTooLong(const QNetworkReply& reply);

} // namespace vx
