#include "dialogs/SoftwareUpdateAvailableDialog.h"

#include <QSplitter>
#include <QTableWidget>
#include <QtTest>

#include "tests/dialogs/ChildAccess.h"
#include "tests/dialogs/FormTable.h"
#include "tests/support/TestMain.h"
#include "ui_SoftwareUpdateAvailableGui.h"

using namespace vx::test;

namespace {

const QVariant expanding = policy(QSizePolicy::Expanding, QSizePolicy::Expanding);

const char* const linkText =
    "For more information and updates visit "
    "<a href =\"http://www.example.com/other/Support/Software-Downloads\">www.example.com</a>";
const char* const explanation =
    "You can download and install the package manually or start the installation immediately "
    "(only available for supported package types).";

const std::vector<FormRow>& formRows()
{
    static const std::vector<FormRow> rows = {
        {"verticalLayout", "QVBoxLayout", {}},
        {"label_3",
         "QLabel",
         {{"text", "Select Packages from List:"},
          {"alignment", int(Qt::AlignBottom | Qt::AlignHCenter)}}},
        {"splitter", "QSplitter", {{"orientation", int(Qt::Vertical)}}},
        {"tableWidget",
         "QTableWidget",
         {{"horizontalScrollBarPolicy", int(Qt::ScrollBarAsNeeded)},
          {"showDropIndicator", false},
          {"dragDropOverwriteMode", false},
          {"selectionBehavior", int(QAbstractItemView::SelectRows)},
          {"selectionMode", int(QAbstractItemView::ExtendedSelection)},
          {"rowCount", 0},
          {"columnCount", 0}}},
        {"commentText", "QTextBrowser", {{"sizePolicy", expanding}, {"openExternalLinks", true}}},
        {"horizontalLayout_2", "QHBoxLayout", {}},
        {"showAllLanguagesCheckBox",
         "QCheckBox",
         {{"text", "Show all languages"}, {"checked", false}}},
        {"label_2",
         "QLabel",
         {{"text", explanation},
          {"alignment", int(Qt::AlignLeading | Qt::AlignLeft | Qt::AlignVCenter)},
          {"wordWrap", true},
          {"margin", 5}}},
        {"horizontalLayout", "QHBoxLayout", {}},
        {"releaseNotesPushButton", "QPushButton", {{"text", "Release Notes"}}},
        {"downloadPushButton", "QPushButton", {{"text", "Download Package"}}},
        {"installPushButton",
         "QPushButton",
         {{"text", "Install Package"}, {"default", true}, {"autoDefault", true}}},
        {"horizontalLayout_3", "QHBoxLayout", {}},
        {"vxLinkLabel",
         "QLabel",
         {{"text", linkText},
          {"sizePolicy", policy(QSizePolicy::Expanding, QSizePolicy::Preferred)},
          {"textFormat", int(Qt::AutoText)},
          {"wordWrap", true},
          {"openExternalLinks", true}}},
        {"updateSettingsPushButton", "QPushButton", {{"text", "Update Settings..."}}},
    };
    return rows;
}

const QString spacer = QStringLiteral("40x20 Expanding Minimum");

} // namespace

class AvailableDialogFormTest : public QObject
{
    Q_OBJECT

private slots:
    void holdsObject_data();
    void holdsObject();
    void holdsNothingElse();
    void ordersItems_data();
    void ordersItems();
    void splitsTableFromComment();
    void setsUpDialog();
    void fitsItsSizeToAllOfTheForm();
    void keepsForeignObjectName();
    void takesParentAndFlags();
};

void AvailableDialogFormTest::holdsObject_data()
{
    addFormRows(formRows());
}

void AvailableDialogFormTest::holdsObject()
{
    QFETCH(QString, name);
    QFETCH(QString, className);
    QFETCH(int, index);
    vx::SoftwareUpdateAvailableDialog dialog(nullptr, {});

    const auto* object = dialog.findChild<QObject*>(name);
    QVERIFY(object != nullptr);
    QCOMPARE(QString::fromLatin1(object->metaObject()->className()), className);
    QCOMPARE(differences(*object, formRows().at(size_t(index)).properties), QString());
}

void AvailableDialogFormTest::holdsNothingElse()
{
    vx::SoftwareUpdateAvailableDialog dialog(nullptr, {});
    QStringList named;
    for (const QWidget* widget :
         dialog.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        named.append(widget->objectName());
    }
    QCOMPARE(named, QStringList({"label_3", "splitter", "showAllLanguagesCheckBox", "label_2",
                                 "releaseNotesPushButton", "downloadPushButton",
                                 "installPushButton", "vxLinkLabel", "updateSettingsPushButton"}));
}

void AvailableDialogFormTest::ordersItems_data()
{
    QTest::addColumn<QStringList>("items");
    QTest::newRow("verticalLayout")
        << QStringList({"label_3", "splitter", "horizontalLayout_2", "label_2", "horizontalLayout",
                        "15x5 Minimum Fixed", "horizontalLayout_3"});
    QTest::newRow("horizontalLayout_2") << QStringList({"showAllLanguagesCheckBox", spacer});
    QTest::newRow("horizontalLayout") << QStringList(
        {"releaseNotesPushButton", spacer, "downloadPushButton", "installPushButton"});
    QTest::newRow("horizontalLayout_3")
        << QStringList({"vxLinkLabel", spacer, "updateSettingsPushButton"});
}

void AvailableDialogFormTest::ordersItems()
{
    QFETCH(QStringList, items);
    vx::SoftwareUpdateAvailableDialog dialog(nullptr, {});
    const auto* layout = dialog.findChild<QLayout*>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(layout != nullptr);
    QCOMPARE(itemsOf(*layout), items);
}

void AvailableDialogFormTest::splitsTableFromComment()
{
    vx::SoftwareUpdateAvailableDialog dialog(nullptr, {});
    const auto& splitter = child<QSplitter>(dialog, "splitter");
    QCOMPARE(splitter.count(), 2);
    QCOMPARE(splitter.widget(0)->objectName(), QString("tableWidget"));
    QCOMPARE(splitter.widget(1)->objectName(), QString("commentText"));
}

void AvailableDialogFormTest::setsUpDialog()
{
    QDialog dialog;
    Ui_SoftwareUpdateAvailableGui form;
    form.setupUi(&dialog);
    QCOMPARE(dialog.objectName(), QString("SoftwareUpdateAvailableGui"));
    QCOMPARE(dialog.windowTitle(), QString("Update Available"));
    QCOMPARE(dialog.size(), QSize(550, 548));
    QCOMPARE(dialog.minimumSize(), QSize(550, 0));
    const Properties expected = {
        {"windowModality", int(Qt::NonModal)}, {"minimumWidth", 550}, {"sizePolicy", expanding}};
    QCOMPARE(differences(dialog, expected), QString());
    QCOMPARE(dialog.layout(), form.verticalLayout);

    vx::SoftwareUpdateAvailableDialog real(nullptr, {});
    QCOMPARE(real.objectName(), dialog.objectName());
    QCOMPARE(real.windowTitle(), dialog.windowTitle());
    QCOMPARE(differences(real, expected), QString());
    QCOMPARE(real.layout()->objectName(), QString("verticalLayout"));
}

// The room of the comment, which is hidden afterwards, included. With texts of ordinary size either
// would be more than the two thirds of the screen that a new dialog may take.
void AvailableDialogFormTest::fitsItsSizeToAllOfTheForm()
{
    const QFont ordinary = QApplication::font();
    QFont small = ordinary;
    small.setPixelSize(4);
    QApplication::setFont(small);
    QDialog dialog;
    Ui_SoftwareUpdateAvailableGui form;
    form.setupUi(&dialog);
    dialog.adjustSize();
    const vx::SoftwareUpdateAvailableDialog real(nullptr, {});
    QApplication::setFont(ordinary);
    QCOMPARE(real.size(), dialog.size());
}

void AvailableDialogFormTest::keepsForeignObjectName()
{
    QDialog dialog;
    dialog.setObjectName("named before");
    Ui_SoftwareUpdateAvailableGui form;
    form.setupUi(&dialog);
    QCOMPARE(dialog.objectName(), QString("named before"));
}

void AvailableDialogFormTest::takesParentAndFlags()
{
    QWidget parent;
    const Qt::WindowFlags flags = Qt::Tool | Qt::WindowStaysOnTopHint;
    const auto* dialog = new vx::SoftwareUpdateAvailableDialog(&parent, flags);
    QCOMPARE(dialog->parentWidget(), &parent);
    QCOMPARE(dialog->windowFlags() & flags, flags);
    QCOMPARE(dialog->windowFlags() & Qt::WindowType_Mask, Qt::WindowFlags(Qt::Tool));
}

VX_TEST_MAIN(AvailableDialogFormTest)
#include "tst_AvailableDialogForm.moc"
