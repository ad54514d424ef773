#include "analysis/AnalysisOperations.h"

#include "analysis/operations/perievents/PerieventsProcess.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "framework/OperationRegistry.h"

namespace zarvi {

namespace {

using D = AnalysisOperationDefinitions;
using P = OperationParameter;

/// 0 or 1, for the check-box keys.
P flag(const QString& key, const QString& label, const QString& tooltip)
{
    return P::integer(key, label).atLeast(0).atMost(1).withDefault(0).withTooltip(tooltip);
}

} // namespace

void registerAnalysisOperations(OperationRegistry& registry)
{
    const QStringList statistics{D::AUC, D::Mean, D::Median, D::Maximum, D::Minimum};
    registry.add(
        {D::Perievents,
         OperationFamily::Analysis,
         D::perieventsDescription(),
         D::Perievents,
         QStringLiteral(
             "DataAnalyzed/<device>/Signals/<series>/Perievents<K>/<sensor>/: %1 [events x samples], "
             "%2, and one matrix [events x time frames] per statistic (in Onset/ and Offset/ when both "
             "sides are analysed)")
             .arg(D::PerieventMatrix, QStringLiteral("Time")),
         {P::text(D::EventPath, D::eventPathLabel()).isRequired().withTooltip(D::eventPathTooltip()),
          P::text(D::Event, D::eventLabel()).isRequired().withTooltip(D::eventTooltip()),
          flag(D::Onset, D::onsetLabel(), D::onsetBoxTooltip()),
          flag(D::Offset, D::offsetLabel(), D::offsetBoxTooltip()),
          flag(D::PlainEvents, D::plainEventsLabel(), D::plainEventsTooltip()),
          P::numbers(D::PerieventTimeFrame, D::timeFrameLabel())
              .withUnit(QStringLiteral("s"))
              .withDefault(QVariantList{-2.0, 4.0})
              .isRequired()
              .withTooltip(D::timeFrameTooltip()),
          P::numbers(D::StatisticTimeFrames, D::statisticTimeFramesLabel())
              .withUnit(QStringLiteral("s"))
              .withTooltip(D::statisticTimeFramesTooltip()),
          P::texts(D::TimeFramesNames, D::timeFramesNamesLabel()).withTooltip(D::timeFramesNamesTooltip()),
          P::numbers(D::OffsetPerieventTimeFrame, D::offsetTimeFrameLabel())
              .withUnit(QStringLiteral("s"))
              .withTooltip(D::timeFrameTooltip()),
          P::numbers(D::OffsetStatisticTimeFrames, D::offsetStatisticTimeFramesLabel())
              .withUnit(QStringLiteral("s"))
              .withTooltip(D::statisticTimeFramesTooltip()),
          P::texts(D::OffsetTimeFramesNames, D::offsetTimeFramesNamesLabel())
              .withTooltip(D::timeFramesNamesTooltip()),
          P::text(D::Statistic, D::statisticLabel()).oneOf(statistics).withTooltip(D::statisticTooltip()),
          P::texts(D::Statistics, D::statisticLabel()).oneOf(statistics).withTooltip(D::statisticTooltip()),
          flag(D::SelectEvents, D::selectEventsLabel(), D::selectEventsTooltip()),
          P::numbers(D::EventRange, D::rangeLabel()).withTooltip(D::eventRangeTooltip()),
          P::text(D::TimePeriod, D::timePeriodLabel()).withTooltip(D::timePeriodTooltip()),
          P::text(D::TimePeriodPath, D::timePeriodPathLabel()).withTooltip(D::timePeriodTooltip()),
          P::text(D::TimePeriodName, D::timePeriodNameLabel()).withTooltip(D::timePeriodTooltip()),
          flag(D::Resample, D::resampleLabel(), D::resampleTooltip()),
          P::number(D::ResampleFrequency, D::frequencyLabel())
              .withUnit(QStringLiteral("Hz"))
              .withTooltip(D::resampleTooltip()),
          P::text(D::ResampleMethod, D::methodLabel())
              .oneOf({D::LinearMethod})
              .withDefault(D::LinearMethod)
              .withTooltip(D::resampleTooltip()),
          P::numbers(D::NormalizeWindow, D::normalizeLabel())
              .withUnit(QStringLiteral("s"))
              .withTooltip(D::normalizeTooltip()),
          P::text(D::NormalizeMethod, D::methodLabel())
              .oneOf({D::Mean, D::StandardZScore, D::ModifiedZScore})
              .withDefault(D::Mean)
              .withTooltip(D::normalizeTooltip()),
          P::text(D::NormalizeEvent, D::otherEventLabel()).withTooltip(D::normalizeEventTooltip()),
          P::text(D::NormalizeEventPath, D::normalizeEventPathLabel())
              .withTooltip(D::normalizeEventTooltip())},
         [] { return std::make_unique<PerieventsProcess>(); }});
}

} // namespace zarvi
