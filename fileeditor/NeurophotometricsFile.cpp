#include "fileeditor/NeurophotometricsFile.h"

#include <QFile>
#include <QFileInfo>
#include <QMap>

#include <charconv>
#include <cstring>
#include <functional>
#include <map>
#include <string_view>
#include <utility>

#include "definitions/FileDefinitions.h"
#include "definitions/FileEditorOperationDefinitions.h"
#include "fileeditor/DigitalEdges.h"
#include "fileeditor/RecordingWriter.h"

namespace zarvi {

namespace {

using FD = FileDefinitions;
using Texts = FileEditorOperationDefinitions;

/// Where the columns of a photometry file are.
struct Layout
{
    int time = -1;
    int state = -1;
    bool flags = false;
    std::vector<int> regions;
    QStringList names;
};

QList<QByteArray> cellsOf(QByteArray line)
{
    line = line.trimmed();
    if (line.startsWith("\xEF\xBB\xBF"))
        line.remove(0, 3);
    QList<QByteArray> cells = line.split(',');
    for (QByteArray& cell : cells)
        cell = cell.trimmed();
    return cells;
}

bool layoutOf(const QByteArray& headerLine, Layout& layout)
{
    const QList<QByteArray> cells = cellsOf(headerLine);
    bool counter = false;
    for (int c = 0; c < cells.size(); ++c) {
        const QString name = QString::fromUtf8(cells[c]);
        layout.names << name;
        if (name == QStringLiteral("FrameCounter"))
            counter = true;
        else if (name == QStringLiteral("Timestamp") || name == QStringLiteral("SystemTimestamp"))
            layout.time = layout.time < 0 ? c : layout.time;
        else if (name == QStringLiteral("LedState") || name == QStringLiteral("Flags")) {
            layout.state = c;
            layout.flags = name == QStringLiteral("Flags");
        } else if (name.startsWith(QStringLiteral("Region")))
            layout.regions.push_back(c);
    }
    return counter && layout.time >= 0 && layout.state >= 0 && !layout.regions.empty();
}

bool parseNumber(std::string_view cell, double& value)
{
    const char* end = cell.data() + cell.size();
    const auto [next, error] = std::from_chars(cell.data(), end, value);
    return error == std::errc() && next == end && !cell.empty();
}

bool parseNumber(const QByteArray& cell, double& value)
{
    return parseNumber(std::string_view(cell.constData(), static_cast<std::size_t>(cell.size())), value);
}

/// The cells of one data row, trimmed, as views into the row: rows are split without
/// allocating, which is most of the cost of reading a long recording.
void splitCells(std::string_view line, std::vector<std::string_view>& cells)
{
    static constexpr std::string_view blanks = " \t\r\n";
    cells.clear();
    for (;;) {
        const std::size_t comma = line.find(',');
        std::string_view cell = line.substr(0, comma);
        const std::size_t first = cell.find_first_not_of(blanks);
        cell = first == std::string_view::npos
                   ? std::string_view()
                   : cell.substr(first, cell.find_last_not_of(blanks) - first + 1);
        cells.push_back(cell);
        if (comma == std::string_view::npos)
            return;
        line.remove_prefix(comma + 1);
    }
}

/// Calls `row` with each line after the current position of file, read in large blocks;
/// the last line needs no line end.
bool forEachLine(QFile& file, ProgressTracker& progress, QString& error,
                 const std::function<bool(std::string_view)>& row)
{
    constexpr qint64 BlockBytes = 1 << 20;
    QByteArray buffer;
    qint64 kept = 0;
    for (;;) {
        if (progress.isCanceled()) {
            error = Texts::canceledMessage();
            return false;
        }
        buffer.resize(kept + BlockBytes);
        const qint64 read = file.read(buffer.data() + kept, BlockBytes);
        if (read < 0) {
            error = Texts::readFailedMessage().arg(file.fileName());
            return false;
        }
        const std::string_view text(buffer.constData(), static_cast<std::size_t>(kept + read));
        std::size_t at = 0;
        for (std::size_t end; (end = text.find('\n', at)) != std::string_view::npos; at = end + 1) {
            if (!row(text.substr(at, end - at)))
                return false;
        }
        if (read == 0)
            return at == text.size() || row(text.substr(at));
        kept = static_cast<qint64>(text.size() - at);
        std::memmove(buffer.data(), buffer.constData() + at, static_cast<std::size_t>(kept));
        progress.update(static_cast<std::size_t>(file.pos()));
    }
}

/// A digital input's state: a number (non-zero is high) or True/False.
bool parseState(const QByteArray& cell, bool& high)
{
    if (cell.compare("true", Qt::CaseInsensitive) == 0 || cell.compare("false", Qt::CaseInsensitive) == 0) {
        high = cell.compare("true", Qt::CaseInsensitive) == 0;
        return true;
    }
    double value = 0.0;
    high = parseNumber(cell, value) && value != 0.0;
    return parseNumber(cell, value);
}

QString wavelengthOf(int state)
{
    switch (state) {
    case 1:
        return QStringLiteral("415");
    case 2:
        return QStringLiteral("470");
    case 4:
        return QStringLiteral("560");
    default:
        return Texts::LedStatePattern.arg(state);
    }
}

/// One frame: its time from the first frame, its LED state and the region values.
using FrameHandler = std::function<bool(double time, int state, const std::vector<double>& regions)>;

/// Reads every data row of the photometry file in order; origin receives the first
/// frame's timestamp.
bool readFrames(const QString& path, Layout& layout, double& origin, Feedback* feedback, QString& error,
                const FrameHandler& frame)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QFileInfo::exists(path) ? Texts::unableToOpenMessage().arg(path)
                                        : Texts::missingFileMessage().arg(path);
        return false;
    }
    if (!layoutOf(file.readLine(), layout)) {
        error = Texts::npmColumnsMessage().arg(path);
        return false;
    }
    ProgressTracker progress(feedback, static_cast<std::size_t>(file.size()));
    std::vector<double> regions(layout.regions.size());
    std::vector<std::string_view> cells;
    bool first = true;
    int lineNumber = 1;
    const bool read = forEachLine(file, progress, error, [&](std::string_view line) {
        ++lineNumber;
        splitCells(line, cells);
        if (cells.size() == 1 && cells.front().empty())
            return true;
        if (cells.size() != static_cast<std::size_t>(layout.names.size())) {
            error = Texts::npmLineMessage().arg(
                path, Texts::columnCountMessage().arg(lineNumber).arg(cells.size()).arg(layout.names.size()));
            return false;
        }
        double time = 0.0;
        double state = 0.0;
        int bad = !parseNumber(cells[layout.time], time)     ? layout.time
                  : !parseNumber(cells[layout.state], state) ? layout.state
                                                             : -1;
        for (std::size_t r = 0; bad < 0 && r < regions.size(); ++r)
            bad = parseNumber(cells[layout.regions[r]], regions[r]) ? -1 : layout.regions[r];
        if (bad >= 0) {
            const std::string_view cell = cells[bad].substr(0, 40);
            error = Texts::npmLineMessage().arg(
                path, Texts::notNumberMessage()
                          .arg(lineNumber)
                          .arg(bad + 1)
                          .arg(QString::fromUtf8(cell.data(), static_cast<qsizetype>(cell.size()))));
            return false;
        }
        if (first)
            origin = time;
        first = false;
        const int led = layout.flags ? (static_cast<int>(state) & 7) : static_cast<int>(state);
        return led == 0 || frame(time - origin, led, regions);
    });
    if (!read)
        return false;
    if (first) {
        error = Texts::noDataRowsMessage().arg(path);
        return false;
    }
    return true;
}

/// The edges of every input of a digital-input file, on the photometry clock.
bool readDigitalInputs(const QString& path, double origin,
                       std::vector<std::pair<QString, DigitalEdges>>& inputs, QString& error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QFileInfo::exists(path) ? Texts::unableToOpenMessage().arg(path)
                                        : Texts::missingFileMessage().arg(path);
        return false;
    }
    const QList<QByteArray> header = cellsOf(file.readLine());
    int timeColumn = -1;
    std::vector<int> columns;
    for (int c = 0; c < header.size(); ++c) {
        if (timeColumn < 0 &&
            QString::fromUtf8(header[c]).contains(QStringLiteral("timestamp"), Qt::CaseInsensitive))
            timeColumn = c;
        else
            columns.push_back(c);
    }
    if (timeColumn < 0 || columns.empty()) {
        error = Texts::digitalInputsMessage().arg(path);
        return false;
    }
    for (const int c : columns)
        inputs.emplace_back(QString::fromUtf8(header[c]), DigitalEdges());
    while (!file.atEnd()) {
        const QList<QByteArray> cells = cellsOf(file.readLine());
        if (cells.size() == 1 && cells.front().isEmpty())
            continue;
        double time = 0.0;
        bool ok = cells.size() == header.size() && parseNumber(cells[timeColumn], time);
        for (std::size_t i = 0; ok && i < columns.size(); ++i) {
            bool high = false;
            ok = parseState(cells[columns[i]], high);
            inputs[i].second.add(high, time - origin);
        }
        if (!ok) {
            error = Texts::digitalInputsMessage().arg(path);
            return false;
        }
    }
    for (auto& input : inputs)
        input.second.finish();
    return true;
}

QString signalName(const Layout& layout, std::size_t region, int led)
{
    return Texts::RegionWavelengthPattern.arg(layout.names[layout.regions[region]], wavelengthOf(led));
}

} // namespace

bool NeurophotometricsFile::looksLike(const QByteArray& head)
{
    Layout layout;
    return layoutOf(head.left(head.indexOf('\n')), layout);
}

RecordingSummary NeurophotometricsFile::describe(const RecordingConversionConfig& config)
{
    RecordingSummary summary;
    summary.format = Texts::NeurophotometricsFormat;
    Layout layout;
    double origin = 0.0;
    // Per LED state: frames, first and last time.
    std::map<int, std::tuple<std::size_t, double, double>> states;
    double last = 0.0;
    const bool read = readFrames(config.sourcePath, layout, origin, nullptr, summary.error,
                                 [&](double time, int led, const std::vector<double>&) {
                                     auto [it, added] = states.try_emplace(led, 0, time, time);
                                     ++std::get<0>(it->second);
                                     std::get<2>(it->second) = time;
                                     last = time;
                                     return true;
                                 });
    if (!read)
        return summary;
    for (const auto& [led, frames] : states) {
        const auto [n, first, end] = frames;
        const double rate = end > first ? static_cast<double>(n) / (end - first) : 0.0;
        for (std::size_t r = 0; r < layout.regions.size(); ++r)
            summary.channels.push_back({signalName(layout, r, led), n, rate});
    }
    summary.duration = last;
    if (!config.digitalInputsPath.isEmpty()) {
        std::vector<std::pair<QString, DigitalEdges>> inputs;
        if (!readDigitalInputs(config.digitalInputsPath, origin, inputs, summary.error))
            return summary;
        for (std::size_t i = 0; i < inputs.size(); ++i)
            summary.events.push_back({FD::DIOPattern.arg(i + 1), inputs[i].second.onsets().size()});
    }
    return summary;
}

ConversionResult NeurophotometricsFile::convert(const RecordingConversionConfig& config, Feedback* feedback)
{
    QVariantMap parameters{{Texts::FormatKey, Texts::NeurophotometricsFormat}};
    if (!config.digitalInputsPath.isEmpty())
        parameters.insert(Texts::DigitalInputsKey, QFileInfo(config.digitalInputsPath).absoluteFilePath());
    return RecordingWriter::convert(config, parameters, [&](RecordingWriter& writer, QString& error) {
        Layout layout;
        double origin = 0.0;
        // (LED state, region) -> signal of the writer. Every region of a frame is read at
        // the frame's timestamp, so the regions of one LED state share the first region's
        // times: only region 0 is given them, the others take their values alone.
        std::map<std::pair<int, std::size_t>, int> streams;
        const bool read = readFrames(
            config.sourcePath, layout, origin, feedback, error,
            [&](double time, int led, const std::vector<double>& regions) {
                for (std::size_t r = 0; r < regions.size(); ++r) {
                    auto it = streams.find({led, r});
                    if (it == streams.end()) {
                        if (streams.empty())
                            writer.addParameter(Texts::TimeOriginKey, origin);
                        const QString name = signalName(layout, r, led);
                        // Region 0 of this state was added just before, in this frame.
                        const int index = r == 0 ? writer.addSignal(name, name, QString(), error)
                                                 : writer.addSignalOnTimesOf(streams.at({led, 0}), name, name,
                                                                             QString(), error);
                        if (index < 0)
                            return false;
                        it = streams.emplace(std::make_pair(led, r), index).first;
                    }
                    const bool ok = r == 0 ? writer.append(it->second, {&regions[r], 1}, {&time, 1}, error)
                                           : writer.appendValues(it->second, {&regions[r], 1}, error);
                    if (!ok)
                        return false;
                }
                return true;
            });
        if (!read)
            return false;
        if (config.digitalInputsPath.isEmpty())
            return true;
        std::vector<std::pair<QString, DigitalEdges>> inputs;
        if (!readDigitalInputs(config.digitalInputsPath, origin, inputs, error))
            return false;
        for (std::size_t i = 0; i < inputs.size(); ++i) {
            const DigitalEdges& edges = inputs[i].second;
            if (!writer.writeEvents(FD::DIOPattern.arg(i + 1), inputs[i].first, edges.onsets(),
                                    edges.offsets(), error))
                return false;
        }
        return true;
    });
}

} // namespace zarvi
