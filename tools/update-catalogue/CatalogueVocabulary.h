#pragma once

#include <QString>
#include <QStringList>

namespace vx {

/** Fields of which the nearest value counts. */
const QStringList& singleFields();

/** Fields whose words are gathered from every level. */
const QStringList& wordFields();

/** Fields that hold addresses by language. */
const QStringList& urlFields();

/** Fields that count at a package or its file only, and are not inherited. */
const QStringList& packageFields();

/** Whether the library looks for a field of this name at every level. */
bool isField(const QString& name);

/** The known element or field whose name is nearest to @p name, or nothing if none is near. */
QString nearestKnownName(const QString& name);

} // namespace vx
