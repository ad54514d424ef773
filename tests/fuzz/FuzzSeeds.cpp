// zarvi-fuzz-seeds FOLDER: writes small valid inputs for each fuzz target, with the
// program's own writers, into FOLDER/<target>/, so that fuzzing starts from files the
// readers accept.
#include "datafile/HDF5Writer_V6.h"
#include "fileeditor/TableData.h"
#include "fileeditor/TiffStackWriter.h"
#include "fileeditor/XlsxTableWriter.h"

#include <QDir>
#include <QFile>
#include <QTextStream>

#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>

#include <cstdint>
#include <vector>

namespace {

using namespace zarvi;

bool writeTiff(const QString& path, int bits, std::size_t frames)
{
    TiffStackWriter writer;
    if (!writer.open({path, 8, 6, bits, frames}))
        return false;
    std::vector<std::uint16_t> frame(8 * 6);
    for (std::size_t k = 0; k < frames; ++k) {
        for (std::size_t i = 0; i < frame.size(); ++i)
            frame[i] = static_cast<std::uint16_t>((i * 37 + k * 11) % (bits == 8 ? 256 : 65536));
        if (!writer.writeFrame(frame))
            return false;
    }
    return writer.finish();
}

/// A CSV seed: the option byte the csv target reads first, then the text.
bool writeCsv(const QString& path, char options, const QByteArray& text)
{
    QFile file(path);
    return file.open(QFile::WriteOnly) && file.write(QByteArray(1, options) + text) == text.size() + 1;
}

bool writeWorkbook(const QString& path)
{
    TableData table;
    table.columns = {{QStringLiteral("Time"), QStringLiteral("s"), {0.0, 0.1, 0.2}},
                     {QStringLiteral("Events"), QString(), {0.05, 0.15}},
                     {QStringLiteral("Signal"), QStringLiteral("V"), {1.5, -2.0, 3.25}}};
    return XlsxTableWriter::write(table, {path}).ok();
}

bool writeVideo(const QString& path)
{
    cv::VideoWriter writer(path.toStdString(), cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), 10.0, {32, 24});
    if (!writer.isOpened())
        return false;
    for (int k = 0; k < 5; ++k) {
        cv::Mat frame(24, 32, CV_8UC3, cv::Scalar(20 * k, 40, 200 - 20 * k));
        cv::circle(frame, {4 + 5 * k, 12}, 3, cv::Scalar(255, 255, 255), -1);
        writer.write(frame);
    }
    return true;
}

bool writeDataFile(const QString& path)
{
    HDF5Writer_V6 writer;
    if (writer.create(path) < 0)
        return false;
    const hid_t root = writer.fileId();
    writer.writeAttribute(root, QStringLiteral("FileType"), QStringLiteral("Data"));
    const hid_t group = writer.createGroupPath(root, QStringLiteral("DataAcquisition/FP/Signal/Series1"));
    if (group < 0)
        return false;
    writer.writeAttribute(group, QStringLiteral("Operations"), QStringLiteral("Conversion"));
    writer.writeAttribute(group, QStringLiteral("Channels"),
                          QStringList{QStringLiteral("A"), QStringLiteral("B")});
    writer.writeAttribute(group, QStringLiteral("Rate(Hz)"), 10.0);
    const hid_t time = writer.create1D(group, ElementKind::Float64, QStringLiteral("Time"), 4);
    const double values[] = {0.0, 0.1, 0.2, 0.3};
    const bool ok = time >= 0 && writer.append(time, values, {4});
    writer.writeAttribute(time, QStringLiteral("Count"), 4);
    writer.closeDataset(time);
    writer.closeGroup(group);
    writer.closeFile();
    return ok;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 2) {
        QTextStream(stderr) << "usage: zarvi-fuzz-seeds FOLDER\n";
        return 2;
    }
    const QDir out(QString::fromLocal8Bit(argv[1]));
    for (const char* target : {"tiff", "csv", "xlsx", "video", "datafile"})
        out.mkpath(QLatin1String(target));
    const bool ok =
        writeTiff(out.filePath(QStringLiteral("tiff/gray16.tif")), 16, 3) &&
        writeTiff(out.filePath(QStringLiteral("tiff/gray8.tif")), 8, 2) &&
        writeCsv(out.filePath(QStringLiteral("csv/header.csv")), 0x30,
                 "Time (s),Signal (V),Reward (ms),TTL\r\n0,1.5,100,0\r\n0.1,2.5,,1\r\n0.2,3.5,300,0\r\n") &&
        writeCsv(out.filePath(QStringLiteral("csv/semicolon.csv")), 0x02,
                 "\xEF\xBB\xBFTime;A;\"B\"\n0;1,5;2\n0,1;2,5;3\n\n0,2;-1e-3;4;\n") &&
        writeCsv(out.filePath(QStringLiteral("csv/tab.csv")), static_cast<char>(0xFC),
                 "1\t2\t0\t3\n2\t3\t1\t4\n") &&
        writeWorkbook(out.filePath(QStringLiteral("xlsx/table.xlsx"))) &&
        writeVideo(out.filePath(QStringLiteral("video/clip.avi"))) &&
        writeDataFile(out.filePath(QStringLiteral("datafile/small.orvel")));
    if (!ok) {
        QTextStream(stderr) << "zarvi-fuzz-seeds: could not write every seed\n";
        return 1;
    }
    return 0;
}
