#pragma once

// A small, fully specified pseudo-random source, so that a seed gives the same corpus with any
// standard library (the <random> distributions are implementation-defined).

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

namespace refdoc::bench {

class Random {
public:
    explicit Random(std::uint64_t seed) noexcept : state_(seed) {}

    // A generator for one part of the corpus: the same (seed, stream) always gives the same
    // numbers, whatever else was drawn before.
    static Random forStream(std::uint64_t seed, std::uint64_t stream) noexcept {
        Random mixer(seed ^ (stream * 0x9E3779B97F4A7C15ull));
        return Random(mixer.next() ^ stream);
    }

    // SplitMix64.
    std::uint64_t next() noexcept {
        std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }

    // Uniform in [0, bound); bound > 0.
    std::size_t below(std::size_t bound) noexcept { return static_cast<std::size_t>(next() % bound); }

    // Uniform in [low, high].
    int between(int low, int high) noexcept {
        return low + static_cast<int>(below(static_cast<std::size_t>(high - low + 1)));
    }

    // Uniform in [0, 1).
    double unit() noexcept { return static_cast<double>(next() >> 11) * 0x1.0p-53; }

    bool chance(double probability) noexcept { return unit() < probability; }

    // Log-normal with the given mean and shape: exp(N(mu, sigma^2)) with mu chosen so that the
    // distribution's mean is `mean`.
    double logNormal(double mean, double sigma) noexcept {
        const double u1 = 1.0 - unit(); // (0, 1]
        const double u2 = unit();
        const double normal = std::sqrt(-2.0 * std::log(u1)) * std::cos(2.0 * 3.14159265358979323846 * u2);
        const double mu = std::log(mean) - sigma * sigma / 2.0;
        return std::exp(mu + sigma * normal);
    }

    template <class T>
    const T& pick(std::span<const T> choices) noexcept {
        return choices[below(choices.size())];
    }

private:
    std::uint64_t state_;
};

} // namespace refdoc::bench
