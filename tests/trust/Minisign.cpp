#include "tests/trust/Minisign.h"

#include <QFile>
#include <QProcess>

namespace vx::test {

namespace {

void run(const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral("minisign"), arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0) {
        qFatal("minisign: %s", process.readAll().constData());
    }
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("cannot read %s", qPrintable(path));
    }
    return file.readAll();
}

} // namespace

Minisign::Minisign()
{
    run({"-G", "-W", "-p", m_folder.filePath("key.pub"), "-s", m_folder.filePath("key.sec")});
}

QByteArray Minisign::publicKeyFile() const
{
    return contentOf(m_folder.filePath("key.pub"));
}

QString Minisign::publicKey() const
{
    return QString::fromLatin1(publicKeyFile().split('\n').value(1));
}

QByteArray Minisign::signature(const QByteArray& content, const QString& trustedComment,
                               Form form) const
{
    QFile file(m_folder.filePath("catalogue.xml"));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(file.fileName()));
    }
    file.close();
    QStringList arguments{"-S", "-s", m_folder.filePath("key.sec"), "-m", file.fileName()};
    if (!trustedComment.isNull()) {
        arguments << "-t" << trustedComment;
    }
    if (form == Pure) {
        arguments << "-l";
    }
    run(arguments);
    return contentOf(file.fileName() + ".minisig");
}

QByteArray Minisign::sealed(const QByteArray& document, const QString& trustedComment,
                            Form form) const
{
    return withSeal(document, signature(document, trustedComment, form));
}

QByteArray withSeal(const QByteArray& document, const QByteArray& signature)
{
    return document + "<?minisign\n" + signature + "?>\n";
}

} // namespace vx::test
