#include "tests/client/InstallationFixture.h"

#include <QApplication>
#include <QProgressDialog>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

#include "dialogs/SoftwareUpdateAvailableDialog.h"

namespace vx::test {

InstallationFixture::InstallationFixture(QWidget* parent)
{
    startBehindProxy(parent).setCurrentCameraVersions(
        {qMakePair(QStringLiteral("Mini-12"), VersionNumber("1.0"))});
    writeStored(QStringLiteral("installablePackageTypes"),
                QStringLiteral("mpkg,zip,exe,msi,deb,rpk,tar.gz,dmg,MPKG,bin"));
}

void InstallationFixture::openList(const QStringList& urls, qint64 size)
{
    QList<PackageFields> packages;
    for (const QString& url : urls) {
        PackageFields package = cameraPackage();
        package[QStringLiteral("url")] = url;
        package[QStringLiteral("file-size")] = QString::number(size);
        // The date makes a package differ from the others.
        package[QStringLiteral("release-date")] =
            QDate(2012, 1, 1).addDays(packages.size()).toString(Qt::ISODate);
        packages.append(package);
    }
    if (!openAvailableDialog(packages)) {
        qFatal("the list of packages did not open");
    }
}

void InstallationFixture::serve(const QString& path, const QByteArray& body, int status)
{
    ServedReply reply;
    reply.body = body;
    reply.status = status;
    server.setReply(path, reply);
}

void InstallationFixture::install(const QString& fileName, const QByteArray& body)
{
    serve(QStringLiteral("/files/") + fileName, body);
    openList({QStringLiteral("http://download.example.com/files/") + fileName}, body.size());
    proceedWith(0);
}

void InstallationFixture::proceedWith(int row)
{
    boxes.willClick(QStringLiteral("Proceed"));
    clickInstall(row);
}

QString InstallationFixture::downloadPath() const
{
    const QStringList lines =
        log.lines(1).filter(QStringLiteral("SoftwareUpdateClient::downloadPackage() -> "));
    return lines.isEmpty() ? QString() : lines.last().section(QStringLiteral(" to "), -1);
}

QProgressDialog* progressDialog()
{
    for (QWidget* widget : QApplication::allWidgets()) {
        if (auto* dialog = qobject_cast<QProgressDialog*>(widget)) {
            return dialog;
        }
    }
    return nullptr;
}

void clickInstall(int row)
{
    availableDialog()->findChild<QTableWidget*>(QStringLiteral("tableWidget"))->selectRow(row);
    auto* button = availableDialog()->findChild<QPushButton*>(QStringLiteral("installPushButton"));
    QVERIFY(button->isEnabled());
    QTest::mouseClick(button, Qt::LeftButton);
}

} // namespace vx::test
