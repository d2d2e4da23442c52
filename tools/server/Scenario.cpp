#include "tools/server/Scenario.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <optional>

#include "tools/server/BrokenAnswers.h"
#include "tools/server/SealedScenario.h"
#include "tools/server/ServedFile.h"

namespace vx {

namespace {

constexpr int slowMs = 5000;
constexpr char proxyUser[] = "user";
constexpr char proxyPassword[] = "secret";

struct Stage
{
    const UpdateServer& server;
    QString folder;
};

using Play = ServedReply (*)(const Stage&, const ServedRequest&);

bool asksForCatalogue(const ServedRequest& request)
{
    return request.path == QLatin1String("/") || request.path.endsWith(QLatin1String(".xml"));
}

ServedReply page(int status, const QByteArray& type, const QByteArray& body)
{
    ServedReply reply;
    reply.status = status;
    reply.headers = {{"Content-Type", type}};
    reply.body = body;
    return reply;
}

ServedReply fileOf(const Stage& stage, const QString& path)
{
    const bool root = path == QLatin1String("/");
    QFile file(fileBelow(stage.folder, root ? QStringLiteral("/catalogue.xml") : path));
    if (file.fileName().isEmpty() || !file.open(QIODevice::ReadOnly)) {
        return page(404, "text/plain", "Not found\n");
    }
    const bool xml = file.fileName().endsWith(QLatin1String(".xml"));
    return page(200, xml ? "text/xml" : "application/octet-stream", file.readAll());
}

ServedReply asItIs(const Stage& stage, const ServedRequest& request)
{
    return fileOf(stage, request.path);
}

ServedReply catalogueInstead(const Stage& stage, const ServedRequest& request,
                             const QByteArray& catalogue)
{
    return asksForCatalogue(request) ? page(200, "text/xml", catalogue) : asItIs(stage, request);
}

ServedReply upToDate(const Stage& stage, const ServedRequest& request)
{
    return catalogueInstead(stage, request,
                            "<softwareList><package type=\"Application\" name=\"Another product\""
                            " platform=\"AnotherPlatform\" release=\"0.1\" status=\"STABLE\""
                            " url=\"http://download.example.com/another.mpkg.zip\""
                            " file-size=\"1\"/></softwareList>\n");
}

ServedReply emptyCatalogue(const Stage& stage, const ServedRequest& request)
{
    return catalogueInstead(stage, request, "<softwareList/>\n");
}

ServedReply malformed(const Stage& stage, const ServedRequest& request)
{
    return catalogueInstead(stage, request, "<softwareList><package name=\"Cut off");
}

ServedReply redirectTo(const QUrl& target)
{
    ServedReply reply;
    reply.status = 302;
    reply.headers = {{"Location", target.toEncoded()}};
    return reply;
}

ServedReply redirect(const Stage& stage, const ServedRequest& request)
{
    const QString moved = QStringLiteral("/moved");
    if (request.path.startsWith(moved + QLatin1Char('/'))) {
        return fileOf(stage, request.path.mid(moved.size()));
    }
    return asksForCatalogue(request) ? redirectTo(stage.server.url(moved + request.path))
                                     : asItIs(stage, request);
}

ServedReply redirectLoop(const Stage& stage, const ServedRequest& request)
{
    return asksForCatalogue(request) ? redirectTo(stage.server.url(request.path))
                                     : asItIs(stage, request);
}

ServedReply silent(const Stage&, const ServedRequest&)
{
    ServedReply reply;
    reply.fault = ServedReply::Silent;
    return reply;
}

/** Whether @p reply is a package, so that a scenario may break it. */
bool isPackage(const ServedRequest& request, const ServedReply& reply)
{
    return !asksForCatalogue(request) && reply.status == 200;
}

/** A package that breaks off after @p percent of its bytes. */
ServedReply brokenPackage(const Stage& stage, const ServedRequest& request,
                          ServedReply::Fault fault, int percent)
{
    ServedReply reply = asItIs(stage, request);
    if (isPackage(request, reply)) {
        reply.fault = fault;
        reply.bytesBeforeFault = qint64(reply.body.size()) * percent / 100;
    }
    return reply;
}

ServedReply shortPackage(const Stage& stage, const ServedRequest& request)
{
    return brokenPackage(stage, request, ServedReply::CloseEarly, 50);
}

ServedReply stallAt99(const Stage& stage, const ServedRequest& request)
{
    return brokenPackage(stage, request, ServedReply::Stall, 99);
}

ServedReply resetPackage(const Stage& stage, const ServedRequest& request)
{
    return brokenPackage(stage, request, ServedReply::Reset, 50);
}

ServedReply slowPackage(const Stage& stage, const ServedRequest& request)
{
    ServedReply reply = brokenPackage(stage, request, ServedReply::Slow, 100);
    reply.delayMs = reply.fault == ServedReply::Slow ? slowMs : 0;
    return reply;
}

ServedReply long404(const Stage& stage, const ServedRequest& request)
{
    ServedReply package = asItIs(stage, request);
    if (asksForCatalogue(request)) {
        return package;
    }
    const QByteArray padding(package.body.size(), ' ');
    return page(404, "text/html",
                "<!DOCTYPE html><title>404</title><p>Not here." + padding + "</p>\n");
}

ServedReply captivePortal(const Stage&, const ServedRequest&)
{
    return page(200, "text/html",
                "<!DOCTYPE html>\n<title>Welcome</title>\n<p>Please sign in to use this network.\n"
                "<form action=\"/login\"><input name=user><button>Sign in</button></form>\n");
}

ServedReply redirect308(const Stage& stage, const ServedRequest& request)
{
    ServedReply reply = redirect(stage, request);
    reply.status = reply.status == 302 ? 308 : reply.status;
    return reply;
}

ServedReply earlyHints(const Stage& stage, const ServedRequest& request)
{
    return afterEarlyHints(asItIs(stage, request));
}

ServedReply endlessHeaders(const Stage&, const ServedRequest&)
{
    return withEndlessHeader();
}

ServedReply missingLastChunk(const Stage& stage, const ServedRequest& request)
{
    const ServedReply reply = asItIs(stage, request);
    return isPackage(request, reply) ? withoutLastChunk(reply) : reply;
}

ServedReply wrongLength(const Stage& stage, const ServedRequest& request)
{
    const ServedReply reply = asItIs(stage, request);
    return isPackage(request, reply) ? withHalfTheLength(reply) : reply;
}

struct Scenario
{
    const char* name;
    const char* description;
    Play play;
    /** Set if it is about signatures; play is then that of the plain files. */
    std::optional<SealPlay> seal = std::nullopt;
};

constexpr std::array<Scenario, 25> scenarios = {{
    {"as-it-is", "the folder as it is", asItIs},
    {"up-to-date", "a catalogue that holds nothing for this product", upToDate},
    {"empty", "a catalogue without any package", emptyCatalogue},
    {"malformed", "a catalogue that breaks off in the middle of a tag", malformed},
    {"redirect", "the catalogue is found after one redirect", redirect},
    {"redirect-loop", "the catalogue redirects to itself", redirectLoop},
    {"redirect-308", "the catalogue redirects with a status that a check does not follow",
     redirect308},
    {"silent", "requests are accepted and never answered", silent},
    {"short", "a package's connection is closed halfway", shortPackage},
    {"long-404", "a package is answered with a 404 page longer than the package", long404},
    {"stall-at-99", "a package stops at 99 percent and the connection stays open", stallAt99},
    {"reset", "a package's connection is reset halfway", resetPackage},
    {"missing-last-chunk", "a package comes in chunks, and the mark of their end is missing",
     missingLastChunk},
    {"wrong-length", "a package is announced with half of its length", wrongLength},
    {"early-hints", "an interim answer 103 comes before every answer", earlyHints},
    {"endless-headers", "the header of every answer has no end", endlessHeaders},
    {"captive-portal", "everything is answered with a sign-in page", captivePortal},
    {"slow", "a package takes five seconds", slowPackage},
    {"proxy-password", "as a proxy, asks for the user \"user\" with the password \"secret\"",
     asItIs},
    {"signed", "a catalogue that is sealed, with the digests of the packages", asItIs,
     SealPlay::Signed},
    {"unsigned", "the same catalogue without its seal", asItIs, SealPlay::Unsigned},
    {"forged", "a catalogue that was changed after it was sealed", asItIs, SealPlay::Forged},
    {"replayed", "a sealed catalogue, and an older one from the second request on", asItIs,
     SealPlay::Replayed},
    {"expired", "a sealed catalogue whose time is over", asItIs, SealPlay::Expired},
    {"package-exchanged", "a sealed catalogue, and packages that are not the ones it names", asItIs,
     SealPlay::PackageExchanged},
}};

const Scenario* findScenario(const QString& name)
{
    const auto found =
        std::find_if(scenarios.begin(), scenarios.end(), [&name](const Scenario& scenario) {
            return name == QLatin1String(scenario.name);
        });
    return found == scenarios.end() ? nullptr : &*found;
}

UpdateServer::Handler sealing(const Stage& stage, SealPlay play, const SigningKey& key)
{
    const auto scenario = std::make_shared<SealedScenario>(play, key, stage.folder);
    return [stage, scenario](const ServedRequest& request) {
        const ServedReply reply = asItIs(stage, request);
        return asksForCatalogue(request) ? scenario->catalogue(reply) : scenario->package(reply);
    };
}

} // namespace

QStringList scenarioNames()
{
    QStringList names;
    std::transform(scenarios.begin(), scenarios.end(), std::back_inserter(names),
                   [](const Scenario& scenario) { return QLatin1String(scenario.name); });
    return names;
}

QString scenarioDescription(const QString& name)
{
    const Scenario* scenario = findScenario(name);
    return scenario != nullptr ? QString::fromLatin1(scenario->description) : QString();
}

bool isAboutSignatures(const QString& name)
{
    const Scenario* scenario = findScenario(name);
    return scenario != nullptr && scenario->seal.has_value();
}

bool applyScenario(UpdateServer& server, const QString& name, const QString& folder)
{
    return applyScenario(server, name, folder, SigningKey::generate());
}

bool applyScenario(UpdateServer& server, const QString& name, const QString& folder,
                   const SigningKey& key)
{
    const Scenario* scenario = findScenario(name);
    if (scenario == nullptr) {
        return false;
    }
    const bool locked = name == QLatin1String("proxy-password");
    server.setProxyPassword(locked ? QLatin1String(proxyUser) : QString(),
                            locked ? QLatin1String(proxyPassword) : QString());
    const Stage stage{server, folder};
    server.setHandler(scenario->seal
                          ? sealing(stage, *scenario->seal, key)
                          : [stage, play = scenario->play](const ServedRequest& request) {
                                return play(stage, request);
                            });
    return true;
}

} // namespace vx
