#include <QDir>
#include <QFileInfo>
#include <QJsonObject>

#include "host/CoreQt/ParseException.h"
#include "tools/signing/PackageFiles.h"
#include "tools/update-catalogue/Commands.h"
#include "tools/update-catalogue/OutputFile.h"
#include "tools/update-catalogue/ParsedCatalogue.h"
#include "tools/update-catalogue/lint/FindingOutput.h"
#include "tools/update-catalogue/signing/SealedDocument.h"

namespace vx {

namespace {

/** What was found out about the files of a catalogue. */
struct HashedFiles
{
    QMap<int, PackageFacts> facts;
    QJsonArray packages;
    QStringList lines;
    FindingList findings;
};

void declare(QCommandLineParser& parser)
{
    parser.addPositionalArgument("catalogue", "A file, a URL, or - for standard input.");
    parser.addOption({"files", "The folder with the package files.", "DIR"});
    parser.addOption({"out", "Write this file, or - for standard output, in place of it.", "FILE"});
    parser.addOption({"drop-seal", "Take the seal off a sealed catalogue, as it will not fit."});
}

void noteMissing(HashedFiles& files, const PackageInfo& package, const TextPosition& position,
                 const QString& folder)
{
    const QString name = package.fileName();
    const QString sentence =
        name.isEmpty() ? QString("Its address names no file.")
                       : QString("The file \"%1\" is not in the folder %2.").arg(name, folder);
    files.findings.append({position, Severity::Error, "missing-file",
                           oneLine(packageLabel(package)), oneLine(sentence)});
}

void hashFile(HashedFiles& files, int index, const PackageInfo& package,
              const TextPosition& position, const QString& path)
{
    const std::optional<PackageFacts> facts = readPackageFacts(path);
    if (!facts) {
        throw CommandFailure(ExitUnreadable, QString("%1: cannot be read").arg(path));
    }
    files.facts.insert(index, *facts);
    const QString digest = QString::fromLatin1(facts->sha256);
    files.packages.append(QJsonObject{{"package", packageLabel(package)},
                                      {"line", position.line},
                                      {"file", path},
                                      {"size", static_cast<qint64>(facts->size)},
                                      {"sha256", digest}});
    files.lines.append(QString("%1  %2  %3  %4")
                           .arg(digest)
                           .arg(facts->size, 10)
                           .arg(oneLine(package.fileName()), oneLine(packageLabel(package))));
}

HashedFiles hashFiles(const ParsedCatalogue& catalogue, const QString& folder)
{
    HashedFiles files;
    for (int i = 0; i < static_cast<int>(catalogue.packages.size()); ++i) {
        const PackageInfo& package = catalogue.packages.at(i);
        const QString path = packageFile(package.url, folder);
        if (path.isEmpty()) {
            noteMissing(files, package, catalogue.positions.at(i), folder);
        } else {
            hashFile(files, i, package, catalogue.positions.at(i), path);
        }
    }
    return files;
}

/** The catalogue without its seal. */
CatalogueSource readUnsealed(const QString& name, bool dropSeal)
{
    CatalogueSource source = readCatalogue(name);
    const SealedDocument document = splitDocument(source);
    if (document.isSealed && !dropSeal) {
        throw CommandFailure(ExitFindings,
                             QString("%1: is sealed, and its seal would no longer fit: give "
                                     "--drop-seal, and sign it anew")
                                 .arg(source.name));
    }
    source.bytes = document.content;
    return source;
}

QByteArray withFacts(const CatalogueSource& source, const QMap<int, PackageFacts>& facts)
{
    try {
        return writePackageFacts(source.bytes, facts);
    } catch (const ParseException& exception) {
        throw CommandFailure(ExitUnreadable,
                             QString("%1: %2").arg(source.name, exception.message()));
    }
}

void report(const CatalogueSource& source, const HashedFiles& files, const QString& out,
            const QCommandLineParser& parser, Terminal& terminal)
{
    const bool isWritten = files.findings.isEmpty();
    if (parser.isSet("json")) {
        terminal.json(QJsonDocument(QJsonObject{{"catalogue", source.name},
                                                {"out", isWritten ? QJsonValue(out) : QJsonValue()},
                                                {"packages", files.packages},
                                                {"findings", findingsToJson(files.findings)}}));
    } else if (!isWritten) {
        printFindings(source.name, files.findings, terminal);
        terminal.line("Nothing is written.");
    } else if (out != "-") {
        for (const QString& line : files.lines) {
            terminal.line(line);
        }
        terminal.line(QString("%1: %2 packages.").arg(out).arg(files.lines.size()));
    }
}

ExitCode run(const QCommandLineParser& parser, Terminal& terminal)
{
    if (parser.positionalArguments().size() != 1 || !parser.isSet("files")) {
        throw CommandFailure(ExitUsage, "hash takes one catalogue and --files");
    }
    const QString name = parser.positionalArguments().first();
    const QString out = outputPath(name, parser.value("out"), parser.isSet("json"));
    const QString folder = parser.value("files");
    if (!QFileInfo(folder).isDir()) {
        throw CommandFailure(ExitUnreadable, QString("%1: no such folder").arg(folder));
    }
    const CatalogueSource source = readUnsealed(name, parser.isSet("drop-seal"));
    const HashedFiles files = hashFiles(parseCatalogue(source), folder);
    if (files.findings.isEmpty()) {
        writeOutput(out, withFacts(source, files.facts));
    }
    report(source, files, out, parser, terminal);
    return files.findings.isEmpty() ? ExitFine : ExitFindings;
}

} // namespace

const Command hashCommand{
    "hash",
    "Writes size and SHA-256 digest of every package into a catalogue.",
    "update-catalogue hash examples/camera_manager/catalogue.xml --files packages --out -",
    false,
    declare,
    run};

} // namespace vx
