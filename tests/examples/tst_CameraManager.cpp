#include <QDir>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include "tests/support/TestMain.h"

namespace {

struct Result
{
    int exitCode = -1;
    QString output;
    QString errors;
};

/** Runs the application to its end, with all that it may leave behind below @p folder. */
Result run(const QStringList& arguments, const QTemporaryDir& folder,
           const QString& scaleFactor = QStringLiteral("1"), const QString& hashSeed = QString())
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    for (const char* variable : {"HOME", "TMPDIR", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
        const QString name = QString::fromLatin1(variable);
        QDir(folder.path()).mkpath(name);
        environment.insert(name, folder.filePath(name));
    }
    environment.insert(QStringLiteral("QT_SCALE_FACTOR"), scaleFactor);
    if (!hashSeed.isEmpty()) {
        environment.insert(QStringLiteral("QT_HASH_SEED"), hashSeed);
    }
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder.path());
    process.start(QStringLiteral(CAMERA_MANAGER), arguments);
    const bool ended = process.waitForFinished(120000);
    const bool regular = ended && process.exitStatus() == QProcess::NormalExit;
    return {regular ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

QStringList filesBelow(const QString& folder)
{
    QStringList files;
    QDirIterator iterator(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (iterator.hasNext()) {
        files.append(iterator.next());
    }
    return files;
}

} // namespace

class CameraManagerTest : public QObject
{
    Q_OBJECT

private slots:
    void tourShowsTheWholeFlow_data();
    void tourShowsTheWholeFlow();
    void tourLeavesNothingBehind();
    void tourFailsWhenAStepDoesNotHappen();
    void tourFailsWithoutAPlaceForPictures();
    void helpNamesEveryOption();
    void refusesWhatItDoesNotUnderstand_data();
    void refusesWhatItDoesNotUnderstand();

private:
    static void checkPictures(const QDir& pictures);

    QString m_row;
};

void CameraManagerTest::tourShowsTheWholeFlow_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("scaleFactor");
    QTest::addColumn<QString>("hashSeed");
    QTest::addColumn<QString>("hint");
    QTest::newRow("en") << "en"
                        << "1.25"
                        << "1"
                        << "Help > Check for Updates... looks for something newer.";
    QTest::newRow("de") << "de"
                        << "1.5"
                        << "3"
                        << "Hilfe > Nach Updates suchen... sucht nach etwas Neuerem.";
    QTest::newRow("fr") << "fr"
                        << "2"
                        << "333"
                        << QString::fromUtf8("Aide > Rechercher des mises à jour... cherche");
}

void CameraManagerTest::tourShowsTheWholeFlow()
{
    QFETCH(QString, language);
    QFETCH(QString, scaleFactor);
    QFETCH(QString, hashSeed);
    QFETCH(QString, hint);
    const QTemporaryDir folder;
    const Result result = run({"--tour", "--out", "pictures/here", "--language", language}, folder,
                              scaleFactor, hashSeed);
    QVERIFY2(result.exitCode == 0, qPrintable(result.output + result.errors));
    for (const char* line :
         {"Congratulations! Your product is up-to-date!", "No update available!",
          "CameraManager 5.3 | 1.4 MB | mpkg | ", "Firmware Dome-24 4.2 | ",
          "After downloading the package, the installer will automatically exit and restart",
          "/CameraManager-5.3.mpkg", "Error downloading! Http status code 200",
          "The second try succeeds", "a forged package is refused",
          "The package that its publisher sealed is installed",
          "All 20 steps happened. Pictures: pictures/here"}) {
        QVERIFY2(result.output.contains(QLatin1String(line)), line);
    }
    QVERIFY2(result.output.contains(hint), qPrintable(result.output));
    // Its platforms stand in the same order in each run.
    const QString row = result.output.split('\n').filter("CameraManager 5.3 | ").value(0).trimmed();
    m_row = m_row.isEmpty() ? row : m_row;
    QCOMPARE(row, m_row);
    checkPictures(QDir(folder.filePath("pictures/here")));
}

void CameraManagerTest::checkPictures(const QDir& pictures)
{
    for (const char* name : {"window", "settings", "up-to-date", "no-update", "all-languages",
                             "update-available", "confirmation", "progress", "installed",
                             "broken-download", "recovered", "forged-package", "sealed-package"}) {
        const QStringList files = pictures.entryList({QStringLiteral("*-%1.png").arg(name)});
        QCOMPARE(files.size(), 1);
        QVERIFY2(!QImage(pictures.filePath(files.constFirst())).isNull(), name);
    }
}

// This one is without any scaling.
void CameraManagerTest::tourLeavesNothingBehind()
{
    const QTemporaryDir folder;
    const Result result = run({"--out", "pictures"}, folder);
    QVERIFY2(result.exitCode == 0, qPrintable(result.output + result.errors));
    QVERIFY(!filesBelow(folder.filePath("pictures")).isEmpty());
    QVERIFY(QDir(folder.filePath("pictures")).removeRecursively());
    QCOMPARE(filesBelow(folder.path()), QStringList());
}

void CameraManagerTest::tourFailsWhenAStepDoesNotHappen()
{
    const QTemporaryDir folder;
    const Result result = run({"--version", "5.3"}, folder);
    QCOMPARE(result.exitCode, 1);
    QVERIFY(result.output.contains("Did not happen: Selecting the application shows its comment"));
    QVERIFY(result.output.contains("On the screen: "));
    QVERIFY(!result.output.contains("steps happened"));
}

void CameraManagerTest::tourFailsWithoutAPlaceForPictures()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const Result result = run({"--out", "file/pictures"}, folder);
    QCOMPARE(result.exitCode, 1);
    QVERIFY(result.output.contains("Cannot save a picture in file/pictures"));
}

void CameraManagerTest::helpNamesEveryOption()
{
    const QTemporaryDir folder;
    const Result result = run({"--help"}, folder);
    QCOMPARE(result.exitCode, 0);
    for (const char* option :
         {"--tour", "--out", "--server", "--version", "--camera", "--language", "--help"}) {
        QVERIFY2(result.output.contains(QLatin1String(option)), option);
    }
}

void CameraManagerTest::refusesWhatItDoesNotUnderstand_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("complaint");
    QTest::newRow("option") << QStringList{"--nonsense"} << "nonsense";
    QTest::newRow("word") << QStringList{"nonsense"} << "Not understood: nonsense";
    QTest::newRow("language") << QStringList{"--language", "xx"} << "No such language: \"xx\"";
    QTest::newRow("camera without version") << QStringList{"--camera", "Dome"} << "Not a camera";
    QTest::newRow("camera with a comma") << QStringList{"--camera", "a,b=1"} << "Not a camera";
    QTest::newRow("camera with a colon") << QStringList{"--camera", "a:b=1"} << "Not a camera";
    QTest::newRow("second camera")
        << QStringList{"--camera", "a=1", "--camera", "=1"} << "Not a camera: \"=1\"";
    QTest::newRow("server on a tour")
        << QStringList{"--server", "http://a.example.com/"} << "--server";
}

void CameraManagerTest::refusesWhatItDoesNotUnderstand()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, complaint);
    const QTemporaryDir folder;
    const Result result = run(arguments, folder);
    QCOMPARE(result.exitCode, 2);
    QVERIFY2(result.errors.contains(complaint), qPrintable(result.errors));
    QVERIFY(result.output.isEmpty());
}

VX_TEST_MAIN(CameraManagerTest)

#include "tst_CameraManager.moc"
