#include "tools/update-catalogue/report/MatrixSection.h"

#include "tools/update-catalogue/matrix/OfferCount.h"
#include "tools/update-catalogue/report/Html.h"
#include "tools/update-catalogue/report/TwinDetails.h"

namespace vx {

namespace {

/** Whole percents; neither none nor all is said of what is only near to it. */
QString shareText(int part, int whole)
{
    const double percent = 100.0 * part / whole;
    if (part > 0 && percent < 1) {
        return "<1%";
    }
    if (part < whole && percent > 99) {
        return ">99%";
    }
    return QString("%1%").arg(qRound(percent));
}

/** A number is read by everybody; the bar beside it shows at a glance which is the longest. */
QString shareCell(int part, int whole)
{
    if (whole == 0) {
        return "<td></td>";
    }
    return QString("<td class=\"share\">%1<span class=\"bar\" aria-hidden=\"true\">"
                   "<span style=\"width:%2%\"></span></span></td>")
        .arg(shareText(part, whole).toHtmlEscaped(), QString::number(100.0 * part / whole, 'f', 1));
}

} // namespace

QString matrixSection(const ReportContent& content)
{
    const PackageInfoList& packages = content.catalogue.packages;
    const OfferTable offers(packages, content.installations, twinDetails(packages));
    const OfferCount count = countOffers(offers, content.installations);
    QString rows;
    for (auto target = count.targets.begin(); target != count.targets.end(); ++target) {
        for (auto offer = target->begin(); offer != target->end(); ++offer) {
            const bool nothing = offer.key().isEmpty();
            const QStringList cells{target.key(), nothing ? QString("nothing") : offer.key(),
                                    QString::number(*offer)};
            rows += htmlRow(htmlCells(cells) + shareCell(*offer, count.installations),
                            nothing ? "nothing" : "offered");
        }
    }
    const QString caption = QString(count.installations == 1 ? "%1 installation, %2 offered nothing"
                                                             : "%1 installations, %2 of them "
                                                               "offered nothing")
                                .arg(count.installations)
                                .arg(count.withoutOffer);
    return htmlSection(
        "matrix", "Who is offered what",
        htmlTable(caption, {"Target", "Offer", "Installations", "Share of the field"}, rows));
}

} // namespace vx
