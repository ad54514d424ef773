#include "fileeditor/FileConversion.h"

#include "definitions/FileEditorOperationDefinitions.h"
#include "fileeditor/RecordingImport.h"
#include "fileeditor/SourceDetector.h"

namespace zarvi {

namespace {

template <typename... Handlers> struct Overloaded : Handlers...
{
    using Handlers::operator()...;
};
// Spelled out for compilers without deduction for aggregates (clang 14, which builds the fuzz targets).
template <typename... Handlers> Overloaded(Handlers...) -> Overloaded<Handlers...>;

} // namespace

ConversionResult FileConversion::run(const ConversionRequest& request, Feedback* feedback)
{
    if (QString problem = sourceProblem(request); !problem.isEmpty()) {
        ConversionResult refused;
        refused.error = std::move(problem);
        return refused;
    }
    return std::visit(
        Overloaded{
            [&](const TiffStackConversionConfig& c) { return TiffStackConverter::convert(c, feedback); },
            [&](const VideoConversionConfig& c) { return VideoConverter::convert(c, feedback); },
            [&](const SpreadsheetConversionConfig& c) { return SpreadsheetConverter::convert(c, feedback); },
            [&](const Version5ConversionConfig& c) { return Version5Converter::convert(c, feedback); },
            [&](const RecordingConversionConfig& c) { return RecordingImport::convert(c, feedback); },
        },
        request);
}

QString FileConversion::sourcePath(const ConversionRequest& request)
{
    return std::visit([](const auto& config) { return config.sourcePath; }, request);
}

QString FileConversion::sourceProblem(const ConversionRequest& request)
{
    QStringList paths{sourcePath(request)};
    if (const auto* tiff = std::get_if<TiffStackConversionConfig>(&request))
        paths << tiff->timestampsPath;
    if (const auto* recording = std::get_if<RecordingConversionConfig>(&request))
        paths << recording->digitalInputsPath;
    for (const QString& path : std::as_const(paths)) {
        if (SourceDetector::isSpecialFile(path))
            return FileEditorOperationDefinitions::notRegularFileMessage().arg(path);
    }
    return {};
}

} // namespace zarvi
