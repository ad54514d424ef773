#include "numeric/FixedTimesTrapezoid.h"

#include <algorithm>

namespace zarvi {

FixedTimesTrapezoid::FixedTimesTrapezoid(std::span<const double> times)
{
    if (times.empty())
        return;
    m_span = *std::max_element(times.begin(), times.end()) - times.front();
    if (times.size() < 2)
        return;
    const arma::vec view(const_cast<double*>(times.data()), times.size(), false, true);
    m_steps = arma::diff(view);
    m_pairSums.set_size(times.size() - 1);
}

double FixedTimesTrapezoid::integral(std::span<const double> values)
{
    if (values.size() < 2 || values.size() != m_steps.n_elem + 1)
        return 0.0;
    // Armadillo's trapz() multiplies the row of steps by half the sums of neighbours: the
    // half goes to the library's product as its scale, and the product itself decides the
    // order of the additions. Handing it the same row, sums and scale gives the same bits.
    for (std::size_t i = 0; i + 1 < values.size(); ++i)
        m_pairSums[i] = values[i] + values[i + 1];
    const arma::rowvec stepsRow(m_steps.memptr(), m_steps.n_elem, false, true);
    arma::mat product;
    product = stepsRow * (0.5 * m_pairSums);
    return product(0, 0);
}

} // namespace zarvi
