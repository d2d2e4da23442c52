#include "tests/tools/update-catalogue/WorkbenchRun.h"

#include <QDir>
#include <QFile>
#include <QProcess>

namespace vx::test {

WorkbenchRun runWorkbench(const QStringList& arguments, const QByteArray& input)
{
    QProcess process;
    process.start(UPDATE_CATALOGUE, arguments);
    process.write(input);
    process.closeWriteChannel();
    WorkbenchRun run;
    if (process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit) {
        run.exitCode = process.exitCode();
    }
    run.output = QString::fromUtf8(process.readAllStandardOutput());
    run.errors = QString::fromUtf8(process.readAllStandardError());
    return run;
}

QString writeFile(const QString& folder, const QString& name, const QByteArray& content)
{
    QFile file(QDir(folder).filePath(name));
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size()
               ? file.fileName()
               : QString();
}

QByteArray sampleCatalogue()
{
    return "<softwareList status=\"STABLE\" base-url=\"http://h.example.com/\">\n"
           "<package name=\"App\" release=\"2.0\" platform=\"Mac64\" file-size=\"10\""
           " release-date=\"2026-01-01\" url=\"App.mpkg.zip\"/>\n"
           "<package name=\"App\" release=\"1.5\" platform=\"Mac64\" file-size=\"11\""
           " release-date=\"2026-01-02\" url=\"Old.mpkg.zip\"/>\n"
           "<package name=\"App\" release=\"3.0b1\" platform=\"Mac64\" file-size=\"12\""
           " release-date=\"2026-01-03\" url=\"Beta.dmg\" status=\"BETA\"/>\n"
           "<package name=\"App\" release=\"2.5\" platform=\"Win\" file-size=\"13\""
           " release-date=\"2026-01-04\" url=\"Win.mpkg.zip\"/>\n"
           "<package name=\"App\" release=\"2.6\" platform=\"Mac64\" file-size=\"14\""
           " release-date=\"2026-01-05\" url=\"App.zip\"/>\n"
           "<package name=\"Firmware\" release=\"4.2\" platform=\"CAM-1\" file-size=\"20\""
           " release-date=\"2026-01-06\" url=\"a.bin\" language=\"de en\"/>\n"
           "<package name=\"Firmware twin\" release=\"4.2\" platform=\"CAM-1\" file-size=\"20\""
           " release-date=\"2026-01-06\" url=\"b.bin\" language=\"fr\"/>\n"
           "<package name=\"Firmware fr\" release=\"4.2\" platform=\"CAM-1\" file-size=\"21\""
           " release-date=\"2026-01-06\" url=\"c.bin\" language=\"fr\"/>\n"
           "</softwareList>\n";
}

} // namespace vx::test
