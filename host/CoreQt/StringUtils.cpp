#include "host/CoreQt/StringUtils.h"

#include <QCoreApplication>

#include <algorithm>

namespace vx {

namespace {

bool beginsLikeOneOf(const QString& text, const QStringSet& others)
{
    return std::any_of(others.begin(), others.end(), [&text](const QString& other) {
        return text.isEmpty() || other.isEmpty() ? text.isEmpty() && other.isEmpty()
                                                 : text.startsWith(other) || other.startsWith(text);
    });
}

} // namespace

const QRegExp StringUtils::splitWords(QStringLiteral("[\\s,;]+"));

QStringSet StringUtils::splitStringSet(const QString& text, const QRegExp& separator,
                                       QString::SplitBehavior behavior)
{
    const QStringList parts = text.split(separator, static_cast<Qt::SplitBehaviorFlags>(behavior));
    return {parts.begin(), parts.end()};
}

bool StringUtils::intersectsWith(const QStringSet& a, const QStringSet& b)
{
    return a.intersects(b);
}

bool StringUtils::intersectsOnBeginning(const QStringSet& a, const QStringSet& b)
{
    return std::any_of(a.begin(), a.end(),
                       [&b](const QString& text) { return beginsLikeOneOf(text, b); });
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
