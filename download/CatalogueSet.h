#pragma once

#include <QString>
#include <QVector>
#include <QtXml/QDomElement>
#include <QtXml/QDomNode>

#include <functional>

namespace vx {

/**
 * A set of a catalogue, made ready for reading its packages one by one.
 *
 * Every field of a package is looked up by a climb that searches the children of each set on the
 * way. Among thousands of siblings that would take the square of their number. So while the object
 * lives, the set holds nothing but its own fields; its packages and nested sets are put back alone,
 * one after the other, while they are read. Each climb finds what it would find in the whole tree.
 *
 * On destruction the tree is as it was. Nobody else may touch it meanwhile.
 */
class CatalogueSet
{
public:
    explicit CatalogueSet(const QDomElement& set);
    ~CatalogueSet();
    CatalogueSet(const CatalogueSet&) = delete;
    CatalogueSet& operator=(const CatalogueSet&) = delete;

    /** Calls @p visit for each child element named @p tagname, in document order. */
    void visitChildren(const QString& tagname,
                       const std::function<void(const QDomElement&)>& visit);

private:
    struct Lifted
    {
        QDomNode node;
        QDomNode next; ///< what followed it, or null
    };
    /** An element that stands in for the set or for what encloses it; see keepTexts(). */
    struct StandIn
    {
        QDomElement original;
        QString name;
        QDomElement standIn;
    };

    void keepTexts();
    void liftChildren();

    QDomElement m_set;
    QVector<StandIn> m_standIns;
    QVector<Lifted> m_lifted;
};

} // namespace vx
