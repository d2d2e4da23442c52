#pragma once

#include <QList>
#include <QString>

#include <functional>

#include "tests/tools/update-catalogue/breakages/GoodCatalogue.h"

namespace vx::test {

/** A good catalogue in which something is being broken: in its packages, its text or its bytes. */
struct Planting
{
    GoodCatalogue& catalogue;
    std::function<void(QString&)> editText;
    std::function<void(QByteArray&)> editBytes;

    /** Replaces the text @p before, where it stands first, with @p after. */
    void replaceInText(const QString& before, const QString& after);

    /** Writes @p value for @p field at @p package, whatever stood there or above. */
    void set(WrittenPackage& package, const QString& field, const QString& value);
};

/** What lint has to be told to find a breakage. */
enum class Needs {
    Nothing,
    Installations, ///< --installations, with those of the catalogue as it was
    Files          ///< --files, with the files of the catalogue as it was
};

/** One way to break a catalogue. */
struct Breakage
{
    /** What people call it, as it stands in the documentation. */
    QString what;
    /** The rule that finds it; empty if none can. */
    QString rule;
    /** Why no rule can find it; empty otherwise. */
    QString whyNot;
    Needs needs;
    std::function<void(Planting&)> plant;
};

using BreakageList = QList<Breakage>;

/** Every breakage, in the order of the documentation. */
const BreakageList& allBreakages();

/** Breakages of the XML itself. */
BreakageList markupBreakages();
/** Names, places and texts of elements. */
BreakageList structureBreakages();
/** Sizes and file types. */
BreakageList fileBreakages();
/** Addresses of packages and of release notes. */
BreakageList addressBreakages();
/** Releases, status, dates and packages that are too much alike. */
BreakageList releaseBreakages();
/** Who gets a package, and in which language. */
BreakageList audienceBreakages();
/** What cannot be seen in a catalogue alone. */
BreakageList unseenBreakages();

} // namespace vx::test
