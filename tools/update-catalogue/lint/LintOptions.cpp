#include "tools/update-catalogue/lint/LintOptions.h"

#include <QFileInfo>

#include <algorithm>

#include "tools/update-catalogue/Command.h"
#include "tools/update-catalogue/Installation.h"

namespace vx {

namespace {

Severity failOnFrom(const QCommandLineParser& parser)
{
    const QString name = parser.value("fail-on");
    const std::optional<Severity> severity = severityFromName(name);
    if (!severity) {
        throw CommandFailure(
            ExitUsage, QString("--fail-on takes error, warning or note, and not \"%1\"").arg(name));
    }
    return *severity;
}

QStringList ruleNames(const QCommandLineParser& parser, const QString& option)
{
    const QStringList names = parser.values(option);
    for (const QString& name : names) {
        const bool known = std::any_of(allRules().begin(), allRules().end(),
                                       [&name](const Rule& rule) { return rule.name == name; });
        if (!known) {
            throw CommandFailure(ExitUsage, QString("no rule \"%1\". Try lint --list").arg(name));
        }
    }
    return names;
}

} // namespace

void declareLint(QCommandLineParser& parser)
{
    parser.addOption({"rule", "Apply only this rule; may be repeated.", "NAME"});
    parser.addOption({"no-rule", "Leave this rule out; may be repeated.", "NAME"});
    parser.addOption({"files", "Compare sizes and digests with the files in this folder.", "DIR"});
    parser.addOption({"signed", "Look for digests, as the catalogue is to be signed."});
    parser.addOption(
        {"check-urls",
         "Compare sizes with what the servers say, and look how they serve the catalogue."});
    parser.addOption({"fail-on",
                      "Exit with 1 only for findings as bad as this: error, warning or note.",
                      "SEVERITY", "warning"});
    parser.addOption({"platforms", "The application's platforms.", "WORDS", "Mac32 Mac64 MacPP"});
    parser.addOption({"types", "The file types that the application lists.", "WORDS", "mpkg dmg"});
    parser.addOption({"installable", "The file types that it installs.", "WORDS", "mpkg"});
}

LintOptions lintOptionsFrom(const QCommandLineParser& parser)
{
    LintOptions options;
    options.rules = ruleNames(parser, "rule");
    options.withoutRules = ruleNames(parser, "no-rule");
    options.failOn = failOnFrom(parser);
    options.files = parser.value("files");
    options.isSigned = parser.isSet("signed");
    if (parser.isSet("files") && !QFileInfo(options.files).isDir()) {
        throw CommandFailure(ExitUnreadable, QString("%1: no such folder").arg(options.files));
    }
    options.checkUrls = parser.isSet("check-urls");
    options.platforms = splitWordList(parser.value("platforms"));
    options.listedTypes = splitWordList(parser.value("types"));
    options.installableTypes = splitWordList(parser.value("installable"));
    return options;
}

} // namespace vx
