#include <QtTest>

#include "download/DownloadManager.h"
#include "tests/support/TestMain.h"

using vx::DownloadManager;

class CatalogueTagsTest : public QObject
{
    Q_OBJECT

private slots:
    void text_data();
    void text();
    void defaultServerIsPlainHttpWithoutPath();
};

void CatalogueTagsTest::text_data()
{
    QTest::addColumn<QString>("tag");
    QTest::addColumn<QString>("text");

    using D = DownloadManager;
    QTest::newRow("DOCUMENT_TAG") << D::DOCUMENT_TAG << "softwareList";
    QTest::newRow("PACKAGE_SET") << D::PACKAGE_SET << "package-set";
    QTest::newRow("PACKAGE") << D::PACKAGE << "package";
    QTest::newRow("FILE") << D::FILE << "file";
    QTest::newRow("TYPE") << D::TYPE << "type";
    QTest::newRow("NAME") << D::NAME << "name";
    QTest::newRow("NAME_PUBLIC") << D::NAME_PUBLIC << "public-name";
    QTest::newRow("RELEASE_NOTES") << D::RELEASE_NOTES << "release-notes";
    QTest::newRow("README") << D::README << "readme";
    QTest::newRow("LANGUAGE") << D::LANGUAGE << "language";
    QTest::newRow("RELEASE_VERSION") << D::RELEASE_VERSION << "release";
    QTest::newRow("RELEASE_VERSION_PUBLIC") << D::RELEASE_VERSION_PUBLIC << "public-release";
    QTest::newRow("RELEASE_STATUS") << D::RELEASE_STATUS << "status";
    QTest::newRow("RELEASE_DATE") << D::RELEASE_DATE << "release-date";
    QTest::newRow("URL") << D::URL << "url";
    QTest::newRow("BASE_URL") << D::BASE_URL << "base-url";
    QTest::newRow("FILE_SIZE") << D::FILE_SIZE << "file-size";
    QTest::newRow("PLATFORM") << D::PLATFORM << "platform";
    QTest::newRow("COMMENT") << D::COMMENT << "comment";
}

void CatalogueTagsTest::text()
{
    QFETCH(QString, tag);
    QTEST(tag, "text");
}

void CatalogueTagsTest::defaultServerIsPlainHttpWithoutPath()
{
    const QUrl url(DownloadManager::UPDATE_URL);
    QVERIFY(url.isValid());
    QCOMPARE(url.scheme(), QString("http"));
    QVERIFY(!url.host().isEmpty());
    QVERIFY(url.path().isEmpty());
}

VX_TEST_MAIN(CatalogueTagsTest)
#include "tst_CatalogueTags.moc"
