// The proleptic Gregorian calendar in whole days: the one place where the library counts days,
// leap years and month lengths. The platform's Date counts from 1899-12-30 and the embedded store
// from 1970-01-01; both convert through here.
#pragma once

#include <cstdint>

namespace vrdppo::calendar {

// 1899-12-30, day 0 of the platform's Date, counted from 1970-01-01.
inline constexpr std::int64_t kDateEpoch = -25569;

struct CivilDay {
  int year = 1970;
  int month = 1;
  int day = 1;
};

constexpr bool isLeapYear(int year) noexcept {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

// 0 for a month outside 1..12, so that a day checked against it is never valid.
constexpr int daysInMonth(int year, int month) noexcept {
  constexpr int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12) return 0;
  return month == 2 && isLeapYear(year) ? 29 : kDays[month - 1];
}

constexpr bool isValidDay(int year, int month, int day) noexcept {
  return day >= 1 && day <= daysInMonth(year, month);
}

// Days since 1970-01-01. A month outside 1..12 carries into the year and a day outside the
// month counts on from its first, so every input has an answer.
constexpr std::int64_t daysFromCivil(std::int64_t year, std::int64_t month,
                                     std::int64_t day) noexcept {
  const std::int64_t m0 = month - 1;
  const std::int64_t carry = (m0 >= 0 ? m0 : m0 - 11) / 12;
  year += carry;
  const auto m = static_cast<unsigned>(m0 - carry * 12 + 1);
  year -= m <= 2 ? 1 : 0;
  const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
  const auto yoe = static_cast<unsigned>(year - era * 400);
  const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<std::int64_t>(doe) - 719468 + (day - 1);
}

constexpr CivilDay civilFromDays(std::int64_t days) noexcept {
  const std::int64_t z = days + 719468;
  const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const auto doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  CivilDay c;
  c.day = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  c.month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  c.year = static_cast<int>(static_cast<std::int64_t>(yoe) + era * 400 + (c.month <= 2 ? 1 : 0));
  return c;
}

// 0 for Sunday.
constexpr int weekdayOf(std::int64_t days) noexcept {
  const std::int64_t w = (days + 4) % 7;  // 1970-01-01 was a Thursday
  return static_cast<int>(w < 0 ? w + 7 : w);
}

}  // namespace vrdppo::calendar
