// A small generator whose sequence depends only on its seed (SplitMix64), so that a printed
// seed repeats a run exactly with any compiler and standard library.
#pragma once

#include <cstdint>

namespace LumavenReliability {

class Rng {
public:
    explicit Rng(uint64_t seed) : m_state(seed) {}

    uint64_t Next()
    {
        uint64_t z = (m_state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    // Uniform enough in [0, n) for test data; n must not be 0.
    uint64_t Below(uint64_t n) { return Next() % n; }
    // [low, high]
    uint64_t Between(uint64_t low, uint64_t high) { return low + Below(high - low + 1); }
    // True in `perMille` of a thousand draws.
    bool Chance(uint32_t perMille) { return Below(1000) < perMille; }

private:
    uint64_t m_state;
};

// Seeds for independent streams (threads, laptops) drawn from one run seed.
inline uint64_t DeriveSeed(uint64_t seed, uint64_t stream)
{
    Rng rng(seed ^ (stream * 0xD1B54A32D192ED03ull));
    return rng.Next();
}

}  // namespace LumavenReliability
