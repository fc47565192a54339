// A small tagged value with the conversions of the platform's variant type.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

// Ten-thousandths of a unit, as a 64-bit count.
struct Currency {
  std::int64_t raw = 0;
  friend bool operator==(Currency, Currency) = default;
};

// Days since 1899-12-30, the fraction being the time of day.
struct Date {
  double days = 0;
  friend bool operator==(Date, Date) = default;
};

// An exact decimal as a provider delivers it (SQL decimal and numeric): its text, with a point.
struct Decimal {
  std::string text;
  friend bool operator==(const Decimal&, const Decimal&) = default;
};

struct Null {
  friend bool operator==(Null, Null) = default;
};

// An optional argument that the caller left out (the platform's "is missing"): every coercion
// refuses it with a type mismatch.
struct Missing {
  friend bool operator==(Missing, Missing) = default;
};

enum class VarType : std::uint8_t {
  Empty,
  Null,
  Boolean,
  Long,
  Double,
  Currency,
  Date,
  String,
  LongLong,
  Decimal,
  Missing
};

const char* varTypeName(VarType t) noexcept;

class Variant {
 public:
  Variant() = default;
  Variant(Null) : v_(Null{}) {}
  Variant(bool b) : v_(b) {}
  Variant(std::int32_t l) : v_(l) {}
  Variant(std::int64_t l) : v_(l) {}
  Variant(double d) : v_(d) {}
  Variant(Currency c) : v_(c) {}
  Variant(Date d) : v_(d) {}
  Variant(Decimal d) : v_(std::move(d)) {}
  Variant(Missing) : v_(Missing{}) {}
  Variant(std::u16string s) : v_(std::move(s)) {}
  Variant(std::u16string_view s) : v_(std::u16string(s)) {}
  Variant(const char16_t* s) : v_(std::u16string(s)) {}

  static Variant null() { return Variant(Null{}); }
  static Variant missing() { return Variant(Missing{}); }

  VarType type() const noexcept { return static_cast<VarType>(v_.index()); }
  bool isEmpty() const noexcept { return type() == VarType::Empty; }
  bool isNull() const noexcept { return type() == VarType::Null; }
  bool isMissing() const noexcept { return type() == VarType::Missing; }

  // Direct access; the caller has checked the type.
  bool boolean() const { return std::get<bool>(v_); }
  std::int32_t lng() const { return std::get<std::int32_t>(v_); }
  double dbl() const { return std::get<double>(v_); }
  Currency cur() const { return std::get<Currency>(v_); }
  Date date() const { return std::get<Date>(v_); }
  const std::u16string& str() const { return std::get<std::u16string>(v_); }
  std::int64_t longLong() const { return std::get<std::int64_t>(v_); }
  const Decimal& decimal() const { return std::get<Decimal>(v_); }

  friend bool operator==(const Variant&, const Variant&) = default;

 private:
  std::variant<std::monostate, Null, bool, std::int32_t, double, Currency, Date, std::u16string,
               std::int64_t, Decimal, Missing>
      v_;
};

// The platform's coercions. Null raises error 94, text that is no number 13, a value out of
// range 6; Long and Currency round half to even.
std::int32_t toLong(const Variant& v);
double toDouble(const Variant& v);
Currency toCurrency(const Variant& v);
Date toDate(const Variant& v);
bool toBoolean(const Variant& v);
std::u16string toString(const Variant& v);

// Numeric conversions shared by the coercions and the rendering.
std::int32_t longFromDouble(double d);      // round half to even, error 6 out of range
Currency currencyFromDouble(double d);      // x 10000, round half to even, error 6
double parseNumber(std::u16string_view s);  // the standard number parser, error 13
Date parseDate(std::u16string_view s);      // date and time text, error 13

// A date's calendar fields, split as the platform splits them (seconds rounded, carrying).
struct DateParts {
  int year = 1899, month = 12, day = 30, hour = 0, minute = 0, second = 0;
};
DateParts splitDate(Date d);  // error 5 outside 0100-01-01 .. 9999-12-31 or not finite
// The Date of calendar fields; seconds may carry a fraction. Error 5 for an invalid date.
Date makeDate(int year, int month, int day, int hour = 0, int minute = 0, double second = 0);
// The same three where a text or a value that is no date is an answer rather than an error:
// nullopt where the others raise.
std::optional<Date> tryParseDate(std::u16string_view s);
std::optional<DateParts> trySplitDate(Date d) noexcept;
std::optional<Date> tryMakeDate(int year, int month, int day, int hour = 0, int minute = 0,
                                double second = 0) noexcept;
inline constexpr double kMinDate = -657434.0;  // 0100-01-01
inline constexpr double kMaxDate = 2958466.0;  // 10000-01-01, exclusive

// Platform texts of numbers (no leading blank, the thread's decimal separator).
std::u16string longText(std::int32_t v);
std::u16string doubleText(double v);
std::u16string currencyText(Currency v);
std::u16string dateText(Date d);  // the platform's general date form

}  // namespace vrdppo
VRDPPO_PUBLIC_END
