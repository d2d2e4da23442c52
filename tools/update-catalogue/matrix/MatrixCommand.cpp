#include <QJsonArray>
#include <QJsonObject>

#include "tools/update-catalogue/Commands.h"
#include "tools/update-catalogue/ParsedCatalogue.h"
#include "tools/update-catalogue/matrix/Gate.h"
#include "tools/update-catalogue/matrix/OfferCount.h"
#include "tools/update-catalogue/signing/SignedView.h"

namespace vx {

namespace {

void declare(QCommandLineParser& parser)
{
    parser.addPositionalArgument("catalogue", "A file, a URL, or - for standard input.");
    parser.addOption({"installations", "What is in the field, as comma-separated values.", "FILE"});
    declareKeys(parser);
    declareGate(parser);
}

void print(const OfferCount& count, Terminal& terminal)
{
    terminal.line(QString("%1 installations, %2 of them offered nothing")
                      .arg(count.installations)
                      .arg(count.withoutOffer));
    for (auto target = count.targets.begin(); target != count.targets.end(); ++target) {
        terminal.line(terminal.coloured(target.key(), Terminal::Bold));
        for (auto offer = target->begin(); offer != target->end(); ++offer) {
            const QString label = offer.key().isEmpty() ? QString("nothing") : offer.key();
            terminal.line(QString("  %1  %2")
                              .arg(*offer, 8)
                              .arg(offer.key().isEmpty()
                                       ? terminal.coloured(label, Terminal::Yellow)
                                       : label));
        }
    }
}

QJsonDocument toJson(const OfferCount& count, const SignedView& view)
{
    QJsonArray targets;
    for (auto target = count.targets.begin(); target != count.targets.end(); ++target) {
        QJsonArray offers;
        for (auto offer = target->begin(); offer != target->end(); ++offer) {
            offers.append(QJsonObject{{"offer", offer.key()}, {"count", *offer}});
        }
        targets.append(QJsonObject{{"target", target.key()}, {"offers", offers}});
    }
    QJsonObject object{{"installations", count.installations},
                       {"withoutOffer", count.withoutOffer},
                       {"targets", targets}};
    view.addToJson(object);
    return QJsonDocument(object);
}

ExitCode run(const QCommandLineParser& parser, Terminal& terminal)
{
    if (parser.positionalArguments().size() != 1 || !parser.isSet("installations")) {
        throw CommandFailure(ExitUsage, "matrix takes one catalogue and --installations");
    }
    const QSet<int> gate = gateFrom(parser);
    if (gate.contains(static_cast<int>(Alarm::Lost)) ||
        gate.contains(static_cast<int>(Alarm::Replaced)) ||
        gate.contains(static_cast<int>(Alarm::Downgrade))) {
        throw CommandFailure(ExitUsage, "only diff can tell what is lost, replaced or downgraded");
    }
    const InstallationList installations = readInstallations(parser.value("installations"));
    const PublicKeys keys = keysFrom(parser);
    const CatalogueSource source = readCatalogue(parser.positionalArguments().first());
    const SignedView view(source, parseCatalogue(source), keys);
    const OfferCount count =
        countOffers(OfferTable(view.packages(), installations, view.remarks()), installations);
    if (parser.isSet("json")) {
        terminal.json(toJson(count, view));
    } else {
        view.printRefusal(terminal);
        print(count, terminal);
    }
    const bool finding = !view.isAccepted() || (!gate.isEmpty() && count.withoutOffer > 0);
    return finding ? ExitFindings : ExitFine;
}

} // namespace

const Command matrixCommand{
    "matrix",
    "Counts who in the field is offered what.",
    "update-catalogue matrix examples/camera_manager/catalogue.xml --installations "
    "examples/camera_manager/field.csv",
    false,
    declare,
    run};

} // namespace vx
