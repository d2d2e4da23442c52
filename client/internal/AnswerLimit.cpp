#include "client/internal/AnswerLimit.h"

#include <QNetworkReply>
#include <QVariant>

namespace vx {

namespace {

constexpr qint64 largestAnswer = 64LL * 1024 * 1024; // bytes

constexpr char tooLongMark[] = "vx_answerTooLong";

} // namespace

void stopAboveLargestAnswer(QNetworkReply* reply)
{
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [reply] {
        if (reply->bytesAvailable() > largestAnswer) {
            reply->setProperty(tooLongMark, true);
            reply->abort();
        }
    });
}

bool wasTooLong(const QNetworkReply& reply)
{
    return reply.property(tooLongMark).toBool();
}

} // namespace vx
