#include "client/internal/PackageTable.h"

#include "client/SoftwareUpdateClient.h"
#include "client/SoftwareUpdateConstants.h"
#include "host/CoreQt/QtVersions.h"

namespace vx {

namespace {

constexpr double megabytesPerByte = 9.5367431640625e-07; // 2 to the power -20

// The internal name wins, but the public release does. PackageInfo's own display operations follow
// other rules, and none of these may be brought into line with another.
QString displayName(const PackageInfo& package)
{
    return package.name.isEmpty() ? package.publicName : package.name;
}

QString displayRelease(const PackageInfo& package)
{
    return package.publicRelease.isEmpty() ? package.release : package.publicRelease;
}

QString title(const PackageInfo& package)
{
    const bool beta = package.status == QLatin1String("BETA");
    return displayName(package) + QLatin1Char(' ') + displayRelease(package) +
           (beta ? QStringLiteral(" BETA") : QString());
}

QString sizeText(quintptr bytes)
{
    return QString::number(static_cast<double>(bytes) * megabytesPerByte, 'f', 1) +
           QStringLiteral(" MB");
}

QString joined(const QStringSet& words)
{
    return words.values().join(QStringLiteral(", "));
}

QString languagesText(const PackageInfo& package)
{
    return package.type == sSoftUpCameraUpdateTag ? joined(package.languages)
                                                  : SoftwareUpdateClient::tr("Multilingual");
}

QString publishedLine(const QDateTime& date)
{
    if (date.isNull()) {
        return QString();
    }
    return SoftwareUpdateClient::tr("Published on %1").arg(longDateText(date.date())) +
           QStringLiteral("<br />");
}

} // namespace

QStringList packageTableHeaders()
{
    return {SoftwareUpdateClient::tr("Name"), SoftwareUpdateClient::tr("File Size"),
            SoftwareUpdateClient::tr("File Type"), SoftwareUpdateClient::tr("Languages"),
            SoftwareUpdateClient::tr("Platforms")};
}

QStringList packageTableRow(const PackageInfo& package)
{
    return {title(package), sizeText(package.fileSize), package.packageType, languagesText(package),
            joined(package.platforms)};
}

QString packageComment(const PackageInfo& package)
{
    const QString address = package.url.toString();
    return QStringLiteral("<b>") + title(package) + QStringLiteral(", ") + package.type +
           QStringLiteral("</b><br />") + publishedLine(package.date) +
           QStringLiteral("<a href=\"") + address + QStringLiteral("\">") + address +
           QStringLiteral("</a><br />") + package.comment;
}

} // namespace vx
