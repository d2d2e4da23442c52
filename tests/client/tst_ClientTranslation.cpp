#include <QLabel>
#include <QProgressDialog>
#include <QTableWidget>
#include <QTextBrowser>
#include <QTimer>
#include <QTranslator>
#include <QtTest>

#include <memory>

#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "dialogs/SoftwareUpdateDialog.h"
#include "tests/client/InstallationFixture.h"
#include "tests/support/TestMain.h"
#include "tests/support/ZipBuilder.h"

using namespace vx;
using namespace vx::test;

namespace {

/** Puts texts of one context in brackets, and knows no other context. */
class BracketTranslator : public QTranslator
{
public:
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        const bool known = qstrcmp(context, "vx::SoftwareUpdateClient") == 0;
        return known ? '[' + QString::fromUtf8(source) + ']' : QString();
    }
    bool isEmpty() const override { return false; }
};

} // namespace

// The catalogues name the class without its namespace, while it is looked up with it: the texts of
// the client stay English, unless a host brings a translator for the full name.
class ClientTranslationTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void notifications_data();
    void notifications();
    void table_data();
    void table();
    void downloadAndItsFailure_data();
    void downloadAndItsFailure();
    void unknownType_data();
    void unknownType();
    void restart_data();
    void restart();
    void formsAreTranslated_data();
    void formsAreTranslated();

private:
    static void addTranslators();
    QString shown(const char* text) const;

    std::unique_ptr<QTranslator> m_translator;
};

void ClientTranslationTest::addTranslators()
{
    QTest::addColumn<QString>("translator");
    QTest::newRow("German catalogue") << ":/Translations/SoftwareUpdateClient_de.qm";
    QTest::newRow("French catalogue") << ":/Translations/SoftwareUpdateClient_fr.qm";
    QTest::newRow("full class name") << "";
}

void ClientTranslationTest::init()
{
    QFETCH(QString, translator);
    if (translator.isEmpty()) {
        m_translator = std::make_unique<BracketTranslator>();
    } else {
        m_translator = std::make_unique<QTranslator>();
        QVERIFY(m_translator->load(translator));
    }
    QCoreApplication::installTranslator(m_translator.get());
}

void ClientTranslationTest::cleanup()
{
    QCoreApplication::removeTranslator(m_translator.get());
    m_translator.reset();
}

QString ClientTranslationTest::shown(const char* text) const
{
    const bool bracketed = dynamic_cast<const BracketTranslator*>(m_translator.get()) != nullptr;
    return bracketed ? '[' + QString::fromUtf8(text) + ']' : QString::fromUtf8(text);
}

void ClientTranslationTest::notifications_data()
{
    addTranslators();
}

void ClientTranslationTest::notifications()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    const auto* text = fixture.openSettingsDialog()->findChild<QLabel*>("updateNotificationLabel");
    QVERIFY(fixture.check());
    QCOMPARE(text->text(), shown("No update available!"));

    PackageFields old = applicationPackage();
    old["release"] = "0.1";
    fixture.offer({old});
    QVERIFY(fixture.check());
    QCOMPARE(text->text(), shown("Congratulations! Your product is up-to-date!"));

    ServedReply silent;
    silent.fault = ServedReply::Silent;
    fixture.server.setReply("/", silent);
    client.checkForUpdate();
    client.requestTimer()->start(1);
    QTRY_COMPARE(text->text(), shown("Timeout error! Update server unreachable!"));
}

void ClientTranslationTest::table_data()
{
    addTranslators();
}

void ClientTranslationTest::table()
{
    ClientFixture fixture;
    fixture.start();
    PackageFields package = applicationPackage();
    package["file-size"] = "1MB";
    QVERIFY(fixture.openAvailableDialog({package}));
    auto* table = availableDialog()->findChild<QTableWidget*>("tableWidget");
    const char* headers[] = {"Name", "File Size", "File Type", "Languages", "Platforms"};
    for (int column = 0; column < 5; ++column) {
        QCOMPARE(table->horizontalHeaderItem(column)->text(), shown(headers[column]));
    }
    QCOMPARE(table->item(0, 1)->text(), QStringLiteral("1.0 MB"));
    QCOMPARE(table->item(0, 3)->text(), shown("Multilingual"));
    table->selectRow(0);
    const QString comment =
        availableDialog()->findChild<QTextBrowser*>("commentText")->toPlainText();
    const QString date = QLocale::system().toString(QDate(2012, 3, 4), QLocale::LongFormat);
    QCOMPARE(comment.section('\n', 1, 1), shown("Published on %1").arg(date));
}

void ClientTranslationTest::downloadAndItsFailure_data()
{
    addTranslators();
}

void ClientTranslationTest::downloadAndItsFailure()
{
    InstallationFixture fixture;
    fixture.openList({"http://download.example.com/files/mini-12.msi"}, 100);
    fixture.boxes.willClick(shown("Proceed"));
    clickInstall(0);
    QCOMPARE(progressDialog()->labelText(), shown("Downloading package to temporary folder..."));
    QTRY_COMPARE(fixture.boxes.seen().size(), 2);
    const SeenBox question = fixture.boxes.seen().first();
    QCOMPARE(question.title, shown("Install Package"));
    QCOMPARE(question.text, shown("After downloading the package, the installer will automatically "
                                  "exit and restart your application!"));
    QCOMPARE(question.buttons, QStringList({shown("Cancel Install"), shown("Proceed")}));
    QCOMPARE(fixture.boxes.seen().last().title, shown("Download Error"));
    QCOMPARE(fixture.boxes.seen().last().text,
             shown("Error downloading! Http status code %1").arg(404));
}

void ClientTranslationTest::unknownType_data()
{
    addTranslators();
}

void ClientTranslationTest::unknownType()
{
    ClientFixture fixture;
    fixture.start().call("downloadFinished");
    QCOMPARE(fixture.boxes.seen().size(), 1);
    QCOMPARE(fixture.boxes.seen().first().title, shown("Download Error"));
    QCOMPARE(fixture.boxes.seen().first().text,
             shown("Unknown package type! Installation cannot proceed!"));
}

void ClientTranslationTest::restart_data()
{
    addTranslators();
}

void ClientTranslationTest::restart()
{
    InstallationFixture fixture;
    const QByteArray archive = ZipBuilder{file("program")}.bytes();
    fixture.serve("/files/mini-12.zip", archive);
    fixture.openList({"http://download.example.com/files/mini-12.zip"}, archive.size());
    fixture.boxes.willClick(shown("Proceed"));
    fixture.boxes.willClick(shown("Restart now"));
    clickInstall(0);
    QTRY_COMPARE(fixture.boxes.seen().size(), 3);
    const SeenBox question = fixture.boxes.seen().at(1);
    QCOMPARE(question.title, shown("Restart required"));
    QCOMPARE(question.text,
             shown("Please restart your application to finish the installation process."));
    QCOMPARE(question.buttons, QStringList({shown("Restart later"), shown("Restart now")}));
    QCOMPARE(fixture.boxes.seen().last().title, shown("Installation failed"));
    QCOMPARE(fixture.boxes.seen().last().text,
             shown("Installation process failed. If problem persists try manual install."));
}

void ClientTranslationTest::formsAreTranslated_data()
{
    QTest::addColumn<QString>("translator");
    QTest::addColumn<QString>("title");
    QTest::newRow("German") << ":/Translations/SoftwareUpdateClient_de.qm"
                            << "Nach Updates suchen";
    QTest::newRow("French") << ":/Translations/SoftwareUpdateClient_fr.qm"
                            << QString::fromUtf8("Rechercher de nouveaux mises à jour");
}

void ClientTranslationTest::formsAreTranslated()
{
    ClientFixture fixture;
    fixture.start();
    QTEST(fixture.openSettingsDialog()->windowTitle(), "title");
}

VX_TEST_MAIN(ClientTranslationTest)
#include "tst_ClientTranslation.moc"
