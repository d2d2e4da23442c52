#include "tools/update-catalogue/AddressText.h"

#include <QUrl>

namespace vx {

QString withoutPassword(const QString& text)
{
    const QUrl url(text);
    return url.password().isEmpty() ? text : url.toString(QUrl::RemovePassword);
}

} // namespace vx
