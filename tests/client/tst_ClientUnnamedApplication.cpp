#include <QTimer>
#include <QtTest>

#include <vector>

#include "tests/client/ClientFixture.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

QSettings store()
{
    return {QSettings::NativeFormat, QSettings::UserScope, "Veldrix", "softwareUpdate"};
}

} // namespace

// An application that sets no names, and whose executable has none either.
class ClientUnnamedApplicationTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void storeHasItsOwnName();
    void organizationAloneIsUsed();
    void applicationAloneIsUsed();
    void anyNameIsACandidate();
};

void ClientUnnamedApplicationTest::init()
{
    QCoreApplication::setOrganizationName(QString());
    QCoreApplication::setApplicationName(QString());
    QCOMPARE(QCoreApplication::organizationName(), QString());
    QCOMPARE(QCoreApplication::applicationName(), QString());
    store().clear();
}

void ClientUnnamedApplicationTest::storeHasItsOwnName()
{
    TestClient client("Product", VersionNumber("1.0"), "http://default.example.com/", nullptr);
    QCOMPARE(store().value("doUpdateCheck").toBool(), true);
    QCOMPARE(store().value("checkForBeta").toString(), QStringLiteral("false"));
    QCOMPARE(store().value("updateInterval").toString(), QStringLiteral("0"));
    QCOMPARE(store().value("serverURL").toString(), QStringLiteral("http://default.example.com/"));
    QVERIFY(client.hourlyTimer()->isActive());
    QCOMPARE(client.hourlyTimer()->interval(), 3600000);
}

void ClientUnnamedApplicationTest::organizationAloneIsUsed()
{
    QCoreApplication::setOrganizationName("Some Works");
    const TestClient client("Product", VersionNumber("1.0"), "http://default.example.com/",
                            nullptr);
    const QSettings named(QSettings::NativeFormat, QSettings::UserScope, "Some Works",
                          "softwareUpdate");
    QCOMPARE(named.value("product").toString(), QStringLiteral("Product"));
}

void ClientUnnamedApplicationTest::applicationAloneIsUsed()
{
    QCoreApplication::setApplicationName("Some Program");
    const TestClient client("Product", VersionNumber("1.0"), "http://default.example.com/",
                            nullptr);
    const QSettings named(QSettings::NativeFormat, QSettings::UserScope, "Veldrix", "Some Program");
    QCOMPARE(named.value("product").toString(), QStringLiteral("Product"));
}

void ClientUnnamedApplicationTest::anyNameIsACandidate()
{
    ClientFixture fixture;
    init();
    fixture.start();
    PackageFields other = applicationPackage();
    other["name"] = "Any Other Name";
    fixture.offer({other});
    QVERIFY(fixture.check());
    QVERIFY(availableDialog());
}

int main(int argc, char** argv)
{
    char noName[] = "";
    std::vector<char*> arguments(argv, argv + argc);
    arguments[0] = noName;
    arguments.push_back(nullptr);
    return vx::test::runTest(argc, arguments.data(),
                             []() -> QObject* { return new ClientUnnamedApplicationTest; });
}

#include "tst_ClientUnnamedApplication.moc"
