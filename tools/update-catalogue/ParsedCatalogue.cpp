#include "tools/update-catalogue/ParsedCatalogue.h"

#include "host/CoreQt/ParseException.h"
#include "tools/update-catalogue/CatalogueTree.h"
#include "tools/update-catalogue/Command.h"
#include "tools/update-catalogue/DocumentFault.h"

namespace vx {

ParsedCatalogue parseCatalogue(const CatalogueSource& source)
{
    try {
        ParsedCatalogue catalogue;
        const CatalogueTree tree(source);
        for (const CataloguePackage& package : tree.packages()) {
            catalogue.packages.append(package.info);
            catalogue.positions.append(package.package->position);
            catalogue.digests.add(package.info.url,
                                  readPackageDigest(packageDigestText(package.package->element)));
        }
        return catalogue;
    } catch (const ParseException& exception) {
        const DocumentFault fault = documentFault(source.bytes, exception.message());
        throw CommandFailure(ExitUnreadable, QString("%1:%2:%3: %4")
                                                 .arg(source.name)
                                                 .arg(fault.position.line)
                                                 .arg(fault.position.column)
                                                 .arg(fault.reason));
    }
}

QString packageLabel(const PackageInfo& package)
{
    CataloguePackage labelled;
    labelled.info = package;
    return labelled.label();
}

} // namespace vx
