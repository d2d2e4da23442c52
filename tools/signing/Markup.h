#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace vx {

/** What counts as whitespace between the parts of a document. */
constexpr std::string_view markupWhitespace = " \t\r\n";

/** An attribute of a start tag. All places are offsets into the document's bytes. */
struct MarkupAttribute
{
    std::string_view name;
    size_t begin = 0;
    /** Between the quotes. */
    size_t valueBegin = 0;
    size_t valueEnd = 0;
};

/** An element by the bytes that it takes. */
struct MarkupElement
{
    std::string_view name;
    /** Where its start tag begins, and the place behind that tag. */
    size_t begin = 0;
    size_t tagEnd = 0;
    /** Where its end tag begins; tagEnd for a tag that is both. */
    size_t contentEnd = 0;
    bool isEmptyTag = false;
    std::vector<MarkupAttribute> attributes;
    /** Indexes of its child elements. */
    std::vector<size_t> children;

    /** The first attribute named @p wanted, or null. */
    const MarkupAttribute* attribute(std::string_view wanted) const;
};

/**
 * The elements of a well-formed document in the order of their start tags, the root first.
 *
 * It works on bytes, so that a document can be changed in one place and stays as it is in all
 * others. For that the encoding must hold ASCII characters as single bytes, as UTF-8 and Latin-1
 * do. Elements that come from entities stand nowhere in the document and are not seen.
 *
 * @param document must outlive the result.
 * @return nothing at all if tags do not match.
 */
std::vector<MarkupElement> scanMarkup(std::string_view document);

/** Whether the bytes are in an encoding whose ASCII characters take more than one byte. */
bool isWideEncoding(std::string_view document);

/**
 * The place behind the comment, instruction, CDATA section, document type or tag that begins at
 * @p at, where a "<" stands. The end of the document if it is not closed.
 */
size_t behindMarkup(std::string_view document, size_t at);

} // namespace vx
