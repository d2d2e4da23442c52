#include "tools/update-catalogue/matrix/OfferCount.h"

#include "tools/update-catalogue/ParsedCatalogue.h"

namespace vx {

OfferCount countOffers(const OfferTable& table, const InstallationList& installations)
{
    OfferCount count;
    for (const Installation& installation : installations) {
        count.installations += installation.count;
        count.withoutOffer += table.isEmpty(installation) ? installation.count : 0;
        const QString offer = offerText(table, table.application(installation));
        count.targets[applicationTarget(installation)][offer] += installation.count;
        for (int i = 0; i < installation.criteria.currentCameraVersions.size(); ++i) {
            const QString firmware = offerText(table, table.camera(installation, i));
            count.targets[cameraTarget(installation, i)][firmware] += installation.count;
        }
    }
    return count;
}

QString offerText(const OfferTable& table, const Offer& offer)
{
    QStringList labels;
    for (const int package : offer.packages) {
        const PackageInfo& info = table.catalogue().at(package);
        const QString remark = table.remark(package);
        labels.append(QString("%1 (%2)").arg(packageLabel(info),
                                             remark.isEmpty() ? info.packageType
                                                              : info.packageType + ", " + remark));
    }
    return labels.join(", ");
}

QString applicationTarget(const Installation& installation)
{
    return "Application " + installation.criteria.applicationName;
}

QString cameraTarget(const Installation& installation, int index)
{
    return "Camera " + installation.criteria.currentCameraVersions.at(index).first;
}

} // namespace vx
