#include <QtTest>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "host/Core/VersionNumber.h"
#include "tests/support/TestMain.h"

using vx::VersionNumber;

namespace {

VersionNumber version(const char* text)
{
    return VersionNumber(std::string(text));
}

/** Below, equal to or above 0, with all six operators saying the same; 99 if they do not. */
int order(const VersionNumber& a, const VersionNumber& b)
{
    const bool isLess = a < b;
    const bool isGreater = a > b;
    const bool isEqual = a == b;
    const bool isOne = int(isLess) + int(isGreater) + int(isEqual) == 1;
    if (!isOne || (a != b) == isEqual || (a <= b) == isGreater || (a >= b) == isLess) {
        return 99;
    }
    return int(isGreater) - int(isLess);
}

std::vector<VersionNumber> randomVersions(const std::string& alphabet, unsigned count)
{
    std::mt19937 random(count);
    std::vector<VersionNumber> versions;
    while (versions.size() < count) {
        std::string text(random() % 8, ' ');
        for (char& c : text) {
            c = alphabet[random() % alphabet.size()];
        }
        versions.emplace_back(text);
    }
    return versions;
}

/** A version that answers all comparisons the wrong way round. */
class Contrary : public VersionNumber
{
public:
    using VersionNumber::VersionNumber;
    bool operator!=(const VersionNumber&) const override { return false; }
    bool operator>(const VersionNumber&) const override { return true; }
    bool operator<=(const VersionNumber&) const override { return true; }
};

using Comparison = bool (VersionNumber::*)(const VersionNumber&) const;

/** Where a virtual operation stands in the table: a pointer to it begins with its place. */
std::ptrdiff_t placeOf(Comparison comparison)
{
    std::ptrdiff_t place = 0;
    memcpy(&place, &comparison, sizeof place);
    return place;
}

} // namespace

class VersionNumberTest : public QObject
{
    Q_OBJECT

private slots:
    void orders_data();
    void orders();
    void followsOneOrder();
    void isAStrictWeakOrder_data();
    void isAStrictWeakOrder();
    void defaultMeansNoVersionKnown();
    void defaultDiffersFromZero();
    void toStringReadsBack_data();
    void toStringReadsBack();
    void toShortVersion_data();
    void toShortVersion();
    void copiesAreValues();
    void comparesThroughVirtualOperations();
    void virtualOperationsStandInTheirOrder();
    void readsTextOfAnySize();
    void readsEmbeddedNul();
};

void VersionNumberTest::orders_data()
{
    QTest::addColumn<QByteArray>("left");
    QTest::addColumn<QByteArray>("right");
    QTest::addColumn<int>("expected");

    QTest::newRow("same") << QByteArray("2.0") << QByteArray("2.0") << 0;
    QTest::newRow("zeros in a number") << QByteArray("2.0") << QByteArray("2.00") << 0;
    QTest::newRow("zeros before a number") << QByteArray("2.07") << QByteArray("2.7") << 0;
    QTest::newRow("one number against two") << QByteArray("2") << QByteArray("2.0") << 0;
    QTest::newRow("two numbers against three") << QByteArray("2.0") << QByteArray("2.0.0") << 0;
    QTest::newRow("zero as three") << QByteArray("0") << QByteArray("0.0.0") << 0;
    QTest::newRow("by value, not by text") << QByteArray("4.9") << QByteArray("4.10") << -1;
    QTest::newRow("first number decides") << QByteArray("3.0") << QByteArray("2.9") << 1;
    QTest::newRow("further number") << QByteArray("2.0.0.1") << QByteArray("2") << 1;
    QTest::newRow("four parts") << QByteArray("4.1.9.29") << QByteArray("4.1.10.1") << -1;
    QTest::newRow("beyond 64 bits")
        << QByteArray("1.99999999999999999998") << QByteArray("1.99999999999999999999") << -1;
    QTest::newRow("longer number")
        << QByteArray("1.100000000000000000000") << QByteArray("1.99999999999999999999") << 1;
    QTest::newRow("2^32 is not 0") << QByteArray("4294967296") << QByteArray("0") << 1;

    QTest::newRow("beta below the bare number")
        << QByteArray("2.0-beta.2") << QByteArray("2.0") << -1;
    QTest::newRow("beta numbers as numbers")
        << QByteArray("2.0-beta.2") << QByteArray("2.0-beta.10") << -1;
    QTest::newRow("short word below") << QByteArray("2.1b3") << QByteArray("2.1") << -1;
    QTest::newRow("word above the number before") << QByteArray("2.1b3") << QByteArray("2.0") << 1;
    QTest::newRow("word after more numbers") << QByteArray("2.1b3") << QByteArray("2.1.0.0") << -1;
    QTest::newRow("same word, zeros left out") << QByteArray("2.0-rc1") << QByteArray("2-rc1") << 0;
    QTest::newRow("words by character") << QByteArray("2.0-alpha") << QByteArray("2.0-beta") << -1;
    QTest::newRow("a word that begins another") << QByteArray("2.0b") << QByteArray("2.0b1") << -1;
    QTest::newRow("zeros in a word") << QByteArray("2.0b01") << QByteArray("2.0b1") << 0;
    QTest::newRow("capitals first") << QByteArray("2.0RC1") << QByteArray("2.0rc1") << -1;
    QTest::newRow("word after a dot") << QByteArray("2.0.beta") << QByteArray("2.0") << -1;
    QTest::newRow("word after a blank") << QByteArray("2.0 beta") << QByteArray("2.0") << -1;

    QTest::newRow("white space around") << QByteArray("\n  2.0\t\r\n") << QByteArray("2.0") << 0;
    QTest::newRow("unreadable below 0") << QByteArray("unknown") << QByteArray("0") << -1;
    QTest::newRow("unreadable below a zero beta") << QByteArray("x") << QByteArray("0-a") << -1;
    QTest::newRow("unreadable though a number follows")
        << QByteArray("v9.9") << QByteArray("0") << -1;
    QTest::newRow("negative") << QByteArray("-1") << QByteArray("0") << -1;
    QTest::newRow("dot first") << QByteArray(".5") << QByteArray("0") << -1;
    QTest::newRow("unreadable by code") << QByteArray("Z") << QByteArray("a") << -1;
    QTest::newRow("unreadable, code above 127") << QByteArray("\xe4") << QByteArray("z") << 1;
    QTest::newRow("unreadable, digits as text") << QByteArray("v10") << QByteArray("v9") << -1;
    QTest::newRow("empty below unreadable") << QByteArray("") << QByteArray("!") << -1;
    QTest::newRow("blank as empty") << QByteArray(" \t") << QByteArray("") << 0;
}

void VersionNumberTest::orders()
{
    QFETCH(QByteArray, left);
    QFETCH(QByteArray, right);
    QFETCH(int, expected);

    const VersionNumber a(left.toStdString());
    const VersionNumber b(right.toStdString());
    QCOMPARE(order(a, b), expected);
    QCOMPARE(order(b, a), -expected);
}

void VersionNumberTest::followsOneOrder()
{
    const std::vector<const char*> ascending{"",           "!",          "A",
                                             "a",          "b",          "v1",
                                             "0-1",        "0.0a",       "0",
                                             "0.0.1-x",    "0.0.1",      "1",
                                             "1.9.9",      "2.0-alpha",  "2.0-b",
                                             "2.0-b1",     "2.0-beta.2", "2.0-beta.10",
                                             "2.0-beta.b", "2.0-rc",     "2.0 ~",
                                             "2.0",        "2.1b3",      "2.1",
                                             "10",         "10.0.0.0.1", "1000000000000000000000"};
    // A blank stands before the hyphen in character code.
    std::vector<const char*> sorted = ascending;
    const auto blank = std::find(sorted.begin(), sorted.end(), std::string("2.0 ~"));
    const auto alpha = std::find(sorted.begin(), sorted.end(), std::string("2.0-alpha"));
    std::rotate(alpha, blank, blank + 1);
    for (size_t i = 0; i < sorted.size(); ++i) {
        for (size_t j = 0; j < sorted.size(); ++j) {
            const int expected = int(i > j) - int(i < j);
            QVERIFY2(order(version(sorted[i]), version(sorted[j])) == expected,
                     qPrintable(QStringLiteral("%1 against %2").arg(sorted[i], sorted[j])));
        }
    }
}

void VersionNumberTest::isAStrictWeakOrder_data()
{
    QTest::addColumn<QByteArray>("alphabet");
    QTest::newRow("numbers and dots") << QByteArray("01..2");
    QTest::newRow("words") << QByteArray("10.a-");
    QTest::newRow("around the digits") << QByteArray("/0129:.");
    QTest::newRow("white space") << QByteArray("1. \t0b");
    QTest::newRow("all bytes") << QByteArray("\x01\x80\xff~A1.0");
}

void VersionNumberTest::isAStrictWeakOrder()
{
    QFETCH(QByteArray, alphabet);
    const std::vector<VersionNumber> versions = randomVersions(alphabet.toStdString(), 140);
    const size_t count = versions.size();
    std::vector<std::vector<int>> orders(count, std::vector<int>(count));
    for (size_t i = 0; i < count; ++i) {
        for (size_t j = 0; j < count; ++j) {
            orders[i][j] = order(versions[i], versions[j]);
            QVERIFY(orders[i][j] != 99);
        }
    }
    for (size_t i = 0; i < count; ++i) {
        QCOMPARE(orders[i][i], 0);
        for (size_t j = 0; j < count; ++j) {
            QCOMPARE(orders[i][j], -orders[j][i]);
            for (size_t k = 0; k < count; ++k) {
                if (orders[i][j] <= 0 && orders[j][k] <= 0) {
                    const int sum = orders[i][j] + orders[j][k];
                    QVERIFY(orders[i][k] == (sum < 0 ? -1 : 0));
                }
            }
        }
    }
}

void VersionNumberTest::defaultMeansNoVersionKnown()
{
    QCOMPARE(order(VersionNumber(), VersionNumber()), 0);
    QCOMPARE(order(VersionNumber(), version("")), 0);
    QCOMPARE(VersionNumber().toString(), std::string());
    QCOMPARE(VersionNumber().toShortVersion(), std::string());
}

void VersionNumberTest::defaultDiffersFromZero()
{
    QVERIFY(version("0") != VersionNumber());
    QVERIFY(version("0") > VersionNumber());
    QVERIFY(VersionNumber() <= version("0"));
    QVERIFY(version("unreadable") > VersionNumber());
}

void VersionNumberTest::toStringReadsBack_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char* text : {"2.00", "2.0.0", "007", " 2.0 beta ", "2.1b3", "2.0-beta.2", "v2", "",
                             "1.2.3.4.5.6", "99999999999999999999999", "\xff", "."}) {
        QTest::addRow("'%s'", text) << QByteArray(text);
    }
}

void VersionNumberTest::toStringReadsBack()
{
    QFETCH(QByteArray, text);
    const VersionNumber number(text.toStdString());
    QCOMPARE(number.toString(), text.toStdString());
    QCOMPARE(order(VersionNumber(number.toString()), number), 0);
}

void VersionNumberTest::toShortVersion_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("one number") << QByteArray("2") << QByteArray("2");
    QTest::newRow("three numbers") << QByteArray("2.10.3") << QByteArray("2.10.3");
    QTest::newRow("four numbers") << QByteArray("4.1.9.29") << QByteArray("4.1.9");
    QTest::newRow("as written") << QByteArray("2.00.01") << QByteArray("2.00.01");
    QTest::newRow("word") << QByteArray("2.0-beta.2") << QByteArray("2.0-beta.2");
    QTest::newRow("word after four numbers") << QByteArray("1.2.3.4.5b6") << QByteArray("1.2.3b6");
    QTest::newRow("white space around") << QByteArray(" 2.0\n") << QByteArray("2.0");
    QTest::newRow("unreadable") << QByteArray(" v1.2.3.4") << QByteArray(" v1.2.3.4");
    QTest::newRow("empty") << QByteArray() << QByteArray();
}

void VersionNumberTest::toShortVersion()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, expected);
    QCOMPARE(VersionNumber(text.toStdString()).toShortVersion(), expected.toStdString());
}

void VersionNumberTest::copiesAreValues()
{
    VersionNumber original = version("1.0");
    const VersionNumber copy = original;
    VersionNumber assigned;
    assigned = original;
    original = version("2.0");
    QCOMPARE(copy.toString(), std::string("1.0"));
    QCOMPARE(assigned.toString(), std::string("1.0"));
    QCOMPARE(original.toString(), std::string("2.0"));
}

void VersionNumberTest::comparesThroughVirtualOperations()
{
    const Contrary contrary(std::string("1.0"));
    const VersionNumber& seenAsBase = contrary;
    const VersionNumber two = version("2.0");
    QVERIFY(!(seenAsBase != two));
    QVERIFY(seenAsBase > two);
    QVERIFY(seenAsBase <= two);
    QVERIFY(seenAsBase == two);
}

void VersionNumberTest::virtualOperationsStandInTheirOrder()
{
    const std::ptrdiff_t notEqual = placeOf(&VersionNumber::operator!=);
    const std::ptrdiff_t greater = placeOf(&VersionNumber::operator>);
    const std::ptrdiff_t lessOrEqual = placeOf(&VersionNumber::operator<=);
    const auto step = std::ptrdiff_t(sizeof(void*));
    QCOMPARE(greater - notEqual, step);
    QCOMPARE(lessOrEqual - greater, step);
}

void VersionNumberTest::readsTextOfAnySize()
{
    const std::string digits(1000000, '9');
    QVERIFY(VersionNumber("1." + digits) > VersionNumber("1." + digits.substr(1)));
    std::string dotted = "1";
    for (int i = 0; i < 100000; ++i) {
        dotted += ".1";
    }
    QVERIFY(VersionNumber(dotted + ".0") == VersionNumber(dotted));
    QVERIFY(VersionNumber(dotted + ".1") > VersionNumber(dotted));
    QVERIFY(VersionNumber(dotted + std::string(1000000, 'b')) < VersionNumber(dotted));
}

void VersionNumberTest::readsEmbeddedNul()
{
    const std::string text("2.0\0b", 5);
    QVERIFY(VersionNumber(text) < version("2.0"));
    QCOMPARE(VersionNumber(text).toString(), text);
}

VX_TEST_MAIN(VersionNumberTest)
#include "tst_VersionNumber.moc"
