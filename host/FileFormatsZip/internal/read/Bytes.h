#pragma once

#include <QByteArray>
#include <QtEndian>

#include <string_view>

namespace vx {

/** Bytes of an archive that lie somewhere else and stay there. */
using ByteView = std::string_view;

/** The bytes of an array, which must outlive the view. */
inline ByteView viewOf(const QByteArray& bytes)
{
    return {bytes.constData(), static_cast<size_t>(bytes.size())};
}

/** The little-endian number at a place that must lie within @p bytes. */
template <typename T>
T number(ByteView bytes, size_t at)
{
    return qFromLittleEndian<T>(bytes.data() + at);
}

/** Whether the four bytes of @p signature stand at a place, which may lie outside. */
inline bool hasSignature(ByteView bytes, qint64 at, ByteView signature)
{
    return at >= 0 && at <= static_cast<qint64>(bytes.size()) &&
           bytes.substr(static_cast<size_t>(at), signature.size()) == signature;
}

} // namespace vx
