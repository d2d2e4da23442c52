#include "host/FileFormatsXml/internal/XmlScanning.h"

#include <algorithm>

#include "host/CoreQt/ParseException.h"

namespace vx {

void refuseXml(const char* reason)
{
    throw ParseException(QLatin1String(reason));
}

bool isBlankXml(QStringView text)
{
    return std::all_of(text.begin(), text.end(), isXmlSpace);
}

int skipXmlSpace(QStringView text, int from)
{
    while (from < text.size() && isXmlSpace(text[from])) {
        ++from;
    }
    return from;
}

int skipXmlName(QStringView text, int from)
{
    const QLatin1String punctuation("/>=;&<\"'[%#");
    const auto end = std::find_if(text.begin() + from, text.end(), [punctuation](QChar c) {
        return isXmlSpace(c) || punctuation.contains(c);
    });
    return static_cast<int>(end - text.begin());
}

int skipXmlPast(QStringView text, int from, QLatin1String end)
{
    const qsizetype found = text.indexOf(end, from);
    if (found < 0) {
        refuseXml("The document ends too early.");
    }
    return static_cast<int>(found + end.size());
}

int endOfXmlLiteral(QStringView text, int from)
{
    const qsizetype found = text.indexOf(text[from], from + 1);
    if (found < 0) {
        refuseXml("The document ends within quotes.");
    }
    return static_cast<int>(found);
}

bool hasXmlAt(QStringView text, int from, QLatin1String word)
{
    return text.mid(from, word.size()) == word;
}

} // namespace vx
