#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/signing/Markup.h"

namespace vx {

/** A change of a document at one place. */
struct MarkupEdit
{
    size_t at = 0;
    size_t removed = 0;
    std::string inserted;
};

/** A value of an element, as an element in it or as an attribute; both null where there is none. */
struct MarkupValue
{
    const MarkupElement* element = nullptr;
    const MarkupAttribute* attribute = nullptr;

    explicit operator bool() const { return element != nullptr || attribute != nullptr; }
};

/** Collects changes of values of one document, and makes them all at once. */
class MarkupEditor
{
public:
    /** @p document must outlive the editor. */
    explicit MarkupEditor(std::string_view document)
        : m_document(document)
    {}

    /** The text of @p value, as it is written. */
    std::string_view textOf(const MarkupValue& value) const;

    /** Puts @p text in place of @p value; whitespace and comments around it stay. */
    void replace(const MarkupValue& value, std::string_view text);

    /** Adds a value behind @p neighbour, in its form and laid out as it is. */
    void addBehind(const MarkupValue& neighbour, std::string_view name, std::string_view text);

    /** Adds an attribute to @p element. */
    void addAttribute(const MarkupElement& element, std::string_view name, std::string_view text);

    /** The document with all changes made. */
    std::string result() const;

private:
    void replaceContent(const MarkupElement& element, std::string_view text);

    std::string_view m_document;
    std::vector<MarkupEdit> m_edits;
};

} // namespace vx
