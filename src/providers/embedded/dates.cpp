#include "providers/embedded/dates.hpp"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "vrdppo/error.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded {

std::int64_t daysFromCivil(int year, int month, int day) noexcept {
  std::int64_t y = year - (month <= 2 ? 1 : 0);
  const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
  const auto yoe = static_cast<unsigned>(y - era * 400);
  const auto m = static_cast<unsigned>(month);
  const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + static_cast<unsigned>(day) - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

Civil civilOf(const Moment& mo) noexcept {
  Civil c;
  const std::int64_t z = mo.day + 719468;
  const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const auto doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  c.day = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  c.month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  c.year = static_cast<int>(static_cast<std::int64_t>(yoe) + era * 400 + (c.month <= 2 ? 1 : 0));
  c.hour = mo.ms / 3600000;
  c.minute = mo.ms / 60000 % 60;
  c.second = mo.ms / 1000 % 60;
  c.ms = mo.ms % 1000;
  return c;
}

Moment momentOf(const Civil& c) noexcept {
  return {daysFromCivil(c.year, c.month, c.day),
          ((c.hour * 60 + c.minute) * 60 + c.second) * 1000 + c.ms};
}

int daysInMonth(int year, int month) noexcept {
  static constexpr int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return month == 2 && leap ? 29 : kDays[month - 1];
}

int weekdayOf(std::int64_t day) noexcept {
  const std::int64_t w = (day + 4) % 7;  // 1970-01-01 was a Thursday
  return static_cast<int>(w < 0 ? w + 7 : w);
}

namespace {

// Reads 1 to `most` digits at i.
bool digits(std::string_view s, std::size_t& i, int least, int most, int& value) {
  value = 0;
  int n = 0;
  while (i < s.size() && n < most && s[i] >= '0' && s[i] <= '9') {
    value = value * 10 + (s[i] - '0');
    ++i;
    ++n;
  }
  return n >= least;
}

std::optional<Moment> fastParse(std::string_view s) {
  std::size_t i = 0;
  while (i < s.size() && s[i] == ' ') ++i;
  Civil c;
  if (!digits(s, i, 4, 4, c.year)) return std::nullopt;
  if (i < s.size() && s[i] >= '0' && s[i] <= '9') {
    // yyyymmdd, the form that reads the same in every locale
    if (!digits(s, i, 2, 2, c.month) || !digits(s, i, 2, 2, c.day)) return std::nullopt;
  } else {
    if (i >= s.size()) return std::nullopt;
    const char sep = s[i];
    if (sep != '/' && sep != '-' && sep != '.') return std::nullopt;
    ++i;
    if (!digits(s, i, 1, 2, c.month) || i >= s.size() || s[i] != sep) return std::nullopt;
    ++i;
    if (!digits(s, i, 1, 2, c.day)) return std::nullopt;
  }
  if (i < s.size() && (s[i] == ' ' || s[i] == 'T') && i + 1 < s.size() && s[i + 1] != ' ') {
    ++i;
    if (!digits(s, i, 1, 2, c.hour) || i >= s.size() || s[i] != ':') return std::nullopt;
    ++i;
    if (!digits(s, i, 2, 2, c.minute)) return std::nullopt;
    if (i < s.size() && s[i] == ':') {
      ++i;
      if (!digits(s, i, 2, 2, c.second)) return std::nullopt;
      if (i < s.size() && s[i] == '.') {
        ++i;
        int scale = 100;
        const std::size_t start = i;
        while (i < s.size() && s[i] >= '0' && s[i] <= '9') {
          c.ms += (s[i] - '0') * scale;
          scale /= 10;
          ++i;
        }
        if (i == start) return std::nullopt;
      }
    }
  }
  while (i < s.size() && s[i] == ' ') ++i;
  if (i != s.size() || c.month < 1 || c.month > 12 || c.day < 1 ||
      c.day > daysInMonth(c.year, c.month) || c.hour > 23 || c.minute > 59 || c.second > 59) {
    return std::nullopt;
  }
  return momentOf(c);
}

}  // namespace

std::optional<Moment> momentOfDate(double days) {
  try {
    const DateParts p = splitDate(Date{days});
    return momentOf({p.year, p.month, p.day, p.hour, p.minute, p.second, 0});
  } catch (const Error&) {
    return std::nullopt;
  }
}

std::optional<Date> dateOf(const Moment& m) {
  const Civil c = civilOf(m);
  try {
    return makeDate(c.year, c.month, c.day, c.hour, c.minute, c.second + c.ms / 1000.0);
  } catch (const Error&) {
    return std::nullopt;
  }
}

std::optional<Moment> parseMoment(std::string_view utf8) {
  if (auto m = fastParse(utf8)) return m;
  // Month names, AM/PM, M/D/Y and the other forms a person may have typed.
  if (utf8.empty() || utf8.size() > 64) return std::nullopt;
  try {
    const Date d = parseDate(fromUtf8(utf8));
    return momentOfDate(d.days);
  } catch (const Error&) {
    return std::nullopt;
  }
}

std::string formatMoment(const Moment& m) {
  const Civil c = civilOf(m);
  char buf[40];
  int n = std::snprintf(buf, sizeof buf, "%04d/%02d/%02d %02d:%02d:%02d", c.year, c.month, c.day,
                        c.hour, c.minute, c.second);
  if (c.ms != 0)
    n += std::snprintf(buf + n, sizeof buf - static_cast<std::size_t>(n), ".%03d", c.ms);
  return std::string(buf, static_cast<std::size_t>(n));
}

std::optional<Date> storedDate(std::string_view utf8) {
  if (auto m = fastParse(utf8)) return dateOf(*m);
  if (utf8.empty() || utf8.size() > 64) return std::nullopt;
  try {
    return parseDate(fromUtf8(utf8));
  } catch (const Error&) {
    return std::nullopt;
  }
}

int compareDateTexts(std::string_view a, std::string_view b) {
  const auto ma = parseMoment(a);
  const auto mb = parseMoment(b);
  if (ma && mb) return ma->key() < mb->key() ? -1 : ma->key() > mb->key() ? 1 : 0;
  if (ma) return -1;
  if (mb) return 1;
  const int c = std::memcmp(a.data(), b.data(), std::min(a.size(), b.size()));
  if (c != 0) return c;
  return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

}  // namespace vrdppo::embedded
