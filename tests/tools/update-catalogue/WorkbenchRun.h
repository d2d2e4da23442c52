#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QString>
#include <QStringList>

namespace vx::test {

/** How one run of the program ended. */
struct WorkbenchRun
{
    int exitCode = -1;
    QString output;
    QString errors;

    QJsonDocument json() const { return QJsonDocument::fromJson(output.toUtf8()); }
};

/** Runs the real program with @p arguments, with @p input as its standard input. */
WorkbenchRun runWorkbench(const QStringList& arguments, const QByteArray& input = QByteArray());

/** Writes @p content into a file of @p folder and returns its path. */
QString writeFile(const QString& folder, const QString& name, const QByteArray& content);

/** A catalogue for "App" and the camera "CAM-1", with a BETA package and one for nobody. */
QByteArray sampleCatalogue();

} // namespace vx::test
