// How a day looks in the day grid: holiday, day off or working day, from its cells.

#include <gtest/gtest.h>

#include "rules/DayLook.h"

using namespace qz2::rules;

TEST(DayLook, AHolidayIsAHolidayWhateverItsSchedule) {
    EXPECT_EQ(dayShade(QStringLiteral("H"), QStringLiteral("00:00")), DayShade::Holiday);
    EXPECT_EQ(dayShade(QStringLiteral(" H "), QStringLiteral("08:00")), DayShade::Holiday);
}

TEST(DayLook, ADayWithNoScheduledHoursIsADayOff) {
    EXPECT_EQ(dayShade(QStringLiteral("P"), QStringLiteral("00:00")), DayShade::DayOff);
    EXPECT_EQ(dayShade(QStringLiteral("L"), QStringLiteral("00:00")), DayShade::DayOff);
}

TEST(DayLook, AScheduledOrUnknownDayIsAWorkingDay) {
    EXPECT_EQ(dayShade(QStringLiteral("P"), QStringLiteral("04:00")), DayShade::Working);
    EXPECT_EQ(dayShade(QStringLiteral("HA"), QStringLiteral("08:00")), DayShade::Working);
    EXPECT_EQ(dayShade(QStringLiteral("P"), QString()), DayShade::Working);
}

TEST(DayLook, HolidaysAndDaysOffHaveTheirOwnColours) {
    const QColor holiday = dayShadeColour(DayShade::Holiday);
    const QColor dayOff = dayShadeColour(DayShade::DayOff);
    EXPECT_TRUE(holiday.isValid());
    EXPECT_TRUE(dayOff.isValid());
    EXPECT_NE(holiday, dayOff);
    EXPECT_FALSE(dayShadeColour(DayShade::Working).isValid());
}
