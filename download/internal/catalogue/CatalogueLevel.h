#pragma once

#include <QHash>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVector>
#include <QtXml/QDomElement>
#include <QtXml/QDomNamedNodeMap>
#include <QtXml/QDomNode>

#include <array>
#include <list>
#include <optional>

#include "download/internal/catalogue/CatalogueFields.h"
#include "package/PackageInfo.h"

namespace vx {

class ReadingBudget;

/**
 * One level of the way from a package to the root, with its fields at hand.
 *
 * It answers what CatalogueSearch::findString, findAllStrings and findAllTranslatedUrls answer for
 * a search that starts at its node. They look among all children of every level for every field of
 * every package, and among thousands of packages that takes the square of their number; a level
 * goes through its children once. The levels of the sets are kept while their packages are read,
 * and what a set holds is kept with it, so that all its packages share one text.
 *
 * The document must not change while a level lives.
 */
class CatalogueLevel
{
public:
    /**
     * @param outer the level of the parent node, or null at the outermost. It must live longer.
     * @param budget what the reading of records is charged to. It must live longer.
     */
    CatalogueLevel(const QDomNode& node, CatalogueLevel* outer, ReadingBudget& budget);
    CatalogueLevel(const CatalogueLevel&) = delete;
    CatalogueLevel& operator=(const CatalogueLevel&) = delete;

    /** The first FILE element, where a search for fields of this node begins, or a null one. */
    const QDomElement& file() const { return m_file; }

    /** The nearest value of a single field. */
    const QString& value(CatalogueField field);

    /** The DigestField of this level itself, or nothing: it is not inherited. */
    std::optional<QString> ownDigest() const;

    /** What CatalogueFieldParsers::parseReleaseDate makes of the nearest DateField. */
    QDateTime releaseDate();

    /** Adds the words of every LanguageField or PlatformField from here upwards. */
    void addWords(CatalogueField field, QStringSet& words);

    /** Adds every ReleaseNotesField or ReadmeField from here upwards, the nearest first. */
    void addUrls(CatalogueField field, UrlMap& urls);

private:
    using Urls = QVector<QPair<QString, QUrl>>;

    void take(const QDomElement& child);
    const QVector<QDomElement>& elements(CatalogueField field) const;
    std::optional<QString> attribute(CatalogueField field) const;
    const QStringSet& wordsFromHere(CatalogueField field);
    QStringSet wordsWith(CatalogueField field, const QStringList& texts);
    const QStringSet& wordsTogether(CatalogueField field, const QStringList& texts);
    CatalogueLevel* levelOfWords(CatalogueField field);
    QStringList wordTexts(CatalogueField field) const;
    const QStringSet& wordsIn(const QString& text);
    QStringSet wordsIn(const QStringList& texts);
    QDateTime dateIn(const QString& text);
    CatalogueLevel* outerWithUrls(CatalogueField field);
    const Urls& ownUrls(CatalogueField field);
    Urls readOwnUrls(CatalogueField field);
    QString valueFor(const QDomElement& urlElement, CatalogueField field);
    QString languageOfAttribute();

    QDomNamedNodeMap m_attributes;
    bool m_hasAttributes;
    CatalogueLevel* m_outer;
    CatalogueLevel* m_outermost;
    ReadingBudget& m_budget;
    QDomElement m_file;
    std::array<std::optional<QString>, singleFieldCount> m_values;
    std::array<QVector<QDomElement>, gatheredFieldCount> m_elements;
    std::array<std::optional<QStringSet>, gatheredFieldCount> m_words;
    std::array<CatalogueLevel*, gatheredFieldCount> m_levelOfWords = {};
    // What the words of this level make with those of texts below it.
    std::array<QHash<QStringList, QStringSet>, gatheredFieldCount> m_wordsTogether;
    std::array<std::optional<Urls>, gatheredFieldCount> m_urls;
    // What was made of a text before, at the outermost level alone.
    QHash<QString, QStringSet> m_wordsOfTexts;
    QHash<QString, QDateTime> m_datesOfTexts;
    std::array<std::optional<CatalogueLevel*>, gatheredFieldCount> m_outerWithUrls;
};

/** The levels from the outermost down to @p innermost; none if that is null. */
std::list<CatalogueLevel> levelsDownTo(const QDomNode& innermost, ReadingBudget& budget);

} // namespace vx
