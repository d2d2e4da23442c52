#include <QFile>
#include <QLibrary>
#include <QtTest>

#include "tests/support/TestMain.h"

// This program is not linked to the library: it loads it while it runs, as a host with plug-ins
// may.
class TranslationLoadingTest : public QObject
{
    Q_OBJECT

private slots:
    void registersWithTheLibrary();
};

void TranslationLoadingTest::registersWithTheLibrary()
{
    const QString catalogue = ":/Translations/SoftwareUpdateClient_fr.qm";
    QVERIFY(!QFile::exists(catalogue));
    QLibrary library(CLIENT_LIBRARY);
    QVERIFY2(library.load(), qPrintable(library.errorString()));
    QVERIFY(QFile::exists(catalogue));
    QVERIFY(library.unload());
    QVERIFY(!QFile::exists(catalogue));
}

VX_TEST_MAIN(TranslationLoadingTest)
#include "tst_TranslationLoading.moc"
