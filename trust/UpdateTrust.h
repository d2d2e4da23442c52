#pragma once

#include <QStringList>

#include "SoftwareUpdateClientExport.h"

namespace vx {

/**
 * Whether this process demands that its updates are signed, and by whom.
 *
 * By default nothing is demanded. Once signatures are required, a check offers only what stands in
 * a catalogue that is sealed with one of the keys, and installs a package only if its file is the
 * one that the catalogue names; everything else is refused with a text for the user. It holds for
 * every SoftwareUpdateClient of the process. DownloadManager, used by the host on its own, stays
 * outside of it.
 *
 * To be called on the thread of the application's event loop, best before the first client is made.
 */
class SOFTWAREUPDATECLIENT_EXPORT UpdateTrust
{
public:
    UpdateTrust() = delete;

    /**
     * Demands signatures from now on, for the whole process. A second call replaces the keys of the
     * first.
     *
     * What was offered before stays in the dialogs, but can't be installed: it was not signed.
     *
     * @param publicKeys the keys of the publisher as minisign prints them, that is the base64 line
     *     of a ".pub" file; white space around it does no harm. Any one of them will do, so that a
     *     new key can be introduced while the old one is still in use.
     * @return false, with nothing changed, if the list is empty or one of the keys can't be read.
     */
    static bool requireSignatures(const QStringList& publicKeys);

    /** Whether signatures are required. */
    static bool isRequired();

    /** Back to the default: nothing is demanded, and nothing verified. */
    static void acceptUnsigned();
};

} // namespace vx
