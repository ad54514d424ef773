// Writes, then reads back frame by frame, an image stack and a 1-D stream through
// the data-file layer, and does the same with plain buffered file I/O of the same
// bytes in the same run. Prints MB/s and the ratio ours / plain for each way.
//
// usage: bench_datafile_io [frames (default 2000)] [stream samples (default 1e7)]

#include "bench/common/BenchTimer.h"

#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"

#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <string>
#include <vector>

using namespace zarvi;

namespace {

constexpr int height = 512;
constexpr int width = 512;
constexpr std::size_t block = 65536;

struct Rates
{
    double write = 0.0;
    double read = 0.0;
};

void report(const char* what, double megabytes, const Rates& ours, const Rates& plain)
{
    std::printf("%-28s write %8.1f MB/s (plain %8.1f MB/s) ratio %.2f | read %8.1f MB/s (plain %8.1f MB/s) ratio %.2f\n",
                what, megabytes / ours.write, megabytes / plain.write, plain.write / ours.write,
                megabytes / ours.read, megabytes / plain.read, plain.read / ours.read);
}

template <typename T>
Rates plainIo(const std::string& path, std::size_t chunkElements, std::size_t chunks, std::vector<T>& buffer)
{
    Rates rates;
    rates.write = bench::medianSeconds(3, [&] {
        std::FILE* file = std::fopen(path.c_str(), "wb");
        for (std::size_t k = 0; k < chunks; ++k)
            std::fwrite(buffer.data(), sizeof(T), chunkElements, file);
        std::fflush(file);
        std::fclose(file);
    });
    rates.read = bench::medianSeconds(3, [&] {
        std::FILE* file = std::fopen(path.c_str(), "rb");
        for (std::size_t k = 0; k < chunks; ++k)
            if (std::fread(buffer.data(), sizeof(T), chunkElements, file) != chunkElements)
                std::abort();
        std::fclose(file);
    });
    return rates;
}

Rates stackIo(const QString& path, int frames, std::vector<std::uint16_t>& frame)
{
    Rates rates;
    rates.write = bench::medianSeconds(3, [&] {
        HDF5Writer_V6 writer;
        writer.create(path);
        const hid_t group = writer.createGroupPath(writer.fileId(), QStringLiteral("DataAcquisition/Scope/Images/Series1/Sensor1"));
        const hid_t stack = writer.createImageStack(group, QStringLiteral("ImageStack"), height, width, 28, 16, 0);
        for (int k = 0; k < frames; ++k)
            if (!writer.append(stack, frame.data(), {height, width, 1}))
                std::abort();
        writer.closeDataset(stack);
        writer.closeGroup(group);
    });
    rates.read = bench::medianSeconds(3, [&] {
        HDF5Reader_V6 reader;
        reader.open(path);
        const hid_t stack = reader.openDataset(reader.fileId(), QStringLiteral("DataAcquisition/Scope/Images/Series1/Sensor1/ImageStack"));
        for (int k = 0; k < frames; ++k)
            if (!reader.read(stack, {0, 0, hsize_t(k)}, {height, width, 1}, frame.data()))
                std::abort();
        reader.closeDataset(stack);
    });
    return rates;
}

Rates streamIo(const QString& path, std::size_t samples, std::vector<double>& buffer)
{
    Rates rates;
    rates.write = bench::medianSeconds(3, [&] {
        HDF5Writer_V6 writer;
        writer.create(path);
        const hid_t stream = writer.create1D(writer.fileId(), ElementKind::Float64, QStringLiteral("Signal"), samples);
        for (std::size_t k = 0; k < samples; k += block)
            if (!writer.append(stream, buffer.data(), {std::min(block, samples - k)}))
                std::abort();
        writer.closeDataset(stream);
    });
    rates.read = bench::medianSeconds(3, [&] {
        HDF5Reader_V6 reader;
        reader.open(path);
        const hid_t stream = reader.openDataset(reader.fileId(), QStringLiteral("Signal"));
        for (std::size_t k = 0; k < samples; k += block)
            if (!reader.read(stream, {k}, {std::min(block, samples - k)}, buffer.data()))
                std::abort();
        reader.closeDataset(stream);
    });
    return rates;
}

} // namespace

int main(int argc, char** argv)
{
    const int frames = argc > 1 ? std::atoi(argv[1]) : 2000;
    const std::size_t samples = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 10'000'000;
    QTemporaryDir dir;

    std::vector<std::uint16_t> frame(std::size_t(height) * width);
    std::iota(frame.begin(), frame.end(), std::uint16_t(0));
    const double stackMB = double(frame.size()) * sizeof(std::uint16_t) * frames / 1e6;
    const Rates stackPlain = plainIo(dir.filePath(QStringLiteral("stack.raw")).toStdString(), frame.size(),
                                     std::size_t(frames), frame);
    const Rates stackOurs = stackIo(dir.filePath(QStringLiteral("stack.orvel")), frames, frame);
    report("image stack 512x512 uint16", stackMB, stackOurs, stackPlain);

    std::vector<double> buffer(block);
    std::iota(buffer.begin(), buffer.end(), 0.0);
    const double streamMB = double(samples) * sizeof(double) / 1e6;
    const Rates streamPlain = plainIo(dir.filePath(QStringLiteral("stream.raw")).toStdString(), block,
                                      (samples + block - 1) / block, buffer);
    const Rates streamOurs = streamIo(dir.filePath(QStringLiteral("stream.orvel")), samples, buffer);
    report("1-D stream float64", streamMB, streamOurs, streamPlain);
    return 0;
}
