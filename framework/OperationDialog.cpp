#include "framework/OperationDialog.h"

#include "framework/AbstractOperationView.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace zarvi {

OperationDialog::OperationDialog(AbstractOperationView* view, QWidget* parent) : QDialog(parent), m_view(view)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(view->windowTitle().isEmpty() ? view->operationName() : view->windowTitle());
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(view);
    auto* buttons = new QDialogButtonBox(this);
    m_runButton = buttons->addButton(tr("Run"), QDialogButtonBox::AcceptRole);
    m_runButton->setObjectName(QStringLiteral("pb_run"));
    buttons->addButton(QDialogButtonBox::Close);
    layout->addWidget(buttons);
    connect(m_runButton, &QPushButton::clicked, this, [this] { m_runButton->setEnabled(!m_view->run()); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    connect(view, &AbstractOperationView::sendProcessFinished, this, [this] { m_runButton->setEnabled(true); });
}

} // namespace zarvi
