#pragma once

#include <QDomDocument>
#include <QList>
#include <QMultiMap>
#include <QString>

#include <memory>
#include <vector>

#include "package/PackageInfo.h"
#include "tools/update-catalogue/CatalogueSource.h"
#include "tools/update-catalogue/CatalogueText.h"

namespace vx {

/** One value of a field, written as an element or as an attribute. */
struct FieldValue
{
    QString text;
    bool isAttribute = false;
    /** Of the element, or of the tag that carries the attribute. */
    TextPosition position;
    /** The element itself; null for an attribute. */
    QDomElement element;
};

/** One level of the climb from a package to the root: a set, a package or a file. */
struct TreeLevel
{
    enum Kind { Set, Package, File };

    Kind kind = Set;
    QDomElement element;
    TextPosition position;
    /** The next level outwards; null for the root. */
    const TreeLevel* parent = nullptr;
    /** Known fields of this level alone, by name; those of one name in the order of the search. */
    QMap<QString, QList<FieldValue>> fields;
    /** How many packages stand in this level, at any depth. */
    int packageCount = 0;
};

/** The words that @p level itself gives for @p field, split as the library splits them. */
QStringSet wordsAt(const TreeLevel& level, const QString& field);

/** Where a single-valued field was found. */
struct FieldOrigin
{
    /** Null if no level has the field. */
    const TreeLevel* level = nullptr;
    FieldValue value;

    explicit operator bool() const { return level != nullptr; }
};

/** A package with what the library reads from it, and where it stands. */
struct CataloguePackage
{
    PackageInfo info;
    const TreeLevel* package = nullptr;
    /** The first "file" child, or the package itself: where every search begins. */
    const TreeLevel* start = nullptr;

    /** What people call it: name and release, for messages. */
    QString label() const;

    /** The first value of @p tag on the way to the root, as the library finds it. */
    FieldOrigin find(const QString& tag) const;
};

/** Something in the document that is no field, set, package or file where it stands. */
struct StrayMarkup
{
    enum Kind {
        UnknownElement,
        UnknownAttribute,
        Unvisited,
        FurtherFile,
        MarkupInText, ///< an element inside a field that is read as text
        StrayText     ///< text between elements
    };

    Kind kind;
    /** Of the element or attribute; of StrayText the text. */
    QString name;
    /** The element that holds it. */
    QString parentName;
    TextPosition position;
};

/** A catalogue that is well-formed: its packages as the library reads them, and their sources. */
class CatalogueTree
{
public:
    /**
     * Reads @p source with the library's own parser.
     *
     * @throws ParseException if the library would refuse it.
     */
    explicit CatalogueTree(const CatalogueSource& source);

    /** In the order of DownloadManager::parseXML. */
    const std::vector<CataloguePackage>& packages() const { return m_packages; }

    /** Every set, package and file that is visited, from the root on. */
    const std::vector<std::unique_ptr<TreeLevel>>& levels() const { return m_levels; }

    /** What nobody reads. */
    const QList<StrayMarkup>& strays() const { return m_strays; }

    /** The document that was read. */
    const QByteArray& bytes() const { return m_bytes; }

    /** Where @p element begins. */
    TextPosition positionOf(const QDomElement& element) const;

private:
    void numberElements(const QDomElement& element, const QVector<TextPosition>& positions);
    TreeLevel* addLevel(TreeLevel::Kind kind, const QDomElement& element, const TreeLevel* parent);
    void readSet(const QDomElement& element, const TreeLevel* parent);
    void readPackage(const QDomElement& element, TreeLevel* set);
    void readFields(TreeLevel& level);
    void readChild(TreeLevel& level, const QDomElement& child);
    void readAttributes(TreeLevel& level);
    void noteStray(StrayMarkup::Kind kind, const QDomElement& element, const QString& name);
    void readUrlEntry(const QDomElement& element);
    void readText(const QDomElement& element);
    void readStrayText(const QDomElement& element);

    QByteArray m_bytes;
    std::unique_ptr<QDomDocument> m_document;
    QMap<QPair<int, int>, TextPosition> m_positions;
    std::vector<std::unique_ptr<TreeLevel>> m_levels;
    std::vector<CataloguePackage> m_packages;
    QList<StrayMarkup> m_strays;
};

} // namespace vx
