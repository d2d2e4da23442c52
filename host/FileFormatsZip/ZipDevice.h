#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include "host/FileFormatsZip/FileFormatsZipExport.h"

class QProgressDialog;

namespace vx {

/**
 * What every device on a ZIP archive has in common: the path of the archive, and a progress dialog
 * that the device drives while it works. Failures are reported as vx::IOException and as no other
 * type. A device belongs to one thread; with a dialog attached that is the GUI thread.
 */
class VX_FILEFORMATSZIP_EXPORT ZipDevice : public QObject
{
    Q_OBJECT

public:
    ~ZipDevice() override;

    /** The path of the archive as it was given. */
    QString path() const { return m_path; }

    /**
     * Lets the device drive @p dialog during its work: it sets the range (0 to 1000, tenths of a
     * per cent of the bytes to be written) and the value, and processes events, so that the dialog
     * stays responsive and its cancel button works.
     *
     * The dialog stays the caller's. It may be destroyed at any time, from within those events too,
     * if it is modal by deleteLater(); the work then goes on without it. Null detaches the dialog.
     * Without a dialog no events are processed, and the work can't be cancelled.
     */
    void attachProgressDialog(QProgressDialog* dialog);

    /**
     * Whether the attached dialog is cancelled, be it by the user or by QProgressDialog::cancel().
     * It stays true when the dialog is gone, and starts anew when another one is attached.
     */
    bool wasCanceled() const;

protected:
    ZipDevice(const QString& path, QObject* parent);

    /** Whether there is a dialog to drive. */
    bool hasProgressDialog() const { return !m_dialog.isNull(); }

    /** Sets the dialog's range and its value to the beginning. */
    void beginProgress();

    /**
     * Shows @p done of @p total bytes and processes pending events. The dialog, and the device
     * itself, may be gone afterwards.
     */
    void showProgress(qint64 done, qint64 total);

    /** Sets the dialog to its end, which hides it if its autoClose() says so. */
    void endProgress();

private slots:
    void noteCancel();

private:
    QString m_path;
    QPointer<QProgressDialog> m_dialog;
    bool m_canceled = false;
};

} // namespace vx
