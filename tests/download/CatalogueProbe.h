#pragma once

#include <QBuffer>

#include "download/DownloadManager.h"

namespace vx::test {

/** The engine's reading of catalogues, with what it keeps from all but subclasses. */
class CatalogueProbe : public DownloadManager
{
public:
    using DownloadManager::findAllStrings;
    using DownloadManager::findAllTranslatedUrls;
    using DownloadManager::findBestMatches;
    using DownloadManager::findString;
    using DownloadManager::parsePackage;
    using DownloadManager::parseSet;
};

/** Reads a catalogue from its text. */
inline PackageInfoList parseText(const QByteArray& text)
{
    QBuffer device;
    device.setData(text);
    device.open(QIODevice::ReadOnly);
    return DownloadManager::parseXML(&device);
}

} // namespace vx::test
