#pragma once

#include <QFile>
#include <QPointer>

#include "tests/download/EngineProbe.h"

namespace vx::test {

/** Keeps the requests of an engine, to show what becomes of the file and the record they carry. */
class RequestWatch : public QObject
{
    Q_OBJECT

public:
    explicit RequestWatch(EngineProbe* engine)
    {
        connect(&engine->httpClient, SIGNAL(requestStarted(RequestPtr)), SLOT(note(RequestPtr)));
    }

    QList<RequestPtr> requests;
    QList<QPointer<QFile>> files;

    /** Whether file and record of every request so far are freed, and forgotten by the request. */
    bool allFreed() const
    {
        bool freed = true;
        for (int i = 0; i < requests.size(); ++i) {
            freed = freed && files.at(i).isNull() && requests.at(i)->userData == nullptr &&
                    requests.at(i)->responseDevice == nullptr;
        }
        return freed;
    }

public slots:
    void note(const RequestPtr& request)
    {
        requests.append(request);
        files.append(qobject_cast<QFile*>(request->responseDevice));
    }
};

} // namespace vx::test
