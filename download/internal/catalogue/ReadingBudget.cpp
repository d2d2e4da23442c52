#include "download/internal/catalogue/ReadingBudget.h"

#include "host/CoreQt/ParseException.h"

namespace vx {

void ReadingBudget::spend(qint64 characters)
{
    m_spent += characters;
    if (m_spent > m_limit) {
        throw ParseException(QStringLiteral("the packages inherit too much"));
    }
}

} // namespace vx
