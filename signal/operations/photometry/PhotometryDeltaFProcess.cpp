#include "signal/operations/photometry/PhotometryDeltaFProcess.h"

#include "datafile/HDF5Manager_V6.h"
#include "definitions/SignalOperationDefinitions.h"
#include "signal/operations/photometry/PhotometryDeltaF.h"
#include "signal/operations/photometry/PhotometryPairs.h"

namespace zarvi {

using SD = SignalOperationDefinitions;

QList<QStringList> PhotometryDeltaFProcess::inputsOf(HDF5Manager_V6& file)
{
    const QString isosbesticName = m_parameters.text(SD::IsosbesticName);
    const QString biosensorName = m_parameters.text(SD::BiosensorName);
    const QList<PhotometryPair> pairs =
        PhotometryPairs::find(m_sourceDatapaths, isosbesticName, biosensorName, [&file](const QString& path) {
            return file.objectKind(file.fileId(), path) == ObjectKind::Dataset;
        });
    if (pairs.isEmpty())
        addError(SD::matchingSignalsNotFoundMessage().arg(isosbesticName, biosensorName));
    QList<QStringList> inputs;
    for (const PhotometryPair& pair : pairs)
        inputs << QStringList{pair.isosbestic, pair.biosensor};
    return inputs;
}

QString PhotometryDeltaFProcess::outputSensor() const
{
    return m_parameters.text(SD::BiosensorName);
}

bool PhotometryDeltaFProcess::readsTime() const
{
    return PhotometryDeltaF::Config::fromParameters(m_parameters).needsTime();
}

bool PhotometryDeltaFProcess::computeOperation()
{
    const PhotometryDeltaF::Config config = PhotometryDeltaF::Config::fromParameters(m_parameters);
    Signal& isosbestic = m_otherInputs.front();
    PhotometryDeltaF::Result result =
        PhotometryDeltaF::compute(config,
                                  {std::move(isosbestic.values), std::move(isosbestic.time), m_otherRates.front()},
                                  {std::move(m_input.values), std::move(m_input.time), m_inputRate}, m_stepFeedback);
    if (result.outcome.isFailed())
        addError(result.outcome.error);
    if (!result.outcome.ok())
        return false;
    // The share of samples the fit kept says whether the threshold suits the signals' scale.
    if (const std::size_t n = result.deltaF.size(); n > 0)
        m_outputAttributes.insert(SD::InlierFraction,
                                  static_cast<double>(result.fit.inlierCount) / static_cast<double>(n));
    m_output.values = std::move(result.deltaF);
    m_output.time = std::move(result.time);
    if (!config.standardizeMethod.isEmpty())
        m_output.unit = SD::ZScoreUnit;
    else if (config.slope.method.isEmpty())
        m_output.unit = SD::RatioUnit;
    return true;
}

} // namespace zarvi
