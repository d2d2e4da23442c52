#pragma once

#include <QString>

namespace vx {

/** @p word in small letters and without blanks, hyphens, dots or the like. */
QString withoutStyle(const QString& word);

/** How many letters have to be put in, taken out or exchanged to make one text of the other. */
int editDistance(const QString& a, const QString& b);

/** Whether @p a and @p b differ in case, blanks or punctuation alone. */
bool differInStyle(const QString& a, const QString& b);

/**
 * Whether one of the words looks like the other with a letter too many, too few, or two letters
 * exchanged. Digits are never taken for a slip: "Dome-24" and "Dome-25" are two cameras.
 */
bool differByASlip(const QString& a, const QString& b);

} // namespace vx
