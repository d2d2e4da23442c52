#include "tools/update-catalogue/lint/LintOptions.h"

#include <algorithm>

#include "tools/update-catalogue/Command.h"
#include "tools/update-catalogue/Installation.h"

namespace vx {

namespace {

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
    parser.addOption({"files", "Compare sizes with the files in this folder.", "DIR"});
    parser.addOption({"check-urls", "Compare sizes with what the servers say."});
    parser.addOption({"platforms", "The application's platforms.", "WORDS", "Mac32 Mac64 MacPP"});
    parser.addOption({"types", "The file types that the application lists.", "WORDS", "mpkg dmg"});
    parser.addOption({"installable", "The file types that it installs.", "WORDS", "mpkg"});
}

LintOptions lintOptionsFrom(const QCommandLineParser& parser)
{
    LintOptions options;
    options.rules = ruleNames(parser, "rule");
    options.withoutRules = ruleNames(parser, "no-rule");
    options.files = parser.value("files");
    options.checkUrls = parser.isSet("check-urls");
    options.platforms = splitWordList(parser.value("platforms"));
    options.listedTypes = splitWordList(parser.value("types"));
    options.installableTypes = splitWordList(parser.value("installable"));
    return options;
}

} // namespace vx
