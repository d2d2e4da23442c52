#pragma once

#include <QStringList>

#include "download/DownloadManager.h"

namespace vx::test {

/**
 * Writes down what an engine raises, in its order, joined by signature strings as a host does it.
 *
 * Each entry is the signal's name with its arguments: of packages their names, of files the name
 * without the folder. Progress is kept apart, because its number is not foreseeable.
 */
class EngineEvents : public QObject
{
    Q_OBJECT

public:
    explicit EngineEvents(DownloadManager* engine);

    QStringList list;
    QList<QPair<int, int>> progress;
    /** The packages delivered last, by a signal or by the callback. */
    PackageInfoList packages;
    /** The package of the last signal that carries one. */
    PackageInfo package;
    /** The file name, with its folder, of the last signal that carries one. */
    QString fileName;

    /** How many events so far begin with @p name. */
    int count(const QString& name) const;

public slots:
    void callback(const PackageInfoList& all);
    void packageFound(const PackageInfoList& all);
    void noPackageFound();
    void queryStarted(const QString& url);
    void queryFinished();
    void downloadStarted(const PackageInfo& pack, const QString& file);
    void downloadProgress(int bytes, int total);
    void downloadSuccess(const PackageInfo& pack, const QString& file);
    void downloadSuccess();
    void downloadFailure(const PackageInfo& pack, const QString& file);
    void downloadFailure(int status);
    void downloadAborted();
    void releaseNotesDownloaded(const QUrl& url, const QString& text);
    void unzippingDone(const QString& path);

private:
    void note(const char* signal, const PackageInfoList& all);
    void note(const char* signal, const PackageInfo& pack, const QString& file);
};

} // namespace vx::test
