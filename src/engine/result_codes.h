// Result codes shared by every module. The public ones come from kryn.h; the
// restart code is internal: a band delivery reports it when the driver asks
// for the page again, and page close consumes it.
#pragma once

#include "kryn/kryn.h"

namespace kryn {

inline constexpr ResultCode KRYN_ERR_RESTART_PAGE = 0xFF07;

inline constexpr bool failed(ResultCode r) {
    return r != KRYN_OK;
}

} // namespace kryn
