#include <QApplication>
#include <QComboBox>
#include <QScopedPointer>
#include <QTranslator>
#include <QtTest>

#include "client/SoftwareUpdateClient.h"
#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "dialogs/SoftwareUpdateDialog.h"
#include "download/DownloadManager.h"
#include "tests/Translations/Messages.h"
#include "tests/support/TestMain.h"

using namespace vx::test;

namespace {

const char* const settingsContext = "SoftwareUpdateDialogGui";
const char* const availableContext = "SoftwareUpdateAvailableGui";

/** Where a source text is shown: the object (or "" for the dialog itself) and its property. */
struct Place
{
    const char* object;
    const char* property;
    QString source;
};

QString sourceBeginningWith(const char* context, const char* beginning)
{
    for (const Message& message : messages()) {
        if (qstrcmp(message.context, context) == 0 &&
            QString::fromUtf8(message.source).startsWith(beginning)) {
            return message.source;
        }
    }
    return {};
}

const std::vector<Place>& settingsPlaces()
{
    static const std::vector<Place> places = {
        {"", "windowTitle", "Check for Updates"},
        {"label", "text", "You can search for new versions manually or automatically."},
        {"currentVersionLabel", "text", "Current version:"},
        {"updatePushButton", "text", "Check Now"},
        {"lastCheckLabel", "text", "Last check"},
        {"updateCheckBox", "text", "Check for updates:"},
        {"checkForBetaCheckBox", "text", "Include beta versions"},
        {"updateServerLabel", "text", "Update server URL:"},
    };
    return places;
}

const std::vector<Place>& availablePlaces()
{
    static const std::vector<Place> places = {
        {"", "windowTitle", "Update Available"},
        {"label_3", "text", "Select Packages from List:"},
        {"showAllLanguagesCheckBox", "text", "Show all languages"},
        {"label_2", "text", sourceBeginningWith(availableContext, "You can download")},
        {"releaseNotesPushButton", "text", "Release Notes"},
        {"downloadPushButton", "text", "Download Package"},
        {"installPushButton", "text", "Install Package"},
        {"vxLinkLabel", "text", sourceBeginningWith(availableContext, "For more information")},
        {"updateSettingsPushButton", "text", "Update Settings..."},
    };
    return places;
}

void verifyTexts(const QWidget& dialog, const char* context, const std::vector<Place>& places,
                 const QString& language)
{
    for (const Place& place : places) {
        const QObject* object = &dialog;
        if (*place.object != '\0') {
            object = dialog.findChild<QObject*>(place.object);
        }
        QVERIFY2(object != nullptr, place.object);
        const QString expected = translated(context, place.source.toUtf8().constData(), language);
        QVERIFY2(!expected.isEmpty(), place.object);
        QCOMPARE(object->property(place.property).toString(), expected);
    }
}

void verifyIntervals(const QWidget& dialog, const QString& language)
{
    const auto* box = dialog.findChild<QComboBox*>("updateComboBox");
    QCOMPARE(box->count(), 4);
    const char* const sources[] = {"At application start", "Daily", "Weekly", "Monthly"};
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(box->itemText(i), translated(settingsContext, sources[i], language));
    }
}

void verifyDialogs(const vx::SoftwareUpdateDialog& settings,
                   const vx::SoftwareUpdateAvailableDialog& available, const QString& language)
{
    verifyTexts(settings, settingsContext, settingsPlaces(), language);
    verifyIntervals(settings, language);
    verifyTexts(available, availableContext, availablePlaces(), language);
}

/** What a host does to have the dialogs in its user's language. */
class InstalledLanguage
{
public:
    explicit InstalledLanguage(const QString& language)
    {
        m_loaded = m_translator.load(":/Translations/SoftwareUpdateClient_" + language + ".qm");
        QCoreApplication::installTranslator(&m_translator);
    }
    bool isLoaded() const { return m_loaded; }

private:
    QTranslator m_translator;
    bool m_loaded = false;
};

/** Counts the news of a translator that came or went. */
class LanguageChanges : public QObject
{
public:
    LanguageChanges() { qApp->installEventFilter(this); }
    int count() const { return m_count; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        m_count += event->type() == QEvent::LanguageChange ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }

private:
    int m_count = 0;
};

void addLanguageRows()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("German") << QString("de");
    QTest::newRow("French") << QString("fr");
}

} // namespace

class TranslatedTextsTest : public QObject
{
    Q_OBJECT

private slots:
    void coversEveryFormMessage();
    void staysEnglishWithoutTranslator();
    void translatesDialogs_data() { addLanguageRows(); }
    void translatesDialogs();
    void keepsClassesInEnglish_data() { addLanguageRows(); }
    void keepsClassesInEnglish();
    void keepsLanguageOfOpenDialogs();
    void neverInstallsTranslator_data();
    void neverInstallsTranslator();
};

void TranslatedTextsTest::coversEveryFormMessage()
{
    // The settings dialog shows four more texts as entries of its combo box.
    QCOMPARE(settingsPlaces().size() + 4, size_t(12));
    QCOMPARE(availablePlaces().size(), size_t(9));
}

void TranslatedTextsTest::staysEnglishWithoutTranslator()
{
    const vx::SoftwareUpdateDialog settings(nullptr, {});
    const vx::SoftwareUpdateAvailableDialog available(nullptr, {});
    verifyDialogs(settings, available, "en");
}

void TranslatedTextsTest::translatesDialogs()
{
    QFETCH(QString, language);
    const InstalledLanguage installed(language);
    QVERIFY(installed.isLoaded());
    const vx::SoftwareUpdateDialog settings(nullptr, {});
    const vx::SoftwareUpdateAvailableDialog available(nullptr, {});
    verifyDialogs(settings, available, language);
}

void TranslatedTextsTest::keepsClassesInEnglish()
{
    QFETCH(QString, language);
    const InstalledLanguage installed(language);
    QVERIFY(installed.isLoaded());
    int kept = 0;
    for (const Message& message : messages()) {
        const bool client = qstrcmp(message.context, "SoftwareUpdateClient") == 0;
        const bool engine = qstrcmp(message.context, "DownloadManager") == 0;
        if (client || engine) {
            const QString text = client ? vx::SoftwareUpdateClient::tr(message.source)
                                        : vx::DownloadManager::tr(message.source);
            QCOMPARE(text, QString::fromUtf8(message.source));
            ++kept;
        }
    }
    QCOMPARE(kept, 27);
}

void TranslatedTextsTest::keepsLanguageOfOpenDialogs()
{
    QScopedPointer<InstalledLanguage> installed(new InstalledLanguage("de"));
    vx::SoftwareUpdateDialog settings(nullptr, {});
    vx::SoftwareUpdateAvailableDialog available(nullptr, {});
    settings.show();
    available.show();
    installed.reset();
    QCoreApplication::processEvents();
    verifyDialogs(settings, available, "de");
    const InstalledLanguage french("fr");
    QCoreApplication::processEvents();
    verifyDialogs(settings, available, "de");
}

void TranslatedTextsTest::neverInstallsTranslator_data()
{
    QTest::addColumn<QByteArray>("locale");
    QTest::newRow("German") << QByteArray("de_DE.UTF-8");
    QTest::newRow("French") << QByteArray("fr_FR.UTF-8");
}

void TranslatedTextsTest::neverInstallsTranslator()
{
    QFETCH(QByteArray, locale);
    const QByteArray before = qgetenv("LC_ALL");
    const LanguageChanges changes;
    qputenv("LC_ALL", locale);
    {
        const vx::SoftwareUpdateClient client("Product", vx::VersionNumber("1.0"),
                                              "http://127.0.0.1:1/", nullptr);
        const vx::DownloadManager engine;
        const vx::SoftwareUpdateDialog settings(nullptr, {});
        const vx::SoftwareUpdateAvailableDialog available(nullptr, {});
        QCoreApplication::processEvents();
        verifyDialogs(settings, available, "en");
    }
    qputenv("LC_ALL", before);
    QCOMPARE(changes.count(), 0);
}

VX_TEST_MAIN(TranslatedTextsTest)
#include "tst_TranslatedTexts.moc"
