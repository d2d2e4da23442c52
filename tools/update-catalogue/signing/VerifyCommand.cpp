#include <QDateTime>

#include "tools/update-catalogue/Commands.h"
#include "tools/update-catalogue/lint/FindingOutput.h"
#include "tools/update-catalogue/lint/Linter.h"
#include "tools/update-catalogue/signing/Keys.h"
#include "tools/update-catalogue/signing/SealText.h"
#include "trust/internal/SealVerification.h"

namespace vx {

namespace {

void declare(QCommandLineParser& parser)
{
    parser.addPositionalArgument("catalogue", "A file, a URL, or - for standard input.");
    declareKeys(parser);
    parser.addOption({"files", "Compare digests and sizes with the files in this folder.", "DIR"});
}

/** What of the packages a client refuses to install, or cannot download. */
FindingList refusedPackages(const CatalogueSource& source, const QString& folder)
{
    LintOptions options;
    options.rules = QStringList{"no-digest", "malformed-digest", "two-digests", "digest-mismatch",
                                "size-mismatch"};
    options.isSigned = true;
    options.files = folder;
    return lintCatalogue(source, options);
}

void print(const QString& name, const SealReading& reading, const FindingList& findings,
           Terminal& terminal)
{
    if (reading.outcome == SealOutcome::Accepted) {
        terminal.line(QString("%1: %2.").arg(name, sealText(reading.seal)));
    }
    if (findings.isEmpty()) {
        terminal.line("A client that requires this signature accepts it, and every package.");
    } else {
        printFindings(name, findings, terminal);
    }
}

QJsonDocument toJson(const QString& name, const SealReading& reading, const FindingList& findings)
{
    const bool hasSeal =
        reading.outcome != SealOutcome::NoSeal && reading.outcome != SealOutcome::UnreadableSeal;
    return QJsonDocument(
        QJsonObject{{"catalogue", name},
                    {"accepted", reading.outcome == SealOutcome::Accepted},
                    {"seal", hasSeal ? QJsonValue(sealToJson(reading.seal)) : QJsonValue()},
                    {"findings", findingsToJson(findings)}});
}

ExitCode run(const QCommandLineParser& parser, Terminal& terminal)
{
    const PublicKeys keys = keysFrom(parser);
    if (parser.positionalArguments().size() != 1 || keys.isEmpty()) {
        throw CommandFailure(ExitUsage, "verify takes one catalogue and --key");
    }
    const CatalogueSource source = readCatalogue(parser.positionalArguments().first());
    const SealReading reading =
        judgeSealed(source.bytes, keys, {QDateTime::currentSecsSinceEpoch(), std::nullopt});
    FindingList findings;
    if (reading.outcome != SealOutcome::Accepted) {
        findings.append({sealPosition(source.bytes), Severity::Error, refusalName(reading.outcome),
                         QString(), refusalSentence(reading)});
    }
    findings += refusedPackages(source, parser.value("files"));
    if (parser.isSet("json")) {
        terminal.json(toJson(source.name, reading, findings));
    } else {
        print(source.name, reading, findings, terminal);
    }
    return findings.isEmpty() ? ExitFine : ExitFindings;
}

} // namespace

const Command verifyCommand{
    "verify",
    "Tells what a client that requires signatures would refuse.",
    "update-catalogue verify catalogue.xml --key publisher.pub --files packages",
    false,
    declare,
    run};

} // namespace vx
