#pragma once

#include "datafile/DataFileTree.h"

#include <QIcon>
#include <QWidget>

#include <vector>

class QTimer;

namespace zarvi {

class IconFont;

/// Base of the widgets that show one open file in a main-window tab. It keeps
/// the file's path and reads the file's tree by the rule of the GUI thread:
/// never keep the file open, never wait for an operation that writes it (a busy
/// file is reported and read again shortly). GUI thread.
class AbstractPlugin : public QWidget
{
    Q_OBJECT

public:
    /// `icons` may be null; it must outlive the plug-in.
    AbstractPlugin(const QString& applicationName, const QString& version, IconFont* icons,
                   QWidget* parent = nullptr);

    QString applicationName() const { return m_applicationName; }
    QString version() const { return m_version; }
    /// Absolute path of the file shown.
    QString filePath() const { return m_filePath; }

    /// Shows the file; false when it could not be read (a status message says why).
    bool loadFile(const QString& path);

    virtual QIcon icon() const = 0;
    /// What the main window's mode label shows while this plug-in is current.
    virtual QString modeName() const = 0;
    virtual void setFileManagerVisible(bool visible) = 0;

public slots:
    /// Reads the file again and shows what changed (called after an operation ran).
    virtual bool reloadFile() = 0;

signals:
    /// Asks the main window to open (or, for a file already open, re-read) a file.
    void sendLoadFileRequest(const QString& filepath);
    /// A short note for the status bar.
    void sendStatusMessage(const QString& text);

protected:
    IconFont* icons() const { return m_icons; }
    /// Reads every group and dataset of the file, with their attributes. When an
    /// operation holds the file, reports it busy, schedules reloadFile() and fails.
    bool readFileTree(std::vector<DataFileNode>& nodes);

private:
    QString m_applicationName;
    QString m_version;
    IconFont* m_icons;
    QString m_filePath;
    QTimer* m_retryTimer;
};

} // namespace zarvi
