#pragma once

#include <QString>
#include <QStringView>

#include "host/FileFormatsXml/internal/XmlDocumentType.h"

namespace vx {

/**
 * Walks through a document, without building anything, and refuses one that exceeds the limits of
 * XmlUtils.
 *
 * It counts what a parser is going to build, with all entities expanded; it may count more than
 * that but never less. It is no judge of well-formedness: what the parser refuses it may let pass,
 * since the parser stops there. Internal to the library.
 */
class XmlLimits
{
public:
    /** @throws ParseException when @p document exceeds a limit, or ends within a tag or the like.
     */
    static void check(const QString& document);

private:
    void walkContent(QStringView text);
    int walkMarkup(QStringView text, int from);
    int walkStartTag(QStringView text, int from);
    int walkDocumentType(QStringView text, int from);
    int walkReference(QStringView text, int from, void (XmlLimits::*walkEntity)(QStringView));
    void walkAttributeValue(QStringView text);

    void addElement(QStringView tag, int attributes);
    void addNodes(qint64 count);
    void addExpansion(QStringView text);

    XmlDocumentType m_type;
    qint64 m_nodes = 0;
    qint64 m_expansion = 0;
    int m_depth = 0;
    int m_openEntities = 0;
};

} // namespace vx
