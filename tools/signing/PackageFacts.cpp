#include "tools/signing/PackageFacts.h"

#include <initializer_list>

#include "host/CoreQt/ParseException.h"
#include "tools/signing/CatalogueMarkup.h"
#include "trust/internal/PackageDigests.h"

namespace vx {

namespace {

constexpr std::string_view sizeTag = "file-size";
constexpr std::string_view digestTag = packageDigestTag;
constexpr std::string_view addressTag = "url";

std::string_view trimmed(std::string_view text)
{
    const size_t first = text.find_first_not_of(markupWhitespace);
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(markupWhitespace) - first + 1);
}

class FactsWriter
{
public:
    FactsWriter(MarkupEditor& editor, const CatalogueMarkup& catalogue)
        : m_editor(editor)
        , m_catalogue(catalogue)
    {}

    void write(const MarkupElement& package, const PackageFacts& facts)
    {
        writeValue(package, sizeTag, std::to_string(facts.size), {addressTag, digestTag});
        writeValue(package, digestTag, facts.sha256.toStdString(), {sizeTag, addressTag});
    }

private:
    void writeValue(const MarkupElement& package, std::string_view name, const std::string& text,
                    std::initializer_list<std::string_view> neighbours)
    {
        if (const MarkupValue value = m_catalogue.ownValue(package, name)) {
            if (trimmed(m_editor.textOf(value)) != text) {
                m_editor.replace(value, text);
            }
            return;
        }
        for (const std::string_view neighbour : neighbours) {
            if (const MarkupValue value = m_catalogue.ownValue(package, neighbour)) {
                m_editor.addBehind(value, name, text);
                return;
            }
        }
        m_editor.addAttribute(m_catalogue.innermost(package), name, text);
    }

    MarkupEditor& m_editor;
    const CatalogueMarkup& m_catalogue;
};

QByteArray withLastLineEnded(const QByteArray& document)
{
    if (document.endsWith('\n')) {
        return document;
    }
    const auto lineEnd = document.lastIndexOf('\n');
    return document + (lineEnd > 0 && document.at(lineEnd - 1) == '\r' ? "\r\n" : "\n");
}

/** The parser has the last word on what the new document says. */
void verify(const QByteArray& document, const QMap<int, PackageFacts>& facts)
{
    const CatalogueMarkup catalogue(document);
    for (auto fact = facts.begin(); fact != facts.end(); ++fact) {
        const PackageMarkup& package = catalogue.packages().at(static_cast<size_t>(fact.key()));
        const PackageDigest digest = readPackageDigest(packageDigestText(package.element));
        if (digest.sha256.toHex() != fact->sha256 ||
            package.value("file-size").trimmed() != QString::number(fact->size)) {
            throw ParseException(
                QString("Package %1 cannot be changed in place.").arg(fact.key() + 1));
        }
    }
}

} // namespace

QByteArray writePackageFacts(const QByteArray& document, const QMap<int, PackageFacts>& facts)
{
    const CatalogueMarkup catalogue(document);
    MarkupEditor editor(viewOf(document));
    FactsWriter writer(editor, catalogue);
    for (auto fact = facts.begin(); fact != facts.end(); ++fact) {
        writer.write(*catalogue.packages().at(static_cast<size_t>(fact.key())).markup, *fact);
    }
    const QByteArray result = withLastLineEnded(QByteArray::fromStdString(editor.result()));
    verify(result, facts);
    return result;
}

} // namespace vx
