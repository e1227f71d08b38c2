#pragma once

#include <cstdint>

namespace kelvarissim {

// Random numbers that are the same on every machine, which the distributions of the standard library don't
// promise. Only sums and products are used for the same reason: the last digit of a sine or a logarithm depends
// on the mathematical library.
class Random {
public:
    explicit Random(std::uint64_t seed) : state(seed) {}

    // SplitMix64.
    std::uint64_t next() {
        std::uint64_t mixed = state += 0x9e3779b97f4a7c15;
        mixed = (mixed ^ (mixed >> 30)) * 0xbf58476d1ce4e5b9;
        mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111eb;
        return mixed ^ (mixed >> 31);
    }

    // From min up to max, all equally likely.
    double uniform(double min, double max) {
        constexpr double step = 1.0 / (std::uint64_t{1} << 53);
        return min + (max - min) * (static_cast<double>(next() >> 11) * step);
    }
    // Between -spread and spread, most often near 0.
    double around0(double spread) {
        double const sum = uniform(-1, 1) + uniform(-1, 1);
        return spread * (sum + uniform(-1, 1)) / 3;
    }
    bool chance(double probability) {
        return uniform(0, 1) < probability;
    }

private:
    std::uint64_t state;
};

} // namespace kelvarissim
