#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <QStringView>

namespace vx {

/** What the document type of a document adds to its content. Internal to the library. */
struct XmlDocumentType
{
    /**
     * The text that each general entity stands for, its character references resolved. It is empty
     * for one that is kept elsewhere, which is never fetched.
     */
    QHash<QString, QString> entities;

    /** The default values of the attributes of an element, by its name. */
    QHash<QString, QStringList> defaultValues;

    /** How many attributes are declared, for all elements together; it may be more, never less. */
    int attributes = 0;

    /** How many declarations, comments and instructions there are. */
    qint64 nodes = 0;
};

/**
 * Reads the document type declaration that begins at @p from into @p type, which is empty.
 *
 * @return the place behind it.
 * @throws ParseException when it refers to a parameter entity, declares more attributes than
 *     XmlUtils::maximumAttributes, or has not the form of such a declaration.
 */
int readDocumentType(QStringView text, int from, XmlDocumentType& type);

} // namespace vx
