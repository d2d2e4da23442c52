#pragma once

#include <QMap>
#include <QString>
#include <QUrl>
#include <QtXml/QDomNode>

#include <optional>

namespace vx {

/** The value of @p tagname that stands at one level, element before attribute. */
std::optional<QString> valueAt(const QDomNode& level, const QString& tagname);

/** Adds the URL at @p address under @p language, or "en" if that is empty. */
void insertTranslatedUrl(QMap<QString, QUrl>& urls, const QString& language, const QUrl& address);

} // namespace vx
