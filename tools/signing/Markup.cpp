#include "tools/signing/Markup.h"

#include <utility>

namespace vx {

namespace {

bool hasAt(std::string_view document, size_t at, std::string_view text)
{
    return document.substr(at, text.size()) == text;
}

size_t behind(std::string_view document, size_t at, std::string_view end)
{
    const size_t found = document.find(end, at);
    return found == std::string_view::npos ? document.size() : found + end.size();
}

/** A value in quotes may hold ">". */
size_t behindTag(std::string_view document, size_t at)
{
    while (at < document.size() && document[at] != '>') {
        const bool quoted = document[at] == '"' || document[at] == '\'';
        at = quoted ? behind(document, at + 1, document.substr(at, 1)) : at + 1;
    }
    return at < document.size() ? at + 1 : at;
}

/** Declarations inside the brackets have a ">" each. */
size_t behindDocumentType(std::string_view document, size_t at)
{
    bool inBrackets = false;
    for (at += 2; at < document.size();) {
        const char character = document[at];
        if (character == '"' || character == '\'') {
            at = behind(document, at + 1, document.substr(at, 1));
        } else if (hasAt(document, at, "<!--") || hasAt(document, at, "<?")) {
            at = behindMarkup(document, at);
        } else if (character == '>' && !inBrackets) {
            return at + 1;
        } else {
            inBrackets = character == '[' || (inBrackets && character != ']');
            ++at;
        }
    }
    return document.size();
}

size_t skipWhitespace(std::string_view document, size_t at)
{
    return document.find_first_not_of(markupWhitespace, at);
}

MarkupElement readStartTag(std::string_view document, size_t at)
{
    MarkupElement element;
    element.begin = at;
    element.tagEnd = behindTag(document, at);
    const std::string_view tag = document.substr(0, element.tagEnd);
    element.isEmptyTag = hasAt(document, element.tagEnd - 2, "/>");
    size_t next = tag.find_first_of(" \t\r\n/>", at);
    element.name = tag.substr(at + 1, next - at - 1);
    for (next = skipWhitespace(tag, next); next < tag.size(); next = skipWhitespace(tag, next)) {
        const size_t quote = tag.find_first_of("\"'", next);
        if (quote == std::string_view::npos) {
            break;
        }
        MarkupAttribute attribute;
        attribute.begin = next;
        attribute.name = tag.substr(next, tag.find_first_of(" \t\r\n=", next) - next);
        attribute.valueBegin = quote + 1;
        next = behind(tag, quote + 1, tag.substr(quote, 1));
        attribute.valueEnd = next - 1;
        element.attributes.push_back(attribute);
    }
    element.contentEnd = element.tagEnd;
    return element;
}

/** Puts elements into each other as their tags come. */
class Nesting
{
public:
    void open(MarkupElement element)
    {
        const size_t index = m_elements.size();
        if (!m_open.empty()) {
            m_elements[m_open.back()].children.push_back(index);
        }
        if (!element.isEmptyTag) {
            m_open.push_back(index);
        }
        m_elements.push_back(std::move(element));
    }

    void close(size_t at)
    {
        if (m_open.empty()) {
            m_matches = false;
            return;
        }
        m_elements[m_open.back()].contentEnd = at;
        m_open.pop_back();
    }

    std::vector<MarkupElement> elements()
    {
        return m_matches && m_open.empty() ? std::move(m_elements) : std::vector<MarkupElement>();
    }

private:
    std::vector<MarkupElement> m_elements;
    std::vector<size_t> m_open;
    bool m_matches = true;
};

} // namespace

const MarkupAttribute* MarkupElement::attribute(std::string_view wanted) const
{
    for (const MarkupAttribute& candidate : attributes) {
        if (candidate.name == wanted) {
            return &candidate;
        }
    }
    return nullptr;
}

std::vector<MarkupElement> scanMarkup(std::string_view document)
{
    Nesting nesting;
    for (size_t at = document.find('<'); at < document.size(); at = document.find('<', at)) {
        if (hasAt(document, at, "</")) {
            nesting.close(at);
        } else if (!hasAt(document, at, "<!") && !hasAt(document, at, "<?")) {
            nesting.open(readStartTag(document, at));
        }
        at = behindMarkup(document, at);
    }
    return nesting.elements();
}

bool isWideEncoding(std::string_view document)
{
    return hasAt(document, 0, "\xfe\xff") || hasAt(document, 0, "\xff\xfe") ||
           document.substr(0, 4).find('\0') != std::string_view::npos;
}

size_t behindMarkup(std::string_view document, size_t at)
{
    if (hasAt(document, at, "<!--")) {
        return behind(document, at + 4, "-->");
    }
    if (hasAt(document, at, "<![CDATA[")) {
        return behind(document, at, "]]>");
    }
    if (hasAt(document, at, "<?")) {
        return behind(document, at, "?>");
    }
    return hasAt(document, at, "<!") ? behindDocumentType(document, at) : behindTag(document, at);
}

} // namespace vx
