// README's picture is the one that the target "screenshots" makes. Its pixels depend on the fonts
// of a machine, so that what counts is what stands in it.
#include <QImage>
#include <QtTest>

#include "tests/support/TestMain.h"

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
    QCOMPARE(inReadme.text("Description"), today.text("Description"));
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
