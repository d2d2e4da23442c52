#pragma once

#include <QDesktopServices>
#include <QList>
#include <QObject>
#include <QUrl>

namespace vx::test {

/** Stands for the desktop: takes every http, https and file URL that is opened while it lives. */
class UrlRecorder : public QObject
{
    Q_OBJECT

public:
    UrlRecorder() { install(this); }
    ~UrlRecorder() override { install(nullptr); }

    QList<QUrl> opened() const { return m_opened; }

public slots:
    void open(const QUrl& url) { m_opened.append(url); }

private:
    static void install(QObject* receiver)
    {
        for (const char* scheme : {"http", "https", "file"}) {
            if (receiver) {
                QDesktopServices::setUrlHandler(QLatin1String(scheme), receiver, "open");
            } else {
                QDesktopServices::unsetUrlHandler(QLatin1String(scheme));
            }
        }
    }

    QList<QUrl> m_opened;
};

} // namespace vx::test
