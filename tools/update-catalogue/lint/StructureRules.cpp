#include "download/DownloadManager.h"
#include "tools/update-catalogue/CatalogueVocabulary.h"
#include "tools/update-catalogue/lint/Rules.h"

namespace vx::rules {

namespace {

QString advice(const QString& name)
{
    const QString nearest = nearestKnownName(name);
    if (nearest == name) {
        return " It has no effect there: give it to each package.";
    }
    return nearest.isEmpty() ? QString(" It has no effect.")
                             : QString(" Did you mean \"%1\"?").arg(nearest);
}

void reportUnknown(const CatalogueTree& tree, StrayMarkup::Kind kind, const QString& sentence,
                   FindingSink& sink)
{
    for (const StrayMarkup& stray : tree.strays()) {
        if (stray.kind == kind) {
            sink.add(stray.position,
                     sentence.arg(stray.name, stray.parentName) + advice(stray.name));
        }
    }
}

} // namespace

void noPackage(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    if (tree.packages().empty()) {
        sink.add(tree.levels().front()->position,
                 "The catalogue holds no package: everybody reads \"No update available!\".");
    }
}

void unknownElement(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    reportUnknown(tree, StrayMarkup::UnknownElement,
                  "Nobody reads the element \"%1\" inside \"%2\".", sink);
}

void unknownAttribute(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    reportUnknown(tree, StrayMarkup::UnknownAttribute,
                  "Nobody reads the attribute \"%1\" of \"%2\".", sink);
}

void unvisited(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const StrayMarkup& stray : tree.strays()) {
        if (stray.kind == StrayMarkup::Unvisited) {
            sink.add(stray.position,
                     QString("A \"%1\" inside \"%2\" is not visited: nobody is offered what it "
                             "holds. Put it into a set.")
                         .arg(stray.name, stray.parentName));
        }
    }
}

void furtherFile(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const StrayMarkup& stray : tree.strays()) {
        if (stray.kind == StrayMarkup::FurtherFile) {
            sink.add(stray.position, "Only the first \"file\" of a package is read: this one is "
                                     "offered to nobody. Give it a package of its own.");
        }
    }
}

void markupInText(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const StrayMarkup& stray : tree.strays()) {
        if (stray.kind == StrayMarkup::MarkupInText) {
            sink.add(stray.position,
                     QString("The tag \"%1\" inside \"%2\" is dropped, and only the text in it is "
                             "kept. Write \"&lt;\" for \"<\", or put the text into "
                             "\"<![CDATA[\" and \"]]>\".")
                         .arg(stray.name, stray.parentName));
        }
    }
}

void strayText(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const StrayMarkup& stray : tree.strays()) {
        if (stray.kind == StrayMarkup::StrayText) {
            sink.add(stray.position,
                     QString("Nobody reads the text \"%1\" that stands in \"%2\" itself: put it "
                             "into an element or an attribute.")
                         .arg(stray.name, stray.parentName));
        }
    }
}

void repeatedField(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    for (const auto& level : tree.levels()) {
        for (const QString& field : singleFields() + packageFields()) {
            const QList<FieldValue> values = level->fields.value(field);
            if (values.size() < 2 || values.at(0).text == values.at(1).text) {
                continue;
            }
            sink.add(values.at(1).position,
                     QString("\"%1\" is given more than once at this level: users get \"%2\", and "
                             "\"%3\" has no effect.")
                         .arg(field, values.at(0).text, values.at(1).text));
        }
    }
}

} // namespace vx::rules
