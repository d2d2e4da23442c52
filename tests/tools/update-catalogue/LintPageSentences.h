#pragma once

#include <QList>
#include <QString>

#include <functional>

namespace vx::test {

/** What the page about lint says that a rule finds, and whether that is so. */
struct LintSentence
{
    QString rule;
    QString found;
    std::function<bool()> holds;
};

/**
 * Every rule that looks at the catalogue alone or at what is in the field, in the order of the
 * page. Those that ask servers or look at signatures have tests of their own.
 */
const QList<LintSentence>& lintSentences();

} // namespace vx::test
