#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonObject>
#include <QPixmap>
#include <QTableWidget>
#include <QTranslator>

#include "tools/screenshots/OrdinaryScreen.h"
#include "tools/update-catalogue/CatalogueSource.h"
#include "tools/update-catalogue/Commands.h"
#include "tools/update-catalogue/Installation.h"
#include "tools/update-catalogue/preview/PictureText.h"
#include "tools/update-catalogue/preview/RealOffer.h"
#include "tools/update-catalogue/preview/UnreachableText.h"

namespace vx {

namespace {

/** What was drawn, and which of its texts nobody can read in full. */
struct Pictures
{
    QStringList files;
    QStringList clipped;
};

void declare(QCommandLineParser& parser)
{
    parser.addPositionalArgument("catalogue", "A file, a URL, or - for standard input.");
    declareInstallation(parser);
    parser.addOption({"language", "en, de or fr.", "CODE", "en"});
    parser.addOption({"out", "The folder for the pictures.", "DIR", "."});
}

void installLanguage(const QString& language)
{
    if (language == "en") {
        return;
    }
    auto* translator = new QTranslator(qApp);
    if (!translator->load(QString(":/Translations/SoftwareUpdateClient_%1.qm").arg(language))) {
        throw CommandFailure(
            ExitUsage, QString("--language takes en, de or fr, and not \"%1\"").arg(language));
    }
    QCoreApplication::installTranslator(translator);
}

void take(QDialog& dialog, const QString& path, Pictures& pictures)
{
    // What became visible is laid out only then, and asks for its room.
    QApplication::processEvents();
    screenshots::openAsOnOrdinaryScreen(dialog);
    QApplication::processEvents();
    QImage image = dialog.grab().toImage();
    image.setText("Description", pictureText(dialog));
    if (!image.save(path)) {
        throw CommandFailure(ExitUnreadable, QString("%1: cannot be written").arg(path));
    }
    pictures.files.append(path);
    pictures.clipped += unreachableTexts(dialog);
}

int firstVisibleRow(const QTableWidget& table)
{
    for (int row = 0; row < table.rowCount(); ++row) {
        if (!table.isRowHidden(row)) {
            return row;
        }
    }
    return -1;
}

Pictures takePictures(QDialog& dialog, const QString& folder, const QString& language)
{
    if (!QDir().mkpath(folder)) {
        throw CommandFailure(ExitUnreadable, QString("%1: cannot be made").arg(folder));
    }
    Pictures pictures;
    const QString stem = QDir(folder).filePath("update-available-" + language);
    take(dialog, stem + ".png", pictures);
    auto* table = dialog.findChild<QTableWidget*>("tableWidget");
    const int row = firstVisibleRow(*table);
    if (row >= 0) {
        table->selectRow(row);
        take(dialog, stem + "-selected.png", pictures);
    }
    pictures.clipped.removeDuplicates();
    return pictures;
}

void print(const Pictures& pictures, bool asJson, Terminal& terminal)
{
    if (asJson) {
        terminal.json(
            QJsonDocument(QJsonObject{{"pictures", QJsonArray::fromStringList(pictures.files)},
                                      {"clipped", QJsonArray::fromStringList(pictures.clipped)}}));
        return;
    }
    for (const QString& file : pictures.files) {
        terminal.line(file);
    }
    for (const QString& text : pictures.clipped) {
        terminal.line(QString("%1 \"%2\" can't be read in full, not even on a screen of %3 by %4")
                          .arg(terminal.coloured("warning:", Terminal::Yellow), text.simplified())
                          .arg(screenshots::ordinaryScreen.width())
                          .arg(screenshots::ordinaryScreen.height()));
    }
    if (pictures.files.isEmpty()) {
        terminal.line("Nothing is offered: the dialog does not open.");
    }
}

ExitCode run(const QCommandLineParser& parser, Terminal& terminal)
{
    if (parser.positionalArguments().size() != 1) {
        throw CommandFailure(ExitUsage, "preview takes one catalogue");
    }
    const Installation installation = installationFrom(parser);
    screenshots::useOrdinaryFont();
    installLanguage(parser.value("language"));
    const CatalogueSource source = readCatalogue(parser.positionalArguments().first());
    const RealOffer offer(source.bytes, installation.criteria);
    Pictures pictures;
    if (offer.dialog() != nullptr) {
        pictures = takePictures(*offer.dialog(), parser.value("out"), parser.value("language"));
    }
    print(pictures, parser.isSet("json"), terminal);
    return pictures.files.isEmpty() || !pictures.clipped.isEmpty() ? ExitFindings : ExitFine;
}

} // namespace

const Command previewCommand{
    "preview",
    "Draws the dialog that an installation would open.",
    "update-catalogue preview examples/camera_manager/catalogue.xml --application CameraManager "
    "--version 5.2.1 --language de --out build/preview",
    true,
    declare,
    run};

} // namespace vx
