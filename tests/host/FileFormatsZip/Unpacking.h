#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

namespace vx::test {

/** Unpacks all of @p archive with a ZipReader. Gives the reason of the failure, or nothing. */
QString unpackWithReader(const QString& archive, const QString& folder, bool flat = false);

/** The same with an Unzipper, whose report is waited for in an event loop. */
QString unpackWithUnzipper(const QString& archive, const QString& folder, bool flat = false);

/**
 * Everything below @p folder: relative paths, byte for byte as the system has them, and for each a
 * line with type, permissions and content. An empty map stands for an empty folder, and for one
 * that does not exist.
 */
QMap<QByteArray, QByteArray> treeOf(const QString& folder);

/** The content of the file at @p path, or nothing. */
QByteArray contentOf(const QString& path);

/** Writes a file, with the folders above it. */
void writeFile(const QString& path, const QByteArray& content);

/** Runs @p program in @p folder, under a UTF-8 locale, and fails hard if it fails. */
void runTool(const QString& folder, const QString& program, const QStringList& arguments);

} // namespace vx::test
