#pragma once

#include <QPointer>

#include "download/DownloadManager.h"

namespace vx::test {

/** Deletes its engine from within a slot, as a window does that closes with the answer. */
class EngineOwner : public QObject
{
    Q_OBJECT

public:
    /** Takes over @p owned, to let it go when it raises @p signal (as SIGNAL writes it). */
    EngineOwner(DownloadManager* owned, const char* signal)
        : engine(owned)
    {
        connect(owned, signal, SLOT(letGo()));
    }
    ~EngineOwner() override { delete engine; }

    QPointer<DownloadManager> engine;

public slots:
    void letGo() { delete engine; }
};

} // namespace vx::test
