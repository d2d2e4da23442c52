#include "tests/dialogs/FormTable.h"

#include <QMetaEnum>
#include <QtTest>

namespace vx::test {

namespace {

// Enumerations and flags arrive as their own types and are written down as numbers.
bool same(const QVariant& actual, const QVariant& expected)
{
    if (expected.userType() == QMetaType::Int) {
        return actual.isValid() && actual.toInt() == expected.toInt();
    }
    if (expected.canConvert<QSizePolicy>()) {
        const auto left = actual.value<QSizePolicy>();
        const auto right = expected.value<QSizePolicy>();
        return left.horizontalPolicy() == right.horizontalPolicy() &&
               left.verticalPolicy() == right.verticalPolicy() &&
               left.horizontalStretch() == right.horizontalStretch() &&
               left.verticalStretch() == right.verticalStretch();
    }
    return actual == expected;
}

QString policyName(QSizePolicy::Policy value)
{
    return QString::fromLatin1(QMetaEnum::fromType<QSizePolicy::Policy>().valueToKey(value));
}

QString spacerText(const QSpacerItem& spacer)
{
    return QStringLiteral("%1x%2 %3 %4")
        .arg(spacer.sizeHint().width())
        .arg(spacer.sizeHint().height())
        .arg(policyName(spacer.sizePolicy().horizontalPolicy()),
             policyName(spacer.sizePolicy().verticalPolicy()));
}

QString itemText(QLayoutItem& item)
{
    if (item.widget() != nullptr) {
        return item.widget()->objectName();
    }
    return item.layout() != nullptr ? item.layout()->objectName() : spacerText(*item.spacerItem());
}

} // namespace

void addFormRows(const std::vector<FormRow>& rows)
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("className");
    QTest::addColumn<int>("index");
    for (size_t i = 0; i < rows.size(); ++i) {
        QTest::newRow(rows[i].name)
            << QString::fromLatin1(rows[i].name) << QString::fromLatin1(rows[i].className)
            << static_cast<int>(i);
    }
}

QString differences(const QObject& object, const Properties& expected)
{
    QString result;
    for (const auto& [name, value] : expected) {
        const QVariant actual = object.property(name);
        if (!same(actual, value)) {
            QDebug(&result) << name << "is" << actual << "and not" << value << ";";
        }
    }
    return result;
}

QVariant policy(QSizePolicy::Policy horizontal, QSizePolicy::Policy vertical)
{
    return QVariant::fromValue(QSizePolicy(horizontal, vertical));
}

QStringList itemsOf(const QLayout& layout)
{
    QStringList result;
    for (int i = 0; i < layout.count(); ++i) {
        result.append(itemText(*layout.itemAt(i)));
    }
    return result;
}

} // namespace vx::test
