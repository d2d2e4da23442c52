// The pictures of "preview", opened as a release manager would.
#include <QtTest>

#include <QImage>
#include <QJsonArray>

#include "tests/support/TestMain.h"
#include "tests/tools/update-catalogue/WorkbenchRun.h"

using vx::test::runWorkbench;
using vx::test::sampleCatalogue;
using vx::test::WorkbenchRun;

namespace {

const QStringList appOne{"--application", "App", "--version", "1.0", "--camera", "CAM-1=4.0"};

} // namespace

class PreviewTest : public QObject
{
    Q_OBJECT

private slots:
    void drawsTheDialog_data();
    void drawsTheDialog();
    void drawsNothingWithoutAnOffer();
    void warnsOnlyOfWhatCannotBeReached_data();
    void warnsOnlyOfWhatCannotBeReached();
    void drawsTheSameOnEveryScreen_data();
    void drawsTheSameOnEveryScreen();

private:
    static void checkDescription(const QStringList& shown, const QString& date);

    QTemporaryDir m_folder;
};

void PreviewTest::drawsTheDialog_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("date");

    QTest::newRow("English") << "en"
                             << "Published on Thursday, January 1, 2026";
    QTest::newRow("German") << "de"
                            << "Published on Donnerstag, 1. Januar 2026";
    QTest::newRow("French") << "fr"
                            << "Published on jeudi 1 janvier 2026";
}

void PreviewTest::drawsTheDialog()
{
    QFETCH(QString, language);
    QFETCH(QString, date);

    const QString out = m_folder.filePath(QString::fromUtf8("Bilder für alle"));
    const WorkbenchRun run = runWorkbench(
        QStringList{"preview", "--json", "-", "--language", language, "--out", out} + appOne,
        sampleCatalogue());
    const QStringList pictures{out + "/update-available-" + language + ".png",
                               out + "/update-available-" + language + "-selected.png"};
    QCOMPARE(run.json()["pictures"].toArray(), QJsonArray::fromStringList(pictures));
    QCOMPARE(run.json()["clipped"].toArray(), QJsonArray());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.errors, QString());
    const QImage plain(pictures.at(0));
    const QImage selected(pictures.at(1));
    QVERIFY(plain.width() >= 550);
    QVERIFY(!selected.isNull());
    QVERIFY(plain != selected);
    checkDescription(selected.text("Description").split('\n'), date);
}

void PreviewTest::checkDescription(const QStringList& shown, const QString& date)
{
    QVERIFY2(shown.contains(date), qPrintable(shown.join('\n')));
    QVERIFY(shown.contains("http://h.example.com/App.mpkg.zip"));
    QCOMPARE(shown.filter("App 2.0 | 0.0 MB | mpkg | ").size(), 1);
}

void PreviewTest::warnsOnlyOfWhatCannotBeReached_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("warning");

    QTest::newRow("short") << "Firmware"
                           << "";
    QTest::newRow("wider than the dialog as it opens") << QString("Firmware ").repeated(12) << "";
    QTest::newRow("wider than any dialog")
        << QString("Firmware ").repeated(40) << QString("Firmware ").repeated(40) + "4.2";
    QTest::newRow("two lines") << "Firmware\nfor Dome-24"
                               << "Firmware for Dome-24 4.2";
}

void PreviewTest::warnsOnlyOfWhatCannotBeReached()
{
    QFETCH(QString, name);
    QFETCH(QString, warning);

    const QByteArray catalogue =
        "<softwareList status=\"STABLE\"><package platform=\"CAM-1\" file-size=\"20\""
        " release=\"4.2\" url=\"http://h.example.com/a.bin\"><name>" +
        name.toUtf8() + "</name></package></softwareList>";
    const WorkbenchRun run = runWorkbench(
        QStringList{"preview", "-", "--out", m_folder.filePath("reach")} + appOne, catalogue);
    QCOMPARE(run.errors, QString());
    const QStringList warnings = run.output.split('\n').filter("warning: ");
    QCOMPARE(warnings.join('\n'),
             warning.isEmpty() ? QString()
                               : QString("warning: \"%1\" can't be read in full, not even on a "
                                         "screen of 1366 by 768")
                                     .arg(warning));
    QCOMPARE(run.exitCode, warning.isEmpty() ? 0 : 1);
}

void PreviewTest::drawsTheSameOnEveryScreen_data()
{
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QByteArray>("value");

    QTest::newRow("scaled") << QByteArray("QT_SCALE_FACTOR") << QByteArray("2");
    QTest::newRow("dense") << QByteArray("QT_FONT_DPI") << QByteArray("200");
    QTest::newRow("other language") << QByteArray("LC_ALL") << QByteArray("fr_FR.UTF-8");
    QTest::newRow("no folder of the session") << QByteArray("XDG_RUNTIME_DIR") << QByteArray();
}

void PreviewTest::drawsTheSameOnEveryScreen()
{
    QFETCH(QByteArray, variable);
    QFETCH(QByteArray, value);

    const QStringList arguments =
        QStringList{"preview", "-", "--out"} + QStringList{m_folder.filePath("same")} + appOne;
    const QString picture = m_folder.filePath("same/update-available-en-selected.png");
    QCOMPARE(runWorkbench(arguments, sampleCatalogue()).exitCode, 0);
    const QImage expected(picture);
    qputenv(variable.constData(), value);
    const WorkbenchRun run = runWorkbench(arguments, sampleCatalogue());
    qunsetenv(variable.constData());
    QCOMPARE(run.errors, QString());
    QCOMPARE(QImage(picture), expected);
}

void PreviewTest::drawsNothingWithoutAnOffer()
{
    const WorkbenchRun run = runWorkbench({"preview", "-", "--application", "App", "--version", "9",
                                           "--out", m_folder.filePath("none")},
                                          sampleCatalogue());
    QCOMPARE(run.exitCode, 1);
    QVERIFY(run.output.contains("Nothing is offered"));
    QVERIFY(!QFile::exists(m_folder.filePath("none")));
}

VX_TEST_MAIN(PreviewTest)
#include "tst_Preview.moc"
