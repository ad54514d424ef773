#include "cli/RoisCommand.h"

#include "cli/TerminalProgress.h"
#include "datafile/HDF5Writer_V6.h"
#include "framework/FileAccessLock.h"
#include "framework/LockedFileRead.h"
#include "roi/ImageJRoiReader.h"
#include "roi/RoiJson.h"
#include "roi/RoiStore.h"

#include <QTextStream>

namespace zarvi {

namespace {

constexpr int exitFailed = 1;
constexpr int exitUsage = 2;

struct Request
{
    QString filepath;
    QString stackPath;
    /// "--add", "--import" or "--remove" with its value; empty to list.
    QString action;
    QString value;
};

int fail(const QString& error)
{
    QTextStream(stderr) << "Error: " << TerminalProgress::plainText(error) << '\n';
    return exitFailed;
}

int list(const Request& request)
{
    LockedFileRead file(request.filepath, LockedFileRead::Wait::Yes);
    if (!file.isOpen())
        return fail(file.error());
    std::vector<RoiShape> rois;
    QString error;
    if (!RoiStore::list(file.reader(), request.stackPath, rois, error))
        return fail(error);
    QTextStream out(stdout);
    for (const RoiShape& roi : rois)
        out << roiToJson(roi) << '\n';
    return 0;
}

/// The shapes an --add or --import names, before the file is opened.
bool shapesOf(const Request& request, std::vector<RoiShape>& shapes, QString& error)
{
    if (request.action == QStringLiteral("--add"))
        return roisFromJson(request.value, shapes, error);
    return ImageJRoiReader::read(request.value, shapes, error);
}

int change(const Request& request)
{
    std::vector<RoiShape> shapes;
    QString error;
    const bool removing = request.action == QStringLiteral("--remove");
    if (!removing && !shapesOf(request, shapes, error))
        return fail(error);

    const auto lock = FileAccessLock::lock(request.filepath);
    HDF5Writer_V6 file;
    if (file.open(request.filepath) < 0)
        return fail(file.lastError());
    QStringList names;
    if (removing) {
        if (!RoiStore::remove(file, request.stackPath, request.value, error))
            return fail(error);
        names << request.value;
    } else {
        int width = 0, height = 0;
        if (!RoiStore::imageSize(file, request.stackPath, width, height, error) ||
            !RoiStore::add(file, request.stackPath, shapes, width, height, names, error))
            return fail(error);
    }
    if (!file.flush())
        return fail(file.lastError());
    file.closeFile();
    QTextStream out(stdout);
    for (const QString& name : names)
        out << name << '\n';
    return 0;
}

} // namespace

const char* RoisCommand::usage()
{
    return "usage: zarvi-cli rois FILE.orvel --image PATH [--add JSON | --import FILE.roi|RoiSet.zip | "
           "--remove NAME]\n"
           "PATH is an image stack (.../ImageStack). Without an action, lists its ROIs, one per line as\n"
           "{\"Name\":\"ROI1\",\"Shape\":\"Rectangle\",\"Points\":[[x0,y0],[x1,y1]]}, the form --add takes "
           "(one\n"
           "object or a list of them; shapes Rectangle, Circle, Polygon, Freehand, Point, Line; points in\n"
           "image pixels; unnamed ROIs become ROI<n>). --import reads ImageJ ROIs. --add, --import and\n"
           "--remove print the names they added or removed.\n";
}

int RoisCommand::run(const QStringList& arguments)
{
    QTextStream err(stderr);
    Request request;
    const QStringList actions{QStringLiteral("--add"), QStringLiteral("--import"),
                              QStringLiteral("--remove")};
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (argument == QStringLiteral("--image") && hasValue && request.stackPath.isEmpty()) {
            request.stackPath = arguments[++i];
        } else if (actions.contains(argument) && hasValue && request.action.isEmpty()) {
            request.action = argument;
            request.value = arguments[++i];
        } else if (request.filepath.isEmpty() && !argument.startsWith(QStringLiteral("--"))) {
            request.filepath = argument;
        } else {
            err << "Unexpected argument: " << argument << '\n' << usage();
            return exitUsage;
        }
    }
    if (request.filepath.isEmpty() || request.stackPath.isEmpty()) {
        err << usage();
        return exitUsage;
    }
    return request.action.isEmpty() ? list(request) : change(request);
}

} // namespace zarvi
