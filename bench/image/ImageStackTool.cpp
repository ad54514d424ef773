// The data-file side of the image operations benchmark.
//   image_stack_tool make FILE WIDTH HEIGHT FRAMES   writes a stack at
//       DataAcquisition/Bench/Images/Series1/Cells/ImageStack
//   image_stack_tool copy FILE                       reads every frame of that stack and
//       writes it into a new stack of the same file, with no computation: the baseline
//       that the operations' throughput is measured against.
// Both stream one frame at a time through the frame reader and writer.

#include "datafile/HDF5Writer_V6.h"
#include "datafile/ImageFrameReader.h"
#include "datafile/ImageFrameWriter.h"

#include <QCoreApplication>
#include <QTextStream>

#include <cstdint>

namespace {

const QString group = QStringLiteral("DataAcquisition/Bench/Images/Series1/Cells");

int make(const QString& path, int width, int height, std::size_t frames, QTextStream& err)
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
    // Every pixel differs from its neighbours and from frame to frame, like a noisy
    // recording, so nothing on the way can take shortcuts over constant data.
    cv::Mat frame(height, width, CV_16U);
    for (std::size_t k = 0; k < frames; ++k) {
        auto* pixels = frame.ptr<std::uint16_t>();
        for (std::size_t i = 0; i < frame.total(); ++i)
            pixels[i] = static_cast<std::uint16_t>(1000 + ((i * 2654435761u + k * 40503u) >> 20) % 3000);
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
    if (arguments.size() == 6 && arguments[1] == QStringLiteral("make"))
        return make(arguments[2], arguments[3].toInt(), arguments[4].toInt(), arguments[5].toULongLong(), err);
    if (arguments.size() == 3 && arguments[1] == QStringLiteral("copy"))
        return copy(arguments[2], err);
    err << "usage: image_stack_tool make FILE WIDTH HEIGHT FRAMES | image_stack_tool copy FILE\n";
    return 2;
}
