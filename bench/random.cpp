#include "random.h"

#include <algorithm>
#include <cmath>

namespace corvanta::bench {

int Random::between(int low, int high)
{
    const std::uint64_t span = std::uint64_t(std::int64_t(high) - std::int64_t(low) + 1);
    return int(std::int64_t(low) + std::int64_t((std::uint64_t(next()) * span) >> 32));
}

double Random::unit()
{
    return double(next()) / 4294967296.0;
}

double Random::money(double low, double high)
{
    return std::round(real(low, high) * 100.0) / 100.0;
}

int Random::skewed(int count)
{
    const double u = unit();
    return std::min(count - 1, int(double(count) * u * u));
}

int Random::weighted(std::initializer_list<int> weights)
{
    int total = 0;
    for (int w : weights)
        total += w;
    int roll = between(0, total - 1);
    int index = 0;
    for (int w : weights) {
        if (roll < w)
            return index;
        roll -= w;
        ++index;
    }
    return index - 1;
}

QString Random::digits(int count)
{
    QString text;
    text.reserve(count);
    for (int i = 0; i < count; ++i)
        text += QLatin1Char(char('0' + between(0, 9)));
    return text;
}

QString Random::identifier()
{
    static const char hex[] = "0123456789ABCDEF";
    QString text;
    text.reserve(36);
    for (int i = 0; i < 32; ++i) {
        if (i == 8 || i == 12 || i == 16 || i == 20)
            text += QLatin1Char('-');
        text += QLatin1Char(hex[between(0, 15)]);
    }
    return text;
}

} // namespace corvanta::bench
