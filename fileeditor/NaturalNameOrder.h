#pragma once

#include <QString>

namespace zarvi {

/// Name order as a person reads it: runs of digits compare by value, so img2 comes before
/// img10; letters compare without case. Names equal under that rule keep a fixed order
/// through a plain comparison. Written here rather than taken from QCollator, whose numeric
/// mode follows the locale: the order of a stack's frames must not depend on where it is
/// opened. Any thread.
bool naturalNameLess(const QString& a, const QString& b);

} // namespace zarvi
