#pragma once

#include "host/CoreQt/ExceptionQt.h"

namespace vx {

/** A file or an archive could not be read or written. */
class VX_COREQT_EXPORT IOException : public ExceptionQt
{
public:
    using ExceptionQt::ExceptionQt;
    IOException(const IOException&) = default;
    IOException& operator=(const IOException&) = default;
    ~IOException() override;
};

} // namespace vx
