#include "tools/signing/MarkupEdit.h"

#include <algorithm>

namespace vx {

namespace {

bool isKept(std::string_view markup)
{
    return markup.substr(0, 4) == "<!--" || markup.substr(0, 2) == "<?";
}

std::string element(std::string_view name, std::string_view text)
{
    const std::string tag(name);
    return "<" + tag + ">" + std::string(text) + "</" + tag + ">";
}

/** The last end of line before @p at and the whitespace behind it, if nothing else stands there. */
std::string_view indentBefore(std::string_view document, size_t at)
{
    const size_t text = document.find_last_not_of(markupWhitespace, at - 1);
    const std::string_view gap = document.substr(text + 1, at - text - 1);
    size_t lineEnd = gap.rfind('\n');
    if (lineEnd == std::string_view::npos) {
        return {};
    }
    lineEnd -= lineEnd > 0 && gap[lineEnd - 1] == '\r' ? 1 : 0;
    return gap.substr(lineEnd);
}

} // namespace

std::string_view MarkupEditor::textOf(const MarkupValue& value) const
{
    const size_t begin = value.element ? value.element->tagEnd : value.attribute->valueBegin;
    const size_t end = value.element ? value.element->contentEnd : value.attribute->valueEnd;
    return m_document.substr(begin, end - begin);
}

void MarkupEditor::replace(const MarkupValue& value, std::string_view text)
{
    if (value.attribute) {
        const size_t begin = value.attribute->valueBegin;
        m_edits.push_back({begin, value.attribute->valueEnd - begin, std::string(text)});
    } else if (value.element->isEmptyTag) {
        const std::string name(value.element->name);
        m_edits.push_back(
            {value.element->tagEnd - 2, 2, ">" + std::string(text) + "</" + name + ">"});
    } else {
        replaceContent(*value.element, text);
    }
}

/** The first piece of text gives way to the new one, and every further piece goes. */
void MarkupEditor::replaceContent(const MarkupElement& element, std::string_view text)
{
    const std::string_view content = m_document.substr(0, element.contentEnd);
    std::string next(text);
    size_t at = element.tagEnd;
    while ((at = content.find_first_not_of(markupWhitespace, at)) != std::string_view::npos) {
        const bool markup = content[at] == '<';
        const size_t end =
            markup ? behindMarkup(content, at) : content.find_first_of(" \t\r\n<", at);
        const size_t length = std::min(end, content.size()) - at;
        if (!markup || !isKept(content.substr(at))) {
            m_edits.push_back({at, length, next});
            next.clear();
        }
        at += length;
    }
    if (!next.empty()) {
        m_edits.push_back({element.contentEnd, 0, next});
    }
}

void MarkupEditor::addBehind(const MarkupValue& neighbour, std::string_view name,
                             std::string_view text)
{
    if (neighbour.attribute) {
        const MarkupAttribute& attribute = *neighbour.attribute;
        const std::string quote(1, m_document[attribute.valueEnd]);
        const size_t gap = m_document.find_last_not_of(markupWhitespace, attribute.begin - 1) + 1;
        m_edits.push_back({attribute.valueEnd + 1, 0,
                           std::string(m_document.substr(gap, attribute.begin - gap)) +
                               std::string(name) + "=" + quote + std::string(text) + quote});
        return;
    }
    const MarkupElement& before = *neighbour.element;
    const size_t end =
        before.isEmptyTag ? before.tagEnd : behindMarkup(m_document, before.contentEnd);
    m_edits.push_back(
        {end, 0, std::string(indentBefore(m_document, before.begin)) + element(name, text)});
}

void MarkupEditor::addAttribute(const MarkupElement& element, std::string_view name,
                                std::string_view text)
{
    const size_t at = element.attributes.empty() ? element.begin + 1 + element.name.size()
                                                 : element.attributes.back().valueEnd + 1;
    m_edits.push_back({at, 0, " " + std::string(name) + "=\"" + std::string(text) + "\""});
}

std::string MarkupEditor::result() const
{
    std::vector<MarkupEdit> edits = m_edits;
    std::stable_sort(edits.begin(), edits.end(),
                     [](const MarkupEdit& a, const MarkupEdit& b) { return a.at < b.at; });
    std::string result;
    size_t at = 0;
    for (const MarkupEdit& edit : edits) {
        result.append(m_document.substr(at, edit.at - at)).append(edit.inserted);
        at = edit.at + edit.removed;
    }
    return result.append(m_document.substr(at));
}

} // namespace vx
