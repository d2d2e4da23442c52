#pragma once

#include <QIODevice>
#include <QList>
#include <QObject>

#include <functional>

#include "host/NetworkHttp/RequestData.h"

namespace vx::test {

/** The device value that asks for the client's own buffer. */
QIODevice* ownBuffer();

/** Collects the requests that a client reports as ended. Its slots are protected on purpose. */
class ResultReceiver : public QObject
{
    Q_OBJECT

public:
    /** What has ended so far, in order. */
    QList<RequestPtr> results;

    /** Called within queryResult and noteSignal, if set. */
    std::function<void()> whenCalled;

protected slots:
    void queryResult(RequestPtr request);
    void queryDone();
    void takesSomethingElse(int);
    void noteSignal();
};

} // namespace vx::test
