// The coercions of the platform's variant type.
#include "vrdppo/variant.hpp"

#include <cmath>
#include <limits>

#include "frame/decimal_number.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/locale.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo {

const char* varTypeName(VarType t) noexcept {
  switch (t) {
    case VarType::Empty:
      return "Empty";
    case VarType::Null:
      return "Null";
    case VarType::Boolean:
      return "Boolean";
    case VarType::Long:
      return "Long";
    case VarType::Double:
      return "Double";
    case VarType::Currency:
      return "Currency";
    case VarType::Date:
      return "Date";
    case VarType::String:
      return "String";
    case VarType::LongLong:
      return "LongLong";
    case VarType::Decimal:
      return "Decimal";
    case VarType::Missing:
      return "Missing";
  }
  return "?";
}

namespace {

// A provider's decimal text has a point whatever the locale.
DecimalNumber decimalOf(const Decimal& d) {
  std::u16string s = ascii(d.text);
  for (auto& c : s) {
    if (c == u'.') c = threadSeparators().decimal;
  }
  return DecimalNumber::parse(s);
}

std::int32_t longFromDecimal(const DecimalNumber& d) {
  const auto v = d.scaled(0);
  if (!v || *v < std::numeric_limits<std::int32_t>::min() ||
      *v > std::numeric_limits<std::int32_t>::max()) {
    throw Error::runtime(err::kOverflow);
  }
  return static_cast<std::int32_t>(*v);
}

Currency currencyFromDecimal(const DecimalNumber& d) {
  const auto v = d.scaled(4);
  if (!v || *v < std::numeric_limits<std::int64_t>::min() ||
      *v > std::numeric_limits<std::int64_t>::max()) {
    throw Error::runtime(err::kOverflow);
  }
  return Currency{static_cast<std::int64_t>(*v)};
}

// "True" and "False" are numbers to the coercions, as the platform has it.
bool booleanWord(std::u16string_view s, bool& value) {
  const auto t = trimBlanks(s);
  if (equalsNoCase(t, u"True")) return value = true, true;
  if (equalsNoCase(t, u"False")) return value = false, true;
  return false;
}

}  // namespace

std::int32_t toLong(const Variant& v) {
  switch (v.type()) {
    case VarType::Empty:
      return 0;
    case VarType::Null:
      throw Error::runtime(err::kInvalidUseOfNull);
    case VarType::Boolean:
      return v.boolean() ? -1 : 0;
    case VarType::Long:
      return v.lng();
    case VarType::Double:
      return longFromDouble(v.dbl());
    case VarType::Date:
      return longFromDouble(v.date().days);
    case VarType::Currency: {
      const std::int64_t raw = v.cur().raw;
      std::int64_t q = raw / 10000;
      const std::int64_t r = raw % 10000;
      if (r > 5000 || (r == 5000 && (q & 1))) ++q;
      if (r < -5000 || (r == -5000 && (q & 1))) --q;
      if (q < std::numeric_limits<std::int32_t>::min() ||
          q > std::numeric_limits<std::int32_t>::max()) {
        throw Error::runtime(err::kOverflow);
      }
      return static_cast<std::int32_t>(q);
    }
    case VarType::String: {
      bool b = false;
      if (booleanWord(v.str(), b)) return b ? -1 : 0;
      return longFromDecimal(DecimalNumber::parse(v.str()));
    }
    case VarType::LongLong:
      if (v.longLong() < std::numeric_limits<std::int32_t>::min() ||
          v.longLong() > std::numeric_limits<std::int32_t>::max()) {
        throw Error::runtime(err::kOverflow);
      }
      return static_cast<std::int32_t>(v.longLong());
    case VarType::Decimal:
      return longFromDecimal(decimalOf(v.decimal()));
    case VarType::Missing:
      break;
  }
  throw Error::runtime(err::kTypeMismatch);
}

double toDouble(const Variant& v) {
  switch (v.type()) {
    case VarType::Empty:
      return 0;
    case VarType::Null:
      throw Error::runtime(err::kInvalidUseOfNull);
    case VarType::Boolean:
      return v.boolean() ? -1 : 0;
    case VarType::Long:
      return v.lng();
    case VarType::Double:
      return v.dbl();
    case VarType::Date:
      return v.date().days;
    case VarType::Currency:
      return static_cast<double>(v.cur().raw) / 10000.0;
    case VarType::String: {
      bool b = false;
      if (booleanWord(v.str(), b)) return b ? -1 : 0;
      return parseNumber(v.str());
    }
    case VarType::LongLong:
      return static_cast<double>(v.longLong());
    case VarType::Decimal:
      return decimalOf(v.decimal()).toDouble();
    case VarType::Missing:
      break;
  }
  throw Error::runtime(err::kTypeMismatch);
}

Currency toCurrency(const Variant& v) {
  switch (v.type()) {
    case VarType::Empty:
      return {};
    case VarType::Null:
      throw Error::runtime(err::kInvalidUseOfNull);
    case VarType::Boolean:
      return Currency{v.boolean() ? -10000 : 0};
    case VarType::Long:
      return Currency{static_cast<std::int64_t>(v.lng()) * 10000};
    case VarType::Double:
      return currencyFromDouble(v.dbl());
    case VarType::Date:
      return currencyFromDouble(v.date().days);
    case VarType::Currency:
      return v.cur();
    case VarType::String: {
      bool b = false;
      if (booleanWord(v.str(), b)) return Currency{b ? -10000 : 0};
      return currencyFromDecimal(DecimalNumber::parse(v.str()));
    }
    case VarType::LongLong:
      return currencyFromDecimal(DecimalNumber::fromInteger(v.longLong()));
    case VarType::Decimal:
      return currencyFromDecimal(decimalOf(v.decimal()));
    case VarType::Missing:
      break;
  }
  throw Error::runtime(err::kTypeMismatch);
}

Date toDate(const Variant& v) {
  double d = 0;
  switch (v.type()) {
    case VarType::Null:
      throw Error::runtime(err::kInvalidUseOfNull);
    case VarType::Date:
      return v.date();
    case VarType::String:
      return parseDate(v.str());
    default:
      d = toDouble(v);
      break;
  }
  if (!(d > kMinDate - 1 && d < kMaxDate)) throw Error::runtime(err::kOverflow);
  return Date{d};
}

bool toBoolean(const Variant& v) {
  if (v.type() == VarType::String) {
    bool b = false;
    if (booleanWord(v.str(), b)) return b;
  }
  return toDouble(v) != 0;
}

std::u16string toString(const Variant& v) {
  switch (v.type()) {
    case VarType::Empty:
      return {};
    case VarType::Null:
      throw Error::runtime(err::kInvalidUseOfNull);
    case VarType::Boolean:
      return v.boolean() ? u"True" : u"False";
    case VarType::Long:
      return longText(v.lng());
    case VarType::Double:
      return doubleText(v.dbl());
    case VarType::Date:
      return dateText(v.date());
    case VarType::Currency:
      return currencyText(v.cur());
    case VarType::String:
      return v.str();
    case VarType::LongLong:
      return ascii(std::to_string(v.longLong()));
    case VarType::Decimal: {
      std::u16string s = ascii(v.decimal().text);
      for (auto& c : s) {
        if (c == u'.') c = threadSeparators().decimal;
      }
      return s;
    }
    case VarType::Missing:
      break;
  }
  throw Error::runtime(err::kTypeMismatch);
}

}  // namespace vrdppo
