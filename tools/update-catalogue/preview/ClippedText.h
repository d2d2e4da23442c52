#pragma once

#include <QStringList>

class QWidget;

namespace vx {

/** Texts below @p window that do not fit where they are shown: cells, titles, labels, buttons. */
QStringList clippedTexts(const QWidget& window);

} // namespace vx
