#include "vrdppo/render.hpp"

#include <algorithm>
#include <cstring>

#include "vrdppo/dbhelp.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/locale.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo {

namespace {

std::u16string_view stringField(const Column& c, const std::byte* record) {
  return {reinterpret_cast<const char16_t*>(record + c.offset), c.length};
}

void appendPadded(std::u16string& out, int value, int width) {
  std::u16string digits = ascii(std::to_string(value));
  if (digits.size() < static_cast<std::size_t>(width)) out.append(width - digits.size(), u'0');
  out += digits;
}

constexpr double kDefaultDate = 2.0;  // 1900/01/01

}  // namespace

std::u16string formatDate(Date d, std::u16string_view format) {
  const DateParts p = splitDate(d);
  const LocaleSeparators& sep = threadSeparators();
  std::u16string out;
  bool afterHour = false;
  for (std::size_t i = 0; i < format.size();) {
    const auto rest = format.substr(i);
    const auto starts = [&](std::u16string_view token) {
      return rest.size() >= token.size() && equalsNoCase(rest.substr(0, token.size()), token);
    };
    if (starts(u"yyyy")) {
      appendPadded(out, p.year, 4);
      i += 4;
    } else if (starts(u"MM")) {
      appendPadded(out, afterHour ? p.minute : p.month, 2);
      afterHour = false;
      i += 2;
    } else if (starts(u"dd")) {
      appendPadded(out, p.day, 2);
      i += 2;
    } else if (starts(u"HH")) {
      appendPadded(out, p.hour, 2);
      afterHour = true;
      i += 2;
    } else if (starts(u"SS")) {
      appendPadded(out, p.second, 2);
      i += 2;
    } else {
      const char16_t c = format[i++];
      out += c == u'/' ? sep.date : c == u':' ? sep.time : c;
    }
  }
  return out;
}

std::u16string stringLiteral(std::u16string_view text) {
  // The doubled text goes into the SQL only; the field keeps its own.
  const std::u16string doubled = dbHelp::ReplaceAll(std::u16string(text), u"'", u"''");
  const auto trimmed = trimBlanks(doubled);
  std::u16string out;
  out.reserve(trimmed.size() + 2);
  out += u'\'';
  out += trimmed;
  out += u'\'';
  return out;
}

std::u16string dateLiteral(Date d, std::u16string_view format) {
  return u'\'' + formatDate(d, format) + u'\'';
}

std::u16string renderColumn(const Column& c, const std::byte* record) {
  switch (c.render) {
    case Render::None:
      return u"NULL";
    case Render::L:
    case Render::L0: {
      const auto v = readField<Long>(record, c.offset);
      return c.render == Render::L0 && v == 0 ? u"Null" : longText(v);
    }
    case Render::D:
    case Render::D0: {
      const auto v = readField<Double>(record, c.offset);
      return c.render == Render::D0 && v == 0 ? u"Null" : doubleText(v);
    }
    case Render::C:
    case Render::C0: {
      const auto v = readField<Currency>(record, c.offset);
      return c.render == Render::C0 && v.raw == 0 ? u"Null" : currencyText(v);
    }
    case Render::S:
    case Render::S0: {
      const std::u16string_view text = stringField(c, record);
      if (c.render == Render::S0 && trimBlanks(text).empty()) return u"Null";
      return stringLiteral(text);
    }
    case Render::T:
    case Render::T0: {
      const auto v = readField<Date>(record, c.offset);
      if (c.render == Render::T0 && equalsNoCase(formatDate(v, u"yyyy/MM/dd"), u"1900/01/01")) {
        return u"Null";
      }
      return dateLiteral(v, c.format);
    }
  }
  return u"NULL";
}

std::string renderCodeText(const Column& c) {
  static constexpr const char* kCodes[] = {"",   "L", "L0", "D", "D0", "C",
                                           "C0", "S", "S0", "T", "T0"};
  std::string s = kCodes[static_cast<int>(c.render)];
  if (!c.format.empty()) s += " " + toUtf8(c.format);
  return s;
}

const char* fieldTypeText(FieldType type) {
  switch (type) {
    case FieldType::Long:
      return "Long";
    case FieldType::Double:
      return "Double";
    case FieldType::Currency:
      return "Currency";
    case FieldType::Date:
      return "Date";
    case FieldType::String:
      return "String";
  }
  return "?";
}

void initialiseField(const Column& c, std::byte* record) noexcept {
  switch (c.type) {
    case FieldType::Long:
      writeField<Long>(record, c.offset, 0);
      break;
    case FieldType::Double:
      writeField<Double>(record, c.offset, 0.0);
      break;
    case FieldType::Currency:
      writeField<Currency>(record, c.offset, Currency{});
      break;
    case FieldType::Date:
      writeField<Date>(record, c.offset, Date{kDefaultDate});
      break;
    case FieldType::String: {
      auto* s = reinterpret_cast<char16_t*>(record + c.offset);
      std::fill(s, s + c.length, u' ');
      break;
    }
  }
}

void initialiseRecord(const RecordLayout& layout, std::byte* record) {
  for (const Column& c : layout.columns) initialiseField(c, record);
  const TrailingField& t = layout.trailing;
  auto* s = reinterpret_cast<char16_t*>(record + t.offset);
  std::fill(s, s + t.length, u' ');
  std::copy_n(t.literal.data(), std::min<std::size_t>(t.literal.size(), t.length), s);
}

void recordState(const RecordLayout& layout, const std::byte* record, std::u16string& out) {
  out.assign(layout.stateChars, u'\0');
  std::memcpy(out.data(), record, layout.bytes);
}

std::u16string recordState(const RecordLayout& layout, const std::byte* record) {
  std::u16string out;
  recordState(layout, record, out);
  return out;
}

void setRecordState(const RecordLayout& layout, std::byte* record, std::u16string_view state) {
  const std::size_t have = std::min<std::size_t>(state.size(), layout.stateChars);
  const std::size_t bytes = layout.bytes;
  const std::size_t copied = std::min(have * 2, bytes);
  std::memcpy(record, state.data(), copied);
  // A short state is padded with blanks: each missing character is the bytes 0x20 0x00.
  for (std::size_t b = copied; b < bytes; ++b)
    record[b] = b % 2 == 0 ? std::byte{0x20} : std::byte{0x00};
}

void storeField(const Column& c, std::byte* record, const Variant& value) {
  const bool null = value.isNull();
  switch (c.type) {
    case FieldType::Long:
      writeField<Long>(record, c.offset, null ? 0 : toLong(value));
      break;
    case FieldType::Double:
      writeField<Double>(record, c.offset, null ? 0.0 : toDouble(value));
      break;
    case FieldType::Currency:
      writeField<Currency>(record, c.offset, null ? Currency{} : toCurrency(value));
      break;
    case FieldType::Date:
      writeField<Date>(record, c.offset, null ? Date{kDefaultDate} : toDate(value));
      break;
    case FieldType::String: {
      auto* s = reinterpret_cast<char16_t*>(record + c.offset);
      std::size_t n = 0;
      if (!null) {
        if (value.type() == VarType::String) {
          const auto& text = value.str();
          n = std::min<std::size_t>(text.size(), c.length);
          std::copy_n(text.data(), n, s);
        } else {
          const std::u16string text = toString(value);
          n = std::min<std::size_t>(text.size(), c.length);
          std::copy_n(text.data(), n, s);
        }
      }
      std::fill(s + n, s + c.length, u' ');
      break;
    }
  }
}

Variant fieldValue(const Column& c, const std::byte* record) {
  switch (c.type) {
    case FieldType::Long:
      return readField<Long>(record, c.offset);
    case FieldType::Double:
      return readField<Double>(record, c.offset);
    case FieldType::Currency:
      return readField<Currency>(record, c.offset);
    case FieldType::Date:
      return readField<Date>(record, c.offset);
    case FieldType::String:
      return std::u16string(stringField(c, record));
  }
  return {};
}

}  // namespace vrdppo
