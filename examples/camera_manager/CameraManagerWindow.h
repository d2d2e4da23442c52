#pragma once

#include <QMainWindow>
#include <QString>

#include "client/SoftwareUpdateSettings.h"

/** The window of the application: its version, its cameras, and the way to the updates. */
class CameraManagerWindow : public QMainWindow
{
    Q_OBJECT

public:
    /** @param version the application's version, for display. @param cameras with their firmware.
     */
    CameraManagerWindow(const QString& version, const vx::SoftUpCurrentCameraVersions& cameras);

public slots:
    /** Shows @p text at the lower edge until the next one comes. */
    void showMessage(const QString& text);

signals:
    /** The user chose "Check for Updates...". */
    void checkForUpdates();

private:
    void addMenus();
};
