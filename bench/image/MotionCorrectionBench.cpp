// The per-frame computation of Motion Correction alone, for its benchmark
// (run-motion-correction-bench.sh).
//   motion_correction_bench FILE [SHIFTS]
// Registers every frame of DataAcquisition/Bench/Images/Series1/Cells/ImageStack against
// its frame 0 and moves it back, on this one thread, timing only that computation (the
// frames are read beforehand, one at a time, untimed): frames per second. Then checks
// that every shift equals the shift of the plain path (registerPlain), and, given the
// path of the "AlignmentShifts" a run wrote into FILE, that every stored shift equals it.

#include "datafile/HDF5Reader_V6.h"
#include "datafile/ImageFrameReader.h"
#include "image/operations/motioncorrection/AlignmentShifts.h"
#include "image/operations/motioncorrection/FrameRegistration.h"
#include "image/operations/motioncorrection/PlainRegistration.h"

#include <QCoreApplication>
#include <QTextStream>

#include <chrono>
#include <memory>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

const QString stackPath = QStringLiteral("DataAcquisition/Bench/Images/Series1/Cells/ImageStack");

bool same(zarvi::FrameShift a, zarvi::FrameShift b)
{
    return a.x == b.x && a.y == b.y;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QTextStream out(stdout);
    QTextStream err(stderr);
    if (arguments.size() < 2 || arguments.size() > 3) {
        err << "usage: motion_correction_bench FILE [SHIFTS]\n";
        return 2;
    }
    // One thread: OpenCV's own threads (the warp's) are off too.
    cv::setNumThreads(1);
    zarvi::HDF5Reader_V6 file;
    zarvi::ImageFrameReader stack;
    QString error;
    if (file.open(arguments[1]) < 0 || !stack.open(file, stackPath, error)) {
        err << "cannot read " << stackPath << " of " << arguments[1] << ": " << error << '\n';
        return 1;
    }
    const int bitCount = stack.info().bitCount;
    cv::Mat referenceFrame, frame, corrected;
    stack.readFrame(0, referenceFrame, error);
    zarvi::FrameRegistration registration(
        std::make_shared<const zarvi::MotionReference>(referenceFrame, bitCount));
    std::vector<zarvi::FrameShift> shifts;
    double seconds = 0.0;
    for (std::size_t k = 0; k < stack.info().frames; ++k) {
        if (!stack.readFrame(k, frame, error)) {
            err << error << '\n';
            return 1;
        }
        const auto start = Clock::now();
        shifts.push_back(registration.correct(frame, corrected));
        seconds += std::chrono::duration<double>(Clock::now() - start).count();
    }
    out << QStringLiteral("kernel alone, one thread: %1 frames/s (%2 ms per frame)\n")
               .arg(static_cast<double>(shifts.size()) / seconds, 0, 'f', 1)
               .arg(1000.0 * seconds / static_cast<double>(shifts.size()), 0, 'f', 2);
    out.flush();

    std::size_t equal = 0;
    cv::Mat preparedReference, preparedFrame;
    zarvi::prepareForRegistration(referenceFrame, zarvi::registrationScale(bitCount), preparedReference);
    for (std::size_t k = 0; k < shifts.size(); ++k) {
        stack.readFrame(k, frame, error);
        zarvi::prepareForRegistration(frame, zarvi::registrationScale(bitCount), preparedFrame);
        equal += same(zarvi::registerPlain(preparedFrame, preparedReference), shifts[k]) ? 1 : 0;
    }
    out << QStringLiteral("shifts equal to the plain path: %1 of %2\n").arg(equal).arg(shifts.size());
    if (arguments.size() == 3) {
        std::vector<zarvi::FrameShift> stored;
        if (!zarvi::AlignmentShifts::read(file, arguments[2], stored, error)) {
            err << error << '\n';
            return 1;
        }
        equal = 0;
        for (std::size_t k = 0; k < shifts.size() && k < stored.size(); ++k)
            equal += same(stored[k], shifts[k]) ? 1 : 0;
        out << QStringLiteral("shifts of the run equal to these: %1 of %2\n").arg(equal).arg(stored.size());
    }
    return 0;
}
