#include "signal/operations/photometry/PhotometryDeltaFProcess.h"

#include "datafile/HDF5Writer_V6.h"
#include "definitions/FileDefinitions.h"
#include "definitions/SignalOperationDefinitions.h"
#include "framework/RunOutputs.h"
#include "signal/operations/photometry/PhotometryDeltaF.h"
#include "signal/operations/photometry/PhotometryPairs.h"

namespace zarvi {

using SD = SignalOperationDefinitions;

PhotometryDeltaFProcess::PhotometryDeltaFProcess() : SignalOperationProcess(SD::DFFSignals) {}

void PhotometryDeltaFProcess::runOperation()
{
    const QString isosbesticName = m_parameters.value(SD::IsosbesticName).toString();
    const QString biosensorName = m_parameters.value(SD::BiosensorName).toString();
    for (const QString& key : {SD::IsosbesticName, SD::BiosensorName}) {
        if (m_parameters.value(key).toString().isEmpty()) {
            addError(SD::parameterMissingMessage().arg(key));
            return;
        }
    }
    m_warningsSent.clear();
    withFile([&](HDF5Writer_V6& file) {
        const QList<PhotometryPair> pairs = PhotometryPairs::find(
            m_sourceDatapaths, isosbesticName, biosensorName, [&file](const QString& path) {
                return file.objectKind(file.fileId(), path) == ObjectKind::Dataset;
            });
        if (pairs.isEmpty()) {
            addError(SD::matchingSignalsNotFoundMessage().arg(isosbesticName, biosensorName));
            return;
        }
        // The run records both signals of every pair as its inputs, whichever were selected.
        QStringList sources;
        for (const PhotometryPair& pair : pairs)
            sources << pair.isosbestic << pair.biosensor;
        RunOutputs outputs(file, FileDefinitions::DataProcessed, FileDefinitions::Signals, outputName(),
                           m_parameters, sources);
        const int count = static_cast<int>(pairs.size());
        for (int i = 0; i < count && m_errors.isEmpty() && !isCanceled(); ++i) {
            ScaledFeedback step(feedback(), 100 * i / count, 100 * (i + 1) / count);
            m_stepFeedback = &step;
            m_inputPath = pairs[i].biosensor;
            QString error;
            if (!SignalDataset::read(file, pairs[i].isosbestic, m_isosbestic, error) ||
                !SignalDataset::read(file, m_inputPath, m_input, error)) {
                addError(error);
                break;
            }
            if (!computeOperation() || isCanceled())
                break;
            writeOutput(outputs, m_inputPath, biosensorName);
        }
        m_isosbestic = Signal{};
        finishOutputs(outputs);
    });
}

bool PhotometryDeltaFProcess::computeOperation()
{
    const PhotometryDeltaF::Config config = PhotometryDeltaF::Config::fromParameters(m_parameters);
    PhotometryDeltaF::Result result =
        PhotometryDeltaF::compute(config, {std::move(m_isosbestic.values), std::move(m_isosbestic.time)},
                                  {std::move(m_input.values), std::move(m_input.time)}, m_stepFeedback);
    for (const QString& warning : std::as_const(result.warnings)) {
        if (m_warningsSent.contains(warning))
            continue;
        m_warningsSent << warning;
        sendMessage(SD::warningOperationTitle(), warning, QString(), MessageIcon::Warning);
    }
    if (result.outcome.isFailed())
        addError(result.outcome.error);
    if (!result.outcome.ok())
        return false;
    m_output.values = std::move(result.deltaF);
    m_output.time = std::move(result.time);
    if (!config.standardizeMethod.isEmpty())
        m_output.unit = SD::ZScoreUnit;
    else if (config.slope.method.isEmpty())
        m_output.unit = SD::RatioUnit;
    else
        m_output.unit = m_input.unit;
    return true;
}

} // namespace zarvi
