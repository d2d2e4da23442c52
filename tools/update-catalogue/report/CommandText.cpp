#include "tools/update-catalogue/report/CommandText.h"

#include <QRegularExpression>

#include "tools/update-catalogue/AddressText.h"

namespace vx {

namespace {

QString quoted(QString word)
{
    static const QRegularExpression plain("^[A-Za-z0-9_@%+=:,./-]+$");
    if (plain.match(word).hasMatch()) {
        return word;
    }
    return '\'' + word.replace("'", "'\\''") + '\'';
}

} // namespace

QString commandLine(const QStringList& arguments)
{
    QStringList words{"update-catalogue"};
    for (const QString& argument : arguments.mid(1)) {
        words.append(quoted(withoutPassword(argument)));
    }
    return words.join(' ');
}

} // namespace vx
