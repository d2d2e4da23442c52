#include <QCheckBox>
#include <QLocale>
#include <QTableWidget>
#include <QtTest>

#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "tests/client/ClientFixture.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

/** Languages of firmware packages, one text each; "-" is an application package. */
QList<int> foreignRows(TestClient& client, const QStringList& packages)
{
    PackageInfoList list;
    for (const QString& languages : packages) {
        PackageInfo package;
        package.type = languages == "-" ? "Application" : "Camera Firmware";
        for (const QString& language : languages.split(' ', Qt::SkipEmptyParts)) {
            package.languages.insert(language);
        }
        list.append(package);
    }
    QList<int> rows;
    QMetaObject::invokeMethod(&client, "determineForeignLanguageRows", Qt::DirectConnection,
                              Q_RETURN_ARG(QList<int>, rows), Q_ARG(PackageInfoList, list));
    return rows;
}

QTableWidget* table()
{
    return availableDialog()->findChild<QTableWidget*>("tableWidget");
}

QList<int> hiddenRows()
{
    QList<int> rows;
    for (int row = 0; row < table()->rowCount(); ++row) {
        if (table()->isRowHidden(row)) {
            rows << row;
        }
    }
    return rows;
}

PackageFields firmware(const QString& languages)
{
    PackageFields fields = cameraPackage();
    fields["language"] = languages;
    fields["file-size"] = QString::number(1 + languages.size() * 100 + languages.at(0).unicode());
    return fields;
}

} // namespace

// Run once for each language of the system: the locale is fixed when a process starts.
class ClientForeignLanguagesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void rowsToHide_data();
    void rowsToHide();
    void rowsAreHiddenAtOnce();
    void showAllLanguages();
    void hiddenRowStaysSelected();

private:
    QString m_language;
};

void ClientForeignLanguagesTest::initTestCase()
{
    const QString environment = QString::fromLocal8Bit(qgetenv("LC_ALL"));
    m_language = environment.section('.', 0, 0).section('_', 0, 0);
    QVERIFY2(QStringList({"C", "de", "en", "fr"}).contains(m_language), qPrintable(environment));
    QCOMPARE(QLocale::system().name(), environment.section('.', 0, 0));
}

void ClientForeignLanguagesTest::rowsToHide_data()
{
    QTest::addColumn<QStringList>("packages");
    QTest::addColumn<QList<int>>("english");
    QTest::addColumn<QList<int>>("german");
    QTest::addColumn<QList<int>>("french");
    const QList<int> none;
    using Rows = QList<int>;
    QTest::newRow("nothing") << QStringList() << none << none << none;
    QTest::newRow("no firmware") << QStringList{"-", "-"} << none << none << none;
    QTest::newRow("one that suits") << QStringList{"de en fr"} << none << none << none;
    QTest::newRow("none that suits") << QStringList{"sv", "nl"} << none << none << none;
    QTest::newRow("German and English, English alone")
        << QStringList{"de en", "en"} << Rows{1} << Rows{1} << none;
    QTest::newRow("English alone") << QStringList{"en"} << none << none << none;
    QTest::newRow("German alone, both") << QStringList{"de", "en de"} << Rows{0} << none << none;
    QTest::newRow("German alone, French") << QStringList{"de", "fr"} << none << Rows{1} << Rows{0};
    QTest::newRow("French, both") << QStringList{"fr", "de en"} << Rows{0} << Rows{0} << Rows{1};
    QTest::newRow("application between")
        << QStringList{"fr", "-", "de en", "sv"} << Rows{0, 3} << Rows{0, 3} << Rows{2, 3};
    QTest::newRow("no language given")
        << QStringList{"", "de en fr"} << Rows{0} << Rows{0} << Rows{0};
    QTest::newRow("other case") << QStringList{"DE EN FR", "de en fr"} << Rows{0} << Rows{0}
                                << Rows{0};
    QTest::newRow("with a country")
        << QStringList{"de_DE en_GB fr_FR", "de en fr"} << Rows{0} << Rows{0} << Rows{0};
}

void ClientForeignLanguagesTest::rowsToHide()
{
    QFETCH(QStringList, packages);
    QFETCH(QList<int>, english);
    QFETCH(QList<int>, german);
    QFETCH(QList<int>, french);
    ClientFixture fixture;
    const QList<int> rows = foreignRows(fixture.start(), packages);
    // No firmware is made for the language "C", and where nothing suits nothing is hidden.
    const QMap<QString, QList<int>> expected{
        {"en", english}, {"de", german}, {"fr", french}, {"C", {}}};
    QCOMPARE(rows, expected.value(m_language));
}

void ClientForeignLanguagesTest::rowsAreHiddenAtOnce()
{
    ClientFixture fixture;
    fixture.start().setCurrentCameraVersions({qMakePair(QString("Mini-12"), VersionNumber("1.0"))});
    fixture.openAvailableDialog(
        {applicationPackage(), firmware("de"), firmware("de en"), firmware("fr"), firmware("sv")});
    QCOMPARE(table()->rowCount(), 5);
    const QMap<QString, QList<int>> expected{
        {"en", {1, 3, 4}}, {"de", {3, 4}}, {"fr", {1, 2, 4}}, {"C", {}}};
    QCOMPARE(hiddenRows(), expected.value(m_language));
}

void ClientForeignLanguagesTest::showAllLanguages()
{
    ClientFixture fixture;
    fixture.start().setCurrentCameraVersions({qMakePair(QString("Mini-12"), VersionNumber("1.0"))});
    const QList<PackageFields> packages{firmware("de en fr"), firmware("sv")};
    fixture.openAvailableDialog(packages);
    const QList<int> hidden = m_language == "C" ? QList<int>() : QList<int>{1};
    QCOMPARE(hiddenRows(), hidden);

    auto* box = availableDialog()->findChild<QCheckBox*>("showAllLanguagesCheckBox");
    QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, QPoint(5, box->height() / 2));
    QVERIFY(box->isChecked());
    QCOMPARE(hiddenRows(), QList<int>());
    table()->selectRow(0);
    QCOMPARE(hiddenRows(), QList<int>());
    fixture.openAvailableDialog(packages);
    QCOMPARE(hiddenRows(), QList<int>());

    QTest::keyClick(box, Qt::Key_Space);
    QVERIFY(!box->isChecked());
    QCOMPARE(hiddenRows(), hidden);
}

void ClientForeignLanguagesTest::hiddenRowStaysSelected()
{
    ClientFixture fixture;
    fixture.start().setCurrentCameraVersions({qMakePair(QString("Mini-12"), VersionNumber("1.0"))});
    fixture.openAvailableDialog({firmware("de en fr"), firmware("sv")});
    auto* box = availableDialog()->findChild<QCheckBox*>("showAllLanguagesCheckBox");
    QTest::keyClick(box, Qt::Key_Space);
    table()->selectRow(1);
    QTest::keyClick(box, Qt::Key_Space);
    QCOMPARE(table()->isRowHidden(1), m_language != "C");
    QVERIFY(table()->item(1, 0)->isSelected());

    table()->setRowHidden(1, false);
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, Qt::ControlModifier,
                      table()->visualItemRect(table()->item(0, 0)).center());
    QCOMPARE(table()->isRowHidden(1), m_language != "C");
    QVERIFY(table()->item(1, 0)->isSelected());
}

VX_TEST_MAIN(ClientForeignLanguagesTest)
#include "tst_ClientForeignLanguages.moc"
