#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

#include "tests/support/TestMain.h"

namespace {

const QString failureBox =
    "box Installation failed: Installation process failed. If problem persists try manual "
    "install.";

/** The end of each line that has the level and the end expected of it, any other as it is. */
QStringList recognised(const QStringList& lines, const QStringList& expected)
{
    QStringList texts;
    for (int i = 0; i < lines.size(); ++i) {
        const QString text = expected.value(i);
        const bool good = lines.at(i).startsWith(text.left(2)) && lines.at(i).endsWith(text.mid(2));
        texts << (good ? text : lines.at(i));
    }
    return texts;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

// The hand-over replaces the process, so that it happens in a host application of its own, which is
// installed in a private folder with a helper that writes down how it was called.
class ClientZipHandOverTest : public QObject
{
    Q_OBJECT

private slots:
    void helperReplacesTheProcess_data();
    void helperReplacesTheProcess();
    void helperThatIsThereIsUsedAsItStands();
    void helperMissing();
    void parentWithoutRights();
    void helperThatCannotBeRun();

private:
    void installHost(const QString& parentName);
    void installHelper(const QString& path);
    QStringList run(const QString& mode);
    QStringList recordedArguments() const;
    QString startLine() const;
    QString copyLine() const;
    QString missingLine(const QString& folder) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_installed; // the application's folder
    QString m_target;    // where the helper is run from
    qint64 m_processId = 0;
};

void ClientZipHandOverTest::installHost(const QString& parentName)
{
    m_folder = std::make_unique<QTemporaryDir>();
    const QString parent = m_folder->filePath(parentName);
    m_installed = parent + "/My App";
    m_target = parent + "/UpdateInstaller";
    QVERIFY(QDir().mkpath(m_installed));
    QVERIFY(QFile::copy(QCoreApplication::applicationDirPath() + "/ZipHandOverHost",
                        m_installed + "/The Program"));
}

void ClientZipHandOverTest::installHelper(const QString& path)
{
    QVERIFY(QFile::copy(QCoreApplication::applicationDirPath() + "/ArgumentRecorder", path));
}

QStringList ClientZipHandOverTest::run(const QString& mode)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("ARGUMENTS_FILE", m_folder->filePath("arguments"));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(m_installed + "/The Program", {mode});
    process.waitForStarted();
    m_processId = process.processId();
    const bool finished = process.waitForFinished(60000);
    const bool good =
        finished && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    QStringList lines =
        QString::fromLocal8Bit(process.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    return good ? lines : lines << "the host failed";
}

QStringList ClientZipHandOverTest::recordedArguments() const
{
    QStringList arguments;
    const QByteArrayList parts = contentOf(m_folder->filePath("arguments")).split('\0');
    for (const QByteArray& part : parts) {
        arguments << QString::fromLocal8Bit(part);
    }
    return arguments;
}

QString ClientZipHandOverTest::startLine() const
{
    return "1 SoftwareUpdateClient::startInstallZip() -> starting zip installation application " +
           m_target + " -> removing " + m_installed + ", renaming   to " + m_installed +
           " and restarting " + m_installed + "/The Program";
}

QString ClientZipHandOverTest::copyLine() const
{
    return "3 SoftwareUpdateClient::startInstallApplication() -> could not copy file to " +
           m_target;
}

QString ClientZipHandOverTest::missingLine(const QString& folder) const
{
    return "3 SoftwareUpdateClient::startInstallApplication() -> one of the following file/dir is "
           "missing: " +
           m_installed + "/UpdateInstaller or " + folder;
}

void ClientZipHandOverTest::helperReplacesTheProcess_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("parentName");
    QTest::newRow("from the slot") << "start"
                                   << "parent";
    QTest::newRow("blanks and letters") << "start" << QString::fromUtf8("Größe und Blanks");
    QTest::newRow("from the list of packages") << "road"
                                               << "parent";
}

void ClientZipHandOverTest::helperReplacesTheProcess()
{
    QFETCH(QString, mode);
    QFETCH(QString, parentName);
    installHost(parentName);
    installHelper(m_installed + "/UpdateInstaller");
    QCOMPARE(run(mode), QStringList());
    const QStringList expected{QString::number(m_processId),
                               m_target,
                               "-oldDir",
                               m_installed,
                               "-newDir",
                               "",
                               "-exe",
                               "The Program",
                               ""}; // behind the last zero
    QCOMPARE(recordedArguments(), expected);
    QVERIFY(contentOf(m_target) == contentOf(m_installed + "/UpdateInstaller"));
    QVERIFY(QFileInfo(m_target).isExecutable());
}

void ClientZipHandOverTest::helperThatIsThereIsUsedAsItStands()
{
    installHost("parent");
    installHelper(m_target);
    QFile newer(m_installed + "/UpdateInstaller");
    QVERIFY(newer.open(QIODevice::WriteOnly));
    newer.write("a newer one");
    newer.close();
    const QByteArray before = contentOf(m_target);
    QCOMPARE(run("start"), QStringList());
    QCOMPARE(recordedArguments().value(1), m_target);
    QVERIFY(contentOf(m_target) == before);
}

void ClientZipHandOverTest::helperMissing()
{
    installHost("parent");
    const QStringList expected{missingLine(m_installed), failureBox};
    QCOMPARE(recognised(run("start"), expected), expected);
    QVERIFY(!QFile::exists(m_target));
}

void ClientZipHandOverTest::parentWithoutRights()
{
    installHost("parent");
    installHelper(m_installed + "/UpdateInstaller");
    const QString parent = QFileInfo(m_target).absolutePath();
    QVERIFY(QFile::setPermissions(parent, QFile::ReadOwner | QFile::ExeOwner));
    const QStringList lines = run("unprivileged");
    QVERIFY(QFile::setPermissions(parent, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    const QStringList expected{startLine(), copyLine(), missingLine(parent), failureBox};
    QCOMPARE(recognised(lines, expected), expected);
    QVERIFY(!QFile::exists(m_target));
    QVERIFY(!QFile::exists(m_folder->filePath("arguments")));
}

void ClientZipHandOverTest::helperThatCannotBeRun()
{
    installHost("parent");
    installHelper(m_installed + "/UpdateInstaller");
    QFile target(m_target);
    QVERIFY(target.open(QIODevice::WriteOnly));
    target.write("not a program");
    target.close();
    const QStringList expected{startLine(), copyLine(),
                               missingLine(QFileInfo(m_target).absolutePath()), failureBox};
    QCOMPARE(recognised(run("start"), expected), expected);
}

VX_TEST_MAIN(ClientZipHandOverTest)
#include "tst_ClientZipHandOver.moc"
