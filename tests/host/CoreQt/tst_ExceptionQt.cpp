#include <QtTest>

#include <memory>

#include "host/CoreQt/IOException.h"
#include "host/CoreQt/ParseException.h"
#include "tests/support/TestMain.h"
#include "tests/support/Throws.h"

using vx::ExceptionQt;
using vx::IOException;
using vx::ParseException;

class ExceptionQtTest : public QObject
{
    Q_OBJECT

private slots:
    void givesItsMessage();
    void keepsTheCause();
    void isCaughtByType();
    void copiesAreWhole();
};

void ExceptionQtTest::givesItsMessage()
{
    const QString text = QString::fromUtf8("Gr\xc3\xb6\xc3\x9f\x65 %1 \xe2\x82\xac");
    QCOMPARE(ExceptionQt(text, nullptr).message(), text);
    QCOMPARE(ExceptionQt(text).what(), text.toUtf8().constData());
    QVERIFY(ExceptionQt(text).cause() == nullptr);
    QCOMPARE(ExceptionQt(QString()).message(), QString());
}

void ExceptionQtTest::keepsTheCause()
{
    std::unique_ptr<IOException> outer;
    {
        const ExceptionQt innermost(QStringLiteral("innermost"));
        const ParseException inner(QStringLiteral("inner"), &innermost);
        outer = std::make_unique<IOException>(QStringLiteral("outer"), &inner);
    }
    QCOMPARE(outer->message(), QStringLiteral("outer"));
    QCOMPARE(outer->cause()->message(), QStringLiteral("inner"));
    QCOMPARE(outer->cause()->cause()->message(), QStringLiteral("innermost"));
    QVERIFY(outer->cause()->cause()->cause() == nullptr);
}

void ExceptionQtTest::isCaughtByType()
{
    VX_VERIFY_THROWS(throw IOException(QStringLiteral("x")), IOException);
    VX_VERIFY_THROWS(throw IOException(QStringLiteral("x")), ExceptionQt);
    VX_VERIFY_THROWS(throw ParseException(QStringLiteral("x")), ExceptionQt);
    VX_VERIFY_THROWS(throw ParseException(QStringLiteral("x")), std::exception);
    try {
        throw ParseException(QStringLiteral("x"));
    } catch (const IOException&) {
        QFAIL("caught as another type");
    } catch (const ParseException& exception) {
        QCOMPARE(exception.message(), QStringLiteral("x"));
    }
}

void ExceptionQtTest::copiesAreWhole()
{
    const ExceptionQt cause(QStringLiteral("cause"));
    std::unique_ptr<IOException> copy;
    {
        const IOException original(QStringLiteral("original"), &cause);
        copy = std::make_unique<IOException>(original);
    }
    try {
        throw IOException(*copy);
    } catch (const ExceptionQt& thrown) {
        QCOMPARE(thrown.message(), QStringLiteral("original"));
        QCOMPARE(thrown.cause()->message(), QStringLiteral("cause"));
    }
    IOException assigned(QStringLiteral("other"));
    assigned = *copy;
    QCOMPARE(assigned.message(), QStringLiteral("original"));
}

VX_TEST_MAIN(ExceptionQtTest)
#include "tst_ExceptionQt.moc"
