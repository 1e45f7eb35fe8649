#pragma once

#include <QString>

namespace corvanta::support {

// A new UUID in its canonical text form (upper-case hex in 8-4-4-4-12 groups), usable in a
// file name: names database files and identifies templates, elements and records.
QString UUID();

} // namespace corvanta::support
