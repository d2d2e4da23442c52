#pragma once

#include <QString>
#include <QStringList>

namespace vx {

/** The cells of a row, each escaped. */
QString htmlCells(const QStringList& cells);

/** One row that the search looks through; @p kind is what the reader can narrow the page to. */
QString htmlRow(const QString& cells, const QString& kind);

/** A table with the @p rows, which are HTML. */
QString htmlTable(const QString& caption, const QStringList& titles, const QString& rows);

/** A section with a heading; its @p content is HTML. */
QString htmlSection(const QString& id, const QString& title, const QString& content);

} // namespace vx
