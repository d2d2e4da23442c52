#pragma once

#include <QJsonObject>
#include <QString>

#include "client/SoftwareUpdateSettings.h"
#include "tools/update-catalogue/explain/FactList.h"

namespace vx {

/** The settings store of a user, as it was sent to those who are to help. */
struct UserStore
{
    QString path;
    /** Read as the client reads it. */
    SoftwareUpdateSettings settings;

    /** The application's name, which is not in the store: it is what the file is called after. */
    QString applicationName() const;
};

/**
 * Reads the settings store in the file at @p path.
 *
 * @throws CommandFailure with ExitUnreadable if it can't be read, is empty, damaged, or holds
 *     nothing that the client has written.
 */
UserStore readUserStore(const QString& path);

/** What the store says, for people. @p applicationName is the one that packages must have. */
FactList storeFacts(const UserStore& store, const QString& applicationName);

/** The same for programs. Times are those of the user's clock. */
QJsonObject storeToJson(const UserStore& store, const QString& applicationName);

} // namespace vx
