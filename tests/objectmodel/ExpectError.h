#pragma once

#include "objectmodel/Errors.h"

#include <utility>

namespace pipespec::checks {

// The number of the PlatformError the call throws; 0 when it completes.
template <class F>
long errorNumber(F&& call)
{
    try {
        std::forward<F>(call)();
    } catch (const PlatformError& e) {
        return e.number();
    }
    return 0;
}

}  // namespace pipespec::checks
