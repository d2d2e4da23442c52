#pragma once

#include "host/CoreQt/QtVersions.h"

namespace vx {

/**
 * Makes @p Type known under the name that signals use for it, without its namespace.
 *
 * Queued connections and spies look a signal's arguments up by that name. A type of the application
 * that has taken the name keeps it. Internal to the library.
 */
template <typename Type>
void registerSignalArgument(const char* name)
{
    if (metaTypeId(name) == QMetaType::UnknownType) {
        qRegisterMetaType<Type>(name);
    }
}

} // namespace vx
