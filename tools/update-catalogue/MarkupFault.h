#pragma once

#include <QString>

#include <optional>

#include "tools/update-catalogue/CatalogueText.h"

namespace vx {

/** Why a document cannot be read, in words for the person who wrote it. */
struct DocumentFault
{
    TextPosition position;
    QString reason;
};

/**
 * The first thing in @p text that is known to keep people's XML from being read: a bare "&" or "<",
 * quotes that are missing or typographic, a tag that is never closed, and the like. It is no judge
 * of well-formedness and is asked only about what the library has refused.
 */
std::optional<DocumentFault> findMarkupFault(const QString& text);

} // namespace vx
