// The one calendar that the frame's Date and the embedded store's moments both count with.
#include "frame/calendar.hpp"

#include <gtest/gtest.h>

#include <cstdint>

namespace vrdppo::calendar {
namespace {

TEST(Calendar, MonthLengthsAndTheirBoundary) {
  struct Case {
    int year, month, days;
  };
  for (const Case& c :
       {Case{2023, 2, 28}, Case{2024, 2, 29}, Case{1900, 2, 28}, Case{2000, 2, 29},
        Case{2024, 1, 31}, Case{2024, 4, 30}, Case{2024, 12, 31},
        // Outside 1..12 there is no month, and no day is valid in it.
        Case{2024, 0, 0}, Case{2024, 13, 0}, Case{2024, -1, 0}, Case{2024, 1000, 0}}) {
    EXPECT_EQ(daysInMonth(c.year, c.month), c.days) << c.year << "-" << c.month;
  }
  EXPECT_FALSE(isValidDay(2024, 13, 1));
  EXPECT_FALSE(isValidDay(2023, 2, 29));
  EXPECT_TRUE(isValidDay(2024, 2, 29));
  EXPECT_FALSE(isValidDay(2024, 1, 0));
}

TEST(Calendar, EpochsAndWeekdays) {
  EXPECT_EQ(daysFromCivil(1970, 1, 1), 0);
  EXPECT_EQ(daysFromCivil(1899, 12, 30), kDateEpoch);
  EXPECT_EQ(weekdayOf(0), 4);                            // Thursday
  EXPECT_EQ(weekdayOf(daysFromCivil(2026, 11, 22)), 0);  // a Sunday
  EXPECT_EQ(weekdayOf(kDateEpoch), 6);                   // 1899-12-30, a Saturday
}

TEST(Calendar, MonthsAndDaysOutsideTheirRangeCarry) {
  EXPECT_EQ(daysFromCivil(2024, 13, 1), daysFromCivil(2025, 1, 1));
  EXPECT_EQ(daysFromCivil(2024, 0, 1), daysFromCivil(2023, 12, 1));
  EXPECT_EQ(daysFromCivil(2024, -11, 1), daysFromCivil(2023, 1, 1));
  EXPECT_EQ(daysFromCivil(2024, 2, 30), daysFromCivil(2024, 3, 1));
  EXPECT_EQ(daysFromCivil(2024, 3, 0), daysFromCivil(2024, 2, 29));
}

TEST(Calendar, EveryDayOfTheDateRangeRoundTrips) {
  const std::int64_t first = daysFromCivil(100, 1, 1);
  const std::int64_t last = daysFromCivil(9999, 12, 31);
  CivilDay prev = civilFromDays(first - 1);
  for (std::int64_t d = first; d <= last; ++d) {
    const CivilDay c = civilFromDays(d);
    ASSERT_TRUE(isValidDay(c.year, c.month, c.day)) << d;
    ASSERT_EQ(daysFromCivil(c.year, c.month, c.day), d);
    // Each day follows the one before it in the calendar.
    const bool nextDay = c.year == prev.year && c.month == prev.month && c.day == prev.day + 1;
    const bool nextMonth = c.year == prev.year && c.month == prev.month + 1 && c.day == 1 &&
                           prev.day == daysInMonth(prev.year, prev.month);
    const bool nextYear =
        c.year == prev.year + 1 && c.month == 1 && c.day == 1 && prev.month == 12 && prev.day == 31;
    ASSERT_TRUE(nextDay || nextMonth || nextYear) << d;
    prev = c;
  }
}

}  // namespace
}  // namespace vrdppo::calendar
