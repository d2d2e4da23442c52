#pragma once

#include <QString>
#include <QStringList>

#include "tools/server/UpdateServer.h"
#include "tools/signing/SigningKey.h"

namespace vx {

/**
 * The named situations that an update server can be put into, to see what the client makes of them.
 *
 * In all of them the server plays a folder: "/" is its file "catalogue.xml", every other path the
 * file of that path. What the scenario breaks is either the catalogue (every path ending in ".xml",
 * and "/") or the packages (everything else); the other half works.
 */
QStringList scenarioNames();

/** One line about @p name for people; empty if there is no such scenario. */
QString scenarioDescription(const QString& name);

/** Whether @p name is about signatures, so that a client wants the public key of the server. */
bool isAboutSignatures(const QString& name);

/**
 * Makes @p server play @p name with the files of @p folder.
 *
 * Can be called while the server runs, and again with another name. It replaces the handler and the
 * proxy password of the server; replies set for single paths still come first.
 *
 * @param key what catalogues are sealed with where the scenario is about signatures.
 * @return false, with the server left alone, if there is no such scenario.
 */
bool applyScenario(UpdateServer& server, const QString& name, const QString& folder,
                   const SigningKey& key);

/** The same with a key that nobody knows. */
bool applyScenario(UpdateServer& server, const QString& name, const QString& folder);

} // namespace vx
