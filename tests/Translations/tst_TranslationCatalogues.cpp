#include <QDomDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <QTranslator>
#include <QtTest>

#include "tests/Translations/Messages.h"
#include "tests/support/TestMain.h"

using namespace vx::test;

namespace {

const QStringList languages = {"de", "fr"};

QString resource(const QString& language)
{
    return QStringLiteral(":/Translations/SoftwareUpdateClient_%1.qm").arg(language);
}

/** Texts by context and source, from a catalogue in its readable form. */
using Catalogue = QMap<QString, QMap<QString, QString>>;

// A message that is not finished, or that stands there twice, gets a text that no table holds.
void readMessage(const QDomElement& message, QMap<QString, QString>& texts)
{
    const QDomElement translation = message.firstChildElement("translation");
    const QString source = message.firstChildElement("source").text();
    const bool sound = !translation.hasAttribute("type") && !texts.contains(source) &&
                       message.firstChildElement("comment").isNull();
    texts.insert(source, sound ? translation.text() : QStringLiteral("<unsound>"));
}

Catalogue readCatalogue(const QByteArray& ts)
{
    QDomDocument document;
    document.setContent(ts);
    Catalogue result;
    for (QDomElement context = document.documentElement().firstChildElement("context");
         !context.isNull(); context = context.nextSiblingElement("context")) {
        QMap<QString, QString>& texts = result[context.firstChildElement("name").text()];
        for (QDomElement message = context.firstChildElement("message"); !message.isNull();
             message = message.nextSiblingElement("message")) {
            readMessage(message, texts);
        }
    }
    return result;
}

Catalogue expectedCatalogue(const QString& language)
{
    Catalogue result;
    for (const Message& message : messages()) {
        result[message.context][QString::fromUtf8(message.source)] = message.in(language);
    }
    return result;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/** The compiled catalogue that the library carries, made readable again by Qt's own tool. */
QByteArray unfolded(const QString& language)
{
    const QTemporaryDir folder;
    const QString compiled = folder.filePath("catalogue.qm");
    const QString readable = folder.filePath("catalogue.ts");
    QFile::copy(resource(language), compiled);
    QProcess::execute(LCONVERT, {"-i", compiled, "-o", readable});
    return contentOf(readable);
}

int occurrences(const QString& text, const char* part)
{
    return text.count(QLatin1String(part));
}

void addMessageRows()
{
    QTest::addColumn<int>("index");
    for (size_t i = 0; i < messages().size(); ++i) {
        QTest::addRow("%s: %s", messages()[i].context, messages()[i].source) << int(i);
    }
}

} // namespace

class TranslationCataloguesTest : public QObject
{
    Q_OBJECT

private slots:
    void countsMessages();
    void holdsExactlyTheMessages_data() { addLanguageRows(); }
    void holdsExactlyTheMessages();
    void compilesEveryMessage_data() { addLanguageRows(); }
    void compilesEveryMessage();
    void translatesMessage_data() { addMessageRows(); }
    void translatesMessage();
    void knowsNoNamespace();
    void keepsPlaceholders_data() { addMessageRows(); }
    void keepsPlaceholders();
    void breaksLineInOneMessage();
    void keepsBlanksOfFrench();
    void keepsAnchorForm();

private:
    static void addLanguageRows();
};

void TranslationCataloguesTest::addLanguageRows()
{
    QTest::addColumn<QString>("language");
    for (const QString& language : languages) {
        QTest::newRow(qPrintable(language)) << language;
    }
}

void TranslationCataloguesTest::countsMessages()
{
    const Catalogue catalogue = expectedCatalogue("de");
    QCOMPARE(messages().size(), size_t(48));
    QCOMPARE(catalogue.size(), 4);
    QCOMPARE(catalogue["SoftwareUpdateClient"].size(), 24);
    QCOMPARE(catalogue["SoftwareUpdateDialogGui"].size(), 12);
    QCOMPARE(catalogue["SoftwareUpdateAvailableGui"].size(), 9);
    QCOMPARE(catalogue["DownloadManager"].size(), 3);
}

void TranslationCataloguesTest::holdsExactlyTheMessages()
{
    QFETCH(QString, language);
    const QByteArray ts =
        contentOf(QStringLiteral(TRANSLATIONS_FOLDER "/SoftwareUpdateClient_%1.ts").arg(language));
    QVERIFY(!ts.isEmpty());
    QCOMPARE(readCatalogue(ts), expectedCatalogue(language));
    QVERIFY2(!ts.contains("unfinished"), "an unfinished entry would be left out");
}

void TranslationCataloguesTest::compilesEveryMessage()
{
    QFETCH(QString, language);
    QCOMPARE(readCatalogue(unfolded(language)), expectedCatalogue(language));
}

void TranslationCataloguesTest::translatesMessage()
{
    QFETCH(int, index);
    const Message& message = messages().at(size_t(index));
    for (const QString& language : languages) {
        QTranslator translator;
        QVERIFY(translator.load(resource(language)));
        const QString text = translator.translate(message.context, message.source);
        QVERIFY2(!text.isNull(), "no entry");
        QCOMPARE(text, message.in(language));
    }
}

void TranslationCataloguesTest::knowsNoNamespace()
{
    QTranslator translator;
    QVERIFY(translator.load(resource("de")));
    QVERIFY(translator.translate("vx::SoftwareUpdateClient", "Proceed").isEmpty());
    QVERIFY(translator.translate("vx::DownloadManager", "Unpacking '%1'").isEmpty());
    QVERIFY(translator.translate("Download", "Proceed").isEmpty());
}

void TranslationCataloguesTest::keepsPlaceholders()
{
    QFETCH(int, index);
    const Message& message = messages().at(size_t(index));
    const int expected = occurrences(message.source, "%1");
    QVERIFY(expected <= 1);
    for (const QString& language : languages) {
        QTranslator translator;
        QVERIFY(translator.load(resource(language)));
        const QString text = translator.translate(message.context, message.source);
        QCOMPARE(occurrences(text, "%1"), expected);
        QCOMPARE(occurrences(text, "%"), expected);
    }
}

void TranslationCataloguesTest::breaksLineInOneMessage()
{
    QStringList broken;
    for (const Message& message : messages()) {
        const int expected = occurrences(message.source, "<br>");
        QCOMPARE(occurrences(message.in("de"), "<br>"), expected);
        QCOMPARE(occurrences(message.in("fr"), "<br>"), expected);
        if (expected > 0) {
            broken.append(message.source);
        }
    }
    QCOMPARE(broken, QStringList({"Downloaded file could not be unpacked:<br>"}));
}

void TranslationCataloguesTest::keepsBlanksOfFrench()
{
    QTranslator french;
    QTranslator german;
    QVERIFY(french.load(resource("fr")) && german.load(resource("de")));
    int blanks = 0;
    for (const Message& message : messages()) {
        const QString text = french.translate(message.context, message.source);
        QVERIFY2(!text.contains(QRegularExpression("[^\u00A0](!|:(?!//))")), qPrintable(text));
        QVERIFY2(!text.contains(QRegularExpression("\u00A0(?![!:])")), qPrintable(text));
        blanks += text.count(QChar::Nbsp);
        QVERIFY(!german.translate(message.context, message.source).contains(QChar::Nbsp));
        QVERIFY(!QString::fromUtf8(message.source).contains(QChar::Nbsp));
    }
    QCOMPARE(blanks, 14);
}

void TranslationCataloguesTest::keepsAnchorForm()
{
    for (const QString& language : {QString(), QString("de"), QString("fr")}) {
        const QString path = language == "de" ? "ger_DE" : "other";
        const QString anchor = "<a href =\"http://www.example.com/" + path +
                               "/Support/Software-Downloads\">www.example.com</a>";
        int found = 0;
        for (const Message& message : messages()) {
            const QString text = message.in(language);
            found += text.contains(anchor) ? 1 : 0;
            if (text.contains(anchor)) {
                QCOMPARE(text.endsWith("</a>."), language == "de");
            }
        }
        QCOMPARE(found, 1);
    }
}

VX_TEST_MAIN(TranslationCataloguesTest)
#include "tst_TranslationCatalogues.moc"
