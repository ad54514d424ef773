#include "framework/ProgressDialogFactory.h"

#include <QProgressDialog>

namespace zarvi {

std::shared_ptr<QProgressDialog> ProgressDialogFactory::create(const QString& title)
{
    auto dialog = std::make_shared<QProgressDialog>();
    dialog->setWindowTitle(title);
    dialog->setWindowModality(Qt::ApplicationModal);
    dialog->setMinimumDuration(0);
    dialog->setAutoClose(false);
    dialog->setAutoReset(false);
    dialog->setRange(0, 100);
    // A new dialog starts its own show timer; stop it until a run starts.
    dialog->reset();
    dialog->hide();
    return dialog;
}

} // namespace zarvi
