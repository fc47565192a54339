// Dates as day counts from 1899-12-30: splitting, making, parsing and the general date text.
#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "frame/calendar.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/locale.hpp"
#include "vrdppo/variant.hpp"

namespace vrdppo {

std::optional<Date> tryMakeDate(int year, int month, int day, int hour, int minute,
                                double second) noexcept {
  if (year < 100 || year > 9999 || !calendar::isValidDay(year, month, day) || hour < 0 ||
      hour > 23 || minute < 0 || minute > 59 || !(second >= 0 && second < 60)) {
    return std::nullopt;
  }
  const auto days =
      static_cast<double>(calendar::daysFromCivil(year, month, day) - calendar::kDateEpoch);
  const double time = (hour * 3600.0 + minute * 60.0 + second) / 86400.0;
  // Before day 0 the time of day still counts forward from midnight: -1.25 is 1899-12-29 06:00.
  return Date{days < 0 ? days - time : days + time};
}

Date makeDate(int year, int month, int day, int hour, int minute, double second) {
  if (auto d = tryMakeDate(year, month, day, hour, minute, second)) return *d;
  throw Error::runtime(err::kInvalidCall);
}

std::optional<DateParts> trySplitDate(Date d) noexcept {
  const double v = d.days;
  if (!std::isfinite(v) || v <= kMinDate - 1 || v >= kMaxDate) return std::nullopt;
  auto whole = static_cast<std::int64_t>(std::trunc(v));
  double t = std::fabs(v - static_cast<double>(whole)) + 1e-11;
  DateParts p;
  double x = t * 24;
  p.hour = static_cast<int>(x);
  x = (x - p.hour) * 60;
  p.minute = static_cast<int>(x);
  x = (x - p.minute) * 60;
  p.second = static_cast<int>(x);
  if (x - p.second > 0.5) {
    if (++p.second == 60) {
      p.second = 0;
      if (++p.minute == 60) {
        p.minute = 0;
        if (++p.hour == 24) {
          p.hour = 0;
          ++whole;
        }
      }
    }
  }
  const calendar::CivilDay c = calendar::civilFromDays(whole + calendar::kDateEpoch);
  p.year = c.year;
  p.month = c.month;
  p.day = c.day;
  if (p.year < 100 || p.year > 9999) return std::nullopt;
  return p;
}

DateParts splitDate(Date d) {
  if (auto p = trySplitDate(d)) return *p;
  throw Error::runtime(err::kInvalidCall);
}

namespace {

std::u16string twoDigits(int v) {
  return {static_cast<char16_t>(u'0' + v / 10), static_cast<char16_t>(u'0' + v % 10)};
}

std::u16string number(int v) {
  const std::string s = std::to_string(v);
  return {s.begin(), s.end()};
}

}  // namespace

// The platform's general date form under the default locale: M/d/yyyy h:mm:ss AM, without the
// date on day 0 and without the time at midnight.
std::u16string dateText(Date d) {
  const DateParts p = splitDate(d);
  const auto& sep = threadSeparators();
  std::u16string out;
  const bool hasDate = std::trunc(d.days) != 0;
  const bool hasTime = p.hour != 0 || p.minute != 0 || p.second != 0;
  if (hasDate || !hasTime) {
    out += number(p.month) + sep.date + number(p.day) + sep.date + number(p.year);
  }
  if (hasTime) {
    if (!out.empty()) out += u' ';
    const int h12 = p.hour % 12 == 0 ? 12 : p.hour % 12;
    out += number(h12) + sep.time + twoDigits(p.minute) + sep.time + twoDigits(p.second);
    out += p.hour < 12 ? u" AM" : u" PM";
  }
  return out;
}

namespace {

struct Token {
  enum Kind { Number, Month, AmPm, Sep } kind;
  int value;
  int width;  // digits of a number
  char16_t sep;
};

int monthOf(std::u16string_view word) {
  static constexpr std::array<const char16_t*, 12> kNames{
      u"january", u"february", u"march",     u"april",   u"may",      u"june",
      u"july",    u"august",   u"september", u"october", u"november", u"december"};
  std::u16string lower;
  for (char16_t c : word) lower += (c >= u'A' && c <= u'Z') ? static_cast<char16_t>(c + 32) : c;
  if (lower.size() < 3) return 0;
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    const std::u16string_view name = kNames[i];
    if (lower == name || (lower.size() >= 3 && name.substr(0, lower.size()) == lower)) {
      return static_cast<int>(i + 1);
    }
  }
  return 0;
}

bool validDate(int y, int m, int d) {
  return y >= 100 && y <= 9999 && calendar::isValidDay(y, m, d);
}

int expandYear(int y, int width) {
  if (width > 2) return y;
  return y < 30 ? 2000 + y : 1900 + y;
}

}  // namespace

// Dates with "-", "/", space or "," between their parts, ":" in the time, month names, AM/PM and
// an ISO "T"; the field order tried is Y/M/D for a four-digit first field, else M/D/Y then D/M/Y.
std::optional<Date> tryParseDate(std::u16string_view s) {
  std::vector<Token> tokens;
  for (std::size_t i = 0; i < s.size();) {
    const char16_t c = s[i];
    if (c >= u'0' && c <= u'9') {
      int v = 0;
      int w = 0;
      while (i < s.size() && s[i] >= u'0' && s[i] <= u'9') {
        if (w < 9) v = v * 10 + (s[i] - u'0');
        ++w;
        ++i;
      }
      tokens.push_back({Token::Number, v, w, 0});
    } else if ((c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z')) {
      std::size_t j = i;
      while (j < s.size() && ((s[j] >= u'a' && s[j] <= u'z') || (s[j] >= u'A' && s[j] <= u'Z'))) {
        ++j;
      }
      const auto word = s.substr(i, j - i);
      if (word.size() == 1 && (word[0] == u'T' || word[0] == u't')) {
        tokens.push_back({Token::Sep, 0, 0, u' '});
      } else if (word.size() == 2 && (word[1] == u'M' || word[1] == u'm') &&
                 (word[0] == u'A' || word[0] == u'a' || word[0] == u'P' || word[0] == u'p')) {
        tokens.push_back({Token::AmPm, (word[0] == u'P' || word[0] == u'p') ? 1 : 0, 0, 0});
      } else if (const int m = monthOf(word)) {
        tokens.push_back({Token::Month, m, 0, 0});
      } else {
        return std::nullopt;
      }
      i = j;
    } else if (c == u'-' || c == u'/' || c == u' ' || c == u',' || c == u':' || c == u'.' ||
               c == u'\t') {
      tokens.push_back({Token::Sep, 0, 0, c == u'\t' ? u' ' : c});
      ++i;
    } else {
      return std::nullopt;
    }
  }
  std::vector<Token> dateNums;
  std::vector<int> timeNums;
  int month = 0;
  int ampm = -1;
  for (std::size_t k = 0; k < tokens.size(); ++k) {
    const Token& t = tokens[k];
    if (t.kind == Token::Number) {
      const bool nextColon = k + 1 < tokens.size() && tokens[k + 1].sep == u':';
      const bool prevColon = k > 0 && tokens[k - 1].sep == u':';
      const bool nextPoint = k + 1 < tokens.size() && tokens[k + 1].sep == u'.';
      if (prevColon && nextPoint) return std::nullopt;  // fractional seconds
      if (nextColon || prevColon || (k + 1 < tokens.size() && tokens[k + 1].kind == Token::AmPm) ||
          (k + 2 < tokens.size() && tokens[k + 1].kind == Token::Sep && tokens[k + 1].sep == u' ' &&
           tokens[k + 2].kind == Token::AmPm)) {
        timeNums.push_back(t.value);
      } else {
        dateNums.push_back(t);
      }
    } else if (t.kind == Token::Month) {
      if (month) return std::nullopt;
      month = t.value;
    } else if (t.kind == Token::AmPm) {
      ampm = t.value;
    } else if (t.sep == u'.' &&
               !(k > 0 && tokens[k - 1].kind == Token::Number && !timeNums.empty())) {
      return std::nullopt;
    }
  }
  if (timeNums.size() > 3 || dateNums.size() > 3) return std::nullopt;
  int hour = timeNums.size() > 0 ? timeNums[0] : 0;
  const int minute = timeNums.size() > 1 ? timeNums[1] : 0;
  const int second = timeNums.size() > 2 ? timeNums[2] : 0;
  if (ampm >= 0) {
    if (hour < 1 || hour > 12) return std::nullopt;
    hour = hour % 12 + (ampm == 1 ? 12 : 0);
  }
  if (hour > 23 || minute > 59 || second > 59) return std::nullopt;

  int y = 0;
  int m = 0;
  int d = 0;
  bool found = false;
  if (dateNums.empty() && month == 0) {
    if (timeNums.empty()) return std::nullopt;
    y = 1899, m = 12, d = 30, found = true;
  } else if (month != 0) {
    if (dateNums.size() != 2) return std::nullopt;
    // "7 March 2019", "March 7, 2019", "2019 March 7": the four-digit one is the year.
    const bool firstIsYear = dateNums[0].width > 2;
    d = firstIsYear ? dateNums[1].value : dateNums[0].value;
    const Token& yt = firstIsYear ? dateNums[0] : dateNums[1];
    y = expandYear(yt.value, yt.width);
    m = month;
    found = validDate(y, m, d);
  } else if (dateNums.size() == 3) {
    const Token &a = dateNums[0], &b = dateNums[1], &c = dateNums[2];
    if (a.width > 2) {
      y = a.value, m = b.value, d = c.value;
      found = validDate(y, m, d);
    } else {
      y = expandYear(c.value, c.width);
      m = a.value, d = b.value;
      found = validDate(y, m, d);
      if (!found) {
        m = b.value, d = a.value;
        found = validDate(y, m, d);
      }
    }
  }
  if (!found) return std::nullopt;
  return tryMakeDate(y, m, d, hour, minute, second);
}

Date parseDate(std::u16string_view s) {
  if (auto d = tryParseDate(s)) return *d;
  throw Error::runtime(err::kTypeMismatch);
}

}  // namespace vrdppo
