#include <QCryptographicHash>
#include <QtTest>

#include "tests/support/TestMain.h"
#include "trust/internal/FileDigest.h"

using namespace vx;

namespace {

QString write(const QTemporaryDir& folder, const QByteArray& content)
{
    QFile file(folder.filePath("package.zip"));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(file.fileName()));
    }
    return file.fileName();
}

} // namespace

class FileDigestTest : public QObject
{
    Q_OBJECT

private slots:
    void isThatOfSha256sum_data();
    void isThatOfSha256sum();
    void unreadable();
    void ends();
};

void FileDigestTest::isThatOfSha256sum_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("short") << QByteArray("abc");
    QTest::newRow("one piece") << QByteArray(256 * 1024, 'x');
    QTest::newRow("several pieces") << QByteArray(1000001, 'y');
}

void FileDigestTest::isThatOfSha256sum()
{
    QFETCH(QByteArray, content);
    const QTemporaryDir folder;
    const QString path = write(folder, content);
    QProcess sha256sum;
    sha256sum.start("sha256sum", {path});
    QVERIFY(sha256sum.waitForFinished());
    QCOMPARE(sha256OfFile(path).value_or("").toHex(), sha256sum.readAll().left(64));
}

void FileDigestTest::unreadable()
{
    const QTemporaryDir folder;
    QVERIFY(!sha256OfFile(folder.filePath("missing")).has_value());
    QVERIFY(!sha256OfFile(folder.path()).has_value());
    QBuffer closed;
    QTest::ignoreMessage(QtWarningMsg, "QIODevice::read (QBuffer): device not open");
    QVERIFY(!sha256Of(closed, [](qint64) { return true; }).has_value());
}

void FileDigestTest::ends()
{
    QBuffer buffer;
    buffer.setData(QByteArray(1000000, 'x'));
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    QList<qint64> steps;
    QVERIFY(!sha256Of(buffer, [&steps](qint64 done) {
                 steps.append(done);
                 return steps.size() < 2;
             }).has_value());
    QCOMPARE(steps, QList<qint64>({256 * 1024, 512 * 1024}));
}

VX_TEST_MAIN(FileDigestTest)
#include "tst_FileDigest.moc"
