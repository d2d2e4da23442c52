#include <QDomDocument>
#include <QLabel>
#include <QTranslator>
#include <QtTest>

#include <memory>

#include "dialogs/SoftwareUpdateDialog.h"
#include "tests/support/TestMain.h"
#include "tests/trust/TrustFixture.h"
#include "trust/internal/TrustTexts.h"

using namespace vx;
using namespace vx::test;

namespace {

QStringList allTexts()
{
    QStringList texts;
    for (int outcome = int(SealOutcome::NoSeal); outcome <= int(SealOutcome::FromFuture);
         ++outcome) {
        texts << refusalText(static_cast<SealOutcome>(outcome));
    }
    return texts << verifyingText() << packageRefusedTitle() << packageDiffersText()
                 << packageWithoutDigestText();
}

} // namespace

class TrustTextsTest : public QObject
{
    Q_OBJECT

private slots:
    void eachRefusalHasItsOwn();
    void catalogueIsComplete_data();
    void catalogueIsComplete();
    void dialogShowsTheTranslation();
};

void TrustTextsTest::eachRefusalHasItsOwn()
{
    const QStringList texts = allTexts();
    QCOMPARE(texts.size(), 12);
    QCOMPARE(QStringList(texts).removeDuplicates(), 0);
    QVERIFY(!texts.contains(QString()));
    QVERIFY(refusalText(SealOutcome::Accepted).isEmpty());
    QVERIFY(refusalLogText(SealOutcome::Accepted).isEmpty());
}

void TrustTextsTest::catalogueIsComplete_data()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("German") << "de";
    QTest::newRow("French") << "fr";
}

void TrustTextsTest::catalogueIsComplete()
{
    QFETCH(QString, language);
    const QStringList english = allTexts();
    QTranslator translator;
    QVERIFY(translator.load(":/trust/UpdateTrust_" + language + ".qm"));
    QVERIFY(QCoreApplication::installTranslator(&translator));
    const QStringList translated = allTexts();
    for (int i = 0; i < english.size(); ++i) {
        QVERIFY2(translated[i] != english[i], qPrintable(english[i]));
        QVERIFY(!translated[i].isEmpty());
    }
    QCOMPARE(QStringList(translated).removeDuplicates(), 0);
}

void TrustTextsTest::dialogShowsTheTranslation()
{
    QTranslator translator;
    QVERIFY(translator.load(":/trust/UpdateTrust_de.qm"));
    QVERIFY(QCoreApplication::installTranslator(&translator));
    TrustFixture fixture;
    fixture.answer(fixture.catalogue({}));
    QCOMPARE(fixture.checkInDialog(),
             QStringLiteral("Die Liste der Updates ist nicht signiert und wurde deshalb nicht "
                            "verwendet."));
}

VX_TEST_MAIN(TrustTextsTest)
#include "tst_TrustTexts.moc"
