#pragma once

#include <QString>

/**
 * Makes the library, and Qt itself, speak @p language: "de" or "fr"; anything else is English. An
 * empty one is the language of the system. To be called before the first dialog opens.
 */
void installLanguage(const QString& language);
