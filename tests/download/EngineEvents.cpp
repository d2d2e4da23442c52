#include "tests/download/EngineEvents.h"

#include <QFileInfo>

namespace vx::test {

EngineEvents::EngineEvents(DownloadManager* engine)
{
    const char* const pairs[][2] = {
        {SIGNAL(packageFound(PackageInfoList)), SLOT(packageFound(PackageInfoList))},
        {SIGNAL(noPackageFound()), SLOT(noPackageFound())},
        {SIGNAL(queryStarted(QString)), SLOT(queryStarted(QString))},
        {SIGNAL(queryFinished()), SLOT(queryFinished())},
        {SIGNAL(downloadStarted(PackageInfo, QString)),
         SLOT(downloadStarted(PackageInfo, QString))},
        {SIGNAL(downloadProgress(int, int)), SLOT(downloadProgress(int, int))},
        {SIGNAL(downloadSuccess(PackageInfo, QString)),
         SLOT(downloadSuccess(PackageInfo, QString))},
        {SIGNAL(downloadSuccess()), SLOT(downloadSuccess())},
        {SIGNAL(downloadFailure(PackageInfo, QString)),
         SLOT(downloadFailure(PackageInfo, QString))},
        {SIGNAL(downloadFailure(int)), SLOT(downloadFailure(int))},
        {SIGNAL(downloadAborted()), SLOT(downloadAborted())},
        {SIGNAL(releaseNotesDownloaded(QUrl, QString)),
         SLOT(releaseNotesDownloaded(QUrl, QString))},
        {SIGNAL(unzippingDone(QString)), SLOT(unzippingDone(QString))},
    };
    for (const auto& pair : pairs) {
        connect(engine, pair[0], this, pair[1]);
    }
}

int EngineEvents::count(const QString& name) const
{
    int found = 0;
    for (const QString& event : list) {
        found += event.startsWith(name) ? 1 : 0;
    }
    return found;
}

void EngineEvents::callback(const PackageInfoList& all)
{
    note("callback", all);
}

void EngineEvents::packageFound(const PackageInfoList& all)
{
    note("packageFound", all);
}

void EngineEvents::noPackageFound()
{
    list << QStringLiteral("noPackageFound");
}

void EngineEvents::queryStarted(const QString& url)
{
    list << QStringLiteral("queryStarted ") + url;
}

void EngineEvents::queryFinished()
{
    list << QStringLiteral("queryFinished");
}

void EngineEvents::downloadStarted(const PackageInfo& pack, const QString& file)
{
    note("downloadStarted", pack, file);
}

void EngineEvents::downloadProgress(int bytes, int total)
{
    progress.append({bytes, total});
}

void EngineEvents::downloadSuccess(const PackageInfo& pack, const QString& file)
{
    note("downloadSuccess", pack, file);
}

void EngineEvents::downloadSuccess()
{
    list << QStringLiteral("downloadSuccess");
}

void EngineEvents::downloadFailure(const PackageInfo& pack, const QString& file)
{
    note("downloadFailure", pack, file);
}

void EngineEvents::downloadFailure(int status)
{
    list << QStringLiteral("downloadFailure %1").arg(status);
}

void EngineEvents::downloadAborted()
{
    list << QStringLiteral("downloadAborted");
}

void EngineEvents::releaseNotesDownloaded(const QUrl& url, const QString& text)
{
    list << QStringLiteral("releaseNotesDownloaded %1 '%2'").arg(url.toString(), text);
}

void EngineEvents::unzippingDone(const QString& path)
{
    list << QStringLiteral("unzippingDone");
    fileName = path;
}

void EngineEvents::note(const char* signal, const PackageInfoList& all)
{
    QStringList names;
    for (const PackageInfo& each : all) {
        names << each.name;
    }
    packages = all;
    list << QString::fromLatin1(signal) + QStringLiteral(" [") + names.join(QLatin1Char(' ')) +
                QLatin1Char(']');
}

void EngineEvents::note(const char* signal, const PackageInfo& pack, const QString& file)
{
    package = pack;
    fileName = file;
    list << QStringLiteral("%1 %2 %3")
                .arg(QLatin1String(signal), pack.name, QFileInfo(file).fileName());
}

} // namespace vx::test
