#pragma once

#include <QCoreApplication>
#include <QString>

namespace zarvi {

/// Application-wide names and colours: identity, temporary folder, lock, style
/// resources and the colour palette. Constants only, safe from any thread.
class ZarviMainDefinitions
{
    Q_DECLARE_TR_FUNCTIONS(ZarviMainDefinitions)

public:
    static inline const QString OrganizationName = QStringLiteral("Orvel Inc.");
    static inline const QString ApplicationName = QStringLiteral("zarvi");
    static inline const QString VersionText = QStringLiteral("2.0.8.1");

    static inline const QString FontResource = QStringLiteral(":/fonts/Lato/Lato-Regular.ttf");
    static inline const QString FontFamily = QStringLiteral("Lato");
    static constexpr int FontPointSize = 8;
    static constexpr int FontWeight = 400;

    static inline const QString TempFolderSuffix = QStringLiteral("/zarvi_Temp");
    static inline const QString LockFilePattern = QStringLiteral("%1.lock");
    static inline const QString LockIdentifier = QStringLiteral("54A3BC54-0A4E-47B6-A67D-98ED990E9FE1");
    static constexpr int LockTimeoutMs = 100;

    static inline const QString StyleSheetResource = QStringLiteral(":/qdarkstyle/QDarkStyle.qss");
    static inline const QString FallbackStyle = QStringLiteral("Fusion");
    static inline const char* const StyleSheetMissingDebug =
        "Could not initialize QDarkStyle -> qdarkstyle/style.qss not found";

    // Application shell texts.
    static QString alreadyRunningMessage()
    {
        return tr("zarvi is already running.\r\nOnly one instance is allowed.");
    }
    static QString fileOpenInTabMessage()
    {
        return tr("The file <b>%1</b> is open. Close its tab before replacing it.");
    }
    static QString unableToCreateFileMessage() { return tr("Unable to create the file <b>%1</b>."); }
    static QString demoFailedMessage() { return tr("Unable to write the demo recording: %1"); }
    static QString writingDemoMessage() { return tr("Writing the demo recording..."); }
    static QString notAvailableStatusTip() { return tr("Not available in this version."); }
    /// The demo recording written by "zarvi --demo", inside the temporary folder.
    static inline const QString DemoFileName = QStringLiteral("zarvi_demo.orvel");

    // Icon-font option keys and their defaults.
    static inline const QString IconColorKey = QStringLiteral("color");
    static inline const QString IconColorDisabledKey = QStringLiteral("color-disabled");
    static inline const QString IconColorSelectedKey = QStringLiteral("color-selected");
    static inline const QString IconColorActiveKey = QStringLiteral("color-active");

    // Colour palette.
    static inline const QString ColorBlue = QStringLiteral("#4e9ccf");
    static inline const QString ColorOrange = QStringLiteral("#e67e22");
    static inline const QString ColorSlate = QStringLiteral("#516070");
    static inline const QString ColorDarkGrey = QStringLiteral("#403f3f");
    static inline const QString ColorDarkerGrey = QStringLiteral("#302f2f");
    static inline const QString ColorLightGrey = QStringLiteral("#cccccc");
    static inline const QString ColorMidGrey = QStringLiteral("#868482");

    // Message levels of log lines.
    static inline const QString ErrorKey = QStringLiteral("error");
    static inline const QString WarningKey = QStringLiteral("warning");
    static inline const QString ColoredSpanPattern = QStringLiteral("<span style=\"color:%1;\">%2</span>");

    // Operation framework texts.
    static QString progressTitle() { return tr("Progress"); }
    static QString pipelineProgressTitle() { return tr("Pipeline Progress"); }
    static QString previewProgressTitle() { return tr("Preview Progress"); }
    static QString errorOperationTitle() { return tr("Error Operation"); }
    static QString warningOperationTitle() { return tr("Warning Operation"); }
    static QString parameterMissingMessage() { return tr("Parameter <b>%1</b> is missing."); }
    static QString parameterInvalidMessage() { return tr("Parameter <b>%1</b> has an invalid value."); }
    static QString parameterUnknownMessage()
    {
        return tr("Parameter <b>%1</b> is not used by the operation <b>%2</b>.");
    }
    static QString parameterNotAllowedMessage()
    {
        return tr("Parameter <b>%1</b> must be %2; <b>%3</b> is not allowed.");
    }
    static QString oneOfText() { return tr("one of %1"); }
    static QString usuallyOneOfText() { return tr("usually one of %1"); }
    static QString betweenText() { return tr("between %1 and %2"); }
    static QString atLeastText() { return tr("at least %1"); }
    static QString atMostText() { return tr("at most %1"); }
    static QString operationUnknownMessage() { return tr("Operation <b>%1</b> does not exist."); }
    static QString noDatasetsMessage() { return tr("No datasets set to the operation"); }
    static QString runsOnText() { return tr("Runs on:"); }
    /// %1 output group, %2 signalCountText().
    static QString writtenGroupText() { return tr("%1: %2"); }
    static QString signalCountText(int count)
    {
        return count == 1 ? tr("1 signal") : tr("%1 signals").arg(count);
    }
    static QString writtenText() { return tr("Written: %1"); }
    static QString operationCanceledMessage() { return tr("The operation was cancelled."); }
    // Saved pipelines.
    static QString pipelineTitle() { return tr("Pipeline"); }
    static QString savePipelineTitle() { return tr("Save Pipeline"); }
    static QString loadPipelineTitle() { return tr("Load Pipeline"); }
    static QString pipelineFileFilter() { return tr("Pipeline (*.json)"); }
    static QString pipelineStepsText() { return tr("Steps:"); }
    static QString recordedFromText() { return tr("Recorded from:"); }
    static QString runButtonText() { return tr("Run"); }
    static QString saveButtonText() { return tr("Save..."); }
    static QString stageOffText() { return tr("(off)"); }
    /// %1 step number from 1, %2 the problem.
    static QString pipelineStepProblem() { return tr("Step %1: %2"); }
    static QString pipelineSavedMessage() { return tr("Pipeline saved to %1"); }
    static QString notAResultMessage()
    {
        return tr("<b>%1</b> is not the result of an operation: it records no <b>Operations</b>.");
    }
    static QString historyInputMissingMessage()
    {
        return tr("The input <b>%1</b> of <b>%2</b> is no longer in the file: its steps cannot be known.");
    }
    static QString resultMissingMessage() { return tr("<b>%1</b> is not in the file <b>%2</b>."); }
    static QString historyNoInputMessage() { return tr("<b>%1</b> records no input it was computed from."); }
    static QString historyNotRecordedMessage()
    {
        return tr("<b>%1</b> was written without its parameters: its steps cannot be known.");
    }
    static QString historyLoopMessage()
    {
        return tr("The recorded inputs of <b>%1</b> lead back to itself.");
    }
    static QString historyBranchesDifferMessage()
    {
        return tr("The step <b>%1</b> that wrote <b>%2</b> took inputs that went through different steps "
                  "(<b>%3</b> and <b>%4</b>): one pipeline cannot repeat it.");
    }
    static QString exportNeedsDataFileMessage()
    {
        return tr("Open a data file and select what to export first.");
    }
};

} // namespace zarvi
