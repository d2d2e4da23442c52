#pragma once

#include <QByteArray>
#include <QString>

#include "host/IO/IOExport.h"

class QWidget;

namespace vx {

/** Operations on files and folders. None of them throws. */
class VX_IO_EXPORT FileUtils
{
public:
    FileUtils() = delete;

    /**
     * Creates a new, empty folder below the system's folder for temporary files. Only the user may
     * enter it, no other call returns the same one, and nobody removes it but the caller.
     *
     * @return its absolute path, without a "/" at the end. If it cannot be created, the path of a
     *     folder that does not exist, so that the caller's next step fails and none goes astray.
     */
    static QString createTempDir();

    /**
     * Removes a file, a link, or a folder with all that is in it, read-only content included.
     *
     * A link is removed and what it points to is spared, also inside a folder. Refused are an empty
     * path, one that ends in "." or "..", and the root, home, temporary and current folders and the
     * folders above them, in whatever way the path is written.
     *
     * @return whether the path was there and is gone. A refused path is untouched; of a folder that
     *     cannot be removed as a whole, the rest stays.
     */
    static bool erase(const QString& path);

    /** The path with the separators of the system; otherwise unchanged. */
    static QString nativePath(const QString& path);

    /** The content of a file; empty if it cannot be read. */
    static QByteArray readBytes(const QString& path);

    /**
     * Puts @p bytes in place of the content of the file, which is created if need be. The file has
     * either its former content or all of the new one, whatever happens meanwhile.
     *
     * In a folder that may not be written, the file itself is overwritten if that may. Then this
     * protection is lost: a full disk or a crash leaves a part of the new content, or none. A file
     * of someone else in a folder where only its owner may replace it, such as the one for
     * temporary files, keeps its content.
     *
     * @return whether the file has the new content.
     */
    static bool writeBytes(const QByteArray& bytes, const QString& path);

    /**
     * Lets the user choose an existing folder. Runs an event loop of its own until the user has
     * answered; to be called from the thread of the user interface.
     *
     * @param path where the dialog starts; replaced by the folder's path if one was chosen.
     * @param title the title of the dialog.
     * @param acceptText the text of the button that accepts; empty leaves the usual one.
     * @param parent the window that the dialog belongs to, or null.
     * @return whether a folder was chosen.
     */
    static bool openDirectoryDialog(QString& path, const QString& title, const QString& acceptText,
                                    QWidget* parent);
};

} // namespace vx
