#pragma once

#include <QStringList>

namespace zarvi {

/// `zarvi-cli pipeline FILE RESULT_PATH [--out PIPELINE.json]`: reads back the steps
/// that produced a result (PipelineHistory) and prints them as a pipeline file, or
/// writes them to PIPELINE.json and prints them in words with the data they started
/// from. Exit status: 0 success, 1 no history or not written, 2 usage. Main thread.
class PipelineCommand
{
public:
    static int run(const QStringList& arguments);
};

} // namespace zarvi
