#pragma once

#include <QList>
#include <QString>

#include "tools/update-catalogue/CatalogueTree.h"

namespace vx {

/** A platform word of a catalogue. */
struct PlatformWord
{
    QString text;
    /** Where it stands first. */
    TextPosition position;
    /** How many packages it is for. */
    int packages = 0;
    /** Its place among the words, by where they stand first. */
    int order = 0;
};

using PlatformWords = QList<PlatformWord>;

/** The platform words of @p tree, each once, in document order. */
PlatformWords platformWords(const CatalogueTree& tree);

/** Whether an installation with one of @p platforms is offered what is for @p word. */
bool fits(const QString& word, const QStringList& platforms);

} // namespace vx
