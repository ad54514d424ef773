// Writes one-hour recordings (or of the seconds given) of each photometry format into a
// folder for the conversion benchmark: "recording.ppd" (2 channels at 1 kHz), "neurophotometrics.csv" (2 LEDs
// taking turns at 40 frames/s, 4 regions) and the TDT block "Block-1" (two float stores
// at 1017.25 Hz in records of 256 samples, one epoch store).
#include <QCoreApplication>
#include <QFile>
#include <QTextStream>

#include <cmath>

#include "fileeditor/RecordingTestFiles.h"

namespace {

/// Length of the recordings; a shorter one shows that memory does not grow with length.
double Seconds = 3600.0;

bool writePpd(const QString& path)
{
    const int n = static_cast<int>(Seconds * 1000);
    std::vector<std::vector<int>> readings(2, std::vector<int>(n));
    std::vector<std::vector<int>> bits(2, std::vector<int>(n));
    for (int k = 0; k < n; ++k) {
        readings[0][k] = 16000 + static_cast<int>(4000 * std::sin(k * 1e-3));
        readings[1][k] = 12000 + (k % 977);
        bits[0][k] = (k / 5000) % 2;
        bits[1][k] = (k / 12345) % 2;
    }
    return zarvi::test::writeBytes(
        path, zarvi::test::ppdBytes(1000, "2 colour continuous", {1e-4, 1e-4}, readings, bits));
}

bool writeNeurophotometrics(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    QTextStream out(&file);
    out << "FrameCounter,SystemTimestamp,LedState,ComputerTimestamp,Region0G,Region1G,Region2R,Region3R\n";
    const int frames = static_cast<int>(Seconds * 40);
    for (int f = 0; f < frames; ++f) {
        const double t = 5000.0 + f / 40.0;
        out << f << ',' << QString::number(t, 'f', 4) << ',' << (f % 2 ? 2 : 1) << ','
            << QString::number(t * 1000, 'f', 1);
        for (int r = 0; r < 4; ++r)
            out << ',' << QString::number(1000 + r * 100 + std::sin(f * 0.01 + r) * 50, 'f', 3);
        out << '\n';
    }
    return out.status() == QTextStream::Ok;
}

bool writeTdt(const QString& folder)
{
    using B = zarvi::test::TdtBlockBuilder;
    B block(1.6e9);
    const float rate = 1017.25f;
    const int record = 256;
    const long total = static_cast<long>(Seconds * rate);
    std::vector<float> samples(record);
    for (long first = 0; first + record <= total; first += record) {
        const double t = 1.6e9 + first / static_cast<double>(rate);
        for (const char* store : {"x465", "x405"}) {
            for (int i = 0; i < record; ++i)
                samples[i] = static_cast<float>(std::sin((first + i) * 1e-3) + (store[1] == '4' ? 2 : 1));
            block.streamFloat(store, 1, t, rate, samples);
        }
        if (first % (record * 40) == 0)
            block.epoch("PtC1", B::StrobeOn, t, 1.0);
    }
    block.stop(1.6e9 + Seconds);
    return block.write(folder, QStringLiteral("Tank_Block-1"));
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc != 2 && argc != 3) {
        QTextStream(stderr) << "usage: make_recordings FOLDER [SECONDS]\n";
        return 2;
    }
    if (argc == 3)
        Seconds = QString::fromLocal8Bit(argv[2]).toDouble();
    if (!(Seconds > 0.0)) {
        QTextStream(stderr) << "SECONDS must be above 0\n";
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    const bool ok = writePpd(folder + "/recording.ppd") &&
                    writeNeurophotometrics(folder + "/neurophotometrics.csv") &&
                    writeTdt(folder + "/Block-1");
    return ok ? 0 : 1;
}
