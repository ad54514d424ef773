#include "image/ImageOperationView.h"

#include "datafile/ImageFrameReader.h"
#include "framework/LockedFileRead.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace zarvi {

ImageOperationView::ImageOperationView(const QString& operationName, QWidget* parent)
    : AbstractOperationView(operationName, parent)
{
    auto* layout = new QHBoxLayout(this);
    auto* parameters = new QWidget(this);
    parameters->setObjectName(QStringLiteral("w_parameters"));
    parameters->setMinimumWidth(320);
    parameters->setMaximumWidth(420);
    m_parameters = new QVBoxLayout(parameters);
    m_parameters->setContentsMargins(0, 0, 0, 0);
    m_parameters->addStretch(1);
    m_preview = new ImageFramePreview(this);
    m_preview->setObjectName(QStringLiteral("w_preview"));
    layout->addWidget(parameters);
    layout->addWidget(m_preview, 1);
}

void ImageOperationView::datasetsChanged()
{
    m_stackInfo = ImageStackInfo{};
    m_stackTime.clear();
    m_stackProblem.clear();
    if (datapaths().isEmpty())
        return;
    const QString stackPath = datapaths().first();
    LockedFileRead read(filepath());
    ImageFrameReader reader;
    if (!read.isOpen()) {
        // A busy file is read again by the process; only a real problem refuses the view.
        if (!read.isBusy())
            m_stackProblem = read.error();
        return;
    }
    if (!reader.open(read.reader(), stackPath, m_stackProblem))
        return;
    m_stackInfo = reader.info();
    m_stackTime = reader.time();
    m_preview->setStack(filepath(), stackPath, static_cast<int>(m_stackInfo.frames), m_stackInfo.bitCount);
    updatePreview();
}

QFormLayout* ImageOperationView::addParameterGroup(const QString& title, const QString& objectName)
{
    auto* box = new QGroupBox(title, this);
    box->setObjectName(objectName);
    m_parameters->insertWidget(m_parameters->count() - 1, box);
    return new QFormLayout(box);
}

void ImageOperationView::updatePreview()
{
    m_preview->setComputation(previewComputation());
}

} // namespace zarvi
