#include "tests/host/NetworkHttp/ResultReceiver.h"

namespace vx::test {

QIODevice* ownBuffer()
{
    return reinterpret_cast<QIODevice*>(-1);
}

void ResultReceiver::queryResult(RequestPtr request)
{
    results.append(request);
    noteSignal();
}

void ResultReceiver::queryDone()
{
    results.append(RequestPtr());
}

void ResultReceiver::takesSomethingElse(int)
{
    results.append(RequestPtr());
}

void ResultReceiver::noteSignal()
{
    if (whenCalled) {
        whenCalled();
    }
}

} // namespace vx::test
