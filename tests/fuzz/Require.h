#pragma once

#include <cstdlib>

/// Ends the fuzzer with the input that it runs on.
inline void require(bool condition) {
    if (!condition) std::abort();
}
