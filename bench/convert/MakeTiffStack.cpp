// Writes a 16-bit greyscale multi-page TIFF of the given size for the conversion
// benchmark: make_tiff_stack OUT.tif WIDTH HEIGHT FRAMES. Frames are streamed through
// TiffStackWriter, so memory holds one frame whatever the stack's size.

#include <QCoreApplication>
#include <QTextStream>

#include <cstdint>
#include <vector>

#include "fileeditor/TiffStackWriter.h"

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QTextStream err(stderr);
    if (arguments.size() != 5) {
        err << "usage: make_tiff_stack OUT.tif WIDTH HEIGHT FRAMES\n";
        return 2;
    }
    zarvi::TiffStackWriterConfig config;
    config.path = arguments[1];
    config.width = arguments[2].toInt();
    config.height = arguments[3].toInt();
    config.frameCount = arguments[4].toULongLong();
    zarvi::TiffStackWriter writer;
    if (!writer.open(config)) {
        err << writer.lastError() << '\n';
        return 1;
    }
    // A moving gradient with every pixel different from its neighbours, like a
    // noisy recording, so that nothing on the way can take shortcuts over constant data.
    std::vector<std::uint16_t> frame(static_cast<std::size_t>(config.width) * config.height);
    for (std::size_t k = 0; k < config.frameCount; ++k) {
        for (std::size_t i = 0; i < frame.size(); ++i)
            frame[i] = static_cast<std::uint16_t>(i * 2654435761u + k * 40503u);
        if (!writer.writeFrame(frame)) {
            err << writer.lastError() << '\n';
            return 1;
        }
    }
    if (!writer.finish()) {
        err << writer.lastError() << '\n';
        return 1;
    }
    return 0;
}
