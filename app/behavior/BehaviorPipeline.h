#pragma once

#include "framework/AbstractPipeline.h"

namespace zarvi {

/// The operations of the behaviour family, one button each, on the behaviour page. Unlike
/// the other pipelines it does not open an operation itself: a click asks the page
/// (operationRequested()), which gives the operation its data (the video link, or the
/// chosen coordinates for "Measures") and checks what it needs before opening it. GUI
/// thread.
class BehaviorPipeline : public AbstractPipeline
{
    Q_OBJECT

public:
    explicit BehaviorPipeline(QWidget* parent = nullptr);

signals:
    void operationRequested(const QString& name);
};

} // namespace zarvi
