#include "datafile/MemoryBudget.h"

#include <QFile>

#include <limits>

#include <unistd.h>

namespace zarvi {

std::uint64_t MemoryBudget::availableBytes()
{
    // /proc/meminfo counts reclaimable caches too, which the free page count leaves out.
    QFile meminfo(QStringLiteral("/proc/meminfo"));
    if (meminfo.open(QIODevice::ReadOnly)) {
        const QByteArray key("MemAvailable:");
        for (QByteArray line = meminfo.readLine(); !line.isEmpty(); line = meminfo.readLine()) {
            if (!line.startsWith(key))
                continue;
            bool ok = false;
            const qulonglong kib = line.mid(key.size()).trimmed().split(' ').value(0).toULongLong(&ok);
            if (ok)
                return product({kib, 1024});
        }
    }
    const long pages = sysconf(_SC_AVPHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGESIZE);
    if (pages <= 0 || pageSize <= 0)
        return std::numeric_limits<std::uint64_t>::max();
    return product({static_cast<std::uint64_t>(pages), static_cast<std::uint64_t>(pageSize)});
}

std::uint64_t MemoryBudget::product(std::initializer_list<std::uint64_t> factors)
{
    constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t result = 1;
    for (const std::uint64_t f : factors) {
        if (f == 0)
            return 0;
        result = result > largest / f ? largest : result * f;
    }
    return result;
}

QString MemoryBudget::problem(const QString& what, std::uint64_t bytes)
{
    const std::uint64_t available = availableBytes();
    if (bytes <= available)
        return {};
    return QStringLiteral("<b>%1</b> needs <b>%2</b> bytes of memory, but only <b>%3</b> are available.")
        .arg(what)
        .arg(bytes)
        .arg(available);
}

} // namespace zarvi
