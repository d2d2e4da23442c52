#include "host/FileFormatsZip/ZipReader.h"

#include "host/CoreQt/IOException.h"

namespace vx {

class ZipReader::Private
{
};

ZipReader::ZipReader(const QString& path, QObject* parent)
    : ZipDevice(path, parent)
    , d(std::make_unique<Private>())
{}

ZipReader::~ZipReader() = default;

bool ZipReader::open(QIODevice::OpenMode)
{
    return false;
}

bool ZipReader::isOpen() const
{
    return false;
}

QStringList ZipReader::fileList(const QRegExp&) const
{
    return {};
}

void ZipReader::extractFiles(const QStringList&, const QString&, bool)
{
    throw IOException(QStringLiteral("The archive is not open."), nullptr);
}

} // namespace vx
