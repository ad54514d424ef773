#include "framework/OperationDialog.h"

#include "definitions/ZarviMainDefinitions.h"
#include "framework/AbstractOperationView.h"
#include "framework/OperationRegistry.h"
#include "framework/RunSummary.h"

#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace zarvi {

OperationDialog::OperationDialog(AbstractOperationView* view, QWidget* parent) : QDialog(parent), m_view(view)
{
    setAttribute(Qt::WA_DeleteOnClose);
    const OperationDescriptor* operation = OperationRegistry::instance().find(view->operationName());
    setWindowTitle(!view->windowTitle().isEmpty() ? view->windowTitle()
                   : operation                    ? operation->shownTitle()
                                                  : view->operationName());
    auto* layout = new QVBoxLayout(this);
    m_datasets = new QLabel(this);
    m_datasets->setObjectName(QStringLiteral("lb_datasets"));
    m_datasets->setWordWrap(true);
    m_datasets->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(m_datasets);
    layout->addWidget(view, 1);
    m_result = new QLabel(this);
    m_result->setObjectName(QStringLiteral("lb_result"));
    m_result->setWordWrap(true);
    m_result->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(m_result);
    auto* buttons = new QDialogButtonBox(this);
    // An action role, not the accept role: the button box would make an accept button
    // the dialog's default, and Enter in a field would then start a run.
    m_runButton = buttons->addButton(tr("Run"), QDialogButtonBox::ActionRole);
    m_runButton->setObjectName(QStringLiteral("pb_run"));
    m_runButton->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Return));
    QPushButton* closeButton = buttons->addButton(QDialogButtonBox::Close);
    for (QPushButton* button : {m_runButton, closeButton})
        button->setAutoDefault(false);
    layout->addWidget(buttons);
    connect(m_runButton, &QPushButton::clicked, this, [this] {
        m_result->clear();
        m_runButton->setEnabled(!m_view->run());
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    connect(view, &AbstractOperationView::sendProcessFinished, this,
            [this](const QString&, const QStringList& datapaths, const QStringList& errors) {
                m_runButton->setEnabled(true);
                if (errors.isEmpty() && !datapaths.isEmpty())
                    m_result->setText(
                        ZarviMainDefinitions::writtenText().arg(RunSummary::describe(datapaths)));
                if (m_pendingData) {
                    const auto [filepath, datapaths] = *std::exchange(m_pendingData, std::nullopt);
                    setData(filepath, datapaths);
                }
            });
    showDatasets();
}

void OperationDialog::setData(const QString& filepath, const QStringList& datapaths)
{
    if (m_view->isRunning()) {
        m_pendingData = {filepath, datapaths};
        return;
    }
    if (filepath != m_view->filepath() || datapaths != m_view->datapaths())
        m_view->setupProcess(filepath, datapaths);
    showDatasets();
}

void OperationDialog::showDatasets()
{
    QStringList lines{ZarviMainDefinitions::runsOnText()};
    for (const QString& path : m_view->datapaths())
        lines << path.toHtmlEscaped();
    m_datasets->setText(lines.join(QStringLiteral("<br>")));
}

void OperationDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (std::exchange(m_sized, true))
        return;
    QSize size = this->size().expandedTo(sizeHint()).expandedTo(m_view->openingSize());
    if (const QScreen* screen = this->screen())
        size = size.boundedTo(screen->availableGeometry().size() * 0.9);
    resize(size);
}

void OperationDialog::keyPressEvent(QKeyEvent* event)
{
    // Enter confirms a field (or a table cell) and nothing more: only Run writes a result.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

} // namespace zarvi
