#include "providers/embedded/dates.hpp"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "frame/calendar.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded {

Civil civilOf(const Moment& mo) noexcept {
  const calendar::CivilDay d = calendar::civilFromDays(mo.day);
  Civil c;
  c.year = d.year;
  c.month = d.month;
  c.day = d.day;
  c.hour = mo.ms / 3600000;
  c.minute = mo.ms / 60000 % 60;
  c.second = mo.ms / 1000 % 60;
  c.ms = mo.ms % 1000;
  return c;
}

Moment momentOf(const Civil& c) noexcept {
  return {calendar::daysFromCivil(c.year, c.month, c.day),
          ((c.hour * 60 + c.minute) * 60 + c.second) * 1000 + c.ms};
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

// The date texts the library itself writes, and their near kin, as civil parts already checked.
std::optional<Civil> fastCivil(std::string_view s) {
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
  if (i != s.size() || !calendar::isValidDay(c.year, c.month, c.day) || c.hour > 23 ||
      c.minute > 59 || c.second > 59) {
    return std::nullopt;
  }
  return c;
}

std::optional<Moment> fastParse(std::string_view s) {
  if (auto c = fastCivil(s)) return momentOf(*c);
  return std::nullopt;
}

}  // namespace

std::optional<Moment> momentOfDate(double days) {
  const auto p = trySplitDate(Date{days});
  if (!p) return std::nullopt;
  return momentOf({p->year, p->month, p->day, p->hour, p->minute, p->second, 0});
}

std::optional<Date> dateOf(const Moment& m) {
  const Civil c = civilOf(m);
  return tryMakeDate(c.year, c.month, c.day, c.hour, c.minute, c.second + c.ms / 1000.0);
}

std::optional<Moment> parseMoment(std::string_view utf8) {
  if (auto m = fastParse(utf8)) return m;
  // Month names, AM/PM, M/D/Y and the other forms a person may have typed.
  if (utf8.empty() || utf8.size() > 64) return std::nullopt;
  const auto d = tryParseDate(fromUtf8(utf8));
  if (!d) return std::nullopt;
  return momentOfDate(d->days);
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
  // As dateOf(fastParse(utf8)), without the round trip through a day count.
  if (auto c = fastCivil(utf8)) {
    return tryMakeDate(c->year, c->month, c->day, c->hour, c->minute, c->second + c->ms / 1000.0);
  }
  if (utf8.empty() || utf8.size() > 64) return std::nullopt;
  return tryParseDate(fromUtf8(utf8));
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
