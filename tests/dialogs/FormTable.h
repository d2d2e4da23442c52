#pragma once

#include <QLayout>
#include <QStringList>
#include <QVariant>
#include <QWidget>

#include <utility>
#include <vector>

namespace vx::test {

/** What a form sets of one of its objects: properties by name, in the words of Qt. */
using Properties = std::vector<std::pair<const char*, QVariant>>;

/** One named object of a form. */
struct FormRow
{
    const char* name;
    const char* className;
    Properties properties;
};

/** Adds one test data row per object, with the columns name, className, and index. */
void addFormRows(const std::vector<FormRow>& rows);

/** The property values of @p object that differ from @p expected, readable; empty when none does.
 */
QString differences(const QObject& object, const Properties& expected);

/** A size policy as a property value. */
QVariant policy(QSizePolicy::Policy horizontal, QSizePolicy::Policy vertical);

/**
 * The items of @p layout in their order: object names of widgets and layouts, and for a spacer its
 * size hint with both policies, as in "40x20 Expanding Minimum".
 */
QStringList itemsOf(const QLayout& layout);

} // namespace vx::test
