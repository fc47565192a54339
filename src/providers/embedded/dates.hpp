// Dates as the store keeps them: text, in whatever form a statement wrote it, compared and
// computed by the moment it stands for.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vrdppo/variant.hpp"

namespace vrdppo::embedded {

// A moment: whole days since 1970-01-01 and milliseconds into the day.
struct Moment {
  std::int64_t day = 0;
  std::int32_t ms = 0;
  std::int64_t key() const noexcept { return day * 86400000 + ms; }
};

struct Civil {
  int year = 1970, month = 1, day = 1, hour = 0, minute = 0, second = 0, ms = 0;
};

// Day counts, leap years and month lengths come from the library's one calendar.
Civil civilOf(const Moment& m) noexcept;
Moment momentOf(const Civil& c) noexcept;

// Reads a date text: quickly for yyyy/MM/dd (or with "-" or "."), optionally followed by
// HH:MM, HH:MM:SS or HH:MM:SS.fff; every other form through the platform's date parser.
// nullopt when it is no date.
std::optional<Moment> parseMoment(std::string_view utf8);
// A day count (the platform's Date); nullopt outside the platform's range.
std::optional<Moment> momentOfDate(double days);
// The platform's Date of a moment; nullopt before the year 100.
std::optional<Date> dateOf(const Moment& m);

// "yyyy/MM/dd HH:MM:SS", the form the library itself writes; a fraction of a second, when
// there is one, as ".fff".
std::string formatMoment(const Moment& m);

// The text of a date column's value as the Date it holds; nullopt when it holds no date.
std::optional<Date> storedDate(std::string_view utf8);

// Orders two date texts by their moments; texts that are no date come after all dates, among
// themselves in binary order. A total order, as a collation must be.
int compareDateTexts(std::string_view a, std::string_view b);

}  // namespace vrdppo::embedded
