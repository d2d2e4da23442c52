#pragma once

#include <QDateTime>
#include <QSettings>

#include <memory>

namespace vx {

/**
 * The application's settings store, opened anew: nothing of it is kept between two operations.
 * Everything that the client stores is at its top level.
 */
std::unique_ptr<QSettings> openStore();

/**
 * The same, for writing: fit for it, even if it is damaged.
 *
 * Times that Qt would crash on are replaced by null ones, wherever in the user's own file they
 * stand. Values of the files behind it, the organisation's and the system's, can't be read.
 */
std::unique_ptr<QSettings> openStoreToWrite();

/** The store of another installation: the file at @p path, as it was sent here. For reading. */
std::unique_ptr<QSettings> openStoreFile(const QString& path);

/** Whether @p time is one that a damaged store can give, and that Qt crashes on when it writes. */
bool isUnwritable(const QDateTime& time);

} // namespace vx
