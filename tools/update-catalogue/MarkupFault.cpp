#include "tools/update-catalogue/MarkupFault.h"

#include <QRegularExpression>
#include <QStack>
#include <QStringList>

#include <algorithm>

namespace vx {

namespace {

const QString typographicQuotes =
    QString::fromUtf8("\u201c\u201d\u201e\u201f\u2018\u2019\u201a\u00ab\u00bb\u2039\u203a");

bool isNameCharacter(QChar c)
{
    return c.isLetterOrNumber() || QString("_:-.").contains(c);
}

/** Walks through a document and stops at the first fault. */
class FaultFinder
{
public:
    explicit FaultFinder(const QString& text)
        : m_text(text)
    {}

    std::optional<DocumentFault> find()
    {
        while (!m_fault && m_at < m_text.size()) {
            const QChar c = m_text.at(m_at);
            if (c == '<') {
                readMarkup();
            } else if (c == '&') {
                checkReference(m_at);
                ++m_at;
            } else {
                checkCharacter(c);
                ++m_at;
            }
        }
        if (!m_fault && !m_open.isEmpty()) {
            fail(m_open.top().at,
                 QString("\"<%1>\" is never closed: \"</%1>\" is missing.").arg(m_open.top().name));
        }
        return m_fault;
    }

private:
    struct OpenElement
    {
        QString name;
        int at;
    };

    void fail(int at, const QString& reason)
    {
        if (!m_fault) {
            m_fault = DocumentFault{positionOf(at), reason};
        }
        m_at = m_text.size();
    }

    TextPosition positionOf(int at) const
    {
        const QString before = m_text.left(at);
        return {int(before.count('\n')) + 1, at - int(before.lastIndexOf('\n'))};
    }

    bool stands(const char* word) const
    {
        return QStringView(m_text).mid(m_at).startsWith(QLatin1String(word));
    }

    void checkCharacter(QChar c)
    {
        if (c.unicode() < 0x20 && c != '\n' && c != '\r' && c != '\t') {
            fail(m_at, QString("The control character U+%1 may not stand in XML: take it out.")
                           .arg(c.unicode(), 4, 16, QChar('0')));
        } else if (m_open.isEmpty() && !c.isSpace()) {
            fail(m_at, m_hadRoot ? "Text stands behind the end of the document."
                                 : "Text stands in front of the first element.");
        }
    }

    void checkReference(int at)
    {
        static const QRegularExpression form(
            "\\G&(#[0-9]+|#x[0-9A-Fa-f]+|[A-Za-z_][A-Za-z0-9_.-]*);");
        static const QStringList known{"amp", "lt", "gt", "quot", "apos"};
        const QRegularExpressionMatch match = form.match(m_text, at);
        const QString name = match.captured(1);
        if (!match.hasMatch()) {
            fail(at, "\"&\" stands alone: write \"&amp;\".");
        } else if (!name.startsWith('#') && !known.contains(name) && !m_hasDocumentType) {
            fail(at, QString("XML does not know \"&%1;\": write the letter itself.").arg(name));
        }
    }

    void readMarkup()
    {
        if (stands("<!--")) {
            skipPast("<!--", "-->", "comment");
        } else if (stands("<![CDATA[")) {
            skipPast("<![CDATA[", "]]>", "CDATA section");
        } else if (stands("<?")) {
            readInstruction();
        } else if (stands("<!DOCTYPE")) {
            m_hasDocumentType = true;
            const int bracket = m_text.indexOf('[', m_at);
            const bool hasSubset = bracket >= 0 && bracket < m_text.indexOf('>', m_at);
            skipPast("<!", hasSubset ? "]>" : ">", "document type");
        } else if (stands("</")) {
            readEndTag();
        } else if (m_at + 1 < m_text.size() && (m_text.at(m_at + 1).isLetter() || stands("<_"))) {
            readStartTag();
        } else {
            fail(m_at, "\"<\" stands alone: write \"&lt;\".");
        }
    }

    void skipPast(const char* begin, const char* end, const char* what)
    {
        const int start = m_at;
        const int from = m_at + static_cast<int>(qstrlen(begin));
        const int found = m_text.indexOf(QLatin1String(end), from);
        if (found < 0) {
            fail(start, QString("The %1 that begins here never ends: \"%2\" is missing.")
                            .arg(QLatin1String(what), QLatin1String(end)));
            return;
        }
        const int hyphens = m_text.indexOf("--", from);
        if (qstrcmp(end, "-->") == 0 && hyphens < found) {
            fail(hyphens, "\"--\" may not stand in a comment.");
            return;
        }
        m_at = found + static_cast<int>(qstrlen(end));
    }

    void readInstruction()
    {
        if (stands("<?xml ") && m_at > 0) {
            fail(m_at, "\"<?xml\" must be the very first of the file: something stands before it.");
            return;
        }
        const int start = m_at;
        skipPast("<?", "?>", "instruction");
        for (int i = start; i < m_at && !m_fault; ++i) {
            checkQuote(i);
        }
    }

    void checkQuote(int at)
    {
        if (typographicQuotes.contains(m_text.at(at))) {
            fail(at, QString("\"%1\" is a typographic quote: write a straight one, '\"'.")
                         .arg(m_text.at(at)));
        }
    }

    QString readName()
    {
        const int start = m_at;
        while (m_at < m_text.size() && isNameCharacter(m_text.at(m_at))) {
            ++m_at;
        }
        return m_text.mid(start, m_at - start);
    }

    void skipSpace()
    {
        while (m_at < m_text.size() && m_text.at(m_at).isSpace()) {
            ++m_at;
        }
    }

    void readEndTag()
    {
        const int start = m_at;
        m_at += 2;
        const QString name = readName();
        skipSpace();
        if (m_at == m_text.size() || m_text.at(m_at) != '>') {
            fail(start, QString("The tag \"</%1\" has no \">\".").arg(name));
        } else if (m_open.isEmpty()) {
            fail(start, QString("\"</%1>\" closes what is not open.").arg(name));
        } else if (m_open.top().name == name) {
            m_open.pop();
            ++m_at;
        } else {
            failToClose(start, name);
        }
    }

    void failToClose(int start, const QString& name)
    {
        const OpenElement inner = m_open.top();
        const bool isOpen = std::any_of(m_open.begin(), m_open.end(), [&name](const auto& element) {
            return element.name == name;
        });
        if (isOpen) {
            fail(
                inner.at,
                QString("\"<%1>\", opened here, is never closed: in line %2 \"</%3>\" comes first.")
                    .arg(inner.name)
                    .arg(positionOf(start).line)
                    .arg(name));
        } else {
            fail(start, QString("\"</%1>\" closes what is not open: \"<%2>\" of line %3 waits for "
                                "\"</%2>\".")
                            .arg(name, inner.name)
                            .arg(positionOf(inner.at).line));
        }
    }

    void readStartTag()
    {
        const int start = m_at++;
        const QString name = readName();
        if (m_open.isEmpty() && m_hadRoot) {
            fail(start, QString("\"<%1>\" stands behind the end of the document: there is one "
                                "outermost element alone.")
                            .arg(name));
            return;
        }
        m_hadRoot = true;
        QStringList attributes;
        skipSpace();
        while (m_at < m_text.size() && m_text.at(m_at) != '>' && !stands("/>")) {
            readAttribute(start, name, attributes);
            skipSpace();
        }
        if (m_at >= m_text.size()) {
            failWithoutEnd(start, name);
        } else if (m_text.at(m_at) == '>') {
            m_open.push({name, start});
            ++m_at;
        } else {
            m_at += 2;
        }
    }

    void failWithoutEnd(int tag, const QString& name)
    {
        fail(tag, QString("The tag \"<%1\" that begins here has no \">\".").arg(name));
    }

    void readAttribute(int tag, const QString& tagName, QStringList& attributes)
    {
        const int start = m_at;
        const QString name = readName();
        if (name.isEmpty()) {
            checkQuote(start);
            if (m_text.at(start) == '<' || start + 1 == m_text.size()) {
                failWithoutEnd(tag, tagName);
            }
            fail(start, QString("\"%1\" has no place in the tag \"<%2\" of line %3.")
                            .arg(m_text.at(start))
                            .arg(tagName)
                            .arg(positionOf(tag).line));
            return;
        }
        if (attributes.contains(name)) {
            fail(start, QString("\"%1\" stands twice in the tag \"<%2\".").arg(name, tagName));
            return;
        }
        attributes.append(name);
        skipSpace();
        if (m_at == m_text.size() || m_text.at(m_at) != '=') {
            fail(start, QString("\"%1\" in the tag \"<%2\" has no value: write %1=\"...\".")
                            .arg(name, tagName));
            return;
        }
        ++m_at;
        skipSpace();
        readValue(name);
    }

    void readValue(const QString& name)
    {
        const int start = m_at;
        const QChar quote = start < m_text.size() ? m_text.at(start) : QChar();
        if (quote != '"' && quote != '\'') {
            if (start < m_text.size()) {
                checkQuote(start);
            }
            fail(start,
                 QString("The value of \"%1\" must stand in quotes, as in %1=\"...\".").arg(name));
            return;
        }
        const int end = m_text.indexOf(quote, start + 1);
        const int tag = m_text.indexOf('<', start);
        if (end < 0 || (tag >= 0 && tag < end)) {
            fail(start, QString("The value of \"%1\" has no closing quote, or holds a \"<\", which "
                                "is written \"&lt;\".")
                            .arg(name));
            return;
        }
        for (int i = start; i < end && !m_fault; ++i) {
            if (m_text.at(i) == '&') {
                checkReference(i);
            }
        }
        if (m_fault) {
            return;
        }
        m_at = end + 1;
        if (m_at < m_text.size() && isNameCharacter(m_text.at(m_at))) {
            fail(m_at, QString("A blank is missing behind the value of \"%1\".").arg(name));
        }
    }

    const QString& m_text;
    int m_at = 0;
    QStack<OpenElement> m_open;
    bool m_hadRoot = false;
    bool m_hasDocumentType = false;
    std::optional<DocumentFault> m_fault;
};

} // namespace

std::optional<DocumentFault> findMarkupFault(const QString& text)
{
    return FaultFinder(text).find();
}

} // namespace vx
