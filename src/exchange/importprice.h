#pragma once

#include <QString>

namespace corvanta::exchange {

// A price column of an item import read as a number: "," becomes ".", every blank goes (any
// white space, no-break spaces included), and the leading number is read in single precision
// the way C's strtof reads it ("12.5EUR" is 12.5, "abc" is 0). The float is widened to the
// double that is stored, so a price keeps only about seven significant digits: 1.1 is stored
// as 1.10000002384185791015625.
class ImportPrice
{
public:
    static double read(const QString& text);
};

} // namespace corvanta::exchange
