#include "dialogs/SoftwareUpdateDialog.h"

#include <QApplication>

#include "base/SignalArgumentType.h"
#include "host/CoreQt/Connect.h"
#include "ui_SoftwareUpdateDialogGui.h"

namespace vx {

namespace {

void hideSupportStaffFields(Ui_SoftwareUpdateDialogGui& form)
{
    form.checkForBetaCheckBox->hide();
    form.updateServerLabel->hide();
    form.updateServerLineEdit->hide();
}

// Names for assistive tools are made of the form's own texts: those are in every language already.
void nameForAssistiveTools(Ui_SoftwareUpdateDialogGui& form, const QString& dialogTitle)
{
    form.updateComboBox->setAccessibleName(form.updateCheckBox->text());
    form.updateServerLineEdit->setAccessibleName(form.updateServerLabel->text());
    form.progressBar->setAccessibleName(dialogTitle);
}

// Null and empty differ: only a null text takes the caption away, and the old value stays behind
// it.
void showCaptioned(QLabel* caption, QLabel* value, const QString& text)
{
    caption->setVisible(!text.isNull());
    if (!text.isNull()) {
        value->setText(text);
    }
}

} // namespace

SoftwareUpdateDialog::SoftwareUpdateDialog(QWidget* parent, Qt::WindowFlags flags)
    : QDialog(parent, flags)
    , m_form(new Ui_SoftwareUpdateDialogGui())
{
    m_form->setupUi(this);
    if (QApplication::keyboardModifiers() == Qt::NoModifier) {
        hideSupportStaffFields(*m_form);
    }
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    m_form->progressBar->hide();
    nameForAssistiveTools(*m_form, windowTitle());
    registerSignalArgument<SoftwareUpdateDialogSettings>("SoftwareUpdateDialogSettings");

    vx::connect(m_form->updatePushButton, SIGNAL(clicked()), this, SIGNAL(checkForUpdate()),
                Qt::AutoConnection);
    vx::connect(m_form->buttonBox, SIGNAL(clicked(QAbstractButton*)), this,
                SLOT(standardButtonClicked(QAbstractButton*)), Qt::AutoConnection);
}

SoftwareUpdateDialog::~SoftwareUpdateDialog()
{
    delete m_form;
}

void SoftwareUpdateDialog::setDialogSettings(SoftwareUpdateDialogSettings const& settings)
{
    m_form->updateCheckBox->setChecked(settings.doUpdateCheck);
    m_form->checkForBetaCheckBox->setChecked(settings.checkForBeta);
    m_form->updateComboBox->setCurrentIndex(settings.updateInterval);
    m_form->updateServerLineEdit->setText(settings.serverURL);
    m_form->updateServerLineEdit->home(false);
    showCaptioned(m_form->currentVersionLabel, m_form->currentVersionNumberLabel,
                  settings.versionText);
    showCaptioned(m_form->lastCheckLabel, m_form->lastCheckDateLabel, settings.lastCheckText);
}

SoftwareUpdateDialogSettings SoftwareUpdateDialog::getDialogSettings()
{
    SoftwareUpdateDialogSettings settings;
    settings.doUpdateCheck = m_form->updateCheckBox->isChecked();
    settings.checkForBeta = m_form->checkForBetaCheckBox->isChecked();
    settings.updateInterval = m_form->updateComboBox->currentIndex();
    settings.serverURL = m_form->updateServerLineEdit->text();
    settings.versionText = m_form->currentVersionNumberLabel->text();
    settings.lastCheckText = m_form->lastCheckDateLabel->text();
    return settings;
}

void SoftwareUpdateDialog::setNotificationText(const QString& text)
{
    m_form->updateNotificationLabel->setText(text);
}

void SoftwareUpdateDialog::enableProgress()
{
    m_form->progressBar->show();
    m_form->progressBar->setEnabled(true);
}

void SoftwareUpdateDialog::disbaleProgress()
{
    m_form->progressBar->hide();
    m_form->progressBar->setEnabled(false);
}

void SoftwareUpdateDialog::emitApplySettings()
{
    emit applySettings(getDialogSettings());
}

void SoftwareUpdateDialog::standardButtonClicked(QAbstractButton* button)
{
    const QDialogButtonBox::ButtonRole role = m_form->buttonBox->buttonRole(button);
    if (role == QDialogButtonBox::ApplyRole || role == QDialogButtonBox::AcceptRole) {
        emit applySettings(getDialogSettings());
    }
}

} // namespace vx
