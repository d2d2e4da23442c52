#pragma once

#include <QList>
#include <QStringList>

#include <functional>

namespace vx::test {

/** A sentence of the catalogue guide, and whether the library does what it says. */
struct GuideSentence
{
    QString text;
    std::function<bool()> holds;
};

/** Every sentence, in the order of the page. */
const QList<GuideSentence>& guideSentences();

/** The page as it is. */
QString catalogueGuide();

/** The catalogues of the guide, in their order. */
QStringList guideExamples();

} // namespace vx::test
