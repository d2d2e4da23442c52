#include "tools/update-catalogue/CatalogueTree.h"

#include <QBuffer>

#include "download/DownloadManager.h"
#include "host/CoreQt/QtVersions.h"
#include "host/CoreQt/StringUtils.h"
#include "host/FileFormatsXml/XmlUtils.h"
#include "tools/update-catalogue/CatalogueVocabulary.h"

namespace vx {

namespace {

QPair<int, int> endOfTag(const QDomNode& node)
{
    return {node.lineNumber(), node.columnNumber()};
}

QList<QDomElement> childElements(const QDomElement& element)
{
    QList<QDomElement> children;
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        children.append(child);
    }
    return children;
}

int countStartTags(const QDomElement& element)
{
    int count = 1;
    for (const QDomElement& child : childElements(element)) {
        count += countStartTags(child);
    }
    return count;
}

/** Whether anybody looks for a field called @p name at @p level. */
bool isReadAt(const TreeLevel& level, const QString& name)
{
    return isField(name) || (level.kind != TreeLevel::Set && packageFields().contains(name));
}

PackageInfoList readWithLibrary(const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return DownloadManager::parseXML(&buffer);
}

QDomDocument* parseDocument(const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return XmlUtils::parseXml(&buffer, nullptr);
}

} // namespace

QStringSet wordsAt(const TreeLevel& level, const QString& field)
{
    QStringSet words;
    for (const FieldValue& value : level.fields.value(field)) {
        words.unite(
            StringUtils::splitStringSet(value.text, StringUtils::splitWords, skipEmptyParts));
    }
    return words;
}

QString CataloguePackage::label() const
{
    const QString name = info.name.isEmpty() ? info.publicName : info.name;
    const QString release = info.release.isEmpty() ? info.publicRelease : info.release;
    return QString("%1 %2").arg(name, release).trimmed();
}

FieldOrigin CataloguePackage::find(const QString& tag) const
{
    for (const TreeLevel* level = start; level != nullptr; level = level->parent) {
        const auto values = level->fields.constFind(tag);
        if (values != level->fields.constEnd()) {
            return {level, values->first()};
        }
    }
    return {};
}

CatalogueTree::CatalogueTree(const CatalogueSource& source)
    : m_bytes(source.bytes)
    , m_document(parseDocument(source.bytes))
{
    const QDomElement root = m_document->documentElement();
    QVector<TextPosition> positions = startTagPositions(decodeCatalogue(source.bytes));
    // Entities that hold markup bring elements that stand nowhere in the text.
    if (positions.size() == countStartTags(root)) {
        numberElements(root, positions);
    }
    readSet(root, nullptr);

    const PackageInfoList infos = readWithLibrary(source.bytes);
    for (size_t i = 0; i < m_packages.size(); ++i) {
        m_packages[i].info = infos.value(static_cast<int>(i));
    }
}

TextPosition CatalogueTree::positionOf(const QDomElement& element) const
{
    const auto known = m_positions.constFind(endOfTag(element));
    return known == m_positions.constEnd()
               ? TextPosition{element.lineNumber(), element.columnNumber()}
               : *known;
}

void CatalogueTree::numberElements(const QDomElement& root, const QVector<TextPosition>& positions)
{
    int next = 0;
    for (QDomNode node = root; !node.isNull();) {
        if (node.isElement()) {
            m_positions.insert(endOfTag(node), positions.at(next++));
        }
        QDomNode following = node.firstChild();
        while (following.isNull() && !node.isNull() && node != root) {
            following = node.nextSibling();
            if (following.isNull()) {
                node = node.parentNode();
            }
        }
        node = following;
    }
}

TreeLevel* CatalogueTree::addLevel(TreeLevel::Kind kind, const QDomElement& element,
                                   const TreeLevel* parent)
{
    auto level = std::make_unique<TreeLevel>();
    level->kind = kind;
    level->element = element;
    level->position = positionOf(element);
    level->parent = parent;
    m_levels.push_back(std::move(level));
    readFields(*m_levels.back());
    return m_levels.back().get();
}

void CatalogueTree::readSet(const QDomElement& element, const TreeLevel* parent)
{
    TreeLevel* set = addLevel(TreeLevel::Set, element, parent);
    const size_t firstPackage = m_packages.size();
    const QList<QDomElement> children = childElements(element);
    for (const QDomElement& child : children) {
        if (child.tagName() == DownloadManager::PACKAGE) {
            readPackage(child, set);
        }
    }
    for (const QDomElement& child : children) {
        if (child.tagName() == DownloadManager::PACKAGE_SET) {
            readSet(child, set);
        }
    }
    set->packageCount = static_cast<int>(m_packages.size() - firstPackage);
}

void CatalogueTree::readPackage(const QDomElement& element, TreeLevel* set)
{
    CataloguePackage package;
    TreeLevel* level = addLevel(TreeLevel::Package, element, set);
    level->packageCount = 1;
    package.package = level;
    package.start = level;
    const QDomElement file = element.firstChildElement(DownloadManager::FILE);
    if (!file.isNull()) {
        TreeLevel* fileLevel = addLevel(TreeLevel::File, file, level);
        fileLevel->packageCount = 1;
        package.start = fileLevel;
    }
    m_packages.push_back(package);
}

void CatalogueTree::readFields(TreeLevel& level)
{
    for (const QDomElement& child : childElements(level.element)) {
        readChild(level, child);
    }
    readAttributes(level);
    readStrayText(level.element);
}

void CatalogueTree::readChild(TreeLevel& level, const QDomElement& child)
{
    const QString name = child.tagName();
    if (isReadAt(level, name)) {
        level.fields[name].append({child.text(), false, positionOf(child), child});
        if (urlFields().contains(name)) {
            readUrlEntry(child);
        } else {
            readText(child);
        }
    } else if (name == DownloadManager::PACKAGE || name == DownloadManager::PACKAGE_SET) {
        if (level.kind != TreeLevel::Set) {
            noteStray(StrayMarkup::Unvisited, child, name);
        }
    } else if (name == DownloadManager::FILE && level.kind == TreeLevel::Package) {
        if (child != level.element.firstChildElement(DownloadManager::FILE)) {
            noteStray(StrayMarkup::FurtherFile, child, name);
        }
    } else {
        noteStray(StrayMarkup::UnknownElement, child, name);
    }
}

void CatalogueTree::readAttributes(TreeLevel& level)
{
    const QDomNamedNodeMap attributes = level.element.attributes();
    for (int i = 0; i < attributes.count(); ++i) {
        const QDomAttr attribute = attributes.item(i).toAttr();
        if (isReadAt(level, attribute.name())) {
            level.fields[attribute.name()].append(
                {attribute.value(), true, level.position, QDomElement()});
        } else if (!attribute.name().startsWith("xml")) {
            noteStray(StrayMarkup::UnknownAttribute, level.element, attribute.name());
        }
    }
}

void CatalogueTree::noteStray(StrayMarkup::Kind kind, const QDomElement& element,
                              const QString& name)
{
    const QDomElement parent =
        kind == StrayMarkup::UnknownAttribute ? element : element.parentNode().toElement();
    m_strays.append({kind, name, parent.tagName(), positionOf(element)});
    if (kind != StrayMarkup::UnknownElement && kind != StrayMarkup::MarkupInText) {
        return;
    }
    // Packages below an element that nobody knows, or that is read as text, are lost with it.
    for (const QDomElement& child : childElements(element)) {
        if (child.tagName() == DownloadManager::PACKAGE ||
            child.tagName() == DownloadManager::PACKAGE_SET) {
            noteStray(StrayMarkup::Unvisited, child, child.tagName());
        }
    }
}

void CatalogueTree::readUrlEntry(const QDomElement& element)
{
    const QStringList known{DownloadManager::LANGUAGE, DownloadManager::URL};
    for (const QDomElement& child : childElements(element)) {
        if (known.contains(child.tagName())) {
            readText(child);
        } else {
            noteStray(StrayMarkup::UnknownElement, child, child.tagName());
        }
    }
    readStrayText(element);
    const QDomNamedNodeMap attributes = element.attributes();
    for (int i = 0; i < attributes.count(); ++i) {
        const QString name = attributes.item(i).toAttr().name();
        if (!known.contains(name) && !name.startsWith("xml")) {
            noteStray(StrayMarkup::UnknownAttribute, element, name);
        }
    }
}

void CatalogueTree::readText(const QDomElement& element)
{
    for (const QDomElement& child : childElements(element)) {
        const bool isPackage = child.tagName() == DownloadManager::PACKAGE ||
                               child.tagName() == DownloadManager::PACKAGE_SET;
        noteStray(isPackage ? StrayMarkup::Unvisited : StrayMarkup::MarkupInText, child,
                  child.tagName());
    }
}

void CatalogueTree::readStrayText(const QDomElement& element)
{
    for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
        const QString text = node.isText() ? node.toText().data().simplified() : QString();
        if (!text.isEmpty()) {
            m_strays.append({StrayMarkup::StrayText, text, element.tagName(), positionOf(element)});
        }
    }
}

} // namespace vx
