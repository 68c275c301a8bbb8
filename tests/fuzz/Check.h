// What must hold for any input: the process ends where it does not, which is how a fuzz target reports a finding.
#pragma once

#include <cstdio>
#include <cstdlib>

// A macro, so that the report names the condition and its line.
#define CHECK(condition)                                                                        \
    do {                                                                                        \
        if (!(condition)) {                                                                     \
            std::fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                                       \
        }                                                                                       \
    } while (false)
