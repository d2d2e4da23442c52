#include <QDir>
#include <QLibrary>
#include <QResource>
#include <QtTest>

#include "tests/support/TestMain.h"

int qInitResources_Translations();
int qCleanupResources_Translations();

namespace {

const char* const german = ":/Translations/SoftwareUpdateClient_de.qm";
const char* const french = ":/Translations/SoftwareUpdateClient_fr.qm";

} // namespace

class TranslationResourceTest : public QObject
{
    Q_OBJECT

private slots:
    void isThereFromTheStart();
    void holdsTwoFiles();
    void storesUncompressed_data();
    void storesUncompressed();
    void comesAndGoes();
};

void TranslationResourceTest::isThereFromTheStart()
{
    QVERIFY(QFile::exists(german));
    QVERIFY(QFile::exists(french));
}

void TranslationResourceTest::holdsTwoFiles()
{
    QCOMPARE(QDir(":/Translations").entryList(QDir::NoFilter, QDir::Name),
             QStringList({"SoftwareUpdateClient_de.qm", "SoftwareUpdateClient_fr.qm"}));
}

void TranslationResourceTest::storesUncompressed_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("German") << QString(german);
    QTest::newRow("French") << QString(french);
}

void TranslationResourceTest::storesUncompressed()
{
    QFETCH(QString, path);
    const QResource resource(path);
    QVERIFY(resource.isValid());
    QCOMPARE(resource.compressionAlgorithm(), QResource::NoCompression);
    const QByteArray stored(reinterpret_cast<const char*>(resource.data()), int(resource.size()));
    QVERIFY2(stored.startsWith(QByteArray::fromHex("3cb86418caef9c95cd211cbf60a1bddd")),
             "this is no compiled catalogue");
    // Version 1 of the format has no room for a time.
    QVERIFY(!resource.lastModified().isValid());
}

void TranslationResourceTest::comesAndGoes()
{
    QCOMPARE(qCleanupResources_Translations(), 1);
    QVERIFY(!QFile::exists(german));
    QVERIFY(!QFile::exists(french));
    QCOMPARE(qCleanupResources_Translations(), 1);
    QCOMPARE(qInitResources_Translations(), 1);
    QVERIFY(QFile::exists(german));
    QVERIFY(QFile::exists(french));
}

VX_TEST_MAIN(TranslationResourceTest)
#include "tst_TranslationResource.moc"
