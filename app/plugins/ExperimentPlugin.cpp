#include "app/plugins/ExperimentPlugin.h"

#include "app/IconFont.h"
#include "app/browser/AttributesTable.h"
#include "app/browser/DataFileTreeWidget.h"
#include "definitions/DatasetDefinitions.h"
#include "definitions/FileDefinitions.h"

#include <QHBoxLayout>
#include <QSplitter>

namespace zarvi {

ExperimentPlugin::ExperimentPlugin(const QString& applicationName, const QString& version, IconFont* icons,
                                   QWidget* parent)
    : AbstractPlugin(applicationName, version, icons, parent)
{
    setObjectName(QStringLiteral("ExperimentPlugin"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName(QStringLiteral("splitter"));
    layout->addWidget(splitter);
    m_tree = new DataFileTreeWidget(icons, splitter);
    m_tree->setObjectName(QStringLiteral("tw_experimentTree"));
    m_attributes = new AttributesTable(splitter);
    m_attributes->setObjectName(QStringLiteral("tw_attributes"));
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 1);
    connect(m_tree, &DataFileTreeWidget::currentPathChanged, this,
            [this](const QString& path) { m_attributes->showHistory(*m_tree, path); });
}

QIcon ExperimentPlugin::icon() const
{
    return icons() ? icons()->icon(IconFont::Flask) : QIcon();
}

QString ExperimentPlugin::modeName() const
{
    return DatasetDefinitions::experimentMode();
}

void ExperimentPlugin::setFileManagerVisible(bool visible)
{
    m_tree->setVisible(visible);
}

bool ExperimentPlugin::reloadFile()
{
    std::vector<DataFileNode> nodes;
    if (!readFileTree(nodes))
        return false;
    m_tree->setNodes(std::move(nodes), FileDefinitions::ExperimentDesign);
    if (m_tree->currentPath().isEmpty() && m_tree->topLevelItemCount() > 0)
        m_tree->setCurrentItem(m_tree->topLevelItem(0));
    m_attributes->showHistory(*m_tree, m_tree->currentPath());
    return true;
}

} // namespace zarvi
