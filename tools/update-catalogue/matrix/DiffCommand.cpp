#include <QJsonArray>
#include <QJsonObject>

#include "tools/update-catalogue/Commands.h"
#include "tools/update-catalogue/ParsedCatalogue.h"
#include "tools/update-catalogue/matrix/Comparison.h"
#include "tools/update-catalogue/matrix/Gate.h"
#include "tools/update-catalogue/signing/SignedView.h"

namespace vx {

namespace {

void declare(QCommandLineParser& parser)
{
    parser.addPositionalArgument("old", "The catalogue as it is published.");
    parser.addPositionalArgument("new", "The catalogue as it is to be.");
    parser.addOption({"installations", "What is in the field, as comma-separated values.", "FILE"});
    declareKeys(parser);
    declareGate(parser);
}

QString offerOrNothing(const QString& offer)
{
    return offer.isEmpty() ? QString("nothing") : offer;
}

Terminal::Colour colourOf(Change change)
{
    if (change == Change::Lost || change == Change::Downgrade) {
        return Terminal::Red;
    }
    return change == Change::Other || change == Change::Replaced ? Terminal::Yellow
                                                                 : Terminal::Green;
}

void print(const Comparison& comparison, Terminal& terminal)
{
    for (const ChangeRow& row : comparison.rows) {
        const QString change = QString("%1").arg(changeName(row.change), -9);
        terminal.line(QString("%1  %2  %3: %4 -> %5")
                          .arg(row.count, 8)
                          .arg(terminal.coloured(change, colourOf(row.change)), row.target,
                               offerOrNothing(row.before), offerOrNothing(row.after)));
    }
    terminal.line(QString("%1 installations: %2 gain, %3 lose, %4 are downgraded, %5 are offered "
                          "nothing")
                      .arg(comparison.installations)
                      .arg(comparison.installationsBy.value(Change::Gained))
                      .arg(comparison.installationsBy.value(Change::Lost))
                      .arg(comparison.installationsBy.value(Change::Downgrade))
                      .arg(comparison.withoutOffer));
}

QJsonDocument toJson(const Comparison& comparison, const SignedView& before,
                     const SignedView& after)
{
    QJsonArray rows;
    for (const ChangeRow& row : comparison.rows) {
        rows.append(QJsonObject{{"target", row.target},
                                {"change", changeName(row.change)},
                                {"before", row.before},
                                {"after", row.after},
                                {"count", row.count}});
    }
    QJsonObject summary;
    for (auto by = comparison.installationsBy.begin(); by != comparison.installationsBy.end();
         ++by) {
        summary.insert(changeName(by.key()), *by);
    }
    QJsonObject object{{"changes", rows},
                       {"installations", comparison.installations},
                       {"installationsBy", summary},
                       {"withoutOffer", comparison.withoutOffer}};
    before.addToJson(object, "signatureBefore");
    after.addToJson(object, "signatureAfter");
    return QJsonDocument(object);
}

bool isRaised(Alarm alarm, const Comparison& comparison)
{
    switch (alarm) {
    case Alarm::Lost:
        return comparison.installationsBy.value(Change::Lost) > 0;
    case Alarm::Replaced:
        return comparison.installationsBy.value(Change::Replaced) > 0;
    case Alarm::Downgrade:
        return comparison.installationsBy.value(Change::Downgrade) > 0;
    case Alarm::Nothing:
        break;
    }
    return comparison.withoutOffer > 0;
}

/** Without a gate every change is a finding. */
ExitCode judge(const QSet<int>& gate, const Comparison& comparison)
{
    bool finding = gate.isEmpty() && !comparison.rows.isEmpty();
    for (const int alarm : gate) {
        finding = finding || isRaised(static_cast<Alarm>(alarm), comparison);
    }
    return finding ? ExitFindings : ExitFine;
}

SignedView viewOf(const QString& catalogue, const PublicKeys& keys, const SignedView* seenBefore)
{
    const CatalogueSource source = readCatalogue(catalogue);
    return SignedView(source, parseCatalogue(source), keys, seenBefore);
}

ExitCode run(const QCommandLineParser& parser, Terminal& terminal)
{
    const QStringList catalogues = parser.positionalArguments();
    if (catalogues.size() != 2 || !parser.isSet("installations")) {
        throw CommandFailure(ExitUsage, "diff takes two catalogues and --installations");
    }
    const QSet<int> gate = gateFrom(parser);
    const InstallationList installations = readInstallations(parser.value("installations"));
    const PublicKeys keys = keysFrom(parser);
    const SignedView before = viewOf(catalogues.at(0), keys, nullptr);
    const SignedView after = viewOf(catalogues.at(1), keys, &before);
    const Comparison comparison =
        compareOffers(OfferTable(before.packages(), installations, before.remarks()),
                      OfferTable(after.packages(), installations, after.remarks()), installations);
    if (parser.isSet("json")) {
        terminal.json(toJson(comparison, before, after));
    } else {
        before.printRefusal(terminal);
        after.printRefusal(terminal);
        print(comparison, terminal);
    }
    return after.isAccepted() ? judge(gate, comparison) : ExitFindings;
}

} // namespace

const Command diffCommand{
    "diff",
    "Tells what a new catalogue changes for the field.",
    "update-catalogue diff published.xml examples/camera_manager/catalogue.xml --installations "
    "examples/camera_manager/field.csv --fail-on lost,downgrade",
    false,
    declare,
    run};

} // namespace vx
