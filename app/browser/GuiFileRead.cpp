#include "app/browser/GuiFileRead.h"

#include "definitions/DatasetDefinitions.h"
#include "framework/FileAccessLock.h"

namespace zarvi {

GuiFileRead::GuiFileRead(const QString& path) : m_lock(FileAccessLock::tryLock(path))
{
    if (!m_lock.owns_lock()) {
        m_busy = true;
        m_error = DatasetDefinitions::fileBusyMessage();
        return;
    }
    if (m_reader.open(path) < 0)
        m_error = m_reader.lastError();
}

GuiFileRead::~GuiFileRead()
{
    m_reader.closeFile();
}

} // namespace zarvi
