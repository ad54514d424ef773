#pragma once

#include <QString>

#include <memory>

class QProgressDialog;

namespace zarvi {

/// Makes the progress dialogs of runs, pipelines, previews and file jobs alike:
/// titled, application-modal, shown at once when a run starts (no delay), never
/// closed or reset by reaching 100, 0 to 100, and created closed. GUI thread.
class ProgressDialogFactory
{
public:
    static std::shared_ptr<QProgressDialog> create(const QString& title);
};

} // namespace zarvi
