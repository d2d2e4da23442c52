#include "host/FileFormatsVeldrix/VeldrixSoftwareVersion.h"

#include <QRegularExpression>

QString vx::VeldrixSoftwareVersion::applicationVersion(const QString& version, const QString& text,
                                                       short number)
{
    static const QRegularExpression leadingNumbers(QStringLiteral("^[0-9]+(\\.[0-9]+)*"));
    QString shown = version.trimmed();
    if (shown.isEmpty()) {
        return text;
    }
    if (number <= 0) {
        return shown;
    }
    const QString numbers = leadingNumbers.match(shown).captured();
    return numbers.section(QLatin1Char('.'), 0, number - 1) + shown.mid(numbers.size());
}
