#include "analysis/operations/perievents/PerieventSideBox.h"

#include "definitions/AnalysisOperationDefinitions.h"
#include "fileeditor/TableData.h"

#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QSet>
#include <QStyle>
#include <QTableWidget>
#include <QToolButton>

#include <algorithm>
#include <cmath>

namespace zarvi {

namespace {

using D = AnalysisOperationDefinitions;

constexpr double SpinLimit = 1e4;

QDoubleSpinBox* windowBox(QWidget* parent, const QString& objectName, double value)
{
    auto* box = new QDoubleSpinBox(parent);
    box->setObjectName(objectName);
    box->setRange(-SpinLimit, SpinLimit);
    box->setDecimals(3);
    box->setSingleStep(0.5);
    box->setValue(value);
    box->setToolTip(D::timeFrameDetailedTooltip());
    return box;
}

double number(const QLineEdit* edit, bool& ok)
{
    const double value = edit->text().trimmed().toDouble(&ok);
    ok = ok && std::isfinite(value);
    return value;
}

void mark(QLineEdit* edit, bool faulty)
{
    edit->setStyleSheet(faulty ? D::InvalidCellStyle : QString());
}

} // namespace

PerieventSideBox::PerieventSideBox(const QString& prefix, const QString& title, const QString& tooltip,
                                   QWidget* parent)
    : QGroupBox(title, parent)
{
    setObjectName(QStringLiteral("w_%1set").arg(prefix)); // w_onset, w_offset
    setToolTip(tooltip);
    auto* layout = new QGridLayout(this);

    auto* frameLabel = new QLabel(D::timeFrameLabel(), this);
    frameLabel->setToolTip(D::timeFrameTooltip());
    m_start = windowBox(this, QStringLiteral("dsb_%1WindowStart").arg(prefix), -2.0);
    m_end = windowBox(this, QStringLiteral("dsb_%1WindowEnd").arg(prefix), 5.0);
    layout->addWidget(frameLabel, 0, 0, 1, 2);
    layout->addWidget(m_start, 1, 0);
    layout->addWidget(m_end, 1, 1);

    auto* tableLabel = new QLabel(D::statisticTimeFramesLabel(), this);
    tableLabel->setToolTip(D::statisticTimeFramesTooltip());
    m_table = new QTableWidget(0, 3, this);
    m_table->setObjectName(QStringLiteral("tw_%1Statistic").arg(prefix));
    m_table->setToolTip(D::statisticTimeFramesTooltip());
    m_table->setHorizontalHeaderLabels({D::nameColumnLabel(), D::startColumnLabel(), D::endColumnLabel()});
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    // Wide enough for every column title in full, with the header's margins around it.
    int width = m_table->verticalHeader()->sizeHint().width() + 2 * m_table->frameWidth();
    for (int column = 0; column < m_table->columnCount(); ++column)
        width += m_table->horizontalHeader()->fontMetrics().horizontalAdvance(
                     m_table->horizontalHeaderItem(column)->text()) +
                 2 * m_table->horizontalHeader()->style()->pixelMetric(QStyle::PM_HeaderMargin) + 8;
    m_table->setMinimumWidth(width);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->verticalHeader()->setDefaultSectionSize(24);
    m_add = new QToolButton(this);
    m_add->setObjectName(QStringLiteral("tb_%1Add").arg(prefix));
    m_add->setText(QStringLiteral("+"));
    m_add->setToolTip(D::addStatisticRowTooltip());
    m_remove = new QToolButton(this);
    m_remove->setObjectName(QStringLiteral("tb_%1Remove").arg(prefix));
    m_remove->setText(QStringLiteral("-"));
    m_remove->setToolTip(D::removeStatisticRowTooltip());
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(tableLabel);
    buttons->addStretch(1);
    buttons->addWidget(m_add);
    buttons->addWidget(m_remove);
    layout->addLayout(buttons, 2, 0, 1, 2);
    layout->addWidget(m_table, 3, 0, 1, 2);

    connect(m_add, &QToolButton::clicked, this,
            [this] { addFrame(D::defaultFrameName().arg(frameCount() + 1), windowStart(), windowEnd()); });
    connect(m_remove, &QToolButton::clicked, this, &PerieventSideBox::removeSelectedRows);
    for (QDoubleSpinBox* box : {m_start, m_end})
        connect(box, &QDoubleSpinBox::valueChanged, this, &PerieventSideBox::windowChanged);
}

double PerieventSideBox::windowStart() const
{
    return m_start->value();
}

double PerieventSideBox::windowEnd() const
{
    return m_end->value();
}

void PerieventSideBox::setWindow(double start, double end)
{
    m_start->setValue(start);
    m_end->setValue(end);
}

void PerieventSideBox::addFrame(const QString& name, double start, double end)
{
    const int row = m_table->rowCount();
    m_table->insertRow(row);
    const QStringList texts{name, TableData::numberText(start), TableData::numberText(end)};
    for (int column = 0; column < 3; ++column) {
        auto* edit = new QLineEdit(texts[column], m_table);
        edit->setFrame(false);
        m_table->setCellWidget(row, column, edit);
    }
}

void PerieventSideBox::restore(const QVariantList& window, const QVariantList& bounds,
                               const QStringList& names)
{
    if (window.size() == 2)
        setWindow(window[0].toDouble(), window[1].toDouble());
    if (bounds.size() != 2 * names.size() || names.isEmpty())
        return;
    m_table->setRowCount(0);
    for (int i = 0; i < names.size(); ++i)
        addFrame(names[i], bounds[2 * i].toDouble(), bounds[2 * i + 1].toDouble());
}

int PerieventSideBox::frameCount() const
{
    return m_table->rowCount();
}

QLineEdit* PerieventSideBox::cell(int row, int column) const
{
    return qobject_cast<QLineEdit*>(m_table->cellWidget(row, column));
}

bool PerieventSideBox::check()
{
    bool allGood = true;
    QSet<QString> names;
    for (int row = 0; row < frameCount(); ++row) {
        const QString name = cell(row, 0)->text().trimmed();
        const bool badName = name.isEmpty() || names.contains(name);
        names.insert(name);
        bool startOk = false, endOk = false;
        const double start = number(cell(row, 1), startOk);
        const double end = number(cell(row, 2), endOk);
        const bool ordered = startOk && endOk && start < end;
        const bool badStart = !startOk || !ordered || start < windowStart();
        const bool badEnd = !endOk || !ordered || end > windowEnd();
        mark(cell(row, 0), badName);
        mark(cell(row, 1), badStart);
        mark(cell(row, 2), badEnd);
        allGood = allGood && !badName && !badStart && !badEnd;
    }
    return allGood;
}

QVariantList PerieventSideBox::frameBounds() const
{
    QVariantList bounds;
    for (int row = 0; row < frameCount(); ++row) {
        bounds << cell(row, 1)->text().trimmed().toDouble();
        bounds << cell(row, 2)->text().trimmed().toDouble();
    }
    return bounds;
}

QStringList PerieventSideBox::frameNames() const
{
    QStringList names;
    for (int row = 0; row < frameCount(); ++row)
        names << cell(row, 0)->text().trimmed();
    return names;
}

void PerieventSideBox::removeSelectedRows()
{
    QList<int> rows;
    for (const QModelIndex& index : m_table->selectionModel()->selectedRows())
        rows << index.row();
    // Editing a cell focuses its line edit rather than selecting the row.
    for (int row = 0; rows.isEmpty() && row < frameCount(); ++row)
        for (int column = 0; column < 3; ++column)
            if (cell(row, column)->hasFocus())
                rows << row;
    if (rows.isEmpty() && frameCount() > 0)
        rows << frameCount() - 1;
    std::sort(rows.begin(), rows.end(), std::greater<>());
    for (const int row : rows)
        m_table->removeRow(row);
}

} // namespace zarvi
