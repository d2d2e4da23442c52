#include <QPointer>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include "host/CoreQt/IOException.h"
#include "host/FileFormatsZip/ZipReader.h"
#include "tests/host/FileFormatsZip/Unpacking.h"
#include "tests/support/TestMain.h"
#include "tests/support/Throws.h"
#include "tests/support/ZipBuilder.h"

using namespace vx::test;
using vx::IOException;
using vx::ZipReader;

/** The reader and its dialog, on an archive that takes seconds to unpack. */
class ZipReaderProgressTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void drivesTheDialog();
    void servesEvents();
    void withoutDialogNoEvents();
    void cancelStopsWithinAFile();
    void closingTheDialogCancels();
    void cancelButtonCancels();
    void cancelStopsThePlanning_data();
    void cancelStopsThePlanning();
    void cancelKeepsWhatIsThere();
    void cancelIsForgottenWithANewDialog();
    void failureIsNoCancel();
    void dialogDestroyedMeanwhile();
    void dialogDetachedMeanwhile();
    void readerDestroyedMeanwhile();
    void readerDestroyedByAModalDialog();
    void readerOpenedAnewMeanwhile();
    void extractingWhileExtracting();
    void smallArchiveEndsTheDialog();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }
    QString target() const { return path("target"); }
    qint64 unpackedSize() const { return QFileInfo(path("target/huge")).size(); }
    void onceUnderWay(const std::function<void()>& action);

    QTemporaryDir m_archives;
    QScopedPointer<QTemporaryDir> m_folder;
    QScopedPointer<ZipReader> m_reader;
    QScopedPointer<QProgressDialog> m_dialog;
};

void ZipReaderProgressTest::initTestCase()
{
    ZipBuilder{file("small"), fileOfZeros("huge", someSeconds)}.write(
        m_archives.filePath("huge.zip"));
}

void ZipReaderProgressTest::init()
{
    m_folder.reset(new QTemporaryDir);
    m_reader.reset(new ZipReader(m_archives.filePath("huge.zip"), nullptr));
    QVERIFY(m_reader->open(QIODevice::ReadOnly));
    m_dialog.reset(new QProgressDialog);
    m_dialog->setMinimumDuration(0);
    m_reader->attachProgressDialog(m_dialog.data());
}

/** Does something as soon as the dialog has got anywhere. */
void ZipReaderProgressTest::onceUnderWay(const std::function<void()>& action)
{
    const auto bar = m_dialog->findChild<QProgressBar*>();
    const auto connection = std::make_shared<QMetaObject::Connection>();
    *connection = connect(bar, &QProgressBar::valueChanged, this, [=](int value) {
        if (value > 0) {
            disconnect(*connection);
            QTimer::singleShot(0, this, action);
        }
    });
}

void ZipReaderProgressTest::drivesTheDialog()
{
    m_dialog->setAutoReset(false);
    QSignalSpy values(m_dialog->findChild<QProgressBar*>(), SIGNAL(valueChanged(int)));
    m_reader->extractFiles({"small", "huge"}, target(), false);

    QCOMPARE(m_dialog->minimum(), 0);
    QCOMPARE(m_dialog->maximum(), 1000);
    QCOMPARE(m_dialog->value(), 1000);
    QVERIFY(values.size() > 10);
    int last = -1;
    for (const QList<QVariant>& value : qAsConst(values)) {
        QVERIFY(value.first().toInt() > last);
        last = value.first().toInt();
    }
    QVERIFY(!m_reader->wasCanceled());
    QCOMPARE(quint64(unpackedSize()), someSeconds.count);
}

void ZipReaderProgressTest::servesEvents()
{
    QTimer timer;
    QSignalSpy ticks(&timer, SIGNAL(timeout()));
    timer.start(1);
    m_reader->extractFiles({"huge"}, target(), false);
    QVERIFY(ticks.size() > 10);
}

void ZipReaderProgressTest::withoutDialogNoEvents()
{
    m_reader->attachProgressDialog(nullptr);
    QTimer timer;
    QSignalSpy ticks(&timer, SIGNAL(timeout()));
    timer.start(0);
    m_reader->extractFiles({"small"}, target(), false);
    QCOMPARE(ticks.size(), 0);
    QCOMPARE(contentOf(path("target/small")), QByteArray("content"));
}

void ZipReaderProgressTest::cancelStopsWithinAFile()
{
    onceUnderWay([this] { m_dialog->cancel(); });
    m_reader->extractFiles({"huge"}, target(), false);
    QVERIFY(m_reader->wasCanceled());
    QVERIFY2(quint64(unpackedSize()) < someSeconds.count / 2,
             qPrintable(QString::number(unpackedSize())));
    m_dialog.reset();
    QVERIFY(m_reader->wasCanceled());
}

void ZipReaderProgressTest::closingTheDialogCancels()
{
    m_dialog->show();
    onceUnderWay([this] { m_dialog->close(); });
    m_reader->extractFiles({"huge"}, target(), false);
    QVERIFY(m_reader->wasCanceled());
    QVERIFY(quint64(unpackedSize()) < someSeconds.count / 2);
}

void ZipReaderProgressTest::cancelButtonCancels()
{
    onceUnderWay([this] { m_dialog->findChild<QPushButton*>()->click(); });
    m_reader->extractFiles({"huge"}, target(), false);
    QVERIFY(m_reader->wasCanceled());
    QVERIFY(!m_dialog->isVisible());
    QVERIFY(quint64(unpackedSize()) < someSeconds.count / 2);
}

void ZipReaderProgressTest::cancelStopsThePlanning_data()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::newRow("links") << linkBomb().bytes();
    QTest::newRow("folders") << folderBomb().bytes();
}

/** These archives are refused, but after seconds: cancelling comes first, and throws nothing. */
void ZipReaderProgressTest::cancelStopsThePlanning()
{
    QFETCH(QByteArray, archive);
    writeFile(path("a.zip"), archive);
    m_reader.reset(new ZipReader(path("a.zip"), nullptr));
    QVERIFY(m_reader->open(QIODevice::ReadOnly));
    m_reader->attachProgressDialog(m_dialog.data());
    const QStringList names = m_reader->fileList(QRegExp());
    QElapsedTimer ending;
    QTimer::singleShot(0, m_dialog.data(), [this, &ending] {
        ending.start();
        m_dialog->cancel();
    });
    m_reader->extractFiles(names, target(), false);
    QVERIFY(m_reader->wasCanceled());
    QVERIFY2(ending.elapsed() < 2000, qPrintable(QString::number(ending.elapsed())));
}

void ZipReaderProgressTest::cancelKeepsWhatIsThere()
{
    onceUnderWay([this] { m_dialog->cancel(); });
    m_reader->extractFiles({"small", "huge"}, target(), false);
    QCOMPARE(contentOf(path("target/small")), QByteArray("content"));
    QVERIFY(QFileInfo::exists(path("target/huge")));
}

void ZipReaderProgressTest::cancelIsForgottenWithANewDialog()
{
    onceUnderWay([this] { m_dialog->cancel(); });
    m_reader->extractFiles({"huge"}, target(), false);
    QVERIFY(m_reader->wasCanceled());
    QProgressDialog another;
    m_reader->attachProgressDialog(&another);
    QVERIFY(!m_reader->wasCanceled());
    m_dialog->cancel();
    QVERIFY(!m_reader->wasCanceled());
    m_reader->extractFiles({"small"}, target(), false);
    QCOMPARE(contentOf(path("target/small")), QByteArray("content"));
}

void ZipReaderProgressTest::failureIsNoCancel()
{
    VX_VERIFY_THROWS(m_reader->extractFiles({"missing"}, target(), false), IOException);
    QVERIFY(!m_reader->wasCanceled());
}

void ZipReaderProgressTest::dialogDestroyedMeanwhile()
{
    onceUnderWay([this] { m_dialog.reset(); });
    m_reader->extractFiles({"small", "huge"}, target(), false);
    QVERIFY(!m_dialog);
    QVERIFY(!m_reader->wasCanceled());
    QCOMPARE(quint64(unpackedSize()), someSeconds.count);
}

void ZipReaderProgressTest::dialogDetachedMeanwhile()
{
    onceUnderWay([this] { m_reader->attachProgressDialog(nullptr); });
    m_reader->extractFiles({"huge"}, target(), false);
    QCOMPARE(quint64(unpackedSize()), someSeconds.count);
    QVERIFY(m_dialog->value() < 1000);
}

void ZipReaderProgressTest::readerDestroyedMeanwhile()
{
    onceUnderWay([this] { m_reader.reset(); });
    ZipReader* const reader = m_reader.data();
    VX_VERIFY_THROWS(reader->extractFiles({"huge"}, target(), false), IOException);
    QVERIFY(!m_reader);
    QVERIFY(quint64(unpackedSize()) < someSeconds.count / 2);
}

/** Such a dialog processes events whenever its value is set; those are then the last. */
void ZipReaderProgressTest::readerDestroyedByAModalDialog()
{
    m_dialog->setWindowModality(Qt::WindowModal);
    bool isServed = false;
    // By the first value above zero, the dialog shows itself; by the next, it processes events.
    onceUnderWay([this, &isServed] {
        QTimer::singleShot(15, this, [this, &isServed] {
            m_reader.reset();
            QTimer::singleShot(0, this, [&isServed] { isServed = true; });
        });
    });
    ZipReader* const reader = m_reader.data();
    VX_VERIFY_THROWS(reader->extractFiles({"huge"}, target(), false), IOException);
    QVERIFY(!m_reader);
    QVERIFY(!isServed);
    QVERIFY(quint64(unpackedSize()) < someSeconds.count / 2);
    QTRY_VERIFY(isServed);
}

void ZipReaderProgressTest::readerOpenedAnewMeanwhile()
{
    onceUnderWay([this] { QVERIFY(!m_reader->open(QIODevice::WriteOnly)); });
    m_reader->extractFiles({"huge"}, target(), false);
    QCOMPARE(quint64(unpackedSize()), someSeconds.count);
    QVERIFY(!m_reader->isOpen());
}

void ZipReaderProgressTest::extractingWhileExtracting()
{
    QString reason;
    onceUnderWay([this, &reason] {
        try {
            m_reader->extractFiles({"small"}, path("other"), false);
        } catch (const IOException& exception) {
            reason = exception.message();
        }
        m_dialog->cancel();
    });
    m_reader->extractFiles({"huge"}, target(), false);
    QCOMPARE(reason, QString("The archive is being unpacked already."));
    QVERIFY(!QFileInfo::exists(path("other")));
}

void ZipReaderProgressTest::smallArchiveEndsTheDialog()
{
    m_dialog->setAutoReset(false);
    m_reader->extractFiles({"small"}, target(), false);
    QCOMPARE(m_dialog->value(), 1000);
    QVERIFY(!m_reader->wasCanceled());
}

VX_TEST_MAIN(ZipReaderProgressTest)
#include "tst_ZipReaderProgress.moc"
