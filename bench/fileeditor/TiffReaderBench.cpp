// Streaming a TIFF stack frame by frame against a plain fread copy of the same file.
// The stacks are written once into a temporary folder and read from the page cache, so
// the ratio shows what the reader costs on top of moving the bytes.

#include <benchmark/benchmark.h>

#include <QFile>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>
#include <memory>
#include <vector>

#include "fileeditor/TiffStackReader.h"
#include "fileeditor/TiffStackWriter.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int Width = 600;
constexpr int Height = 600;
/// 280 frames of 600 x 600 16-bit pixels: about 200 MB.
constexpr std::size_t Frames = 280;

struct Stack
{
    QString path;
    std::size_t bytes = 0;
};

/// Writes (once per bit depth) a stack of Frames frames into a folder that lives as
/// long as the program.
const Stack& stack(int bits)
{
    static QTemporaryDir dir;
    static Stack stacks[2];
    Stack& stack = stacks[bits == 16 ? 1 : 0];
    if (!stack.path.isEmpty())
        return stack;
    stack.path = dir.filePath(QStringLiteral("stack%1.tif").arg(bits));
    zarvi::TiffStackWriter writer;
    writer.open({stack.path, Width, Height, bits, Frames});
    std::vector<std::uint16_t> frame(static_cast<std::size_t>(Width) * Height);
    for (std::size_t k = 0; k < Frames; ++k) {
        for (std::size_t i = 0; i < frame.size(); ++i)
            frame[i] = static_cast<std::uint16_t>((i * 31 + k * 17) & (bits == 16 ? 0xFFFF : 0xFF));
        writer.writeFrame(frame);
    }
    writer.finish();
    stack.bytes = static_cast<std::size_t>(QFile(stack.path).size());
    return stack;
}

/// Seconds to copy the whole file through fread in 1 MB blocks.
double freadSeconds(const Stack& stack)
{
    std::vector<char> block(1 << 20);
    const auto start = Clock::now();
    std::unique_ptr<FILE, decltype(&std::fclose)> file(
        std::fopen(QFile::encodeName(stack.path).constData(), "rb"), &std::fclose);
    std::size_t total = 0;
    while (const std::size_t n = std::fread(block.data(), 1, block.size(), file.get()))
        total += n;
    benchmark::DoNotOptimize(total);
    benchmark::DoNotOptimize(block.data());
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Seconds to open the stack and read every frame into one frame buffer.
double readerSeconds(const Stack& stack, std::vector<std::uint16_t>& frame)
{
    const auto start = Clock::now();
    zarvi::TiffStackReader reader;
    reader.open(zarvi::TiffStackReaderConfig{stack.path});
    for (std::size_t k = 0; k < reader.info().frameCount; ++k)
        reader.readFrame(k, frame);
    benchmark::DoNotOptimize(frame.data());
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Reads the stack in the timed loop; the fread baseline runs beside it, alternating
/// with it, and the counters give both rates and their ratio.
void BM_TiffStackReader(benchmark::State& state)
{
    const Stack& data = stack(static_cast<int>(state.range(0)));
    std::vector<std::uint16_t> frame(static_cast<std::size_t>(Width) * Height);
    double readerBest = 1e30;
    double freadBest = 1e30;
    for (auto _ : state) {
        readerBest = std::min(readerBest, readerSeconds(data, frame));
        state.PauseTiming();
        freadBest = std::min(freadBest, freadSeconds(data));
        state.ResumeTiming();
    }
    const double megabytes = static_cast<double>(data.bytes) / 1e6;
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * data.bytes));
    state.counters["reader_MBps"] = megabytes / readerBest;
    state.counters["fread_MBps"] = megabytes / freadBest;
    state.counters["reader_vs_fread"] = freadBest / readerBest;
}
BENCHMARK(BM_TiffStackReader)->Arg(16)->Arg(8)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace

BENCHMARK_MAIN();
