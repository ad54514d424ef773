#include "analysis/operations/perievents/PerieventsProcess.h"

#include "analysis/operations/perievents/NormalisedBands.h"
#include "analysis/operations/perievents/PerieventParameters.h"
#include "analysis/operations/perievents/PerieventResultFile.h"
#include "datafile/HDF5Writer_V6.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "definitions/FileDefinitions.h"
#include "framework/OutputLocation.h"
#include "framework/RunTransaction.h"

namespace zarvi {

namespace {

using D = AnalysisOperationDefinitions;
using FD = FileDefinitions;

/// Share of an input's progress spent computing; saving, which cuts the rows, takes the rest.
constexpr int ComputeShare = 20;

/// The name a signal is shown with: its "Username", else its sensor group's name.
QString signalName(HDF5Writer_V6& file, const QString& valuesPath)
{
    const hid_t dataset = file.openDataset(file.fileId(), valuesPath);
    const QString name = file.readAttribute(dataset, FD::Username).toString();
    file.closeDataset(dataset);
    return name.isEmpty() ? OutputLocation::levelsOf(valuesPath).sensor : name;
}

} // namespace

bool PerieventsProcess::computeOperation()
{
    PerieventRequest request;
    const QStringList problems = PerieventParameters::parse(m_parameters, request);
    if (!problems.isEmpty()) {
        for (const QString& problem : problems)
            addError(problem);
        return false;
    }
    EventArray events;
    const QString loadError = PerieventParameters::loadEvents(m_run->file(), request, events);
    if (!loadError.isEmpty()) {
        addError(loadError);
        return false;
    }

    // The rows go straight from the signal into the file below, the statistics beside
    // them; no matrix is built.
    request.config.buildMatrix = false;
    request.config.summarise = false;
    ScaledFeedback computing(m_stepFeedback, 0, ComputeShare);
    PerieventAnalysis::run(m_input.time.samples(), m_input.values.samples(), events, request.config,
                           &computing, m_result);
    for (const QString& message : std::as_const(m_result.messages))
        addError(message);
    if (!m_result.succeeded())
        return false;

    QString error;
    const QString group = m_run->sensorGroup(m_inputPath, error);
    if (group.isEmpty()) {
        addError(error);
        return false;
    }
    const bool both = m_result.sides.size() > 1;
    const QString unit = m_result.unit.isEmpty() ? m_input.unit : m_result.unit;
    const QVariantMap attributes = m_run->datasetAttributes(m_inputPath);
    PerieventResultNames names{signalName(m_run->file(), m_inputPath), request.config.eventName, {}};
    const std::span<const double> cutValues = m_result.resampledValues.empty()
                                                  ? m_input.values.samples()
                                                  : std::span<const double>(m_result.resampledValues);
    const int count = static_cast<int>(m_result.sides.size());
    for (int s = 0; s < count; ++s) {
        PerieventSideResult& side = m_result.sides[s];
        const PerieventSideConfig& window = side.offset ? request.config.offset : request.config.onset;
        const QString sideName = side.offset ? D::Offset : D::Onset;
        if (request.namesSides())
            names.side = sideName;
        ScaledFeedback saving(m_stepFeedback, ComputeShare + (100 - ComputeShare) * s / count,
                              ComputeShare + (100 - ComputeShare) * (s + 1) / count);
        // The rows are cut and their statistics taken on the second core while this one
        // writes them; leaving the scope early stops that work and waits for it.
        NormalisedBands bands(cutValues, side, window, m_result.sampleRate, request.config.statistics,
                              PerieventResultFile::bandRows(side.rowStarts.size(), side.rowLength),
                              side.statistics);
        const QString written = PerieventResultFile::write(
            m_run->file(), both ? group + QLatin1Char('/') + sideName : group, side,
            [&](std::size_t, std::size_t) { return bands.next(); }, request.config.statistics,
            window.windowStart, window.windowEnd, unit, names, attributes, error, &saving,
            [&] { return bands.finished(); });
        if (written.isEmpty()) {
            if (!error.isEmpty())
                addError(error);
            return false;
        }
        addOutput(written);
    }
    return !isCanceled();
}

} // namespace zarvi
