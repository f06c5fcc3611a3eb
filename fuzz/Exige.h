#pragma once

#include <cstdio>
#include <cstdlib>

namespace zuvi::fuzz {

// A property every input keeps; the fuzzer stops on the input that breaks it.
inline void exige(bool condicion, const char *que)
{
    if (!condicion) {
        std::fprintf(stderr, "Falla: %s\n", que);
        std::abort();
    }
}

} // namespace zuvi::fuzz
