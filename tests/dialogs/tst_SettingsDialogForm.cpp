#include "dialogs/SoftwareUpdateDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFrame>
#include <QProgressBar>
#include <QtTest>

#include "tests/dialogs/ChildAccess.h"
#include "tests/dialogs/FormTable.h"
#include "tests/support/TestMain.h"
#include "ui_SoftwareUpdateDialogGui.h"

using namespace vx::test;

namespace {

const QVariant minimum = policy(QSizePolicy::Minimum, QSizePolicy::Minimum);
const QVariant fixedSize = policy(QSizePolicy::Fixed, QSizePolicy::Fixed);
const QVariant expanding = policy(QSizePolicy::Expanding, QSizePolicy::Expanding);
const int rightAndMiddle = Qt::AlignRight | Qt::AlignVCenter | Qt::AlignTrailing;
const int centre = Qt::AlignCenter;
const int topCentre = Qt::AlignHCenter | Qt::AlignTop;

const std::vector<FormRow>& formRows()
{
    static const std::vector<FormRow> rows = {
        {"verticalLayout", "QVBoxLayout", {}},
        {"label",
         "QLabel",
         {{"text", "You can search for new versions manually or automatically."},
          {"alignment", centre},
          {"wordWrap", true}}},
        {"horizontalLayout_4", "QHBoxLayout", {}},
        {"currentVersionLabel",
         "QLabel",
         {{"text", "Current version:"},
          {"sizePolicy", minimum},
          {"sizeIncrement", QSize(0, 0)},
          {"alignment", rightAndMiddle}}},
        {"currentVersionNumberLabel", "QLabel", {{"text", ""}, {"wordWrap", true}}},
        {"verticalLayout_3", "QVBoxLayout", {{"spacing", 0}}},
        {"horizontalLayout_3", "QHBoxLayout", {}},
        {"updatePushButton", "QPushButton", {{"text", "Check Now"}}},
        {"horizontalLayout_5", "QHBoxLayout", {}},
        {"progressBar",
         "QProgressBar",
         {{"enabled", false},
          {"sizePolicy", fixedSize},
          {"minimumSize", QSize(80, 10)},
          {"maximumSize", QSize(80, 15)},
          {"minimum", 0},
          {"maximum", 0},
          {"value", 2433587},
          {"textVisible", false}}},
        {"lastCheckLabel",
         "QLabel",
         {{"text", "Last check"},
          {"sizePolicy", minimum},
          {"sizeIncrement", QSize(0, 0)},
          {"alignment", centre}}},
        {"lastCheckDateLabel",
         "QLabel",
         {{"text", ""}, {"alignment", topCentre}, {"wordWrap", true}, {"margin", 0}}},
        {"updateNotificationLabel",
         "QLabel",
         {{"text", ""},
          {"sizePolicy", expanding},
          {"minimumSize", QSize(0, 50)},
          {"maximumSize", QSize(16777215, 16777215)},
          {"scaledContents", false},
          {"alignment", topCentre},
          {"wordWrap", true},
          {"margin", 5}}},
        {"line",
         "QFrame",
         {{"frameShape", int(QFrame::HLine)}, {"frameShadow", int(QFrame::Sunken)}}},
        {"horizontalLayout", "QHBoxLayout", {}},
        {"updateCheckBox", "QCheckBox", {{"text", "Check for updates:"}}},
        {"updateComboBox", "QComboBox", {{"count", 4}}},
        {"horizontalLayout_6", "QHBoxLayout", {}},
        {"checkForBetaCheckBox",
         "QCheckBox",
         {{"text", "Include beta versions"}, {"enabled", true}}},
        {"verticalLayout_2", "QVBoxLayout", {}},
        {"updateServerLabel", "QLabel", {{"text", "Update server URL:"}}},
        {"updateServerLineEdit", "QLineEdit", {{"text", ""}}},
        {"horizontalLayout_2", "QHBoxLayout", {}},
        {"buttonBox",
         "QDialogButtonBox",
         {{"sizePolicy", fixedSize},
          {"orientation", int(Qt::Horizontal)},
          {"standardButtons", int(QDialogButtonBox::Ok | QDialogButtonBox::Cancel)}}},
    };
    return rows;
}

const QString spacer = QStringLiteral("40x20 Expanding Minimum");

} // namespace

class SettingsDialogFormTest : public QObject
{
    Q_OBJECT

private slots:
    void holdsObject_data();
    void holdsObject();
    void holdsNothingElse();
    void ordersItems_data();
    void ordersItems();
    void listsIntervals();
    void setsUpDialog();
    void keepsForeignObjectName();
    void takesParentAndFlags();
    void leavesSideMarginsToTheStyle();
    void takesItsWidgetsAlong();
};

void SettingsDialogFormTest::holdsObject_data()
{
    addFormRows(formRows());
}

void SettingsDialogFormTest::holdsObject()
{
    QFETCH(QString, name);
    QFETCH(QString, className);
    QFETCH(int, index);
    vx::SoftwareUpdateDialog dialog(nullptr, {});

    const auto* object = dialog.findChild<QObject*>(name);
    QVERIFY(object != nullptr);
    QCOMPARE(QString::fromLatin1(object->metaObject()->className()), className);
    QCOMPARE(differences(*object, formRows().at(size_t(index)).properties), QString());
}

void SettingsDialogFormTest::holdsNothingElse()
{
    vx::SoftwareUpdateDialog dialog(nullptr, {});
    QStringList named;
    for (const QWidget* widget :
         dialog.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        named.append(widget->objectName());
    }
    QCOMPARE(named, QStringList({"label", "currentVersionLabel", "currentVersionNumberLabel",
                                 "updatePushButton", "progressBar", "lastCheckLabel",
                                 "lastCheckDateLabel", "updateNotificationLabel", "line",
                                 "updateCheckBox", "updateComboBox", "checkForBetaCheckBox",
                                 "updateServerLabel", "updateServerLineEdit", "buttonBox"}));
}

void SettingsDialogFormTest::ordersItems_data()
{
    QTest::addColumn<QStringList>("items");
    QTest::newRow("verticalLayout") << QStringList(
        {"label", "horizontalLayout_4", "verticalLayout_3", "lastCheckLabel", "lastCheckDateLabel",
         "updateNotificationLabel", "line", "horizontalLayout", "horizontalLayout_6",
         "verticalLayout_2", "20x20 Minimum MinimumExpanding", "horizontalLayout_2"});
    QTest::newRow("horizontalLayout_4")
        << QStringList({spacer, "currentVersionLabel", "currentVersionNumberLabel", spacer});
    QTest::newRow("verticalLayout_3") << QStringList({"horizontalLayout_3", "horizontalLayout_5"});
    QTest::newRow("horizontalLayout_3") << QStringList({spacer, "updatePushButton", spacer});
    QTest::newRow("horizontalLayout_5") << QStringList({spacer, "progressBar", spacer});
    QTest::newRow("horizontalLayout") << QStringList({"updateCheckBox", "updateComboBox", spacer});
    QTest::newRow("horizontalLayout_6") << QStringList({"checkForBetaCheckBox", spacer});
    QTest::newRow("verticalLayout_2") << QStringList({"updateServerLabel", "updateServerLineEdit"});
    QTest::newRow("horizontalLayout_2") << QStringList({"123x17 Expanding Minimum", "buttonBox"});
}

void SettingsDialogFormTest::ordersItems()
{
    QFETCH(QStringList, items);
    vx::SoftwareUpdateDialog dialog(nullptr, {});
    const auto* layout = dialog.findChild<QLayout*>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(layout != nullptr);
    QCOMPARE(itemsOf(*layout), items);
}

void SettingsDialogFormTest::listsIntervals()
{
    vx::SoftwareUpdateDialog dialog(nullptr, {});
    const auto& box = child<QComboBox>(dialog, "updateComboBox");
    QStringList entries;
    for (int i = 0; i < box.count(); ++i) {
        entries.append(box.itemText(i));
    }
    QCOMPARE(entries, QStringList({"At application start", "Daily", "Weekly", "Monthly"}));
    QVERIFY(!box.isEditable());
}

void SettingsDialogFormTest::setsUpDialog()
{
    QDialog dialog;
    Ui_SoftwareUpdateDialogGui form;
    form.setupUi(&dialog);
    QCOMPARE(dialog.objectName(), QString("SoftwareUpdateDialogGui"));
    QCOMPARE(dialog.windowTitle(), QString("Check for Updates"));
    QCOMPARE(dialog.size(), QSize(442, 455));
    QCOMPARE(differences(dialog, {{"sizePolicy", fixedSize}}), QString());
    QCOMPARE(dialog.layout(), form.verticalLayout);

    vx::SoftwareUpdateDialog real(nullptr, {});
    QCOMPARE(real.objectName(), dialog.objectName());
    QCOMPARE(real.windowTitle(), dialog.windowTitle());
    QCOMPARE(real.size(), dialog.size());
    QCOMPARE(differences(real, {{"sizePolicy", fixedSize}}), QString());
    QCOMPARE(real.layout()->objectName(), QString("verticalLayout"));
}

void SettingsDialogFormTest::keepsForeignObjectName()
{
    QDialog dialog;
    dialog.setObjectName("named before");
    Ui_SoftwareUpdateDialogGui form;
    form.setupUi(&dialog);
    QCOMPARE(dialog.objectName(), QString("named before"));
}

void SettingsDialogFormTest::leavesSideMarginsToTheStyle()
{
    QDialog dialog;
    Ui_SoftwareUpdateDialogGui form;
    form.setupUi(&dialog);
    // A layout moved to a widget of its own takes the style's margin where none is set.
    auto* styled = new QWidget(&dialog);
    form.verticalLayout->removeItem(form.verticalLayout_3);
    form.verticalLayout_3->setParent(nullptr);
    styled->setLayout(form.verticalLayout_3);
    const int left = styled->style()->pixelMetric(QStyle::PM_LayoutLeftMargin, nullptr, styled);
    const int right = styled->style()->pixelMetric(QStyle::PM_LayoutRightMargin, nullptr, styled);
    QVERIFY(left > 0);
    QCOMPARE(form.verticalLayout_3->contentsMargins(), QMargins(left, 0, right, 0));

    auto* other = new QWidget(&dialog);
    form.verticalLayout->removeItem(form.horizontalLayout_6);
    form.horizontalLayout_6->setParent(nullptr);
    other->setLayout(form.horizontalLayout_6);
    const int bottom = other->style()->pixelMetric(QStyle::PM_LayoutBottomMargin, nullptr, other);
    QCOMPARE(form.horizontalLayout_6->contentsMargins(), QMargins(left, 0, right, bottom));
}

void SettingsDialogFormTest::takesItsWidgetsAlong()
{
    auto* dialog = new vx::SoftwareUpdateDialog(nullptr, {});
    const QPointer<QWidget> box = &child<QWidget>(*dialog, "buttonBox");
    delete dialog;
    QVERIFY(box.isNull());
}

void SettingsDialogFormTest::takesParentAndFlags()
{
    QWidget parent;
    const Qt::WindowFlags flags = Qt::Tool | Qt::WindowStaysOnTopHint;
    const auto* dialog = new vx::SoftwareUpdateDialog(&parent, flags);
    QCOMPARE(dialog->parentWidget(), &parent);
    QCOMPARE(dialog->windowFlags() & flags, flags);
    QCOMPARE(dialog->windowFlags() & Qt::WindowType_Mask, Qt::WindowFlags(Qt::Tool));
}

VX_TEST_MAIN(SettingsDialogFormTest)
#include "tst_SettingsDialogForm.moc"
