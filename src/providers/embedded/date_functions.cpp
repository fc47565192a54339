// GETDATE, YEAR/MONTH/DAY, DATEADD, DATEDIFF, DATEPART, DATENAME and CONVERT as the server has
// them, over the store's date texts.
#include <sqlite3.h>

#include <charconv>
#include <chrono>
#include <cmath>
#include <ctime>
#include <optional>
#include <string>

#include <fmt/format.h>

#include "frame/calendar.hpp"
#include "providers/embedded/dates.hpp"
#include "providers/embedded/errors.hpp"
#include "providers/embedded/functions.hpp"

namespace vrdppo::embedded {

namespace {

enum class Part {
  Year,
  Quarter,
  Month,
  DayOfYear,
  Day,
  Week,
  Weekday,
  Hour,
  Minute,
  Second,
  Millisecond
};

constexpr const char* kMonths[12] = {"January",   "February", "March",    "April",
                                     "May",       "June",     "July",     "August",
                                     "September", "October",  "November", "December"};
constexpr const char* kWeekdays[7] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                      "Thursday", "Friday", "Saturday"};

std::string lower(std::string_view s) {
  std::string out(s);
  for (auto& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  }
  return out;
}

std::optional<Part> partOf(std::string_view word) {
  struct Name {
    const char* name;
    Part part;
  };
  static constexpr Name kNames[] = {
      {"year", Part::Year},       {"yy", Part::Year},
      {"yyyy", Part::Year},       {"quarter", Part::Quarter},
      {"qq", Part::Quarter},      {"q", Part::Quarter},
      {"month", Part::Month},     {"mm", Part::Month},
      {"m", Part::Month},         {"dayofyear", Part::DayOfYear},
      {"dy", Part::DayOfYear},    {"y", Part::DayOfYear},
      {"day", Part::Day},         {"dd", Part::Day},
      {"d", Part::Day},           {"week", Part::Week},
      {"wk", Part::Week},         {"ww", Part::Week},
      {"weekday", Part::Weekday}, {"dw", Part::Weekday},
      {"w", Part::Weekday},       {"hour", Part::Hour},
      {"hh", Part::Hour},         {"minute", Part::Minute},
      {"mi", Part::Minute},       {"n", Part::Minute},
      {"second", Part::Second},   {"ss", Part::Second},
      {"s", Part::Second},        {"millisecond", Part::Millisecond},
      {"ms", Part::Millisecond},
  };
  const std::string w = lower(word);
  for (const auto& n : kNames) {
    if (w == n.name) return n.part;
  }
  return std::nullopt;
}

bool partArg(sqlite3_context* ctx, sqlite3_value* v, const char* function, Part& out) {
  const auto word = textOf(v);
  if (auto p = partOf(word)) {
    out = *p;
    return true;
  }
  resultError(ctx, fmt::format("'{}' is not a recognized {} option.", word, function));
  return false;
}

// A date argument: text read as a date, a number as the platform's day count.
bool momentArg(sqlite3_context* ctx, sqlite3_value* v, Moment& out) {
  std::optional<Moment> m;
  if (sqlite3_value_type(v) == SQLITE_TEXT) {
    m = parseMoment(textOf(v));
  } else {
    m = momentOfDate(sqlite3_value_double(v));
  }
  if (m) {
    out = *m;
    return true;
  }
  resultError(ctx, "Conversion failed when converting date and/or time from character string.");
  return false;
}

void resultMoment(sqlite3_context* ctx, const Moment& m) {
  const std::string s = formatMoment(m);
  sqlite3_result_text(ctx, s.data(), static_cast<int>(s.size()), SQLITE_TRANSIENT);
}

bool anyNull(int argc, sqlite3_value** argv) {
  for (int i = 0; i < argc; ++i) {
    if (sqlite3_value_type(argv[i]) == SQLITE_NULL) return true;
  }
  return false;
}

std::int64_t floorDiv(std::int64_t a, std::int64_t b) {
  return a / b - ((a % b != 0) && ((a < 0) != (b < 0)) ? 1 : 0);
}

void fnNow(sqlite3_context* ctx, int, sqlite3_value**) {
  const bool utc = sqlite3_user_data(ctx) != nullptr;
  const std::time_t t = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm tm{};
#ifdef _WIN32
  utc ? gmtime_s(&tm, &t) : localtime_s(&tm, &t);
#else
  utc ? gmtime_r(&t, &tm) : localtime_r(&t, &tm);
#endif
  resultMoment(ctx, momentOf({tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min,
                              tm.tm_sec, 0}));
}

std::int64_t partValue(Part part, const Moment& m) {
  const Civil c = civilOf(m);
  const std::int64_t doy = m.day - calendar::daysFromCivil(c.year, 1, 1) + 1;
  switch (part) {
    case Part::Year:
      return c.year;
    case Part::Quarter:
      return (c.month - 1) / 3 + 1;
    case Part::Month:
      return c.month;
    case Part::DayOfYear:
      return doy;
    case Part::Day:
      return c.day;
    case Part::Week:
      return (doy - 1 + calendar::weekdayOf(calendar::daysFromCivil(c.year, 1, 1))) / 7 + 1;
    case Part::Weekday:
      return calendar::weekdayOf(m.day) + 1;  // Sunday first, the server's default
    case Part::Hour:
      return c.hour;
    case Part::Minute:
      return c.minute;
    case Part::Second:
      return c.second;
    case Part::Millisecond:
      return c.ms;
  }
  return 0;
}

// YEAR, MONTH and DAY: DATEPART with the part fixed by the registration.
void fnFixedPart(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
  if (anyNull(argc, argv)) return sqlite3_result_null(ctx);
  Moment m;
  if (!momentArg(ctx, argv[0], m)) return;
  sqlite3_result_int64(ctx, partValue(*static_cast<const Part*>(sqlite3_user_data(ctx)), m));
}

void fnDatePart(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
  if (anyNull(argc, argv)) return sqlite3_result_null(ctx);
  Part part;
  Moment m;
  if (!partArg(ctx, argv[0], "datepart", part) || !momentArg(ctx, argv[1], m)) return;
  sqlite3_result_int64(ctx, partValue(part, m));
}

void fnDateName(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
  if (anyNull(argc, argv)) return sqlite3_result_null(ctx);
  Part part;
  Moment m;
  if (!partArg(ctx, argv[0], "datename", part) || !momentArg(ctx, argv[1], m)) return;
  std::string s;
  if (part == Part::Month) {
    s = kMonths[civilOf(m).month - 1];
  } else if (part == Part::Weekday) {
    s = kWeekdays[calendar::weekdayOf(m.day)];
  } else {
    s = std::to_string(partValue(part, m));
  }
  sqlite3_result_text(ctx, s.data(), static_cast<int>(s.size()), SQLITE_TRANSIENT);
}

void fnDateAdd(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
  if (anyNull(argc, argv)) return sqlite3_result_null(ctx);
  Part part;
  Moment m;
  if (!partArg(ctx, argv[0], "dateadd", part) || !momentArg(ctx, argv[2], m)) return;
  const std::int64_t n = sqlite3_value_int64(argv[1]);
  const auto overflow = [ctx] {
    resultError(ctx, "Adding a value to a 'datetime' column caused an overflow.");
  };
  if (n > 4000000000LL || n < -4000000000LL) return overflow();
  std::int64_t months = 0;
  std::int64_t ms = 0;
  switch (part) {
    case Part::Year:
      months = n * 12;
      break;
    case Part::Quarter:
      months = n * 3;
      break;
    case Part::Month:
      months = n;
      break;
    case Part::Week:
      ms = n * 7 * 86400000;
      break;
    case Part::DayOfYear:
    case Part::Day:
    case Part::Weekday:
      ms = n * 86400000;
      break;
    case Part::Hour:
      ms = n * 3600000;
      break;
    case Part::Minute:
      ms = n * 60000;
      break;
    case Part::Second:
      ms = n * 1000;
      break;
    case Part::Millisecond:
      ms = n;
      break;
  }
  if (months != 0) {
    Civil c = civilOf(m);
    const std::int64_t total = std::int64_t{c.year} * 12 + (c.month - 1) + months;
    const std::int64_t year = floorDiv(total, 12);
    if (year < 1 || year > 9999) return overflow();
    c.year = static_cast<int>(year);
    c.month = static_cast<int>(total - year * 12) + 1;
    c.day = std::min(c.day, calendar::daysInMonth(c.year, c.month));
    m = momentOf(c);
  }
  const std::int64_t total = m.day * 86400000 + m.ms + ms;
  const Moment r{floorDiv(total, 86400000),
                 static_cast<std::int32_t>(total - floorDiv(total, 86400000) * 86400000)};
  const int year = civilOf(r).year;
  if (year < 1 || year > 9999) return overflow();
  resultMoment(ctx, r);
}

void fnDateDiff(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
  if (anyNull(argc, argv)) return sqlite3_result_null(ctx);
  Part part;
  Moment a;
  Moment b;
  if (!partArg(ctx, argv[0], "datediff", part) || !momentArg(ctx, argv[1], a) ||
      !momentArg(ctx, argv[2], b)) {
    return;
  }
  const Civil x = civilOf(a);
  const Civil y = civilOf(b);
  std::int64_t r = 0;
  switch (part) {
    case Part::Year:
      r = y.year - x.year;
      break;
    case Part::Quarter:
      r = (y.year * 4 + (y.month - 1) / 3) - (x.year * 4 + (x.month - 1) / 3);
      break;
    case Part::Month:
      r = (y.year * 12 + y.month) - (x.year * 12 + x.month);
      break;
    case Part::DayOfYear:
    case Part::Day:
    case Part::Weekday:
      r = b.day - a.day;
      break;
    case Part::Week:
      r = floorDiv(b.day + 4, 7) - floorDiv(a.day + 4, 7);
      break;  // Sundays crossed
    case Part::Hour:
      r = (b.day * 24 + y.hour) - (a.day * 24 + x.hour);
      break;
    case Part::Minute:
      r = (b.day * std::int64_t{1440} + y.hour * std::int64_t{60} + y.minute) -
          (a.day * std::int64_t{1440} + x.hour * std::int64_t{60} + x.minute);
      break;
    case Part::Second:
      r = (b.day * 86400 + b.ms / 1000) - (a.day * 86400 + a.ms / 1000);
      break;
    case Part::Millisecond:
      r = b.key() - a.key();
      break;
  }
  sqlite3_result_int64(ctx, r);
}

// The text of a date in one of the server's CONVERT styles.
std::optional<std::string> styled(const Moment& m, std::int64_t style) {
  const Civil c = civilOf(m);
  const bool century = style >= 100;
  const int y = century ? c.year : c.year % 100;
  const int yw = century ? 4 : 2;  // width of the year
  const std::string_view mon = std::string_view(kMonths[c.month - 1]).substr(0, 3);
  switch (century ? style - 100 : style) {
    case 0:
      return fmt::format("{} {:>2} {:04} {:>2}:{:02}{}", mon, c.day, c.year,
                         c.hour % 12 == 0 ? 12 : c.hour % 12, c.minute, c.hour < 12 ? "AM" : "PM");
    case 1:
      return fmt::format("{:02}/{:02}/{:0{}}", c.month, c.day, y, yw);
    case 2:
      return fmt::format("{:0{}}.{:02}.{:02}", y, yw, c.month, c.day);
    case 3:
      return fmt::format("{:02}/{:02}/{:0{}}", c.day, c.month, y, yw);
    case 4:
      return fmt::format("{:02}.{:02}.{:0{}}", c.day, c.month, y, yw);
    case 5:
      return fmt::format("{:02}-{:02}-{:0{}}", c.day, c.month, y, yw);
    case 6:
      return fmt::format("{:02} {} {:0{}}", c.day, mon, y, yw);
    case 7:
      return fmt::format("{} {:02}, {:0{}}", mon, c.day, y, yw);
    case 8:
      return fmt::format("{:02}:{:02}:{:02}", c.hour, c.minute, c.second);
    case 10:
      return fmt::format("{:02}-{:02}-{:0{}}", c.month, c.day, y, yw);
    case 11:
      return fmt::format("{:0{}}/{:02}/{:02}", y, yw, c.month, c.day);
    case 12:
      return fmt::format("{:0{}}{:02}{:02}", y, yw, c.month, c.day);
    case 20:
      return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", c.year, c.month, c.day, c.hour,
                         c.minute, c.second);
    case 21:
    case 25:
      return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}.{:03}", c.year, c.month, c.day,
                         c.hour, c.minute, c.second, c.ms);
    case 23:
      return fmt::format("{:04}-{:02}-{:02}", c.year, c.month, c.day);
    case 26:
    case 27:
      if (!century) return std::nullopt;
      return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}", c.year, c.month, c.day,
                         c.hour, c.minute, c.second, c.ms);
    default:
      return std::nullopt;
  }
}

std::string_view trimmed(std::string_view s) {
  while (!s.empty() && s.front() == ' ') s.remove_prefix(1);
  while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
  return s;
}

void conversionFailed(sqlite3_context* ctx, std::string_view value, std::string_view type) {
  resultError(ctx, "Conversion failed when converting the varchar value '" + std::string(value) +
                       "' to data type " + std::string(type) + ".");
}

// CONVERT(type, value [, style]), the type arriving as text from the translation.
void fnConvert(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
  if (sqlite3_value_type(argv[1]) == SQLITE_NULL) return sqlite3_result_null(ctx);
  const std::string type = lower(trimmed(textOf(argv[0])));
  const std::string base(trimmed(std::string_view(type).substr(0, type.find('('))));
  long long length = -1;
  if (const auto open = type.find('('); open != std::string::npos) {
    std::from_chars(type.data() + open + 1, type.data() + type.size(), length);
  }
  sqlite3_value* v = argv[1];
  const int vt = sqlite3_value_type(v);
  if (base == "varchar" || base == "nvarchar" || base == "char" || base == "nchar" ||
      base == "text" || base == "ntext") {
    std::string s;
    std::optional<Moment> date;
    if (argc > 2 && sqlite3_value_type(argv[2]) != SQLITE_NULL && vt == SQLITE_TEXT)
      date = parseMoment(textOf(v));
    if (date) {
      const auto text = styled(*date, sqlite3_value_int64(argv[2]));
      if (!text)
        return resultError(ctx, std::to_string(sqlite3_value_int64(argv[2])) +
                                    " is not a valid style number when converting from datetime to "
                                    "a character string.");
      s = *text;
    } else {
      s = textOf(v);
    }
    if (length < 0 && type.find('(') == std::string::npos) length = 30;  // the server's default
    if (length >= 0) {
      std::size_t i = 0;
      for (long long n = 0; i < s.size() && n < length; ++n) {
        ++i;
        while (i < s.size() && (static_cast<unsigned char>(s[i]) & 0xC0) == 0x80) ++i;
      }
      s.resize(i);
      if (base == "char" || base == "nchar") {
        for (long long n = static_cast<long long>(i); n < length; ++n) s += ' ';
      }
    }
    return sqlite3_result_text(ctx, s.data(), static_cast<int>(s.size()), SQLITE_TRANSIENT);
  }
  if (base == "int" || base == "bigint" || base == "smallint" || base == "tinyint" ||
      base == "bit") {
    std::int64_t r = 0;
    if (vt == SQLITE_INTEGER) {
      r = sqlite3_value_int64(v);
    } else if (vt == SQLITE_FLOAT) {
      r = static_cast<std::int64_t>(std::trunc(sqlite3_value_double(v)));
    } else {
      auto s = trimmed(textOf(v));
      if (!s.empty() && s.front() == '+') s.remove_prefix(1);
      const auto res = std::from_chars(s.data(), s.data() + s.size(), r);
      if (s.empty() || res.ec != std::errc() || res.ptr != s.data() + s.size()) {
        return conversionFailed(ctx, textOf(v), base);
      }
    }
    return sqlite3_result_int64(ctx, base == "bit" ? (r != 0 ? 1 : 0) : r);
  }
  if (base == "float" || base == "real" || base == "decimal" || base == "numeric" ||
      base == "money" || base == "smallmoney") {
    if (vt != SQLITE_TEXT) return sqlite3_result_double(ctx, sqlite3_value_double(v));
    auto s = trimmed(textOf(v));
    if (!s.empty() && s.front() == '+') s.remove_prefix(1);
    double d = 0;
    const auto res = std::from_chars(s.data(), s.data() + s.size(), d);
    if (s.empty() || res.ec != std::errc() || res.ptr != s.data() + s.size()) {
      return conversionFailed(ctx, textOf(v), base);
    }
    return sqlite3_result_double(ctx, d);
  }
  if (base == "datetime" || base == "date" || base == "smalldatetime" || base == "datetime2") {
    Moment m;
    if (!momentArg(ctx, v, m)) return;
    if (base == "date") m.ms = 0;
    return resultMoment(ctx, m);
  }
  resultError(ctx, "Type " + type + " is not a defined system type.");
}

// The date columns of a row being written: each NULL or a moment a datetime holds
// (1753-01-01 to 9999-12-31); raises the server's out-of-range error for any other date. A text
// that reads as no date is left to the column's reader.
void fnDateRange(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
  for (int i = 0; i < argc; ++i) {
    sqlite3_value* v = argv[i];
    std::optional<Moment> m;
    switch (sqlite3_value_type(v)) {
      case SQLITE_NULL:
        continue;
      case SQLITE_TEXT:
        m = parseMoment(textOf(v));
        if (!m) continue;
        break;
      default:
        m = momentOfDate(sqlite3_value_double(v));
        break;
    }
    const int year = m ? civilOf(*m).year : 0;
    if (year < 1753 || year > 9999) {
      return resultError(ctx, std::string(kDateOutOfRangeMessage));
    }
  }
  sqlite3_result_int(ctx, 1);
}

}  // namespace

int registerDateFunctions(sqlite3* db) {
  using Fn = void (*)(sqlite3_context*, int, sqlite3_value**);
  static const Part kYear = Part::Year;
  static const Part kMonth = Part::Month;
  static const Part kDay = Part::Day;
  static int utcMark = 1;
  struct Def {  // NOLINT(clang-analyzer-optin.performance.Padding): read as a table
    const char* name;
    int args;
    Fn fn;
    const void* data;
    bool pure;
  };
  const Def defs[] = {
      {"getdate", 0, fnNow, nullptr, false},
      {"sysdatetime", 0, fnNow, nullptr, false},
      {"getutcdate", 0, fnNow, &utcMark, false},
      {"year", 1, fnFixedPart, &kYear, true},
      {"month", 1, fnFixedPart, &kMonth, true},
      {"day", 1, fnFixedPart, &kDay, true},
      {"datepart", 2, fnDatePart, nullptr, true},
      {"datename", 2, fnDateName, nullptr, true},
      {"dateadd", 3, fnDateAdd, nullptr, true},
      {"datediff", 3, fnDateDiff, nullptr, true},
      {"vr_convert", 2, fnConvert, nullptr, true},
      {"vr_convert", 3, fnConvert, nullptr, true},
      {kDateRangeFunction.data(), -1, fnDateRange, nullptr, true},
  };
  for (const auto& d : defs) {
    const int flags = SQLITE_UTF8 | (d.pure ? SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS : 0);
    const int rc = sqlite3_create_function_v2(db, d.name, d.args, flags, const_cast<void*>(d.data),
                                              d.fn, nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK) return rc;
  }
  return SQLITE_OK;
}

}  // namespace vrdppo::embedded
