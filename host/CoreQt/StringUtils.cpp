#include "host/CoreQt/StringUtils.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>

namespace vx {

namespace {

bool oneBeginsTheOther(const QString& a, const QString& b)
{
    return a.startsWith(b) || b.startsWith(a);
}

} // namespace

// Not QStringLiteral: Qt keeps the pattern in a cache until the process ends, when this library and
// its literals may have been unloaded.
const QRegExp StringUtils::splitWords(QString::fromLatin1("[\\s,;]+"));

QStringSet StringUtils::splitStringSet(const QString& text, const QRegExp& separator,
                                       SplitBehavior behavior)
{
    const QStringList parts = splitText(text, separator, behavior);
    return {parts.begin(), parts.end()};
}

bool StringUtils::intersectsWith(const QStringSet& a, const QStringSet& b)
{
    return a.intersects(b);
}

bool StringUtils::intersectsOnBeginning(const QStringSet& a, const QStringSet& b)
{
    return std::any_of(a.begin(), a.end(), [&b](const QString& text) {
        return std::any_of(b.begin(), b.end(), [&text](const QString& other) {
            return oneBeginsTheOther(text, other);
        });
    });
}

void StringUtils::appendAll(QStringSet& target, const QStringSet& source, const QString& context)
{
    const QByteArray contextName = context.toUtf8();
    for (const QString& text : source) {
        const QByteArray sourceText = text.toUtf8();
        target.insert(QCoreApplication::translate(contextName.constData(), sourceText.constData()));
    }
}

} // namespace vx
