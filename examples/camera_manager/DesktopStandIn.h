#pragma once

#include <QObject>
#include <QStringList>
#include <QUrl>

/** Opens files and folders in place of the desktop, which a tour does not have: it remembers them.
 */
class DesktopStandIn : public QObject
{
    Q_OBJECT

public:
    DesktopStandIn();
    ~DesktopStandIn() override;

    /** The paths of all that was opened so far. */
    QStringList paths() const { return m_paths; }

public slots:
    /** Called by QDesktopServices for every file URL. */
    void open(const QUrl& url);

signals:
    /** Something was opened; @p message says so to the user. */
    void opened(const QString& message);

private:
    QStringList m_paths;
};
