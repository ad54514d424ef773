#pragma once

#include "datafile/HDF5Writer_V6.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QStringList>

namespace zarvi::test {

/// A real data file whose root holds these (empty) groups.
inline bool writeFileWithRootGroups(const QString& path, const QStringList& groups)
{
    HDF5Writer_V6 writer;
    if (writer.create(path) < 0)
        return false;
    for (const QString& group : groups) {
        const hid_t id = writer.createGroup(writer.fileId(), group);
        if (id < 0)
            return false;
        writer.closeGroup(id);
    }
    writer.closeFile();
    return true;
}

/// Files the HDF5 library holds open in this process (the GUI must leave none).
inline long long openFileCount()
{
    return static_cast<long long>(H5Fget_obj_count(H5F_OBJ_ALL, H5F_OBJ_FILE));
}

/// Lets queued events (layouts, deferred deletes, queued replots) run.
inline void settle(int milliseconds = 50)
{
    QElapsedTimer timer;
    timer.start();
    do {
        QApplication::processEvents(QEventLoop::AllEvents, 10);
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    } while (timer.elapsed() < milliseconds);
}

} // namespace zarvi::test
