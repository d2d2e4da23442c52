#include <QJsonObject>

#include "tools/update-catalogue/Commands.h"
#include "tools/update-catalogue/OutputFile.h"
#include "tools/update-catalogue/signing/SealedDocument.h"

namespace vx {

namespace {

void declare(QCommandLineParser& parser)
{
    parser.addPositionalArgument("catalogue", "A file, a URL, or - for standard input.");
    parser.addOption({"out",
                      "Write the document to this file, or - for standard output, in place of it.",
                      "FILE"});
    parser.addOption({"signature",
                      "Write the signature to this file; the document's name with .minisig behind "
                      "it if this is not given.",
                      "FILE"});
}

/** Empty where a document on standard output leaves the signature without a name. */
QString signatureName(const QCommandLineParser& parser, const QString& out)
{
    if (parser.isSet("signature")) {
        return parser.value("signature");
    }
    return out == "-" ? QString() : out + ".minisig";
}

ExitCode run(const QCommandLineParser& parser, Terminal& terminal)
{
    if (parser.positionalArguments().size() != 1) {
        throw CommandFailure(ExitUsage, "unseal takes one catalogue");
    }
    const QString name = parser.positionalArguments().first();
    const QString out = outputPath(name, parser.value("out"), parser.isSet("json"));
    const QString signature = signatureName(parser, out);
    if (signature == "-") {
        throw CommandFailure(ExitUsage, "the signature cannot go to standard output");
    }
    const CatalogueSource source = readCatalogue(name);
    const SealedDocument document = splitDocument(source);
    if (!document.isSealed) {
        throw CommandFailure(ExitFindings, QString("%1: has no seal").arg(source.name));
    }
    // The document last: whatever fails in between, the sealed one is still there.
    if (!signature.isEmpty()) {
        writeOutput(signature, document.signatureFile);
    }
    writeOutput(out, document.content);

    if (parser.isSet("json")) {
        terminal.json(QJsonDocument(
            QJsonObject{{"catalogue", source.name}, {"out", out}, {"signature", signature}}));
    } else if (out != "-") {
        terminal.line(QString("%1: without its seal, which is in %2.").arg(out, signature));
    }
    return ExitFine;
}

} // namespace

const Command unsealCommand{"unseal",
                            "Gives back the document and the signature of a sealed catalogue.",
                            "update-catalogue unseal catalogue.xml",
                            false,
                            declare,
                            run};

} // namespace vx
