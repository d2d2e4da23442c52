#include "tests/host/NetworkHttp/ResultReceiver.h"

namespace vx::test {

QIODevice* ownBuffer()
{
    return reinterpret_cast<QIODevice*>(-1);
}

void ResultReceiver::queryResult(RequestPtr request)
{
    results.append(request);
    if (whenCalled) {
        whenCalled();
    }
}

void ResultReceiver::queryDone()
{
    results.append(RequestPtr());
}

void ResultReceiver::takesSomethingElse(int)
{
    results.append(RequestPtr());
}

} // namespace vx::test
