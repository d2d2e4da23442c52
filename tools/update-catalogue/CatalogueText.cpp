#include "tools/update-catalogue/CatalogueText.h"

#include <QTextCodec>
#include <QXmlStreamReader>

namespace vx {

namespace {

/** Walks through markup and keeps count of lines. */
class MarkupScanner
{
public:
    explicit MarkupScanner(const QString& text)
        : m_text(text)
    {}

    QVector<TextPosition> startTags()
    {
        QVector<TextPosition> positions;
        while (moveTo('<')) {
            const TextPosition position{m_line, m_at - m_lineStart + 1};
            if (!skipSpecialMarkup()) {
                if (m_text.mid(m_at + 1, 1) != "/") {
                    positions.append(position);
                }
                skipTag();
            }
        }
        return positions;
    }

private:
    void step()
    {
        if (m_text.at(m_at) == '\n') {
            ++m_line;
            m_lineStart = m_at + 1;
        }
        ++m_at;
    }

    bool moveTo(QChar character)
    {
        while (m_at < m_text.size() && m_text.at(m_at) != character) {
            step();
        }
        return m_at < m_text.size();
    }

    void moveBehind(const QString& end)
    {
        const int found = m_text.indexOf(end, m_at);
        const int target = found < 0 ? m_text.size() : found + end.size();
        while (m_at < target) {
            step();
        }
    }

    bool skipSpecialMarkup()
    {
        const QStringView rest = QStringView(m_text).mid(m_at, 9);
        if (rest.startsWith(QLatin1String("<!--"))) {
            moveBehind("-->");
        } else if (rest.startsWith(QLatin1String("<![CDATA["))) {
            moveBehind("]]>");
        } else if (rest.startsWith(QLatin1String("<?"))) {
            moveBehind("?>");
        } else if (rest.startsWith(QLatin1String("<!"))) {
            skipDocumentType();
        } else {
            return false;
        }
        return true;
    }

    void skipDocumentType()
    {
        const int bracket = m_text.indexOf('[', m_at);
        const int end = m_text.indexOf('>', m_at);
        moveBehind(bracket >= 0 && bracket < end ? "]>" : ">");
    }

    /** An attribute's value may hold ">". */
    void skipTag()
    {
        QChar quote;
        while (m_at < m_text.size()) {
            const QChar character = m_text.at(m_at);
            step();
            if (!quote.isNull()) {
                quote = character == quote ? QChar() : quote;
            } else if (character == '"' || character == '\'') {
                quote = character;
            } else if (character == '>') {
                return;
            }
        }
    }

    const QString& m_text;
    int m_at = 0;
    int m_line = 1;
    int m_lineStart = 0;
};

} // namespace

QString decodeCatalogue(const QByteArray& bytes)
{
    QXmlStreamReader reader(bytes);
    reader.readNext();
    QTextCodec* declared = QTextCodec::codecForName(reader.documentEncoding().toLatin1());
    if (declared == nullptr) {
        declared = QTextCodec::codecForName("UTF-8");
    }
    return QTextCodec::codecForUtfText(bytes, declared)->toUnicode(bytes);
}

QVector<TextPosition> startTagPositions(const QString& text)
{
    return MarkupScanner(text).startTags();
}

} // namespace vx
