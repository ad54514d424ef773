#include "fileeditor/RecordingImport.h"

#include <QFileInfo>

#include "definitions/FileEditorOperationDefinitions.h"
#include "fileeditor/NeurophotometricsFile.h"
#include "fileeditor/PyPhotometryFile.h"
#include "fileeditor/SourceDetector.h"
#include "fileeditor/TdtBlockFile.h"

namespace zarvi {

namespace {

using Texts = FileEditorOperationDefinitions;

QString notRecordingMessage(const QString& path, SourceFormat format)
{
    if (format == SourceFormat::Doric)
        return Texts::doricNotReadMessage().arg(path);
    if (format == SourceFormat::Unknown && !QFileInfo::exists(path))
        return Texts::missingFileMessage().arg(path);
    return Texts::unknownContentMessage().arg(path);
}

} // namespace

QString RecordingImport::formatName(const QString& path)
{
    switch (SourceDetector::detect(path)) {
    case SourceFormat::PyPhotometry:
        return Texts::PyPhotometryFormat;
    case SourceFormat::Neurophotometrics:
        return Texts::NeurophotometricsFormat;
    case SourceFormat::TdtBlock:
        return Texts::TdtFormat;
    default:
        return QString();
    }
}

RecordingSummary RecordingImport::describe(const RecordingConversionConfig& config)
{
    const SourceFormat format = SourceDetector::detect(config.sourcePath);
    switch (format) {
    case SourceFormat::PyPhotometry:
        return PyPhotometryFile::describe(config.sourcePath);
    case SourceFormat::Neurophotometrics:
        return NeurophotometricsFile::describe(config);
    case SourceFormat::TdtBlock:
        return TdtBlockFile::describe(config);
    default:
        break;
    }
    RecordingSummary summary;
    summary.error = notRecordingMessage(config.sourcePath, format);
    return summary;
}

ConversionResult RecordingImport::convert(const RecordingConversionConfig& config, Feedback* feedback)
{
    const SourceFormat format = SourceDetector::detect(config.sourcePath);
    switch (format) {
    case SourceFormat::PyPhotometry:
        return PyPhotometryFile::convert(config, feedback);
    case SourceFormat::Neurophotometrics:
        return NeurophotometricsFile::convert(config, feedback);
    case SourceFormat::TdtBlock:
        return TdtBlockFile::convert(config, feedback);
    default:
        break;
    }
    ConversionResult result;
    result.filepath = config.destination.filepath;
    result.error = notRecordingMessage(config.sourcePath, format);
    return result;
}

} // namespace zarvi
