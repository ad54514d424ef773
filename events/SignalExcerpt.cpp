#include "events/SignalExcerpt.h"

#include "datafile/HDF5Manager_V6.h"
#include "definitions/FileDefinitions.h"

#include <algorithm>
#include <cmath>

namespace zarvi {

namespace {

using FD = FileDefinitions;

QString timePath(const QString& valuesPath)
{
    return valuesPath.left(valuesPath.lastIndexOf(QLatin1Char('/')) + 1) + FD::Time;
}

/// An open 1-D dataset, closed when it goes.
class Dataset
{
public:
    Dataset(HDF5Manager_V6& file, const QString& path)
        : m_file(file), m_id(file.openDataset(file.fileId(), path))
    {
        const std::vector<hsize_t> dims = m_id >= 0 ? file.dimensions(m_id) : std::vector<hsize_t>();
        m_size = dims.size() == 1 ? static_cast<std::size_t>(dims[0]) : 0;
        m_valid = dims.size() == 1;
    }
    ~Dataset() { m_file.closeDataset(m_id); }
    Dataset(const Dataset&) = delete;
    Dataset& operator=(const Dataset&) = delete;

    bool valid() const { return m_valid; }
    std::size_t size() const { return m_size; }
    bool read(std::size_t first, std::size_t count, std::vector<double>& out)
    {
        return m_file.read(m_id, {first}, {count}, out);
    }
    double at(std::size_t index, bool& ok)
    {
        std::vector<double> value;
        ok = ok && read(index, 1, value);
        return ok ? value[0] : 0.0;
    }
    hid_t id() const { return m_id; }

private:
    HDF5Manager_V6& m_file;
    hid_t m_id;
    std::size_t m_size = 0;
    bool m_valid = false;
};

/// First index whose time is >= t (n when none), by bisection over the stored times.
std::size_t lowerBound(Dataset& time, double t, bool& ok)
{
    std::size_t low = 0, high = time.size();
    while (ok && low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (time.at(middle, ok) < t)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

} // namespace

std::optional<SignalExcerpt::Extent> SignalExcerpt::extent(HDF5Manager_V6& file, const QString& valuesPath)
{
    Dataset time(file, timePath(valuesPath));
    if (!time.valid())
        return std::nullopt;
    Extent extent;
    extent.samples = time.size();
    bool ok = true;
    if (extent.samples > 0) {
        extent.firstTime = time.at(0, ok);
        extent.lastTime = time.at(extent.samples - 1, ok);
    }
    return ok ? std::optional<Extent>(extent) : std::nullopt;
}

bool SignalExcerpt::read(HDF5Manager_V6& file, const QString& valuesPath, double from, double to,
                         Signal& excerpt)
{
    excerpt = Signal{};
    Dataset time(file, timePath(valuesPath));
    Dataset values(file, valuesPath);
    if (!time.valid() || !values.valid() || time.size() != values.size())
        return false;
    excerpt.unit = file.readAttribute(values.id(), FD::Unit).toString();
    const std::size_t n = time.size();
    if (n == 0 || !(from <= to))
        return true;
    bool ok = true;
    const double first = time.at(0, ok), last = time.at(n - 1, ok);
    if (!ok)
        return false;

    // Estimate from the mean rate, with a margin; search where the estimate misses.
    const double perSecond = n > 1 && last > first ? static_cast<double>(n - 1) / (last - first) : 0.0;
    const auto index = [&](double t) {
        const double estimate = std::clamp((t - first) * perSecond, 0.0, static_cast<double>(n - 1));
        return static_cast<std::size_t>(estimate);
    };
    const std::size_t margin = 16;
    std::size_t begin = index(from) > margin ? index(from) - margin : 0;
    std::size_t end = std::min(n, index(to) + margin + 1);
    const bool beginCovers = begin == 0 || time.at(begin, ok) < from;
    const bool endCovers = end == n || time.at(end - 1, ok) > to;
    if (!beginCovers)
        begin = lowerBound(time, from, ok);
    if (!endCovers)
        end = lowerBound(time, std::nextafter(to, INFINITY), ok);
    if (!ok)
        return false;
    if (end <= begin)
        return true;
    if (!time.read(begin, end - begin, excerpt.time) || !values.read(begin, end - begin, excerpt.values))
        return false;

    // Trim the margin to the range.
    const auto lo = std::lower_bound(excerpt.time.begin(), excerpt.time.end(), from) - excerpt.time.begin();
    const auto hi = std::upper_bound(excerpt.time.begin(), excerpt.time.end(), to) - excerpt.time.begin();
    excerpt.time = std::vector<double>(excerpt.time.begin() + lo, excerpt.time.begin() + hi);
    excerpt.values = std::vector<double>(excerpt.values.begin() + lo, excerpt.values.begin() + hi);
    return true;
}

} // namespace zarvi
