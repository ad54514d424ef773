#include "definitions/FileDefinitions.h"
#include "framework/OperationRegistry.h"
#include "framework/ParameterValues.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace zarvi;

namespace {

using P = OperationParameter;

const QString operation = QStringLiteral("Test Declarations");

/// An operation with one parameter of every rule, registered once.
void declare()
{
    OperationRegistry::instance().add(
        {operation,
         OperationFamily::Signal,
         QStringLiteral("Checks declarations."),
         QStringLiteral("Checked"),
         QString(),
         {P::integer(QStringLiteral("Factor"), QStringLiteral("Factor"))
              .atLeast(1)
              .atMost(10)
              .isRequired()
              .withDefault(3),
          P::number(QStringLiteral("Window(sec)"), QStringLiteral("Window")).atLeast(0.0),
          P::text(QStringLiteral("Method"), QStringLiteral("Method"))
              .oneOf({QStringLiteral("A"), QStringLiteral("B")}),
          P::text(QStringLiteral("Hint"), QStringLiteral("Hint")).offering({QStringLiteral("X")}),
          P::numbers(QStringLiteral("Range"), QStringLiteral("Range")).atLeast(-5).atMost(5),
          P::integer(QStringLiteral("Strict"), QStringLiteral("Strict"))
              .atLeast(1)
              .withBadValueMessage(QStringLiteral("Bad value for strict."))},
         nullptr});
}

QStringList problems(QVariantMap parameters, QVariantMap* normalized = nullptr)
{
    declare();
    parameters.insert(FileDefinitions::Operations, operation);
    QVariantMap out;
    QStringList errors;
    OperationRegistry::instance().normalize(parameters, out, errors);
    if (normalized)
        *normalized = out;
    return errors;
}

} // namespace

TEST(OperationParameter, ARunMapIsCheckedAgainstTheDeclarations)
{
    QVariantMap normalized;
    // A JSON number that is integral becomes an int; the default is not filled in.
    EXPECT_TRUE(problems({{QStringLiteral("Factor"), 4.0}}, &normalized).isEmpty());
    EXPECT_EQ(normalized.value(QStringLiteral("Factor")).typeId(), QMetaType::Int);
    EXPECT_FALSE(normalized.contains(QStringLiteral("Window(sec)")));

    // A required key is never taken from its default.
    EXPECT_EQ(problems({}), QStringList{QStringLiteral("Parameter <b>Factor</b> is missing.")});
    EXPECT_EQ(problems({{QStringLiteral("Factor"), QString()}}),
              QStringList{QStringLiteral("Parameter <b>Factor</b> is missing.")});

    // Range, choices and lists name the key, what is allowed and what was given.
    EXPECT_EQ(problems({{QStringLiteral("Factor"), 11}}),
              QStringList{QStringLiteral(
                  "Parameter <b>Factor</b> must be between 1 and 10; <b>11</b> is not allowed.")});
    EXPECT_EQ(
        problems({{QStringLiteral("Factor"), 2}, {QStringLiteral("Method"), QStringLiteral("C")}}),
        QStringList{QStringLiteral("Parameter <b>Method</b> must be one of A, B; <b>C</b> is not allowed.")});
    EXPECT_EQ(problems({{QStringLiteral("Factor"), 2}, {QStringLiteral("Range"), QVariantList{0.0, 6.0}}}),
              QStringList{QStringLiteral(
                  "Parameter <b>Range</b> must be between -5 and 5; <b>6</b> is not allowed.")});
    EXPECT_EQ(problems({{QStringLiteral("Factor"), 2}, {QStringLiteral("Window(sec)"), -0.5}}),
              QStringList{QStringLiteral(
                  "Parameter <b>Window(sec)</b> must be at least 0; <b>-0.5</b> is not allowed.")});
    // An operation's own words replace the general message.
    EXPECT_EQ(problems({{QStringLiteral("Factor"), 2}, {QStringLiteral("Strict"), 0}}),
              QStringList{QStringLiteral("Bad value for strict.")});
    EXPECT_EQ(problems({{QStringLiteral("Factor"), 2}, {QStringLiteral("Strict"), QStringLiteral("two")}}),
              QStringList{QStringLiteral("Bad value for strict.")});
    // Offered choices are not enforced; NaN and infinity are never numbers.
    EXPECT_TRUE(
        problems({{QStringLiteral("Factor"), 2}, {QStringLiteral("Hint"), QStringLiteral("Y")}}).isEmpty());
    for (const QVariant& notANumber :
         {QVariant(std::nan("")), QVariant(INFINITY), QVariant(QStringLiteral("inf"))})
        EXPECT_EQ(problems({{QStringLiteral("Factor"), 2}, {QStringLiteral("Window(sec)"), notANumber}}),
                  QStringList{QStringLiteral("Parameter <b>Window(sec)</b> has an invalid value.")});
    // An empty optional value switches its stage off and passes.
    EXPECT_TRUE(problems({{QStringLiteral("Factor"), 2}, {QStringLiteral("Method"), QString()}}).isEmpty());
}

TEST(ParameterValues, AbsentAndEmptyKeysAreNotGiven)
{
    const ParameterValues values(QVariantMap{{QStringLiteral("A"), 2.5},
                                             {QStringLiteral("B"), QString()},
                                             {QStringLiteral("L"), QVariantList{1.0, 2.0}},
                                             {QStringLiteral("F"), 0}});
    EXPECT_TRUE(values.has(QStringLiteral("A")));
    EXPECT_FALSE(values.has(QStringLiteral("B")));
    EXPECT_FALSE(values.optionalNumber(QStringLiteral("B")).has_value());
    EXPECT_DOUBLE_EQ(values.number(QStringLiteral("B"), 7.0), 7.0);
    EXPECT_DOUBLE_EQ(*values.optionalNumber(QStringLiteral("A")), 2.5);
    EXPECT_EQ(values.numbers(QStringLiteral("L")), (std::vector<double>{1.0, 2.0}));
    EXPECT_FALSE(values.flag(QStringLiteral("F")));
    EXPECT_TRUE(values.texts(QStringLiteral("Missing")).isEmpty());
}
