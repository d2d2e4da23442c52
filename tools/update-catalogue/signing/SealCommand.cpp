#include "tools/update-catalogue/Commands.h"
#include "tools/update-catalogue/OutputFile.h"
#include "tools/update-catalogue/ParsedCatalogue.h"
#include "tools/update-catalogue/signing/SealText.h"
#include "tools/update-catalogue/signing/SealedDocument.h"

namespace vx {

namespace {

void declare(QCommandLineParser& parser)
{
    parser.addPositionalArgument("catalogue", "A file, a URL, or - for standard input.");
    parser.addOption(
        {"signature", "What minisign wrote; CATALOGUE.minisig if this is not given.", "FILE"});
    parser.addOption({"out", "Write this file, or - for standard output, in place of it.", "FILE"});
}

QString signatureName(const QCommandLineParser& parser, const QString& catalogue)
{
    if (parser.isSet("signature")) {
        return parser.value("signature");
    }
    if (catalogue == "-") {
        throw CommandFailure(ExitUsage, "seal needs --signature for standard input");
    }
    return catalogue + ".minisig";
}

ExitCode run(const QCommandLineParser& parser, Terminal& terminal)
{
    if (parser.positionalArguments().size() != 1) {
        throw CommandFailure(ExitUsage, "seal takes one catalogue");
    }
    const QString name = parser.positionalArguments().first();
    const QString out = outputPath(name, parser.value("out"), parser.isSet("json"));
    const QString signature = signatureName(parser, name);
    const CatalogueSource document = readCatalogue(name);
    const QByteArray sealed = joinDocument(document, readCatalogue(signature));
    parseCatalogue({document.name, sealed});
    writeOutput(out, sealed);

    const Seal seal = readSeal(sealed).seal;
    if (parser.isSet("json")) {
        terminal.json(QJsonDocument(QJsonObject{{"catalogue", document.name},
                                                {"signature", signature},
                                                {"out", out},
                                                {"seal", sealToJson(seal)}}));
    } else if (out != "-") {
        terminal.line(QString("%1: sealed, %2.").arg(out, sealText(seal)));
    }
    return ExitFine;
}

} // namespace

const Command sealCommand{"seal",
                          "Puts the signature that minisign made into the catalogue.",
                          "update-catalogue seal catalogue.xml",
                          false,
                          declare,
                          run};

} // namespace vx
