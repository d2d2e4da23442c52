#include <QtTest>

#include "host/CoreQt/QtVersions.h"
#include "tests/support/TestMain.h"

class QtVersionsTest : public QObject
{
    Q_OBJECT

private slots:
    void insertMultiKeepsWhatIsThere();
    void longDateTextFollowsTheLocale();
    void longDateTextOfNothingIsEmpty();
    void splitBehaviours();
};

void QtVersionsTest::insertMultiKeepsWhatIsThere()
{
    QMap<QString, int> map;
    const QString key = QStringLiteral("en");
    vx::insertMulti(map, key, 1);
    vx::insertMulti(map, QStringLiteral("de"), 5);
    vx::insertMulti(map, key, 2);
    QCOMPARE(map.size(), 3);
    QCOMPARE(map.value(key), 2);
    QCOMPARE(map.values().last(), 1);
}

void QtVersionsTest::longDateTextFollowsTheLocale()
{
    const QDate date(2024, 2, 29);
    const QDateTime time(date, QTime(13, 5, 9));
    const QLocale locale = QLocale::system();
    QCOMPARE(vx::longDateText(date), locale.toString(date, QLocale::LongFormat));
    QCOMPARE(vx::longDateText(time), locale.toString(time, QLocale::LongFormat));
    QVERIFY(vx::longDateText(date).contains(QLatin1String("2024")));
}

void QtVersionsTest::longDateTextOfNothingIsEmpty()
{
    QVERIFY(vx::longDateText(QDate()).isEmpty());
    QVERIFY(vx::longDateText(QDateTime()).isEmpty());
}

void QtVersionsTest::splitBehaviours()
{
    QCOMPARE(int(vx::keepEmptyParts), int(Qt::KeepEmptyParts));
    QCOMPARE(int(vx::skipEmptyParts), int(Qt::SkipEmptyParts));
}

VX_TEST_MAIN(QtVersionsTest)
#include "tst_QtVersions.moc"
