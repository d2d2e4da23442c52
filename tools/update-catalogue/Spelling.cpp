#include "tools/update-catalogue/Spelling.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace vx {

namespace {

constexpr int shortestWord = 3;

template <typename Keep>
QString filtered(const QString& word, Keep keep)
{
    QString kept;
    std::copy_if(word.begin(), word.end(), std::back_inserter(kept), keep);
    return kept;
}

bool areExchanged(const QString& a, const QString& b)
{
    const auto difference = std::mismatch(a.begin(), a.end(), b.begin());
    const int at = static_cast<int>(difference.first - a.begin());
    if (at + 1 >= a.size()) {
        return false;
    }
    const QString turned = a.left(at) + a.at(at + 1) + a.at(at) + a.mid(at + 2);
    return turned == b;
}

} // namespace

QString withoutStyle(const QString& word)
{
    return filtered(word.toLower(), [](QChar c) { return c.isLetterOrNumber(); });
}

int editDistance(const QString& a, const QString& b)
{
    std::vector<int> row(static_cast<size_t>(b.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const QChar letter : a) {
        int diagonal = row[0]++;
        for (int j = 0; j < b.size(); ++j) {
            const auto at = static_cast<size_t>(j);
            const int exchanged = diagonal + (letter == b.at(j) ? 0 : 1);
            diagonal = row[at + 1];
            row[at + 1] = std::min({exchanged, row[at] + 1, row[at + 1] + 1});
        }
    }
    return row.back();
}

bool differInStyle(const QString& a, const QString& b)
{
    return a != b && withoutStyle(a) == withoutStyle(b);
}

bool differByASlip(const QString& a, const QString& b)
{
    const QString left = withoutStyle(a);
    const QString right = withoutStyle(b);
    const auto isDigit = [](QChar c) { return c.isDigit(); };
    if (filtered(left, isDigit) != filtered(right, isDigit) ||
        std::min(left.size(), right.size()) < shortestWord || left == right) {
        return false;
    }
    return left.size() == right.size() ? areExchanged(left, right) : editDistance(left, right) == 1;
}

} // namespace vx
