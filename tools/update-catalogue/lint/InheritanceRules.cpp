#include "download/DownloadManager.h"
#include "tools/update-catalogue/CatalogueVocabulary.h"
#include "tools/update-catalogue/lint/Rules.h"

namespace vx::rules {

namespace {

/** The first value with a text above @p level. */
FieldOrigin hiddenValue(const TreeLevel* level, const QString& field)
{
    for (level = level->parent; level != nullptr; level = level->parent) {
        const QList<FieldValue> values = level->fields.value(field);
        if (!values.isEmpty() && !values.first().text.isEmpty()) {
            return {level, values.first()};
        }
    }
    return {};
}

QString sorted(const QStringSet& words)
{
    QStringList list = words.values();
    list.sort();
    return list.join(' ');
}

} // namespace

void hiddenByEmpty(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const auto& level : tree.levels()) {
        for (const QString& field : singleFields()) {
            const QList<FieldValue> values = level->fields.value(field);
            if (values.isEmpty() || !values.first().text.isEmpty()) {
                continue;
            }
            if (const FieldOrigin hidden = hiddenValue(level.get(), field)) {
                sink.add(values.first().position,
                         QString("The empty \"%1\" hides \"%2\" of line %3: users see nothing in "
                                 "its place.")
                             .arg(field, hidden.value.text)
                             .arg(hidden.value.position.line));
            }
        }
    }
}

void inheritedFromFar(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    const QStringList own{DownloadManager::URL, DownloadManager::FILE_SIZE};
    for (const CataloguePackage& package : tree.packages()) {
        for (const QString& field : own) {
            const FieldOrigin origin = package.find(field);
            if (origin && origin.level->packageCount > 1) {
                sink.add(package, package.package->position,
                         QString("\"%1\" is inherited from line %2, which %3 packages share: this "
                                 "package probably wants its own.")
                             .arg(field)
                             .arg(origin.value.position.line)
                             .arg(origin.level->packageCount));
            }
        }
    }
}

void wordsAddUp(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const auto& level : tree.levels()) {
        for (const QString& field : wordFields()) {
            const QStringSet own = wordsAt(*level, field);
            QStringSet added;
            for (auto* outer = level->parent; outer != nullptr; outer = outer->parent) {
                added.unite(wordsAt(*outer, field));
            }
            added.subtract(own);
            if (!own.isEmpty() && !added.isEmpty()) {
                sink.add(level->fields.value(field).first().position,
                         QString("\"%1\" adds up: to \"%2\" come \"%3\" from the levels around, "
                                 "which cannot be taken away here.")
                             .arg(field, sorted(own), sorted(added)));
            }
        }
    }
}

} // namespace vx::rules
