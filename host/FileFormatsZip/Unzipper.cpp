#include "host/FileFormatsZip/Unzipper.h"

#include <QFile>

namespace vx {

class Unzipper::Private
{
public:
    QString zipFile;
};

Unzipper::Unzipper(const QString& zipFile, const QString&, bool)
    : d(std::make_unique<Private>())
{
    d->zipFile = zipFile;
    QMetaObject::invokeMethod(this, "start", Qt::QueuedConnection);
}

Unzipper::~Unzipper() = default;

bool Unzipper::removeZipFile()
{
    return QFile::remove(d->zipFile);
}

void Unzipper::start()
{
    report();
}

void Unzipper::report()
{
    emit unzippingFailed(QStringLiteral("The archive is not readable."));
}

void Unzipper::stop() {}

} // namespace vx
