#include "image/operations/discardframes/DiscardFramesView.h"

#include "definitions/ImageOperationDefinitions.h"
#include "framework/ParameterField.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QListView>
#include <QStringListModel>
#include <QVBoxLayout>

#include <algorithm>

namespace zarvi {

using ID = ImageOperationDefinitions;

DiscardFramesView::DiscardFramesView(QWidget* parent) : ImageOperationView(ID::DiscardFrames, parent)
{
    auto* title = new QLabel(ID::selectFramesLabel(), this);
    title->setObjectName(QStringLiteral("lb_selectFrames"));
    m_frames = new QStringListModel(this);
    lw_frames = new QListView(this);
    lw_frames->setObjectName(QStringLiteral("lw_frames"));
    lw_frames->setModel(m_frames);
    lw_frames->setSelectionMode(QAbstractItemView::ExtendedSelection);
    lw_frames->setEditTriggers(QAbstractItemView::NoEditTriggers);
    lw_frames->setUniformItemSizes(true);
    lw_frames->setToolTip(ID::selectFramesTooltip());
    title->setToolTip(ID::selectFramesTooltip());
    lb_framesValidation = makeValidationLabel(QStringLiteral("lb_framesValidation"));

    auto* switches = new QWidget(this);
    auto* form = new QFormLayout(switches);
    form->setContentsMargins(0, 0, 0, 0);
    cb_autodetect = static_cast<QCheckBox*>(
        addParameterRow(form, ID::AutodetectCorruptedFrames, QStringLiteral("cb_autodetect")));
    cb_interpolate = static_cast<QCheckBox*>(
        addParameterRow(form, ID::InterpolateFrames, QStringLiteral("cb_interpolate")));
    cb_dontSaveParameters = static_cast<QCheckBox*>(
        addParameterRow(form, ID::DontSaveParameters, QStringLiteral("cb_dontSaveParameters")));

    // The list takes the height the fields leave.
    QVBoxLayout* layout = parametersLayout();
    layout->insertWidget(0, title);
    layout->insertWidget(1, lw_frames, 1);
    layout->insertWidget(2, lb_framesValidation);
    layout->insertWidget(3, switches);
    layout->setStretch(layout->count() - 1, 0);

    connect(lw_frames->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) {
                if (current.isValid())
                    preview()->showFrame(current.row());
            });
    connect(lw_frames->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &DiscardFramesView::validate);
}

QVariantList DiscardFramesView::selectedFrames() const
{
    QModelIndexList rows = lw_frames->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end(),
              [](const QModelIndex& a, const QModelIndex& b) { return a.row() < b.row(); });
    QVariantList frames;
    frames.reserve(rows.size());
    for (const QModelIndex& row : rows)
        frames.append(row.row());
    return frames;
}

void DiscardFramesView::datasetsChanged()
{
    ImageOperationView::datasetsChanged();
    const std::vector<double>& time = stackTime();
    // Numbers padded with figure spaces, as wide as digits, so that the times line up.
    const int digits = static_cast<int>(QString::number(std::max<std::size_t>(time.size(), 1) - 1).size());
    const QChar figureSpace(0x2007);
    QStringList lines;
    lines.reserve(static_cast<qsizetype>(time.size()));
    for (std::size_t k = 0; k < time.size(); ++k)
        lines.append(ID::frameItemLabel().arg(k, -digits, 10, figureSpace).arg(time[k], 0, 'f', 3));
    m_frames->setStringList(lines);
    validate();
}

bool DiscardFramesView::buildParameters(QVariantMap& parameters)
{
    if (!validate())
        return false;
    // No key for no frame: the operation then discards none (or only the autodetected ones).
    if (const QVariantList frames = selectedFrames(); !frames.isEmpty())
        parameters.insert(ID::DiscardedFrames, frames);
    parameters.insert(ID::AutodetectCorruptedFrames, ParameterField::value(cb_autodetect));
    parameters.insert(ID::InterpolateFrames, ParameterField::value(cb_interpolate));
    parameters.insert(ID::DontSaveParameters, ParameterField::value(cb_dontSaveParameters));
    return true;
}

bool DiscardFramesView::validate()
{
    const qsizetype frames = m_frames->rowCount();
    const bool all = frames > 0 && lw_frames->selectionModel()->selectedRows().size() == frames;
    setValidationText(lb_framesValidation,
                      all ? ID::allFramesDiscardedMessage().arg(datapaths().value(0)) : QString());
    return !all;
}

} // namespace zarvi
