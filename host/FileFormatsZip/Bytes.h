#pragma once

#include <QByteArray>
#include <QtEndian>

#include <cstring>

namespace vx {

/** The little-endian number at a place that must lie within @p bytes. */
template <typename T>
T number(const QByteArray& bytes, qint64 at)
{
    return qFromLittleEndian<T>(bytes.constData() + at);
}

/** Appends a number in little-endian form. */
template <typename T>
void appendNumber(QByteArray& bytes, T value)
{
    const T little = qToLittleEndian(value);
    bytes.append(reinterpret_cast<const char*>(&little), sizeof little);
}

/** Whether the four bytes of @p signature stand at a place, which may lie outside. */
inline bool hasSignature(const QByteArray& bytes, qint64 at, const char* signature)
{
    return at >= 0 && at + 4 <= bytes.size() &&
           std::memcmp(bytes.constData() + at, signature, 4) == 0;
}

} // namespace vx
