#pragma once

#include <QJsonObject>

#include "tools/update-catalogue/ParsedCatalogue.h"
#include "tools/update-catalogue/Terminal.h"
#include "tools/update-catalogue/explain/Explanation.h"
#include "tools/update-catalogue/signing/SignedView.h"

namespace vx {

/** Prints every verdict, and the rows of the dialog on a system of @p language. */
void printExplanation(const Explanation& explanation, const ParsedCatalogue& catalogue,
                      const QString& language, const SignedView& view, Terminal& terminal);

/** Adds the same to @p object, for programs. */
void addExplanation(QJsonObject& object, const Explanation& explanation,
                    const ParsedCatalogue& catalogue, const QString& language,
                    const SignedView& view);

} // namespace vx
