#include <QJsonObject>

#include <optional>

#include "tools/update-catalogue/Commands.h"
#include "tools/update-catalogue/Installation.h"
#include "tools/update-catalogue/ParsedCatalogue.h"
#include "tools/update-catalogue/explain/CheckLogText.h"
#include "tools/update-catalogue/explain/ExplanationOutput.h"
#include "tools/update-catalogue/explain/UserStore.h"

namespace vx {

namespace {

void declare(QCommandLineParser& parser)
{
    parser.addPositionalArgument("catalogue", "A file, a URL, or - for standard input.");
    declareInstallation(parser);
    parser.addOption(
        {"language", "The system's language, for the rows that it hides.", "CODE", "en"});
    declareKeys(parser);
    parser.addOption({"store",
                      "A user's settings store, in place of --application and the others; one "
                      "that is given as well counts.",
                      "FILE"});
    parser.addOption({"log", "A user's log: tells what its last check did.", "FILE"});
    parser.addOption({"package", "Only packages whose name or release holds this.", "TEXT"});
}

bool isWanted(const PackageInfo& package, const QString& text)
{
    return packageLabel(package).contains(text, Qt::CaseInsensitive) ||
           package.publicName.contains(text, Qt::CaseInsensitive);
}

/** Leaves the verdicts on packages that --package asks for. */
void narrow(Explanation& explanation, const ParsedCatalogue& catalogue, const QString& text)
{
    for (TargetExplanation& target : explanation.targets) {
        QList<Verdict> wanted;
        for (const Verdict& verdict : qAsConst(target.verdicts)) {
            if (isWanted(catalogue.packages.at(verdict.package), text)) {
                wanted.append(verdict);
            }
        }
        target.verdicts = wanted;
    }
}

bool offersAnything(const Explanation& explanation)
{
    for (const TargetExplanation& target : explanation.targets) {
        for (const Verdict& verdict : target.verdicts) {
            if (verdict.outcome == Verdict::Offered) {
                return true;
            }
        }
    }
    return false;
}

/** What was given, apart from the catalogue. */
struct Given
{
    std::optional<UserStore> store;
    std::optional<CheckLog> log;

    QDateTime lastCheck() const { return store ? store->settings.lastCheck : QDateTime(); }
};

Given givenBy(const QCommandLineParser& parser)
{
    Given given;
    if (parser.isSet("store")) {
        given.store = readUserStore(parser.value("store"));
    }
    if (parser.isSet("log")) {
        given.log = readCheckLog(parser.value("log"));
    }
    return given;
}

void checkUsage(const QCommandLineParser& parser)
{
    const int catalogues = parser.positionalArguments().size();
    const bool isEnough = parser.isSet("store") || parser.isSet("log");
    if (catalogues > 1 || (catalogues == 0 && !isEnough)) {
        throw CommandFailure(ExitUsage, "explain takes one catalogue, or --store or --log");
    }
    if (catalogues == 1 && !parser.isSet("store") &&
        !(parser.isSet("application") && parser.isSet("version"))) {
        throw CommandFailure(ExitUsage, "--application and --version, or --store, are needed");
    }
}

/** The installation of the store; what an option says counts in place of it. */
OfferCriteria storedCriteria(const QCommandLineParser& parser, const UserStore& store)
{
    OfferCriteria criteria = criteriaFrom(store.settings, store.applicationName());
    replaceInstallation(criteria, parser);
    return criteria;
}

/** Explains the catalogue that is named. @return whether it offers anything */
bool explainCatalogue(const QCommandLineParser& parser, const OfferCriteria& criteria,
                      QJsonObject& object, Terminal& terminal)
{
    const PublicKeys keys = keysFrom(parser);
    const CatalogueSource source = readCatalogue(parser.positionalArguments().first());
    const ParsedCatalogue catalogue = parseCatalogue(source);
    const SignedView view(source, catalogue, keys);
    Explanation explanation = explain(view.packages(), criteria);
    narrow(explanation, catalogue, parser.value("package"));
    if (parser.isSet("json")) {
        addExplanation(object, explanation, catalogue, parser.value("language"), view);
    } else {
        printExplanation(explanation, catalogue, parser.value("language"), view, terminal);
    }
    return offersAnything(explanation);
}

void printGiven(const Given& given, const QString& applicationName, Terminal& terminal)
{
    if (given.store) {
        printFacts("Settings " + given.store->path, storeFacts(*given.store, applicationName),
                   terminal);
    }
    if (given.log) {
        printFacts("Log " + given.log->path, logFacts(*given.log, given.lastCheck()), terminal);
    }
}

QJsonObject toJson(const Given& given, const QString& applicationName)
{
    QJsonObject object;
    if (given.store) {
        object.insert("store", storeToJson(*given.store, applicationName));
    }
    if (given.log) {
        object.insert("log", logToJson(*given.log, given.lastCheck()));
    }
    return object;
}

ExitCode run(const QCommandLineParser& parser, Terminal& terminal)
{
    checkUsage(parser);
    const Given given = givenBy(parser);
    const bool hasCatalogue = !parser.positionalArguments().isEmpty();
    OfferCriteria criteria;
    if (given.store) {
        criteria = storedCriteria(parser, *given.store);
    } else if (hasCatalogue) {
        criteria = installationFrom(parser).criteria;
    }
    QJsonObject object = toJson(given, criteria.applicationName);
    if (!parser.isSet("json")) {
        printGiven(given, criteria.applicationName, terminal);
    }
    bool isFine = !given.log || cameToVerdict(*given.log);
    if (hasCatalogue) {
        isFine = explainCatalogue(parser, criteria, object, terminal) && isFine;
    }
    if (parser.isSet("json")) {
        terminal.json(QJsonDocument(object));
    }
    return isFine ? ExitFine : ExitFindings;
}

} // namespace

const Command explainCommand{
    "explain",
    "Tells for every package why an installation is or is not offered it.",
    "update-catalogue explain examples/camera_manager/catalogue.xml --application "
    "CameraManager --version 5.2.1 --camera Dome-24=4.1.9",
    false,
    declare,
    run};

} // namespace vx
