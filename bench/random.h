#pragma once

#include <QString>
#include <cstdint>
#include <initializer_list>
#include <random>

namespace corvanta::bench {

// Random choices from a fixed-seed Mersenne Twister. Only the engine's raw output is used
// (its sequence is fixed by the C++ standard, unlike the distributions'), so one seed gives
// the same company on every platform and standard library.
class Random
{
public:
    explicit Random(std::uint32_t seed)
        : m_engine(seed)
    {}

    // An integer in [low, high].
    int between(int low, int high);
    // A number in [0, 1).
    double unit();
    double real(double low, double high) { return low + (high - low) * unit(); }
    bool chance(double probability) { return unit() < probability; }
    // An amount in whole cents in [low, high].
    double money(double low, double high);
    // An index in [0, count) that favours the first ones: a few clients and items take most
    // of the business.
    int skewed(int count);
    // An index into `weights` chosen in proportion to its weight.
    int weighted(std::initializer_list<int> weights);
    // `count` decimal digits.
    QString digits(int count);
    // A UUID-shaped identifier in upper case.
    QString identifier();

private:
    std::uint32_t next() { return std::uint32_t(m_engine()); }

    std::mt19937 m_engine;
};

} // namespace corvanta::bench
