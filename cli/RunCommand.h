#pragma once

#include <QStringList>

namespace zarvi {

/// `zarvi-cli run FILE (--operation NAME --params PARAMS.json | --pipeline PIPELINE.json) --data PATH...`
/// Runs operations headless through the same processes as the dialogs, with a
/// progress bar on the terminal and Ctrl-C as a cooperative cancel.
/// Exit status: 0 success, 1 the run failed, 2 usage, 3 bad parameters,
/// 4 a file the application refuses, 130 cancelled. Runs on the main thread.
class RunCommand
{
public:
    /// Whether an operation the registry does not know is an error, or belongs to a family
    /// this library was built without and so is left to the caller.
    enum class OtherFamilies
    {
        Unknown,
        LeftToCaller
    };
    /// The status returned, with LeftToCaller, for a run of a saved pipeline or of an
    /// operation of another family; nothing has been read or written then.
    static constexpr int LeftToCallerStatus = -1;

    static int run(const QStringList& arguments, OtherFamilies otherFamilies = OtherFamilies::Unknown);
};

} // namespace zarvi
