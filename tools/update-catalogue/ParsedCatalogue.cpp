#include "tools/update-catalogue/ParsedCatalogue.h"

#include "host/CoreQt/ParseException.h"
#include "tools/update-catalogue/CatalogueTree.h"
#include "tools/update-catalogue/Command.h"

namespace vx {

ParsedCatalogue parseCatalogue(const CatalogueSource& source)
{
    try {
        ParsedCatalogue catalogue;
        const CatalogueTree tree(source);
        for (const CataloguePackage& package : tree.packages()) {
            catalogue.packages.append(package.info);
            catalogue.positions.append(package.package->position);
        }
        return catalogue;
    } catch (const ParseException& exception) {
        throw CommandFailure(ExitUnreadable,
                             QString("%1: %2").arg(source.name, exception.message()));
    }
}

QString packageLabel(const PackageInfo& package)
{
    CataloguePackage labelled;
    labelled.info = package;
    return labelled.label();
}

} // namespace vx
