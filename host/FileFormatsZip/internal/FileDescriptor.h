#pragma once

#include <unistd.h>

#include <utility>

namespace vx {

/** Owns a POSIX file descriptor and closes it. Moves, does not copy. */
class FileDescriptor
{
public:
    /** Takes over @p descriptor; a negative one means that there is none. */
    explicit FileDescriptor(int descriptor = -1)
        : m_descriptor(descriptor)
    {}

    FileDescriptor(FileDescriptor&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {}

    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }

    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    ~FileDescriptor()
    {
        if (m_descriptor >= 0) {
            ::close(m_descriptor);
        }
    }

    int get() const { return m_descriptor; }
    bool isValid() const { return m_descriptor >= 0; }

    /** Gives the descriptor away: closing it is the caller's task from here. */
    int release() { return std::exchange(m_descriptor, -1); }

private:
    int m_descriptor;
};

} // namespace vx
