#pragma once

#include <QString>

namespace vx {

/** Whether a system can have the language @p word, as the client looks it up: "de", and not "DE".
 */
bool isSystemLanguage(const QString& word);

/** Whether release notes under @p language can be looked up: as above, or of a country, "de_CH". */
bool isNotesLanguage(const QString& language);

} // namespace vx
