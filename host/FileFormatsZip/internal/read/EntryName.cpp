#include "host/FileFormatsZip/internal/read/EntryName.h"

#include <algorithm>

namespace vx {

namespace {

// The upper half of code page 437, after the table that the Unicode consortium publishes
// (VENDORS/MICSFT/PC/CP437.TXT).
constexpr char16_t codePage437[] = u"ÇüéâäàåçêëèïîìÄÅÉæÆôöòûùÿÖÜ¢£¥₧ƒ"
                                   u"áíóúñÑªº¿⌐¬½¼¡«»░▒▓│┤╡╢╖╕╣║╗╝╜╛┐"
                                   u"└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀"
                                   u"αßΓπΣσµτΦΘΩδ∞φε∩≡±≥≤⌠⌡÷≈°∙·√ⁿ²■\u00a0";

// What Linux and macOS allow for one part of a path and, leaving room for the folder, for a path.
constexpr int longestPart = 255;
constexpr int longestName = 4095;

// Ten times as deep as installers are. Every part is a folder to be made, opened and removed again.
constexpr int mostParts = 128;

QString fromCodePage437(ByteView raw)
{
    QString text;
    text.reserve(static_cast<int>(raw.size()));
    for (const char c : raw) {
        const auto byte = static_cast<unsigned char>(c);
        text += byte < 0x80 ? QChar(byte) : QChar(codePage437[byte - 0x80]);
    }
    return text;
}

bool hasControlCharacter(const QString& path)
{
    // macOS names the file with the icon of a folder so; every bundle may hold one.
    const bool isIcon = (QLatin1Char('/') + path).endsWith(QLatin1String("/Icon\r"));
    return std::any_of(path.begin(), isIcon ? path.end() - 1 : path.end(),
                       [](QChar c) { return c.category() == QChar::Other_Control; });
}

bool startsWithDriveLetter(const QString& name)
{
    return name.size() >= 2 && name.at(1) == QLatin1Char(':') && name.at(0).unicode() < 0x80 &&
           name.at(0).isLetter();
}

bool isTooLong(const QString& name, const QStringList& parts)
{
    return name.toUtf8().size() > longestName ||
           std::any_of(parts.begin(), parts.end(),
                       [](const QString& part) { return part.toUtf8().size() > longestPart; });
}

} // namespace

bool isUtf8(ByteView raw)
{
    // Qt drops this mark at the beginning of a text.
    raw.remove_prefix(hasSignature(raw, 0, "\xEF\xBB\xBF") ? 3 : 0);
    return viewOf(QString::fromUtf8(raw.data(), static_cast<int>(raw.size())).toUtf8()) == raw;
}

QString decodeName(ByteView raw)
{
    const QString text = QString::fromUtf8(raw.data(), static_cast<int>(raw.size()));
    return viewOf(text.toUtf8()) == raw ? text : fromCodePage437(raw);
}

QString nameKey(const QString& name)
{
    QString key = name.normalized(QString::NormalizationForm_C);
    key.replace(QLatin1Char('\\'), QLatin1Char('/'));
    while (key.endsWith(QLatin1Char('/'))) {
        key.chop(1);
    }
    return key;
}

const char* pathFlaw(const QString& path)
{
    const QStringList parts = nameParts(path);
    return path.isEmpty()                      ? "has an empty name"
           : hasControlCharacter(path)         ? "has a name with control characters"
           : path.contains(QLatin1Char('\\'))  ? "has a name with a backslash"
           : path.startsWith(QLatin1Char('/')) ? "has an absolute name"
           : startsWithDriveLetter(path)       ? "has a name with a drive letter"
           : isTooLong(path, parts)            ? "has a name that is too long"
           : parts.size() > mostParts          ? "has a name with too many parts"
                                               : nullptr;
}

const char* nameFlaw(const QString& name)
{
    const char* const flaw = pathFlaw(name);
    const bool isLeadingOut = flaw == nullptr && nameParts(name).contains(QStringLiteral(".."));
    return isLeadingOut ? "has a name that leads out of the folder" : flaw;
}

QStringList nameParts(const QString& name)
{
    QStringList parts = name.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    parts.removeAll(QStringLiteral("."));
    return parts;
}

} // namespace vx
