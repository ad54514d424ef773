#include "app/behavior/BehaviorPipeline.h"

#include <QPushButton>
#include <QVBoxLayout>

namespace zarvi {

BehaviorPipeline::BehaviorPipeline(QWidget* parent) : AbstractPipeline(OperationFamily::Behavior, parent)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    for (const QString& name : operationNames()) {
        auto* button = new QPushButton(OperationRegistry::instance().find(name)->shownTitle(), this);
        button->setObjectName(QStringLiteral("pb_") + QString(name).remove(QLatin1Char(' ')));
        button->setToolTip(OperationRegistry::instance().find(name)->description);
        connect(button, &QPushButton::clicked, this, [this, name] { emit operationRequested(name); });
        layout->addWidget(button);
    }
}

} // namespace zarvi
