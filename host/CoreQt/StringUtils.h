#pragma once

#include <QSet>
#include <QString>

#include "host/CoreQt/CoreQtExport.h"
#include "host/CoreQt/QtVersions.h"

namespace vx {

/** Words without order or repetition, such as the platforms or the languages of a package. */
using QStringSet = QSet<QString>;

/** Operations on texts and sets of texts. None of them fails; all may run on any thread. */
class VX_COREQT_EXPORT StringUtils
{
public:
    StringUtils() = delete;

    /** What stands between the words of a list: any run of white space, commas and semicolons. */
    static const QRegExp splitWords;

    /**
     * The parts of @p text between the matches of @p separator. Empty parts are among them unless
     * @p behavior says to skip them.
     */
    static QStringSet splitStringSet(const QString& text, const QRegExp& separator,
                                     SplitBehavior behavior);

    /** Whether the two sets have a string in common; case matters. */
    static bool intersectsWith(const QStringSet& a, const QStringSet& b);

    /**
     * Whether a string of one set, whichever, is the beginning of a string of the other; case
     * matters. "Mac" and "Mac32" meet either way round. An empty string begins every string.
     */
    static bool intersectsOnBeginning(const QStringSet& a, const QStringSet& b);

    /**
     * Adds to @p target each string of @p source, translated in @p context with the translators
     * that the application has installed. Without a translation the string is added as it stands.
     */
    static void appendAll(QStringSet& target, const QStringSet& source, const QString& context);
};

} // namespace vx
