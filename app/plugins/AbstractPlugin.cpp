#include "app/plugins/AbstractPlugin.h"

#include "definitions/DatasetDefinitions.h"
#include "framework/LockedFileRead.h"

#include <QFileInfo>
#include <QTimer>

namespace zarvi {

namespace {
// How soon a busy file is tried again.
constexpr int retryIntervalMs = 500;
} // namespace

AbstractPlugin::AbstractPlugin(const QString& applicationName, const QString& version, IconFont* icons,
                               QWidget* parent)
    : QWidget(parent), m_applicationName(applicationName), m_version(version), m_icons(icons),
      m_retryTimer(new QTimer(this))
{
    m_retryTimer->setSingleShot(true);
    m_retryTimer->setInterval(retryIntervalMs);
    connect(m_retryTimer, &QTimer::timeout, this, [this] { reloadFile(); });
}

bool AbstractPlugin::loadFile(const QString& path)
{
    m_filePath = QFileInfo(path).absoluteFilePath();
    return reloadFile();
}

bool AbstractPlugin::readFileTree(std::vector<DataFileNode>& nodes)
{
    LockedFileRead read(m_filePath);
    if (read.isBusy()) {
        emit sendStatusMessage(DatasetDefinitions::fileBusyMessage());
        m_retryTimer->start();
        return false;
    }
    if (!read.isOpen()) {
        emit sendStatusMessage(DatasetDefinitions::readFailedMessage().arg(m_filePath, read.error()));
        return false;
    }
    nodes = DataFileTree::collect(read.reader());
    return true;
}

} // namespace zarvi
