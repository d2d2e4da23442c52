#include <QRegularExpression>

#include "download/DownloadManager.h"
#include "tools/update-catalogue/CatalogueVocabulary.h"
#include "tools/update-catalogue/lint/Rules.h"

namespace vx::rules {

namespace {

/** Calls @p visit for every single value, on whatever level, with the name of its field. */
template <typename Visit>
void forEachValue(const CatalogueTree& tree, Visit visit)
{
    for (const auto& level : tree.levels()) {
        for (const QString& field : singleFields()) {
            for (const FieldValue& value : level->fields.value(field)) {
                visit(field, value);
            }
        }
    }
}

bool isEscapedTwice(const QString& field, const QString& text)
{
    static const QRegularExpression entity("&(amp|lt|gt|quot|apos|nbsp|#[0-9]+|#x[0-9A-Fa-f]+);");
    // In a comment an entity is plain HTML; only a tag that is spelt with entities shows as text.
    static const QRegularExpression shownTag("&lt;/?[A-Za-z][A-Za-z0-9]*\\s*/?&gt;");
    return (field == DownloadManager::COMMENT ? shownTag : entity).match(text).hasMatch();
}

} // namespace

void blankAround(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    const QStringList exact{DownloadManager::NAME, DownloadManager::RELEASE_VERSION,
                            DownloadManager::BASE_URL, DownloadManager::URL};
    forEachValue(tree, [&](const QString& field, const FieldValue& value) {
        if (exact.contains(field) && value.text != value.text.trimmed()) {
            sink.add(value.position,
                     QString("\"%1\" begins or ends with white space, which belongs to the value: "
                             "\"%2\" is not \"%3\".")
                         .arg(field, value.text, value.text.trimmed()));
        }
    });
}

void wrongEncoding(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    static const QRegularExpression garbled(
        "[\u00c2\u00c3][\u0080-\u00bf]|\u00e2[\u0080\u20ac]|\ufffd");
    forEachValue(tree, [&](const QString& field, const FieldValue& value) {
        if (garbled.match(value.text).hasMatch()) {
            sink.add(value.position,
                     QString("Users see \"%1\" as \"%2\": the file was written in another encoding "
                             "than its first line says.")
                         .arg(field, value.text));
        }
    });
}

void escapedTwice(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    forEachValue(tree, [&](const QString& field, const FieldValue& value) {
        if (isEscapedTwice(field, value.text)) {
            sink.add(
                value.position,
                QString("\"%1\" is escaped twice: what is read is \"%2\".").arg(field, value.text));
        }
    });
}

void swallowedPackage(const CatalogueTree& tree, const LintOptions&, FindingSink& sink)
{
    const QString tag = '<' + DownloadManager::PACKAGE;
    const QString endTag = "</" + DownloadManager::PACKAGE;
    forEachValue(tree, [&](const QString& field, const FieldValue& value) {
        if (value.text.contains(tag) || value.text.contains(endTag)) {
            sink.add(
                value.position,
                QString("The text of \"%1\" holds packages, which are lost: is \"]]>\" missing "
                        "at its end?")
                    .arg(field));
        }
    });
}

} // namespace vx::rules
