#include "dialogs/SoftwareUpdateAvailableDialog.h"

#include <algorithm>

#include <QSet>

#include "base/KeepForever.h"
#include "base/LogLine.h"
#include "base/SignalArgumentType.h"
#include "host/CoreQt/Connect.h"
#include "ui_SoftwareUpdateAvailableGui.h"

namespace vx {

namespace {

// Without this the Tab key never leaves the table, and the link can be followed by mouse only.
void makeReachableByKeyboard(Ui_SoftwareUpdateAvailableGui& form)
{
    form.tableWidget->setTabKeyNavigation(false);
    form.vxLinkLabel->setTextInteractionFlags(Qt::LinksAccessibleByMouse |
                                              Qt::LinksAccessibleByKeyboard);
}

// Names for assistive tools are made of the form's own texts: those are in every language already.
void nameForAssistiveTools(Ui_SoftwareUpdateAvailableGui& form, const QString& dialogTitle)
{
    form.tableWidget->setAccessibleName(form.label_3->text());
    form.commentText->setAccessibleName(dialogTitle);
}

// The sentence beside the link takes the room of its row, and not only half of it.
void widenSupportLink(Ui_SoftwareUpdateAvailableGui& form)
{
    form.horizontalLayout_3->setStretchFactor(form.vxLinkLabel, 1);
}

// With a large font the form's own minimum width cuts off buttons, and a small screen allows so
// little height that texts are cut off. With an ordinary font nothing changes here.
void makeRoomForTexts(QDialog& dialog)
{
    const QLayout& layout = *dialog.layout();
    dialog.setMinimumWidth(std::max(dialog.minimumWidth(), layout.totalMinimumSize().width()));
    const int neededHeight = layout.minimumHeightForWidth(dialog.width());
    dialog.resize(dialog.width(), std::max(dialog.height(), neededHeight));
}

// The first row says how many columns there are. The table takes what a later row has beyond them
// for the next row; beyond its last cell it would take nothing, and lose the item.
void fillTable(QTableWidget& table, const QList<QStringList>& entries)
{
    const int cells = table.rowCount() * table.columnCount();
    for (int row = 0; row < entries.size(); ++row) {
        const QStringList& texts = entries.at(row);
        const int cellsLeft = cells - row * table.columnCount();
        for (int column = 0; column < std::min(cellsLeft, int(texts.size())); ++column) {
            table.setItem(row, column, new QTableWidgetItem(texts.at(column)));
        }
    }
}

void layOutColumns(QTableWidget& table)
{
    table.resizeColumnsToContents();
    table.horizontalHeader()->setHighlightSections(false);
    table.horizontalHeader()->setSortIndicatorShown(false);
    table.horizontalHeader()->setStretchLastSection(true);
}

} // namespace

SoftwareUpdateAvailableDialog::SoftwareUpdateAvailableDialog(QWidget* parent, Qt::WindowFlags flags)
    : QDialog(parent, flags)
    , m_form(keepForever(new Ui_SoftwareUpdateAvailableGui))
{
    m_form->setupUi(this);
    makeReachableByKeyboard(*m_form);
    widenSupportLink(*m_form);
    nameForAssistiveTools(*m_form, windowTitle());
    registerSignalArgument<SoftUpIndexList>("SoftUpIndexList");

    const Qt::ConnectionType automatic = Qt::AutoConnection;
    vx::connect(m_form->downloadPushButton, SIGNAL(clicked()), this, SLOT(downloadPackagePressed()),
                automatic);
    vx::connect(m_form->installPushButton, SIGNAL(clicked()), this, SLOT(installPackagePressed()),
                automatic);
    vx::connect(m_form->releaseNotesPushButton, SIGNAL(clicked()), this,
                SLOT(releaseNotesPressed()), automatic);
    vx::connect(m_form->tableWidget, SIGNAL(itemSelectionChanged()), this,
                SLOT(currentItemsChanged()), automatic);
    vx::connect(m_form->showAllLanguagesCheckBox, SIGNAL(clicked()), this,
                SLOT(showAllLanguagesPressed()), automatic);
    vx::connect(m_form->updateSettingsPushButton, SIGNAL(clicked()), this,
                SIGNAL(openUpdateSettings()), automatic);

    m_form->tableWidget->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_form->installPushButton->setDefault(true);
    m_form->installPushButton->setAutoDefault(true);
    adjustSize();
    makeRoomForTexts(*this);
    m_form->commentText->hide();
}

// The form object outlives the dialog on purpose, unlike that of SoftwareUpdateDialog.
SoftwareUpdateAvailableDialog::~SoftwareUpdateAvailableDialog() = default;

void SoftwareUpdateAvailableDialog::setTableHeaders(QStringList const& headers)
{
    m_form->tableWidget->setHorizontalHeaderLabels(headers);
    m_form->tableWidget->resizeColumnsToContents();
}

void SoftwareUpdateAvailableDialog::setTableEntries(QList<QStringList> const& entries)
{
    QTableWidget& table = *m_form->tableWidget;
    table.clear();
    m_form->commentText->clear();
    m_form->commentText->hide();
    if (entries.isEmpty()) {
        logLine(3,
                QStringLiteral(
                    "SoftwareUpdateAvailableDialog::setTableEntries() -> no table entries set!"));
        return;
    }
    table.setRowCount(int(entries.size()));
    table.setColumnCount(int(entries.first().size()));
    table.verticalHeader()->hide();
    table.setSortingEnabled(false);
    fillTable(table, entries);
    layOutColumns(table);
    currentItemsChanged();
}

void SoftwareUpdateAvailableDialog::setHiddenEntries(QList<int> rows)
{
    std::sort(rows.begin(), rows.end());
    // One step past the last row, which the table ignores.
    for (int row = 0; row <= m_form->tableWidget->rowCount(); ++row) {
        m_form->tableWidget->setRowHidden(row, std::binary_search(rows.cbegin(), rows.cend(), row));
    }
}

void SoftwareUpdateAvailableDialog::setCommentText(const QString& text)
{
    if (text.isEmpty()) {
        m_form->commentText->hide();
        return;
    }
    m_form->commentText->setText(text);
    m_form->commentText->show();
}

bool SoftwareUpdateAvailableDialog::getShowAllLanguagesState()
{
    return m_form->showAllLanguagesCheckBox->isChecked();
}

void SoftwareUpdateAvailableDialog::setInstallButtonState(bool enabled)
{
    m_form->installPushButton->setEnabled(enabled);
}

void SoftwareUpdateAvailableDialog::setDownloadButtonState(bool enabled)
{
    m_form->downloadPushButton->setEnabled(enabled);
}

void SoftwareUpdateAvailableDialog::setRealeaseNotesButtonState(bool enabled)
{
    m_form->releaseNotesPushButton->setEnabled(enabled);
}

void SoftwareUpdateAvailableDialog::downloadPackagePressed()
{
    emit downloadUrls(getCurrentSelectedItems());
}

// The current row and not the selection: after a row was control-clicked off, the two differ.
void SoftwareUpdateAvailableDialog::installPackagePressed()
{
    emit installPackage(m_form->tableWidget->currentRow());
}

void SoftwareUpdateAvailableDialog::currentItemsChanged()
{
    emit currentItemsChangedSig(getCurrentSelectedItems());
}

void SoftwareUpdateAvailableDialog::releaseNotesPressed()
{
    emit downloadReleaseNotes(getCurrentSelectedItems());
}

SoftUpIndexList SoftwareUpdateAvailableDialog::getCurrentSelectedItems()
{
    SoftUpIndexList rows;
    QSet<int> seen;
    const QList<QTableWidgetItem*> items = m_form->tableWidget->selectedItems();
    for (const QTableWidgetItem* item : items) {
        const int row = item->row();
        if (!seen.contains(row)) {
            seen.insert(row);
            rows.append(row);
        }
    }
    return rows;
}

void SoftwareUpdateAvailableDialog::showAllLanguagesPressed()
{
    emit showAllLanguages(m_form->showAllLanguagesCheckBox->isChecked());
}

} // namespace vx
