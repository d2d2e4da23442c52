#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "tests/client/ClientFixture.h"
#include "tests/client/UrlRecorder.h"
#include "tests/support/TestMain.h"

using namespace vx;
using namespace vx::test;

namespace {

QPushButton* button(const char* name)
{
    return availableDialog()->findChild<QPushButton*>(name);
}

void select(int row, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    const auto* table = availableDialog()->findChild<QTableWidget*>("tableWidget");
    const QRect rect = table->visualItemRect(table->item(row, 0));
    QTest::mouseClick(table->viewport(), Qt::LeftButton, modifiers, rect.center());
}

} // namespace

// What the list of packages hands to the desktop.
class ClientPackageActionsTest : public QObject
{
    Q_OBJECT

private slots:
    void releaseNotesAreOpened();
    void releaseNotesOfTheFirstOfSeveral();
    void releaseNotesOfNothing();
    void downloadOpensEachAddress();
    void downloadOpensInTheOrderOfTheRows();
    void downloadOfARowThatIsNotThere();
};

void ClientPackageActionsTest::releaseNotesAreOpened()
{
    ClientFixture fixture;
    fixture.start();
    fixture.offer({});
    ServedReply reply;
    reply.body = catalogueXml({applicationPackage()})
                     .replace("</package>",
                              "<release-notes><language>de</language>"
                              "<url>http://d.example.com/de</url></release-notes>"
                              "<release-notes><language>en</language>"
                              "<url>http://d.example.com/first</url></release-notes>"
                              "<release-notes><language>en</language>"
                              "<url>http://d.example.com/last</url></release-notes></package>");
    fixture.server.setReply("/", reply);
    QVERIFY(fixture.check());
    const UrlRecorder desktop;
    select(0);
    QTest::mouseClick(button("releaseNotesPushButton"), Qt::LeftButton);
    QCOMPARE(desktop.opened(), QList<QUrl>{QUrl("http://d.example.com/last")});
}

void ClientPackageActionsTest::releaseNotesOfTheFirstOfSeveral()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    fixture.openAvailableDialog(
        {changed(applicationPackage(),
                 {{"release-notes", ""}, {"url", "http://d.example.com/1.mpkg"}}),
         changed(applicationPackage(),
                 {{"release-notes", ""}, {"url", "http://d.example.com/2.mpkg"}})});
    const UrlRecorder desktop;
    QVERIFY(QMetaObject::invokeMethod(&client, "downloadReleaseNotes", Qt::DirectConnection,
                                      Q_ARG(SoftUpIndexList, (SoftUpIndexList{1, 0}))));
    QCOMPARE(desktop.opened(), QList<QUrl>{QUrl("http://d.example.com/2.mpkg")});
}

void ClientPackageActionsTest::releaseNotesOfNothing()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    fixture.openAvailableDialog({changed(applicationPackage(), {{"release-notes", ""}})});
    const UrlRecorder desktop;
    for (const SoftUpIndexList& rows :
         {SoftUpIndexList{}, SoftUpIndexList{5}, SoftUpIndexList{-1}}) {
        QVERIFY(QMetaObject::invokeMethod(&client, "downloadReleaseNotes", Qt::DirectConnection,
                                          Q_ARG(SoftUpIndexList, rows)));
    }
    QVERIFY(desktop.opened().isEmpty());
}

void ClientPackageActionsTest::downloadOpensEachAddress()
{
    ClientFixture fixture;
    fixture.start();
    fixture.openAvailableDialog(
        {changed(applicationPackage(), {{"url", "http://d.example.com/a b.mpkg"}}),
         changed(applicationPackage(), {{"url", "http://d.example.com/unselected.mpkg"}}),
         changed(applicationPackage(), {{"url", "https://d.example.com/ü.mpkg"}})});
    const UrlRecorder desktop;
    select(2);
    select(0, Qt::ControlModifier);
    QTest::mouseClick(button("downloadPushButton"), Qt::LeftButton);
    QList<QUrl> opened = desktop.opened();
    std::sort(opened.begin(), opened.end());
    QCOMPARE(opened, (QList<QUrl>{QUrl("http://d.example.com/a b.mpkg"),
                                  QUrl(QString::fromUtf8("https://d.example.com/ü.mpkg"))}));
    QVERIFY(availableDialog()->isVisible());
}

void ClientPackageActionsTest::downloadOpensInTheOrderOfTheRows()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    QList<QUrl> urls;
    QList<PackageFields> packages;
    for (const char* url : {"http://d.example.com/0.mpkg", "http://d.example.com/1.mpkg",
                            "http://d.example.com/2.mpkg"}) {
        urls << QUrl(url);
        packages << changed(applicationPackage(), {{"url", url}});
    }
    fixture.openAvailableDialog(packages);
    const UrlRecorder desktop;
    QVERIFY(QMetaObject::invokeMethod(&client, "downloadUrls", Qt::DirectConnection,
                                      Q_ARG(SoftUpIndexList, (SoftUpIndexList{2, 0, 1}))));
    QCOMPARE(desktop.opened(), (QList<QUrl>{urls.at(2), urls.at(0), urls.at(1)}));
}

void ClientPackageActionsTest::downloadOfARowThatIsNotThere()
{
    ClientFixture fixture;
    TestClient& client = fixture.start();
    fixture.openAvailableDialog({applicationPackage()});
    const UrlRecorder desktop;
    QVERIFY(QMetaObject::invokeMethod(&client, "downloadUrls", Qt::DirectConnection,
                                      Q_ARG(SoftUpIndexList, (SoftUpIndexList{9, 0, -3}))));
    QCOMPARE(desktop.opened().size(), 1);
}

VX_TEST_MAIN(ClientPackageActionsTest)
#include "tst_ClientPackageActions.moc"
