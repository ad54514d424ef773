#pragma once

#include <QList>
#include <QString>
#include <QVariantMap>

namespace zarvi {

/// The pipeline that produced a result, read back from what every run records: the
/// result's "Operations" and parameters, then those of its input ("SourceDatapath"; a
/// run group follows the first of its "SourceDatapaths"), and so on back to data no
/// operation wrote. The steps come oldest first, in the format PipelineFile reads,
/// each with only the parameters its operation declares (bookkeeping such as
/// "SourceDatapath" or "Username" is left out).
///
/// A step that took several inputs at once (ΔF/F's isosbestic and biosensor, a run on
/// several selected signals) is followed through the result's own input; its other
/// inputs must have gone through the very same steps, since the pipeline repeats every
/// step on all the outputs of the step before; when they did not, the history is
/// refused with a message naming the two inputs. Reads the file under its access lock
/// without waiting; any thread.
class PipelineHistory
{
public:
    struct Result
    {
        QList<QVariantMap> steps;
        /// The data, written by no operation, the followed chain starts from.
        QString origin;
        /// Why there is no pipeline (rich text); empty on success.
        QString error;
    };

    static Result of(const QString& filepath, const QString& resultPath);
};

} // namespace zarvi
