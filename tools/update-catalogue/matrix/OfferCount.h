#pragma once

#include <QMap>
#include <QString>

#include "tools/update-catalogue/matrix/OfferTable.h"

namespace vx {

/** How many installations are offered what. */
struct OfferCount
{
    int installations = 0;
    /** Those that are offered nothing at all. */
    int withoutOffer = 0;
    /** By application or camera: the packages offered, put together, and how often; an empty text
        stands for nothing. */
    QMap<QString, QMap<QString, int>> targets;
};

/** Counts over @p installations, each as often as it says. */
OfferCount countOffers(const OfferTable& table, const InstallationList& installations);

/** The labels of the packages of @p offer, with file types and remarks; empty for nothing. */
QString offerText(const OfferTable& table, const Offer& offer);

/** How the application of @p installation is spoken of. */
QString applicationTarget(const Installation& installation);

/** How its camera at @p index is spoken of. */
QString cameraTarget(const Installation& installation, int index);

} // namespace vx
