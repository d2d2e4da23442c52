#include "host/FileFormatsZip/ZipDevice.h"

#include <QCoreApplication>
#include <QProgressDialog>

namespace vx {

// A QProgressDialog counts in int, which bytes overflow at 2 GiB.
static constexpr int steps = 1000;

ZipDevice::ZipDevice(const QString& path, QObject* parent)
    : QObject(parent)
    , m_path(path)
{}

ZipDevice::~ZipDevice() = default;

void ZipDevice::attachProgressDialog(QProgressDialog* dialog)
{
    if (m_dialog) {
        disconnect(m_dialog, SIGNAL(canceled()), this, SLOT(noteCancel()));
    }
    m_dialog = dialog;
    m_canceled = false;
    if (m_dialog) {
        connect(m_dialog, SIGNAL(canceled()), this, SLOT(noteCancel()));
    }
}

void ZipDevice::beginProgress()
{
    if (m_dialog) {
        m_dialog->setRange(0, steps);
        m_dialog->setValue(0);
    }
}

bool ZipDevice::wasCanceled() const
{
    // QProgressDialog::cancel() sets its flag without a signal; the signal comes from the user.
    return m_canceled || (m_dialog && m_dialog->wasCanceled());
}

void ZipDevice::showProgress(qint64 done, qint64 total)
{
    const QPointer<ZipDevice> self(this);
    // A new value would show a cancelled dialog again.
    if (m_dialog && !wasCanceled()) {
        const double share = total > 0 ? static_cast<double>(done) / static_cast<double>(total) : 0;
        // One step is kept back for endProgress(): a full dialog closes itself.
        m_dialog->setValue(static_cast<int>(share * (steps - 1)));
    }
    // A modal dialog processes events by itself when its value is set.
    if (self) {
        QCoreApplication::processEvents();
    }
    if (self && wasCanceled()) {
        m_canceled = true;
    }
}

void ZipDevice::endProgress()
{
    if (m_dialog) {
        m_dialog->setValue(steps);
    }
}

void ZipDevice::noteCancel()
{
    m_canceled = true;
}

} // namespace vx
