#include "tools/update-catalogue/preview/RealOffer.h"

#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QLabel>
#include <QSettings>

#include "client/SoftwareUpdateClient.h"
#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "tools/update-catalogue/Command.h"

namespace vx {

namespace {

constexpr int longestWait = 20000;

QDialog* findAvailableDialog()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* dialog = qobject_cast<SoftwareUpdateAvailableDialog*>(widget)) {
            return dialog;
        }
    }
    return nullptr;
}

/** The settings dialog is where a check says that it found nothing. */
QString notification()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* label = widget->findChild<QLabel*>("updateNotificationLabel")) {
            return label->text();
        }
    }
    return QString();
}

} // namespace

RealOffer::RealOffer(const QByteArray& catalogue, const OfferCriteria& criteria)
{
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_settings.path());
    SoftwareUpdateClient::sSoftUpQSettingsFormat = QSettings::IniFormat;
    QApplication::setApplicationName(criteria.applicationName);
    QApplication::setQuitOnLastWindowClosed(false);

    ServedReply reply;
    reply.body = catalogue;
    m_server.setReply("/catalogue.xml", reply);
    if (!m_server.start()) {
        throw CommandFailure(ExitUnreadable, "no port on this machine can be had");
    }
    m_client =
        std::make_unique<SoftwareUpdateClient>(criteria.applicationName, criteria.versionNumber,
                                               m_server.url("/catalogue.xml").toString(), nullptr);
    SoftwareUpdateSettings settings;
    m_client->getCurrentSettings(&settings);
    settings.supportedPlatforms = criteria.supportedPlatforms;
    settings.supportedPackageTypes = criteria.supportedPackageTypes;
    settings.currentCameraVersions = criteria.currentCameraVersions;
    settings.checkForBeta = criteria.checkForBeta;
    m_client->setCurrentSettings(&settings);
    m_client->queryForUpdate(Qt::WindowFlags(), false);
    m_client->checkForUpdate();
    waitForVerdict();
}

RealOffer::~RealOffer() = default;

void RealOffer::waitForVerdict()
{
    QElapsedTimer timer;
    timer.start();
    while (m_dialog == nullptr && notification().isEmpty() && timer.elapsed() < longestWait) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        m_dialog = findAvailableDialog();
    }
    if (m_dialog == nullptr && notification().isEmpty()) {
        throw CommandFailure(ExitUnreadable, "the check came to no end");
    }
}

} // namespace vx
