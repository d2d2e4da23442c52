#pragma once

#include <QLatin1String>
#include <QStringView>

namespace vx {

// Small steps through the text of an XML document. Internal to the library.

/** Throws a ParseException that says why the document is refused. */
[[noreturn]] void refuseXml(const char* reason);

/** Whether @p c is white space to XML, which knows fewer kinds than Unicode. */
inline bool isXmlSpace(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\n') || c == QLatin1Char('\t') ||
           c == QLatin1Char('\r');
}

/** Whether @p text holds nothing but white space. */
bool isBlankXml(QStringView text);

/** Where the white space that begins at @p from ends. */
int skipXmlSpace(QStringView text, int from);

/** Where the name that begins at @p from ends: before white space or punctuation. */
int skipXmlName(QStringView text, int from);

/** The place behind the next @p end at or after @p from; refuses a text without one. */
int skipXmlPast(QStringView text, int from, QLatin1String end);

/** The place of the quote that ends the literal whose first quote stands at @p from. */
int endOfXmlLiteral(QStringView text, int from);

/** Whether @p word stands at @p from. */
bool hasXmlAt(QStringView text, int from, QLatin1String word);

} // namespace vx
