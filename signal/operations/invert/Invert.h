#pragma once

#include <span>

namespace zarvi {

/// Mirrors a signal about an offset: y = 2 * offset - x. Plain function, any thread.
void invert(std::span<double> values, double offset);

} // namespace zarvi
