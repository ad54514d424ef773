// The data-file side of the image operations benchmark.
//   image_stack_tool make FILE WIDTH HEIGHT FRAMES   writes a stack at
//       DataAcquisition/Bench/Images/Series1/Cells/ImageStack
//   image_stack_tool make-moving FILE WIDTH HEIGHT FRAMES   the same, but the frames show
//       one field of cells drifting and jittering by fractions of a pixel, with noise, as
//       a recording that motion correction has work on
//   image_stack_tool copy FILE                       reads every frame of that stack and
//       writes it into a new stack of the same file, with no computation: the baseline
//       that the operations' throughput is measured against.
// Both stream one frame at a time through the frame reader and writer.

#include "datafile/HDF5Writer_V6.h"
#include "datafile/ImageFrameReader.h"
#include "datafile/ImageFrameWriter.h"

#include <QCoreApplication>
#include <QTextStream>

#include <cmath>
#include <cstdint>
#include <vector>

namespace {

const QString group = QStringLiteral("DataAcquisition/Bench/Images/Series1/Cells");

/// Noise of frame k: every pixel differs from its neighbours and from frame to frame, like
/// a noisy recording, so that nothing on the way can take shortcuts over constant data.
std::uint16_t noise(std::size_t i, std::size_t k, int amplitude)
{
    return static_cast<std::uint16_t>(((i * 2654435761u + k * 40503u) >> 20) % amplitude);
}

/// A cell of the moving field: centre, radius and brightness.
struct Cell
{
    double x;
    double y;
    double radius;
    double brightness;
};

/// Frame k of the moving field: the cells drawn as Gaussians about their centres moved
/// by a slow drift and a jitter (up to about 6 pixels), on a background with noise.
void drawMovingFrame(const std::vector<Cell>& cells, std::size_t k, cv::Mat& frame)
{
    const double t = static_cast<double>(k);
    const double dx = 4.0 * std::sin(t / 90.0) + 1.5 * std::sin(t * 1.7);
    const double dy = 3.0 * std::cos(t / 70.0) + 1.5 * std::sin(t * 2.3 + 1.0);
    cv::Mat field(frame.size(), CV_32F, cv::Scalar(1000));
    for (const Cell& cell : cells) {
        const double cx = cell.x + dx;
        const double cy = cell.y + dy;
        for (int y = std::max(0, static_cast<int>(cy) - 8);
             y <= std::min(frame.rows - 1, static_cast<int>(cy) + 8); ++y)
            for (int x = std::max(0, static_cast<int>(cx) - 8);
                 x <= std::min(frame.cols - 1, static_cast<int>(cx) + 8); ++x)
                field.at<float>(y, x) += static_cast<float>(
                    cell.brightness *
                    std::exp(-((x - cx) * (x - cx) + (y - cy) * (y - cy)) / (2 * cell.radius * cell.radius)));
    }
    auto* pixels = frame.ptr<std::uint16_t>();
    const auto* values = field.ptr<float>();
    for (std::size_t i = 0; i < frame.total(); ++i)
        pixels[i] = cv::saturate_cast<std::uint16_t>(values[i] + noise(i, k, 200));
}

int make(const QString& path, int width, int height, std::size_t frames, bool moving, QTextStream& err)
{
    zarvi::HDF5Writer_V6 file;
    if (file.create(path) < 0) {
        err << file.lastError() << '\n';
        return 1;
    }
    const hid_t sensor = file.createGroupPath(file.fileId(), group);
    zarvi::ImageStackInfo geometry;
    geometry.width = width;
    geometry.height = height;
    geometry.username = QStringLiteral("Cells");
    zarvi::ImageFrameWriter stack;
    QString error;
    if (!stack.create(file, sensor, geometry, frames, {}, error)) {
        err << error << '\n';
        return 1;
    }
    std::vector<Cell> cells;
    cv::RNG rng(1);
    for (int c = 0; moving && c < width * height / 900; ++c)
        cells.push_back({rng.uniform(0.0, double(width)), rng.uniform(0.0, double(height)),
                         rng.uniform(2.0, 4.0), rng.uniform(300.0, 2000.0)});
    cv::Mat frame(height, width, CV_16U);
    for (std::size_t k = 0; k < frames; ++k) {
        if (moving) {
            drawMovingFrame(cells, k, frame);
        } else {
            auto* pixels = frame.ptr<std::uint16_t>();
            for (std::size_t i = 0; i < frame.total(); ++i)
                pixels[i] = static_cast<std::uint16_t>(1000 + noise(i, k, 3000));
        }
        if (!stack.append(frame, 0.05 * static_cast<double>(k), error)) {
            err << error << '\n';
            return 1;
        }
    }
    stack.close();
    file.closeGroup(sensor);
    return 0;
}

int copy(const QString& path, QTextStream& err)
{
    zarvi::HDF5Writer_V6 file;
    if (file.open(path) < 0) {
        err << file.lastError() << '\n';
        return 1;
    }
    zarvi::ImageFrameReader input;
    QString error;
    if (!input.open(file, group + QStringLiteral("/ImageStack"), error)) {
        err << error << '\n';
        return 1;
    }
    const hid_t sensor = file.createGroupPath(file.fileId(), QStringLiteral("DataProcessed/Bench/Copy"));
    zarvi::ImageFrameWriter output;
    if (!output.create(file, sensor, input.info(), input.info().frames, {}, error)) {
        err << error << '\n';
        return 1;
    }
    cv::Mat frame;
    for (std::size_t k = 0; k < input.info().frames; ++k) {
        if (!input.readRawFrame(k, frame, error) ||
            !output.appendRaw(frame.ptr<std::uint16_t>(), input.time()[k], error)) {
            err << error << '\n';
            return 1;
        }
    }
    output.close();
    file.closeGroup(sensor);
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QTextStream err(stderr);
    if (arguments.size() == 6 &&
        (arguments[1] == QStringLiteral("make") || arguments[1] == QStringLiteral("make-moving")))
        return make(arguments[2], arguments[3].toInt(), arguments[4].toInt(), arguments[5].toULongLong(),
                    arguments[1] == QStringLiteral("make-moving"), err);
    if (arguments.size() == 3 && arguments[1] == QStringLiteral("copy"))
        return copy(arguments[2], err);
    err << "usage: image_stack_tool make|make-moving FILE WIDTH HEIGHT FRAMES | image_stack_tool copy FILE\n";
    return 2;
}
