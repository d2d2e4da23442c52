#include "tests/tools/update-catalogue/CatalogueFacts.h"

#include <QBuffer>
#include <QTemporaryDir>

#include "client/internal/OfferSelection.h"
#include "download/DownloadManager.h"
#include "tests/tools/update-catalogue/LintRun.h"
#include "tools/update-catalogue/Installation.h"

namespace vx::test {

namespace {

QString package(Fields fields, const Fields& changes)
{
    for (auto change = changes.begin(); change != changes.end(); ++change) {
        fields[change.key()] = *change;
    }
    QString text = "<package";
    for (auto field = fields.begin(); field != fields.end(); ++field) {
        text += QString(" %1=\"%2\"").arg(field.key(), *field);
    }
    return text + "/>";
}

/** An installation of the application, without cameras. */
OfferCriteria installed(const QString& version)
{
    OfferCriteria criteria = defaultCriteria();
    criteria.applicationName = "CameraManager";
    criteria.versionNumber = VersionNumber(version.toStdString());
    return criteria;
}

} // namespace

QString pkg(const Fields& changes)
{
    return package({{"name", "CameraManager"},
                    {"release", "5.3"},
                    {"status", "STABLE"},
                    {"platform", "Mac64"},
                    {"file-size", "1000000"},
                    {"url", "http://h.example.com/a.mpkg.zip"}},
                   changes);
}

QString firmware(const Fields& changes)
{
    return package({{"name", "Firmware"},
                    {"release", "4.2"},
                    {"status", "STABLE"},
                    {"platform", "Dome-24"},
                    {"language", "de en"},
                    {"file-size", "1000000"},
                    {"url", "http://h.example.com/a.bin"}},
                   changes);
}

QString withNotes(const QString& attributes)
{
    return QString("<package><release-notes %1/></package>").arg(attributes);
}

QByteArray catalogue(const QString& packages)
{
    return ("<softwareList>" + packages + "</softwareList>").toUtf8();
}

PackageInfoList readBytes(QByteArray bytes)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return DownloadManager::parseXML(&buffer);
}

PackageInfoList read(const QString& packages)
{
    return readBytes(catalogue(packages));
}

PackageInfoList offers(const QString& packages, const QString& version)
{
    PackageInfoList list = read(packages);
    return selectOffers(list, installed(version));
}

PackageInfoList offersBeta(const QString& packages, const QString& version)
{
    PackageInfoList list = read(packages);
    OfferCriteria criteria = installed(version);
    criteria.checkForBeta = true;
    return selectOffers(list, criteria);
}

PackageInfoList offersOn(const QString& platform, const QString& packages)
{
    PackageInfoList list = read(packages);
    OfferCriteria criteria = installed("5.2");
    criteria.supportedPlatforms = QStringList{platform};
    return selectOffers(list, criteria);
}

PackageInfoList cameraOffers(const QString& packages)
{
    PackageInfoList list = read(packages);
    OfferCriteria criteria = installed("99");
    criteria.currentCameraVersions.append({"Dome-24", VersionNumber("4.1")});
    return selectOffers(list, criteria);
}

quintptr sizeOf(const QString& text)
{
    return read(pkg({{"file-size", text}})).first().fileSize;
}

QString commentOf(const QString& markup)
{
    return read("<package><comment>" + markup + "</comment></package>").first().comment;
}

bool lintFinds(const QString& rule, const QString& packages)
{
    return rulesOf(lint(catalogue(packages))).contains(rule);
}

bool fileIsFound(qint64 bytes)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("a.mpkg.zip"));
    LintOptions options = clientOptions();
    options.files = folder.path();
    return file.open(QIODevice::WriteOnly) && file.resize(bytes) &&
           rulesOf(lint(catalogue(pkg()), options)).contains("size-mismatch");
}

} // namespace vx::test
