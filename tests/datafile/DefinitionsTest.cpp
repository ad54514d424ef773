#include "definitions/FileDefinitions.h"
#include "definitions/LogMessageFormatter.h"

#include <gtest/gtest.h>

using namespace zarvi;

TEST(LogMessageFormatter, ColoursErrorsOrangeAndWarningsBlue)
{
    EXPECT_EQ(LogMessageFormatter::colorize(QStringLiteral("ERROR: x<br>")),
              QStringLiteral("<span style=\"color:#e67e22;\">ERROR: x</span>"));
    // An error wins over a warning in the same text.
    EXPECT_EQ(LogMessageFormatter::colorize(QStringLiteral("Error and warning")),
              QStringLiteral("<span style=\"color:#e67e22;\">Error and warning</span>"));
    EXPECT_EQ(LogMessageFormatter::colorize(QStringLiteral("a Warning")),
              QStringLiteral("<span style=\"color:#4e9ccf;\">a Warning</span>"));
    EXPECT_EQ(LogMessageFormatter::colorize(QStringLiteral("plain<br><br>")), QStringLiteral("plain<br>"));
}

TEST(LogMessageFormatter, ProcessMessagesTurnLineBreaksIntoBreakTagsWithoutATrailingOne)
{
    EXPECT_EQ(LogMessageFormatter::formatProcessMessage(QStringLiteral("one\ntwo\n")),
              QStringLiteral("one<br>two"));
    EXPECT_EQ(LogMessageFormatter::formatProcessMessage(QStringLiteral("bad error\r\n")),
              QStringLiteral("<span style=\"color:#e67e22;\">bad error</span>"));
}

TEST(FileDefinitions, ReservedNamesAndPatterns)
{
    EXPECT_EQ(FileDefinitions::reservedNames().size(), 16);
    EXPECT_EQ(FileDefinitions::rootCategories().last(), QStringLiteral("ExperimentDesign"));
    EXPECT_TRUE(FileDefinitions::isStructuralName(QStringLiteral("MySeriesA")));
    EXPECT_TRUE(FileDefinitions::isStructuralName(QStringLiteral("Images")));
    EXPECT_FALSE(FileDefinitions::isStructuralName(QStringLiteral("images")));
    EXPECT_EQ(FileDefinitions::SeriesPattern.arg(10), QStringLiteral("Series10"));
    EXPECT_EQ(FileDefinitions::DataPathPattern.arg(
                  FileDefinitions::DataConverted, QStringLiteral("Scope"), FileDefinitions::Images,
                  FileDefinitions::SeriesPattern.arg(1), QStringLiteral("Green")),
              QStringLiteral("DataConverted/Scope/Images/Series1/Green"));
}
