#pragma once

#include "app/plugins/AbstractPlugin.h"

namespace zarvi {

class AttributesTable;
class DataFileTreeWidget;

/// Shows an experiment file: the groups and datasets of its experiment
/// description with the attributes of the selected one. The group analyses of
/// experiments build on this page. GUI thread.
class ExperimentPlugin : public AbstractPlugin
{
    Q_OBJECT

public:
    ExperimentPlugin(const QString& applicationName, const QString& version, IconFont* icons,
                     QWidget* parent = nullptr);

    QIcon icon() const override;
    QString modeName() const override;
    void setFileManagerVisible(bool visible) override;

    DataFileTreeWidget* fileTree() const { return m_tree; }
    AttributesTable* attributesTable() const { return m_attributes; }

public slots:
    bool reloadFile() override;

private:
    DataFileTreeWidget* m_tree;
    AttributesTable* m_attributes;
};

} // namespace zarvi
