#include "behavior/operations/measures/MeasuresProcess.h"

#include "definitions/AnalysisOperationDefinitions.h"
#include "definitions/BehaviorViewDefinitions.h"
#include "definitions/FileDefinitions.h"
#include "framework/OutputLocation.h"
#include "framework/RunTransaction.h"

#include <QScopeGuard>

namespace zarvi {

namespace {

using BD = BehaviorViewDefinitions;
using FD = FileDefinitions;

/// The table's column names and units, and its values row by row.
struct Table
{
    QStringList names;
    QStringList units;
    std::vector<double> values;
};

Table layOut(const std::vector<MeasuredRegion>& regions, const PathMeasuresResult& result, bool calibrated)
{
    Table table;
    table.names = {BD::StartColumn, BD::EndColumn, BD::DistanceColumn, BD::MeanSpeedColumn,
                   BD::TrackedTimeColumn};
    table.units = {BD::Seconds, BD::Seconds, calibrated ? BD::Centimetres : BD::Pixels,
                   calibrated ? BD::CentimetresPerSecond : BD::PixelsPerSecond, BD::Seconds};
    for (const MeasuredRegion& region : regions) {
        table.names << BD::RegionTimeColumn.arg(region.name) << BD::RegionFractionColumn.arg(region.name)
                    << BD::RegionEntriesColumn.arg(region.name);
        table.units << BD::Seconds << QString() << QString();
    }
    for (const MeasuresRow& row : result.rows) {
        table.values.insert(table.values.end(),
                            {row.start, row.end, row.distance, row.meanSpeed, row.trackedTime});
        for (const RegionMeasures& region : row.regions)
            table.values.insert(table.values.end(),
                                {region.seconds, region.fraction, static_cast<double>(region.entries)});
    }
    return table;
}

} // namespace

void MeasuresProcess::runOperation()
{
    QString error;
    if (!BehaviorRegionStore::fromParameters(m_parameters, m_regions, error)) {
        addError(error);
        return;
    }
    if (!m_regions.arena) {
        addError(BD::arenaMissingMessage());
        return;
    }
    if (m_parameters.has(BD::TimeBin) && !(m_parameters.number(BD::TimeBin) > 0.0)) {
        addError(BD::badTimeBinMessage());
        return;
    }
    RunTransaction run;
    if (!openRun(run, FD::DataBehavior, FD::Measures, m_sourceDatapaths))
        return;
    m_run = &run;
    const auto forget = qScopeGuard([this] { m_run = nullptr; });
    runInputs(run, static_cast<int>(m_sourceDatapaths.size()), [this](int i, Feedback* step) {
        m_input = m_sourceDatapaths[i];
        step->setLabel(BD::measuringLabel().arg(m_input));
        return computeOperation();
    });
}

bool MeasuresProcess::computeOperation()
{
    TrackedPath tracked;
    QString error;
    if (!CoordinatesDataset::read(m_run->file(), m_input, tracked, error)) {
        addError(error);
        return false;
    }
    if (tracked.time.empty()) {
        addError(BD::noFramesMessage().arg(m_input));
        return false;
    }
    for (std::size_t k = 1; k < tracked.time.size(); ++k)
        if (!(tracked.time[k] > tracked.time[k - 1])) {
            addError(BD::timeNotIncreasingMessage().arg(m_input).arg(k));
            return false;
        }

    // The bin count becomes an allocation and a table's rows: a bin of 1e-300 s must not
    // reach the conversion to an integer count.
    constexpr double MaxBins = 1e6;
    if (const double bin = m_parameters.number(BD::TimeBin, 0.0);
        bin > 0.0 && !((tracked.time.back() - tracked.time.front()) / bin < MaxBins)) {
        addError(BD::tooManyTimeBinsMessage().arg(bin).arg(MaxBins, 0, 'f', 0));
        return false;
    }

    std::vector<MeasuredRegion> regions{
        {BD::arenaName(), zoneMembership(*m_regions.arena, tracked.positions)}};
    for (const RoiShape& zone : m_regions.zones)
        regions.push_back({zone.label(), zoneMembership(zone, tracked.positions)});
    const double scale = m_regions.pixelsPerCentimetre();
    PathMeasuresConfig config;
    config.pixelsPerUnit = scale > 0.0 ? scale : 1.0;
    config.binSeconds = m_parameters.number(BD::TimeBin, 0.0);
    const PathMeasuresResult result = measurePath(tracked.positions, tracked.time, regions, config);
    return writeTable(tracked, regions, result, scale > 0.0) && writeVisits(regions, result);
}

bool MeasuresProcess::writeTable(const TrackedPath& tracked, const std::vector<MeasuredRegion>& regions,
                                 const PathMeasuresResult& result, bool calibrated)
{
    using AD = AnalysisOperationDefinitions;
    QString error;
    const QString groupPath = m_run->sensorGroup(m_input, error, m_input.section(QLatin1Char('/'), -1));
    HDF5Writer_V6& file = m_run->file();
    const hid_t group =
        groupPath.isEmpty() ? H5I_INVALID_HID : file.createGroupPath(file.fileId(), groupPath);
    if (group < 0) {
        addError(error.isEmpty() ? FD::unableToCreateGroupMessage().arg(groupPath) : error);
        return false;
    }
    const Table table = layOut(regions, result, calibrated);
    const hsize_t rows = result.rows.size();
    const auto columns = static_cast<hsize_t>(table.names.size());
    const hid_t dataset = file.createDataset(group, ElementKind::Float64, BD::MeasuresTable, 2,
                                             {rows, columns}, {rows, columns}, {rows, columns}, 0);
    QStringList rowNames{BD::wholeRecordingRow()};
    for (std::size_t b = 1; b < result.rows.size(); ++b)
        rowNames << BD::binRowPattern().arg(b);
    QVariantMap attributes = m_run->datasetAttributes(m_input);
    attributes.insert(AD::RowNames, rowNames);
    attributes.insert(AD::ColumnNames, table.names);
    attributes.insert(AD::ColumnUnits, table.units);
    attributes.insert(FD::Username, QStringLiteral("%1 %2").arg(tracked.name, BD::MeasuresTable));
    bool ok = dataset >= 0 && file.write(dataset, table.values.data(), {0, 0}, {rows, columns});
    for (auto it = attributes.cbegin(); ok && it != attributes.cend(); ++it)
        ok = file.writeAttribute(dataset, it.key(), it.value());
    file.closeDataset(dataset);
    file.closeGroup(group);
    const QString path = groupPath + QLatin1Char('/') + BD::MeasuresTable;
    if (!ok) {
        addError(FD::unableToCreateDatasetMessage().arg(path));
        return false;
    }
    addOutput(path);
    return true;
}

bool MeasuresProcess::writeVisits(const std::vector<MeasuredRegion>& regions,
                                  const PathMeasuresResult& result)
{
    const InputLevels levels = OutputLocation::levelsOf(m_input);
    const QString groupPath =
        QStringList{FD::DataBehavior, levels.device, FD::Events, levels.series}.join(QLatin1Char('/'));
    HDF5Writer_V6& file = m_run->file();
    QString error;
    const hid_t group = file.exists(file.fileId(), groupPath)
                            ? file.openGroup(file.fileId(), groupPath)
                            : m_run->createGroup(groupPath, QString(), error);
    if (group < 0) {
        addError(error.isEmpty() ? FD::unableToCreateGroupMessage().arg(groupPath) : error);
        return false;
    }
    const auto closeGroup = qScopeGuard([&] { file.closeGroup(group); });
    // The arena comes first and has no event array: only the zones are events.
    for (std::size_t r = 1; r < regions.size(); ++r) {
        const std::vector<ZoneVisit>& visits = result.visits[r];
        QString name = regions[r].name;
        for (int k = 2; file.exists(group, name); ++k)
            name = QStringLiteral("%1_%2").arg(regions[r].name).arg(k);
        const QString path = groupPath + QLatin1Char('/') + name;
        std::vector<double> rows;
        for (const ZoneVisit& visit : visits)
            rows.insert(rows.end(), {visit.onset, visit.offset});
        const hsize_t count = visits.size();
        const hid_t dataset = file.createDataset(group, ElementKind::Float64, name, 2, {H5S_UNLIMITED, 2},
                                                 {std::max<hsize_t>(count, 1), 2}, {count, 2}, 0);
        m_run->track(path);
        QVariantMap attributes = m_run->datasetAttributes(m_input);
        attributes.insert(FD::Unit, BD::Seconds);
        attributes.insert(FD::Username, regions[r].name);
        bool ok = dataset >= 0 && (count == 0 || file.write(dataset, rows.data(), {0, 0}, {count, 2}));
        for (auto it = attributes.cbegin(); ok && it != attributes.cend(); ++it)
            ok = file.writeAttribute(dataset, it.key(), it.value());
        file.closeDataset(dataset);
        if (!ok) {
            addError(FD::unableToCreateDatasetMessage().arg(path));
            return false;
        }
        addOutput(path);
    }
    return true;
}

} // namespace zarvi
