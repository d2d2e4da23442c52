#pragma once

#include <QByteArray>
#include <QStringList>

#include <random>

namespace vx::test {

/**
 * Makes small catalogues that are well-formed and otherwise as odd as can be: fields as elements
 * and attributes on any level, repeated, empty, nested or with text in pieces; several files;
 * packages within packages, files and fields; roots of any name, that of a field included.
 *
 * The same seed always makes the same catalogue.
 */
class RandomCatalogue
{
public:
    explicit RandomCatalogue(quint32 seed);

    /** One document. Further calls return further ones. */
    QByteArray document();

    /** A number from 0 to @p bound less one. */
    int below(int bound);

private:
    QByteArray element(const QByteArray& name, int depth);
    QByteArray attributes();
    QByteArray children(int depth);
    QByteArray child(int depth);
    QByteArray text();
    bool oneIn(int chances);
    QByteArray anyOf(const QList<QByteArray>& list);

    std::mt19937 m_random;
};

} // namespace vx::test
