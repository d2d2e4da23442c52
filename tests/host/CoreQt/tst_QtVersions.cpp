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
    void splitTextKeepsOrSkipsEmptyParts_data();
    void splitTextKeepsOrSkipsEmptyParts();
    void isNullValue_data();
    void isNullValue();
    void metaTypeIdFindsWhatIsRegistered();
    void useUtf8_data();
    void useUtf8();
};

void QtVersionsTest::insertMultiKeepsWhatIsThere()
{
    vx::MultiValueMap<QString, int> map;
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

void QtVersionsTest::splitTextKeepsOrSkipsEmptyParts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("kept");
    QTest::addColumn<QStringList>("skipped");
    QTest::newRow("words") << "a, b" << QStringList{"a", "b"} << QStringList{"a", "b"};
    QTest::newRow("separator at the ends") << ",a," << QStringList{"", "a", ""} << QStringList{"a"};
    QTest::newRow("separator alone") << "," << QStringList{"", ""} << QStringList();
    QTest::newRow("empty") << "" << QStringList{""} << QStringList();
}

void QtVersionsTest::splitTextKeepsOrSkipsEmptyParts()
{
    QFETCH(QString, text);
    const QRegExp separator("[,\\s]+");
    QTEST(vx::splitText(text, separator, vx::keepEmptyParts), "kept");
    QTEST(vx::splitText(text, separator, vx::skipEmptyParts), "skipped");
}

void QtVersionsTest::isNullValue_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("isNull");
    QTest::newRow("nothing") << QVariant() << true;
    QTest::newRow("null text") << QVariant(QString()) << true;
    QTest::newRow("empty text") << QVariant(QString("")) << false;
    QTest::newRow("text") << QVariant(QString("1")) << false;
    QTest::newRow("null time") << QVariant(QDateTime()) << true;
    QTest::newRow("time") << QVariant(QDateTime(QDate(2024, 2, 29), QTime(1, 2))) << false;
    QTest::newRow("nought") << QVariant(0) << false;
    QTest::newRow("false") << QVariant(false) << false;
    QTest::newRow("no items") << QVariant(QStringList()) << false;
}

void QtVersionsTest::isNullValue()
{
    QFETCH(QVariant, value);
    QTEST(vx::isNullValue(value), "isNull");
}

void QtVersionsTest::metaTypeIdFindsWhatIsRegistered()
{
    QCOMPARE(vx::metaTypeId("QString"), int(QMetaType::QString));
    QCOMPARE(vx::metaTypeId("NobodyKnowsThis"), int(QMetaType::UnknownType));
}

void QtVersionsTest::useUtf8_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("Latin") << QString::fromUtf8("S\xc3\xbc"
                                                "d");
    QTest::newRow("beyond Latin-1") << QString::fromUtf8("\xe7\x9b\xa3\xe8\xa6\x96");
    QTest::newRow("beyond the first plane") << QString::fromUtf8("\xf0\x9f\x93\xb7");
}

void QtVersionsTest::useUtf8()
{
    QFETCH(QString, text);
    QByteArray bytes;
    QTextStream writer(&bytes, QIODevice::WriteOnly);
    vx::useUtf8(writer);
    writer << text;
    writer.flush();
    QCOMPARE(bytes, text.toUtf8());
    QTextStream reader(&bytes, QIODevice::ReadOnly);
    vx::useUtf8(reader);
    QCOMPARE(reader.readAll(), text);
}

VX_TEST_MAIN(QtVersionsTest)
#include "tst_QtVersions.moc"
