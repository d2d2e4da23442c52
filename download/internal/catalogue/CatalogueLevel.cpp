#include "download/internal/catalogue/CatalogueLevel.h"

#include "download/internal/catalogue/CatalogueFieldParsers.h"
#include "download/internal/catalogue/CatalogueSearch.h"
#include "download/internal/catalogue/CatalogueTags.h"
#include "download/internal/catalogue/ReadingBudget.h"
#include "host/CoreQt/QtVersions.h"

namespace vx {

namespace {

/** The text of @p element, shared with the document where it stands there in one piece. */
QString textOf(const QDomElement& element)
{
    const QDomNode only = element.firstChild();
    if (only.isText() && only.nextSibling().isNull()) {
        return only.nodeValue();
    }
    return element.text();
}

/** Adds @p more to @p target, which shares the set if it has nothing else. */
void addAll(QStringSet& target, const QStringSet& more)
{
    if (target.isEmpty()) {
        target = more;
    } else {
        target.unite(more);
    }
}

} // namespace

CatalogueLevel::CatalogueLevel(const QDomNode& node, CatalogueLevel* outer, ReadingBudget& budget)
    : m_attributes(node.attributes())
    , m_hasAttributes(!m_attributes.isEmpty())
    , m_outer(outer)
    , m_outermost(outer != nullptr ? outer->m_outermost : this)
    , m_budget(budget)
{
    for (QDomElement child = node.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        take(child);
    }
}

void CatalogueLevel::take(const QDomElement& child)
{
    const QString tagname = child.tagName();
    const int field = fieldOf(tagname);
    if (field < 0) {
        if (m_file.isNull() && tagname == CatalogueTag::FILE) {
            m_file = child;
        }
        return;
    }
    if (field < singleFieldCount && !m_values[field]) {
        m_values[field] = textOf(child);
    }
    if (field >= firstGatheredField) {
        m_elements[field - firstGatheredField].append(child);
    }
}

const QVector<QDomElement>& CatalogueLevel::elements(CatalogueField field) const
{
    return m_elements[field - firstGatheredField];
}

std::optional<QString> CatalogueLevel::attribute(CatalogueField field) const
{
    if (m_hasAttributes) {
        const QDomNode found = m_attributes.namedItem(tagOf(field));
        if (!found.isNull()) {
            return found.nodeValue();
        }
    }
    return std::nullopt;
}

std::optional<QString> CatalogueLevel::ownDigest() const
{
    return m_values[DigestField] ? m_values[DigestField] : attribute(DigestField);
}

const QString& CatalogueLevel::value(CatalogueField field)
{
    std::optional<QString>& value = m_values[field];
    if (!value) {
        value = attribute(field);
    }
    if (!value) {
        value = m_outer != nullptr ? m_outer->value(field) : QString();
    }
    return *value;
}

void CatalogueLevel::addWords(CatalogueField field, QStringSet& words)
{
    addAll(words, wordsFromHere(field));
}

const QStringSet& CatalogueLevel::wordsFromHere(CatalogueField field)
{
    std::optional<QStringSet>& words = m_words[field - firstGatheredField];
    if (!words) {
        const QStringList texts = wordTexts(field);
        words = m_outer != nullptr ? m_outer->wordsWith(field, texts) : wordsIn(texts);
    }
    return *words;
}

QStringSet CatalogueLevel::wordsWith(CatalogueField field, const QStringList& texts)
{
    const QStringSet& inherited = wordsFromHere(field);
    if (texts.isEmpty()) {
        return inherited;
    }
    if (inherited.isEmpty()) {
        return m_outermost->wordsIn(texts);
    }
    return levelOfWords(field)->wordsTogether(field, texts);
}

/** Packages add the same few words to what they inherit, and share what comes of it. */
const QStringSet& CatalogueLevel::wordsTogether(CatalogueField field, const QStringList& texts)
{
    QHash<QStringList, QStringSet>& together = m_wordsTogether[field - firstGatheredField];
    const auto known = together.constFind(texts);
    if (known != together.constEnd()) {
        return *known;
    }
    QStringSet words = m_outermost->wordsIn(texts);
    const QStringSet& inherited = wordsFromHere(field);
    if (!words.isEmpty()) {
        m_budget.spend(inherited.size() * ReadingBudget::entry);
    }
    addAll(words, inherited);
    return *together.insert(texts, words);
}

/** The nearest level whose words are not just those of its outer one. */
CatalogueLevel* CatalogueLevel::levelOfWords(CatalogueField field)
{
    CatalogueLevel*& found = m_levelOfWords[field - firstGatheredField];
    if (found == nullptr) {
        const bool isHere = m_outer == nullptr || !wordTexts(field).isEmpty();
        found = isHere ? this : m_outer->levelOfWords(field);
    }
    return found;
}

QStringList CatalogueLevel::wordTexts(CatalogueField field) const
{
    QStringList texts;
    for (const QDomElement& element : elements(field)) {
        texts.append(textOf(element));
    }
    if (const std::optional<QString> text = attribute(field)) {
        texts.append(*text);
    }
    return texts;
}

QDateTime CatalogueLevel::releaseDate()
{
    return m_outermost->dateIn(value(DateField));
}

/** Packages come out together, and the system looks up its time zone for each time that is made. */
QDateTime CatalogueLevel::dateIn(const QString& text)
{
    const auto known = m_datesOfTexts.constFind(text);
    if (known != m_datesOfTexts.constEnd()) {
        return *known;
    }
    return *m_datesOfTexts.insert(text, CatalogueFieldParsers::parseReleaseDate(text));
}

/** A catalogue repeats few platforms and languages in many packages, and splitting takes long. */
const QStringSet& CatalogueLevel::wordsIn(const QString& text)
{
    const auto known = m_wordsOfTexts.constFind(text);
    if (known != m_wordsOfTexts.constEnd()) {
        return *known;
    }
    return *m_wordsOfTexts.insert(
        text, StringUtils::splitStringSet(text, StringUtils::splitWords, skipEmptyParts));
}

QStringSet CatalogueLevel::wordsIn(const QStringList& texts)
{
    QStringSet words;
    for (const QString& text : texts) {
        addAll(words, wordsIn(text));
    }
    return words;
}

void CatalogueLevel::addUrls(CatalogueField field, UrlMap& urls)
{
    for (CatalogueLevel* level = this; level != nullptr; level = level->outerWithUrls(field)) {
        for (const auto& [language, address] : level->ownUrls(field)) {
            m_budget.spend(ReadingBudget::entry + language.size());
            CatalogueSearch::insertTranslatedUrl(urls, language, address);
        }
    }
}

CatalogueLevel* CatalogueLevel::outerWithUrls(CatalogueField field)
{
    std::optional<CatalogueLevel*>& found = m_outerWithUrls[field - firstGatheredField];
    if (!found) {
        const bool isNearest = m_outer == nullptr || !m_outer->ownUrls(field).isEmpty();
        found = isNearest ? m_outer : m_outer->outerWithUrls(field);
    }
    return *found;
}

const CatalogueLevel::Urls& CatalogueLevel::ownUrls(CatalogueField field)
{
    std::optional<Urls>& urls = m_urls[field - firstGatheredField];
    if (!urls) {
        urls = readOwnUrls(field);
    }
    return *urls;
}

CatalogueLevel::Urls CatalogueLevel::readOwnUrls(CatalogueField field)
{
    Urls urls;
    for (const QDomElement& element : elements(field)) {
        const QString address = valueFor(element, UrlField);
        m_budget.spend(address.size());
        urls.append({valueFor(element, LanguageField), QUrl(address)});
    }
    if (const std::optional<QString> address = attribute(field)) {
        urls.append({languageOfAttribute(), QUrl(*address)});
    }
    return urls;
}

/** The value of a field of a translated URL: its own, or else what this level sets for all. */
QString CatalogueLevel::valueFor(const QDomElement& urlElement, CatalogueField field)
{
    const QDomNode start = CatalogueSearch::startSearchAt(urlElement);
    std::optional<QString> own = CatalogueSearch::valueAt(start, tagOf(field));
    if (!own && start != urlElement) {
        own = CatalogueSearch::valueAt(urlElement, tagOf(field));
    }
    return own ? *own : value(field);
}

/** The search for it begins at this level, and so at its file, if it has one. */
QString CatalogueLevel::languageOfAttribute()
{
    const std::optional<QString> inFile = CatalogueSearch::valueAt(m_file, tagOf(LanguageField));
    return inFile ? *inFile : value(LanguageField);
}

std::list<CatalogueLevel> levelsDownTo(const QDomNode& innermost, ReadingBudget& budget)
{
    QVector<QDomNode> nodes;
    for (QDomNode node = innermost; !node.isNull(); node = node.parentNode()) {
        nodes.prepend(node);
    }
    std::list<CatalogueLevel> levels;
    for (const QDomNode& node : qAsConst(nodes)) {
        CatalogueLevel* const outer = levels.empty() ? nullptr : &levels.back();
        levels.emplace_back(node, outer, budget);
    }
    return levels;
}

} // namespace vx
