// Checks the simulated drivers share on the records they are handed.
#pragma once

#include <cstddef>
#include <optional>

namespace LumavenSim {

// The index of the first non-zero element from `from` on, if any: a reserved field, or the
// bytes of a buffer past the count the caller gave, must be left zero.
template <class T, size_t N>
std::optional<size_t> FirstNonZero(const T (&values)[N], size_t from = 0)
{
    for (size_t i = from; i < N; ++i) {
        if (values[i] != 0) {
            return i;
        }
    }
    return std::nullopt;
}

}  // namespace LumavenSim
