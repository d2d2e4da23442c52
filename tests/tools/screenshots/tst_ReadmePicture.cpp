// README's picture is the one that the target "screenshots" makes. Its pixels depend on the fonts
// of a machine, so that what counts is what stands in it.
#include <QImage>
#include <QRegularExpression>
#include <QtTest>

#include "tests/support/TestMain.h"

namespace {

/** The lines of what a picture shows. Which platform of a package comes first is up to Qt's hash.
 */
QList<QStringList> shownIn(const QImage& picture)
{
    QList<QStringList> lines;
    for (const QString& line : picture.text("Description").split('\n')) {
        QStringList words = line.split(QRegularExpression("[ ,|]+"));
        words.sort();
        lines.append(words);
    }
    return lines;
}

} // namespace

class ReadmePictureTest : public QObject
{
    Q_OBJECT

private slots:
    void showsWhatIsDrawnToday();
    void showsWhatAPersonWouldExpect();
};

void ReadmePictureTest::showsWhatIsDrawnToday()
{
    const QImage inReadme(QStringLiteral(PICTURE_IN_README));
    const QImage today(QStringLiteral(PICTURE_OF_TODAY));
    QVERIFY(!inReadme.isNull());
    QVERIFY(!inReadme.text("Description").isEmpty());
    QCOMPARE(shownIn(inReadme), shownIn(today));
}

void ReadmePictureTest::showsWhatAPersonWouldExpect()
{
    const QString shown = QImage(QStringLiteral(PICTURE_IN_README)).text("Description");
    QVERIFY2(shown.contains("\nhttp://updates.example.com/CameraManager-5.3.mpkg.zip\n"),
             qPrintable(shown));
    QVERIFY2(shown.contains("\nCameraManager 5.3 | 1.4 MB | mpkg | "), qPrintable(shown));
    QVERIFY2(shown.contains("\nFirmware Mini-12 3.6 | "), qPrintable(shown));
}

VX_TEST_MAIN(ReadmePictureTest)
#include "tst_ReadmePicture.moc"
