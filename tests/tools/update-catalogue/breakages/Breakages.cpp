#include "tests/tools/update-catalogue/breakages/Breakages.h"

namespace vx::test {

void Planting::replaceInText(const QString& before, const QString& after)
{
    editText = [before, after](QString& text) {
        const int at = text.indexOf(before);
        Q_ASSERT(at >= 0);
        text.replace(at, before.size(), after);
    };
}

void Planting::set(WrittenPackage& package, const QString& field, const QString& value)
{
    if (field == "platform" || field == "language") {
        catalogue.pushDown(field);
    }
    package.fields[field] = value;
}

const BreakageList& allBreakages()
{
    static const BreakageList list = markupBreakages() + structureBreakages() + fileBreakages() +
                                     addressBreakages() + releaseBreakages() + audienceBreakages() +
                                     unseenBreakages();
    return list;
}

} // namespace vx::test
