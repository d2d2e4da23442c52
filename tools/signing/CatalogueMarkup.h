#pragma once

#include <QByteArray>
#include <QDomDocument>
#include <QUrl>

#include <memory>
#include <vector>

#include "tools/signing/MarkupEdit.h"

namespace vx {

/** @p bytes for what works on characters of the standard library. They must outlive the view. */
inline std::string_view viewOf(const QByteArray& bytes)
{
    return {bytes.constData(), static_cast<size_t>(bytes.size())};
}

/** A package as the library reads it, and where it stands in the bytes. */
struct PackageMarkup
{
    QDomElement element;
    const MarkupElement* markup = nullptr;

    /** The nearest value of @p name on the way to the root, as the library finds it. */
    QString value(const QString& name) const;

    /** Where its file is to be had: the nearest "base-url" and the nearest "url" put together. */
    QUrl address() const;
};

/** The packages of a catalogue, and the bytes behind each of them. */
class CatalogueMarkup
{
public:
    /**
     * @param document in an encoding that holds ASCII characters as single bytes; must outlive
     * this.
     * @throws ParseException when the library would not read it, or when its text does not show
     *     its elements one by one, as where packages come from an entity.
     */
    explicit CatalogueMarkup(const QByteArray& document);

    /** In the order of DownloadManager::parseXML. */
    const std::vector<PackageMarkup>& packages() const { return m_packages; }

    /**
     * The value of @p name that counts among those of @p package itself: that of its first "file"
     * before its own, an element before an attribute. Sets are not asked.
     */
    MarkupValue ownValue(const MarkupElement& package, std::string_view name) const;

    /** The first "file" of @p package, or the package. */
    const MarkupElement& innermost(const MarkupElement& package) const;

private:
    void visitSet(const MarkupElement& set, const std::vector<QDomElement>& elements);
    const MarkupElement* firstChild(const MarkupElement& parent, std::string_view name) const;

    std::unique_ptr<QDomDocument> m_tree;
    std::vector<MarkupElement> m_elements;
    std::vector<PackageMarkup> m_packages;
};

} // namespace vx
