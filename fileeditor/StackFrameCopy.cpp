#include "fileeditor/StackFrameCopy.h"

#include "datafile/Feedback.h"
#include "datafile/ImageFrameReader.h"
#include "datafile/PositionedIo.h"
#include "definitions/FileDefinitions.h"
#include "fileeditor/TiffStackWriter.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <mutex>

namespace zarvi {

namespace {

using Outcome = StackFrameCopy::Outcome;

/// The frames read straight from the file, on both cores.
Outcome copyStoredFrames(const ImageFrameReader& stack, const StoredChunks& stored, std::size_t first,
                         std::size_t count, TiffStackWriter& writer, ProgressTracker& progress,
                         QString& error)
{
    std::mutex unreadableMutex;
    std::size_t unreadable = count;
    bool canceled = false;
    const bool written = writer.writeFramesOnBothCores(
        [&](std::size_t k, void* samples) {
            const StoredChunks::Chunk& chunk = stored.chunks[first + k];
            if (readWholeAt(stored.descriptor, static_cast<unsigned char*>(samples), chunk.bytes,
                            chunk.address))
                return true;
            const std::lock_guard lock(unreadableMutex);
            unreadable = std::min(unreadable, k);
            return false;
        },
        [&](std::size_t done) {
            progress.update(done);
            canceled = progress.isCanceled();
            return !canceled;
        });
    if (written)
        return Outcome::Copied;
    if (canceled)
        return Outcome::Canceled;
    error = unreadable < count
                ? FileDefinitions::unableToReadFrameMessage().arg(first + unreadable).arg(stack.path())
                : writer.lastError();
    return Outcome::Failed;
}

} // namespace

StackFrameCopy::Outcome StackFrameCopy::copy(ImageFrameReader& stack, std::size_t first, std::size_t count,
                                             TiffStackWriter& writer, ProgressTracker& progress,
                                             QString& error)
{
    if (writer.frameSlot()) {
        const StoredChunks stored = stack.storedFrames();
        if (stored.chunks.size() >= first + count)
            return copyStoredFrames(stack, stored, first, count, writer, progress, error);
    }
    const std::size_t pixels = static_cast<std::size_t>(stack.info().height) * stack.info().width;
    cv::Mat frame;
    for (std::size_t k = 0; k < count; ++k) {
        if (progress.isCanceled())
            return Outcome::Canceled;
        // Frames kept as the page takes them are read straight into the page to write.
        void* slot = writer.frameSlot();
        if (!(slot ? stack.readRawFrame(first + k, slot, error)
                   : stack.readRawFrame(first + k, frame, error)))
            return Outcome::Failed;
        if (!(slot ? writer.writeFilledFrame() : writer.writeFrame({frame.ptr<std::uint16_t>(), pixels}))) {
            error = writer.lastError();
            return Outcome::Failed;
        }
        progress.update(k + 1);
    }
    return Outcome::Copied;
}

} // namespace zarvi
