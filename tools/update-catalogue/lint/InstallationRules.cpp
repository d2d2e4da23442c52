#include <algorithm>

#include "download/DownloadManager.h"
#include "tools/update-catalogue/lint/PlatformWords.h"
#include "tools/update-catalogue/lint/Rules.h"

namespace vx::rules {

namespace {

/** What the installations call their platforms and cameras. */
struct FieldNames
{
    QStringList platforms;
    QStringList cameras;
};

FieldNames namesInField(const InstallationList& installations)
{
    FieldNames names;
    for (const Installation& installation : installations) {
        names.platforms += installation.criteria.supportedPlatforms;
        for (const auto& camera : installation.criteria.currentCameraVersions) {
            names.cameras.append(camera.first);
        }
    }
    names.platforms.removeDuplicates();
    names.cameras.removeDuplicates();
    names.cameras.sort();
    return names;
}

/** The names among @p cameras that are offered what is for @p word, and are called otherwise. */
QStringList othersThatFit(const QString& word, const QStringList& cameras)
{
    QStringList others;
    for (const QString& camera : cameras) {
        if (camera != word && fits(word, {camera})) {
            others.append('"' + camera + '"');
        }
    }
    return others;
}

} // namespace

void platformNotInField(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink)
{
    if (options.installations.isEmpty()) {
        return;
    }
    const FieldNames names = namesInField(options.installations);
    for (const PlatformWord& word : platformWords(tree)) {
        if (!fits(word.text, names.platforms) && !fits(word.text, names.cameras)) {
            sink.add(word.position,
                     QString("The platform \"%1\" fits no camera and no platform in the field: "
                             "nobody there is offered what is for it.")
                         .arg(word.text));
        }
    }
}

void platformTooWide(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink)
{
    const FieldNames names = namesInField(options.installations);
    for (const PlatformWord& word : platformWords(tree)) {
        const QStringList others = othersThatFit(word.text, names.cameras);
        if (!others.isEmpty() && !fits(word.text, names.platforms)) {
            sink.add(word.position,
                     QString("The platform \"%1\" fits more than its name says: cameras called %2 "
                             "are offered what is for it.")
                         .arg(word.text, others.join(", ")));
        }
    }
}

void applicationWithoutPackage(const CatalogueTree& tree, const LintOptions& options,
                               FindingSink& sink)
{
    QStringList names;
    for (const Installation& installation : options.installations) {
        names.append(installation.criteria.applicationName);
    }
    names.removeDuplicates();
    for (const QString& name : qAsConst(names)) {
        const auto& packages = tree.packages();
        const bool isNamed =
            std::any_of(packages.begin(), packages.end(),
                        [&name](const CataloguePackage& p) { return p.info.name == name; });
        if (!isNamed && !name.isEmpty()) {
            sink.add(tree.levels().front()->position,
                     QString("No package is named \"%1\", as an application in the field is: it is "
                             "offered nothing for itself.")
                         .arg(name));
        }
    }
}

} // namespace vx::rules
