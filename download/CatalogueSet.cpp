#include "download/CatalogueSet.h"

#include <QSet>
#include <QtXml/QDomDocument>

#include "download/DownloadManager.h"

namespace vx {

namespace {

using Tags = QSet<QString>;

/** The fields of which a search takes the first and no other. */
Tags singleValues()
{
    using D = DownloadManager;
    return {D::TYPE,           D::NAME,         D::NAME_PUBLIC, D::RELEASE_VERSION,
            D::RELEASE_STATUS, D::RELEASE_DATE, D::URL,         D::RELEASE_VERSION_PUBLIC,
            D::BASE_URL,       D::FILE_SIZE,    D::COMMENT};
}

/** The fields of which the text is read. */
bool isReadAsText(const QString& tagname)
{
    static const Tags tags =
        singleValues() | Tags{DownloadManager::PLATFORM, DownloadManager::LANGUAGE};
    return tags.contains(tagname);
}

/** The fields of which every occurrence is read. */
bool isGathered(const QString& tagname)
{
    static const Tags tags = {DownloadManager::PLATFORM, DownloadManager::LANGUAGE,
                              DownloadManager::RELEASE_NOTES, DownloadManager::README};
    return tags.contains(tagname);
}

} // namespace

CatalogueSet::CatalogueSet(const QDomElement& set)
    : m_set(set)
{
    keepTexts();
    liftChildren();
}

CatalogueSet::~CatalogueSet()
{
    // Backwards, so that what followed a node is in its place again before the node.
    for (auto lifted = m_lifted.crbegin(); lifted != m_lifted.crend(); ++lifted) {
        if (lifted->next.isNull()) {
            m_set.appendChild(lifted->node);
        } else {
            m_set.insertBefore(lifted->node, lifted->next);
        }
    }
    for (StandIn& kept : m_standIns) {
        kept.standIn.parentNode().removeChild(kept.standIn);
        kept.original.setTagName(kept.name);
    }
}

void CatalogueSet::visitChildren(const QString& tagname,
                                 const std::function<void(const QDomElement&)>& visit)
{
    for (const Lifted& lifted : qAsConst(m_lifted)) {
        const QDomElement element = lifted.node.toElement();
        if (!element.isNull() && element.tagName() == tagname) {
            m_set.appendChild(element);
            visit(element);
            m_set.removeChild(element);
        }
    }
}

// A set is itself a field of the level above it if it is named like one, as a root of any name may
// be, and then its text is that of everything in it. It is handed to a stand-in of the same name,
// since the set is about to be emptied.
void CatalogueSet::keepTexts()
{
    QVector<QString> texts;
    for (QDomElement element = m_set; !element.isNull();
         element = element.parentNode().toElement()) {
        if (isReadAsText(element.tagName()) && !element.parentNode().isNull()) {
            m_standIns.append({element, element.tagName(), QDomElement()});
            texts.append(element.text());
        }
    }
    QDomDocument document = m_set.ownerDocument();
    for (int i = 0; i < m_standIns.size(); ++i) {
        StandIn& kept = m_standIns[i];
        kept.standIn = document.createElement(kept.name);
        kept.standIn.appendChild(document.createTextNode(texts.at(i)));
        kept.original.parentNode().insertBefore(kept.standIn, kept.original);
        kept.original.setTagName(QString());
    }
}

// Besides packages and sets this takes out whatever no search reads, or reads only the first of.
void CatalogueSet::liftChildren()
{
    Tags awaited = singleValues() | Tags{DownloadManager::FILE};
    for (QDomNode child = m_set.firstChild(); !child.isNull();) {
        const QDomNode next = child.nextSibling();
        const QString tagname = child.toElement().tagName();
        if (!isGathered(tagname) && !awaited.remove(tagname)) {
            m_set.removeChild(child);
            m_lifted.append({child, next});
        }
        child = next;
    }
}

} // namespace vx
