#include "analysis/operations/perievents/PerieventResultFile.h"

#include "datafile/Feedback.h"
#include "datafile/HDF5Writer_V6.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "definitions/FileDefinitions.h"

#include <algorithm>
#include <functional>
#include <memory>

namespace zarvi {

namespace {

using D = AnalysisOperationDefinitions;
using FD = FileDefinitions;

/// Bytes of one chunk of a saved matrix, about: whole rows, so that a trial reads at once.
constexpr hsize_t ChunkBytes = hsize_t(1) << 20;
constexpr hsize_t MaxChunkColumns = 65536;

QString join(const QString& group, const QString& name)
{
    return group + QLatin1Char('/') + name;
}

bool writeAttributes(HDF5Writer_V6& file, hid_t dataset, const QVariantMap& attributes)
{
    for (auto it = attributes.cbegin(); it != attributes.cend(); ++it)
        if (!file.writeAttribute(dataset, it.key(), it.value()))
            return false;
    return true;
}

/// Writes a row-major [rows, columns] dataset, chunked by bands of whole rows of about
/// ChunkBytes, one band at a time as `bands` gives it.
bool writeRows(HDF5Writer_V6& file, hid_t group, const QString& name, hsize_t rows, hsize_t columns,
               const PerieventResultFile::RowBands& bands, ProgressTracker* progress, bool& canceled)
{
    const hsize_t chunkColumns = std::clamp<hsize_t>(columns, 1, MaxChunkColumns);
    const auto chunkRows = static_cast<hsize_t>(PerieventResultFile::bandRows(rows, columns));
    const hid_t dataset =
        file.createDataset(group, ElementKind::Float64, name, 2, {H5S_UNLIMITED, H5S_UNLIMITED},
                           {chunkRows, chunkColumns}, {rows, columns}, 0);
    if (dataset < 0)
        return false;
    bool ok = true;
    for (hsize_t first = 0; ok && first < rows; first += chunkRows) {
        const hsize_t count = std::min(chunkRows, rows - first);
        const double* band = progress && progress->isCanceled() ? nullptr : bands(first, count);
        if (!band) {
            canceled = true;
            ok = false;
            break;
        }
        ok = file.write(dataset, band, {first, 0}, {count, columns});
        if (progress)
            progress->update(static_cast<std::size_t>(first + count));
    }
    file.closeDataset(dataset);
    return ok;
}

/// A small column-major matrix (a statistic) as a row-major dataset.
bool writeMatrix(HDF5Writer_V6& file, hid_t group, const QString& name, const arma::mat& matrix,
                 bool& canceled)
{
    // The columns of the transpose are the rows, one after the other.
    const arma::mat transposed = matrix.t();
    const hsize_t columns = matrix.n_cols;
    const PerieventResultFile::RowBands rowsOf = [&](hsize_t first, hsize_t) {
        return transposed.memptr() + first * columns;
    };
    return writeRows(file, group, name, matrix.n_rows, columns, rowsOf, nullptr, canceled);
}

bool writeTime(HDF5Writer_V6& file, hid_t group, const std::vector<double>& time)
{
    const hsize_t n = time.size();
    const hid_t dataset = file.createDataset(group, ElementKind::Float64, FD::Time, 1, {H5S_UNLIMITED},
                                             {std::clamp<hsize_t>(n, 1, MaxChunkColumns)}, {n}, 0);
    const bool ok = dataset >= 0 && (n == 0 || file.write(dataset, time.data(), {0}, {n})) &&
                    file.writeAttribute(dataset, FD::Unit, QStringLiteral("s"));
    file.closeDataset(dataset);
    return ok;
}

bool writeDatasetAttributes(HDF5Writer_V6& file, hid_t group, const QString& name,
                            const QVariantMap& attributes)
{
    const hid_t dataset = file.openDataset(group, name);
    const bool ok = dataset >= 0 && writeAttributes(file, dataset, attributes);
    file.closeDataset(dataset);
    return ok;
}

/// A row-major [rows, columns] float64 dataset into a column-major matrix.
bool readMatrix(HDF5Manager_V6& file, hid_t dataset, arma::mat& matrix)
{
    const std::vector<hsize_t> dims = file.dimensions(dataset);
    std::vector<double> values;
    if (dims.size() != 2 || !file.read(dataset, values))
        return false;
    // Read as column-major, the stored rows are the columns of the transpose.
    const arma::mat transposed(values.data(), dims[1], dims[0], false, true);
    matrix = transposed.t();
    return true;
}

QVariantMap readDataset(HDF5Manager_V6& file, const QString& path, arma::mat* matrix,
                        std::vector<double>* vector, bool& ok)
{
    const hid_t dataset = file.openDataset(file.fileId(), path);
    ok = dataset >= 0;
    if (ok && matrix)
        ok = readMatrix(file, dataset, *matrix);
    if (ok && vector)
        ok = file.dimensions(dataset).size() == 1 && file.read(dataset, *vector);
    const QVariantMap attributes = ok ? file.readAllAttributes(dataset) : QVariantMap();
    file.closeDataset(dataset);
    return attributes;
}

} // namespace

QString PerieventResultNames::matrixTitle() const
{
    const QString title = D::TwoPartNamePattern.arg(signal, event);
    return side.isEmpty() ? title : D::QualifiedNamePattern.arg(title, side);
}

QString PerieventResultNames::statisticTitle(const QString& statistic) const
{
    const QString title = D::ThreePartNamePattern.arg(signal, event, statistic);
    return side.isEmpty() ? title : D::QualifiedNamePattern.arg(title, side);
}

std::size_t PerieventResultFile::bandRows(std::size_t rows, std::size_t columns)
{
    const hsize_t chunkColumns = std::clamp<hsize_t>(columns, 1, MaxChunkColumns);
    return static_cast<std::size_t>(
        std::clamp<hsize_t>(ChunkBytes / (sizeof(double) * chunkColumns), 1, std::max<hsize_t>(rows, 1)));
}

QString PerieventResultFile::write(HDF5Writer_V6& file, const QString& group,
                                   const PerieventSideResult& result, const RowBands& bands,
                                   const std::vector<ChunkStatistic::Kind>& statistics, double windowStart,
                                   double windowEnd, const QString& unit, const PerieventResultNames& names,
                                   const QVariantMap& attributes, QString& error, Feedback* feedback,
                                   const std::function<bool()>& summarised)
{
    if (result.eventNames.size() > static_cast<qsizetype>(MaxEvents)) {
        error = D::tooManyEventsMessage().arg(result.eventNames.size()).arg(MaxEvents);
        return {};
    }
    const hid_t groupId = file.createGroupPath(file.fileId(), group);
    if (groupId < 0) {
        error = FD::unableToCreateGroupMessage().arg(group);
        return {};
    }
    QVariantMap described = attributes;
    described.insert(D::RowNames, result.eventNames);
    described.insert(D::RowLabel, D::TrialsAxis);
    if (!unit.isEmpty())
        described.insert(FD::Unit, unit);

    const hsize_t rows = result.rowStarts.size();
    const hsize_t columns = result.rowLength;
    ProgressTracker progress(feedback, rows);
    bool canceled = false;
    QVariantMap matrixAttributes = described;
    matrixAttributes.insert(D::ColumnLabel, D::TimeAxis);
    matrixAttributes.insert(D::ColumnRange, QVariantList{windowStart, windowEnd});
    matrixAttributes.insert(FD::Username, names.matrixTitle());
    QString failed;
    if (!writeRows(file, groupId, D::PerieventMatrix, rows, columns, bands, &progress, canceled) ||
        !writeDatasetAttributes(file, groupId, D::PerieventMatrix, matrixAttributes))
        failed = D::PerieventMatrix;
    else if (!writeTime(file, groupId, result.time))
        failed = FD::Time;
    if (failed.isEmpty() && !canceled && summarised && !summarised())
        canceled = true;

    // Without time frames there is nothing to summarise.
    const std::size_t count =
        result.timeFrameNames.isEmpty() ? 0 : std::min(statistics.size(), result.statistics.size());
    for (std::size_t s = 0; failed.isEmpty() && !canceled && s < count; ++s) {
        const QString name = ChunkStatistic::nameOf(statistics[s]);
        QVariantMap statisticAttributes = described;
        statisticAttributes.insert(D::ColumnNames, result.timeFrameNames);
        statisticAttributes.insert(D::ColumnLabel, D::TimeFramesAxis);
        statisticAttributes.insert(FD::Username, names.statisticTitle(name));
        if (!writeMatrix(file, groupId, name, result.statistics[s], canceled) ||
            !writeDatasetAttributes(file, groupId, name, statisticAttributes))
            failed = name;
    }
    file.closeGroup(groupId);
    if (canceled)
        return {};
    if (!failed.isEmpty()) {
        error = FD::unableToCreateDatasetMessage().arg(join(group, failed));
        return {};
    }
    return join(group, D::PerieventMatrix);
}

bool PerieventResultFile::read(HDF5Manager_V6& file, const QString& path, StoredPerieventResult& result,
                               QString& error)
{
    result = StoredPerieventResult{};
    const QString matrixPath =
        file.objectKind(file.fileId(), path) == ObjectKind::Group ? join(path, D::PerieventMatrix) : path;
    const QString group = matrixPath.left(matrixPath.lastIndexOf(QLatin1Char('/')));
    if (file.objectKind(file.fileId(), matrixPath) != ObjectKind::Dataset) {
        error = D::notAResultMessage();
        return false;
    }
    bool ok = false;
    const QVariantMap attributes = readDataset(file, matrixPath, &result.matrix, nullptr, ok);
    const QVariantList range = attributes.value(D::ColumnRange).toList();
    if (!ok || range.size() != 2 || attributes.value(D::RowLabel).toString() != D::TrialsAxis) {
        error = ok ? D::notAResultMessage() : file.lastError();
        return false;
    }
    result.path = matrixPath;
    result.title = attributes.value(FD::Username).toString();
    result.rowNames = attributes.value(D::RowNames).toStringList();
    result.unit = attributes.value(FD::Unit).toString();
    result.windowStart = range[0].toDouble();
    result.windowEnd = range[1].toDouble();
    readDataset(file, join(group, FD::Time), nullptr, &result.time, ok);
    if (!ok || result.time.size() != result.matrix.n_cols ||
        static_cast<arma::uword>(result.rowNames.size()) != result.matrix.n_rows) {
        error = D::notAResultMessage();
        return false;
    }

    for (const ChunkStatistic::Kind kind :
         {ChunkStatistic::Kind::AUC, ChunkStatistic::Kind::Mean, ChunkStatistic::Kind::Median,
          ChunkStatistic::Kind::Maximum, ChunkStatistic::Kind::Minimum, ChunkStatistic::Kind::Frequency,
          ChunkStatistic::Kind::Count}) {
        StoredPerieventResult::Statistic statistic;
        statistic.name = ChunkStatistic::nameOf(kind);
        if (file.objectKind(file.fileId(), join(group, statistic.name)) != ObjectKind::Dataset)
            continue;
        const QVariantMap statisticAttributes =
            readDataset(file, join(group, statistic.name), &statistic.values, nullptr, ok);
        statistic.frameNames = statisticAttributes.value(D::ColumnNames).toStringList();
        statistic.title = statisticAttributes.value(FD::Username).toString();
        if (!ok || statistic.values.n_rows != result.matrix.n_rows ||
            static_cast<arma::uword>(statistic.frameNames.size()) != statistic.values.n_cols) {
            error = ok ? D::notAResultMessage() : file.lastError();
            return false;
        }
        result.statistics.push_back(std::move(statistic));
    }
    return true;
}

bool PerieventResultFile::isMatrix(const DataFileNode& node)
{
    return node.kind == ObjectKind::Dataset && node.name == D::PerieventMatrix &&
           node.dimensions.size() == 2 && node.attributes.value(D::RowLabel).toString() == D::TrialsAxis &&
           node.attributes.contains(D::ColumnRange);
}

} // namespace zarvi
