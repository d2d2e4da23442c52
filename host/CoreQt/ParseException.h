#pragma once

#include "host/CoreQt/ExceptionQt.h"

namespace vx {

/** A document could not be parsed. */
class VX_COREQT_EXPORT ParseException : public ExceptionQt
{
public:
    using ExceptionQt::ExceptionQt;
    ParseException(const ParseException&) = default;
    ParseException& operator=(const ParseException&) = default;
    ~ParseException() override;
};

} // namespace vx
