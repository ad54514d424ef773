#include "app/PluginTabs.h"

#include "app/plugins/DatasetPlugin.h"
#include "app/plugins/ExperimentPlugin.h"
#include "datafile/FileClassifier.h"
#include "definitions/DatasetDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/FileAccessLock.h"

#include <QFileInfo>
#include <QTabWidget>

namespace zarvi {

namespace {

QString comparablePath(const QString& path)
{
    const QFileInfo info(path);
    const QString canonical = info.canonicalFilePath();
    return canonical.isEmpty() ? info.absoluteFilePath() : canonical;
}

} // namespace

PluginTabs::PluginTabs(QTabWidget* tabs, IconFont* icons, QObject* parent)
    : QObject(parent), m_tabs(tabs), m_icons(icons)
{
}

FileOpenResult PluginTabs::open(const QString& path)
{
    FileOpenResult result;
    FileClassification classification;
    {
        // A file an operation is writing cannot be read; its tab (if any) is still fine to show.
        const auto lock = FileAccessLock::tryLock(path);
        if (!lock.owns_lock()) {
            result.tabIndex = indexOf(path);
            result.outcome = result.tabIndex >= 0 ? OpenOutcome::SelectedExisting : OpenOutcome::Busy;
            if (result.tabIndex >= 0)
                m_tabs->setCurrentIndex(result.tabIndex);
            else
                result.message = DatasetDefinitions::fileBusyMessage();
            return result;
        }
        classification = m_check.classify(path);
    }

    if (classification.kind == FileKind::Unrecognized) {
        result.message = classification.message;
        return result;
    }
    result.tabIndex = indexOf(path);
    if (result.tabIndex >= 0) {
        result.outcome = OpenOutcome::SelectedExisting;
        m_tabs->setCurrentIndex(result.tabIndex);
        return result;
    }

    std::unique_ptr<AbstractPlugin> plugin;
    if (classification.kind == FileKind::Experiment)
        plugin = std::make_unique<ExperimentPlugin>(ZarviMainDefinitions::ApplicationName,
                                                    ZarviMainDefinitions::VersionText, m_icons);
    else
        plugin = std::make_unique<DatasetPlugin>(ZarviMainDefinitions::ApplicationName,
                                                 ZarviMainDefinitions::VersionText, m_icons);
    AbstractPlugin* added = plugin.get();
    emit pluginAdded(added);
    added->loadFile(path);
    const QString title = FileClassifier::tabTitle(classification.kind, path);
    result.tabIndex = m_tabs->addTab(plugin.release(), added->icon(), title); // the tab widget owns it now
    m_tabs->setTabToolTip(result.tabIndex, added->filePath());
    m_tabs->setCurrentIndex(result.tabIndex);
    result.outcome =
        classification.kind == FileKind::Experiment ? OpenOutcome::OpenedExperiment : OpenOutcome::OpenedData;
    return result;
}

int PluginTabs::indexOf(const QString& path) const
{
    const QString wanted = comparablePath(path);
    for (int i = 0; i < m_tabs->count(); ++i) {
        const AbstractPlugin* shown = plugin(i);
        if (shown && comparablePath(shown->filePath()) == wanted)
            return i;
    }
    return -1;
}

AbstractPlugin* PluginTabs::plugin(int index) const
{
    return qobject_cast<AbstractPlugin*>(m_tabs->widget(index));
}

QList<AbstractPlugin*> PluginTabs::plugins() const
{
    QList<AbstractPlugin*> all;
    for (int i = 0; i < m_tabs->count(); ++i)
        if (AbstractPlugin* shown = plugin(i))
            all.append(shown);
    return all;
}

void PluginTabs::close(int index)
{
    QWidget* page = m_tabs->widget(index);
    if (!page)
        return;
    m_tabs->removeTab(index);
    page->deleteLater();
}

} // namespace zarvi
