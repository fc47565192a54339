// Records: the field types, the column tables that describe a record to the generic code, and the
// render codes by which a column's value becomes SQL text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>

#include "vrdppo/variant.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

using Long = std::int32_t;
using Double = double;

// String*N: N UTF-16 code units, blank padded, no terminator.
template <std::size_t N>
struct FixedString {
  char16_t c[N];
  std::u16string_view view() const noexcept { return {c, N}; }
};

// A String*N field set from text: cut to N characters, padded with blanks.
template <std::size_t N>
void put(FixedString<N>& field, std::u16string_view s) noexcept {
  const std::size_t n = s.size() < N ? s.size() : N;
  std::size_t i = 0;
  for (; i < n; ++i) field.c[i] = s[i];
  for (; i < N; ++i) field.c[i] = u' ';
}

// A String*N field's text without the blanks at either end.
template <std::size_t N>
std::u16string text(const FixedString<N>& field) {
  std::u16string_view v = field.view();
  while (!v.empty() && v.front() == u' ') v.remove_prefix(1);
  while (!v.empty() && v.back() == u' ') v.remove_suffix(1);
  return std::u16string(v);
}

enum class FieldType : std::uint8_t { Long, Double, Currency, Date, String };

enum class Render : std::uint8_t { None, L, L0, D, D0, C, C0, S, S0, T, T0 };

// One column of a record: where it lies, how a row names it, how the lists and FieldValue name
// it, and how its value becomes SQL text.
struct Column {
  std::u16string_view read;
  std::u16string_view write;
  FieldType type;
  std::uint16_t offset;
  std::uint16_t length;  // characters of a String*N; 0 otherwise
  Render render;
  std::u16string_view format;  // for T and T0
};

// The String*N behind the last column: a table's key-name literal, or a view's blanks.
struct TrailingField {
  std::uint16_t offset;
  std::uint16_t length;
  std::u16string_view literal;  // empty: blanks
};

struct RecordLayout {
  std::uint16_t bytes;       // R
  std::uint16_t stateChars;  // C
  std::span<const Column> columns;
  TrailingField trailing;
};

template <class T>
struct FieldTraits;
template <>
struct FieldTraits<Long> {
  static constexpr FieldType type = FieldType::Long;
  static constexpr std::uint16_t length = 0;
};
template <>
struct FieldTraits<Double> {
  static constexpr FieldType type = FieldType::Double;
  static constexpr std::uint16_t length = 0;
};
template <>
struct FieldTraits<Currency> {
  static constexpr FieldType type = FieldType::Currency;
  static constexpr std::uint16_t length = 0;
};
template <>
struct FieldTraits<Date> {
  static constexpr FieldType type = FieldType::Date;
  static constexpr std::uint16_t length = 0;
};
template <std::size_t N>
struct FieldTraits<FixedString<N>> {
  static constexpr FieldType type = FieldType::String;
  static constexpr std::uint16_t length = N;
};

// A column whose offset the compiler checks against the layout table it was copied from.
template <class T, std::size_t Actual, std::size_t Expected>
consteval Column makeColumn(std::u16string_view read, std::u16string_view write, Render render,
                            std::u16string_view format = {}) {
  static_assert(Actual == Expected, "a field's offset differs from its layout table");
  return Column{read,
                write,
                FieldTraits<T>::type,
                static_cast<std::uint16_t>(Actual),
                FieldTraits<T>::length,
                render,
                format};
}

template <class T, std::size_t Actual, std::size_t Expected>
consteval TrailingField makeTrailing(std::u16string_view literal) {
  static_assert(Actual == Expected, "the trailing field's offset differs from its layout table");
  return TrailingField{static_cast<std::uint16_t>(Actual), FieldTraits<T>::length, literal};
}

// A field's value at an offset of a record image, and back. Records are packed, so fields are
// copied, never referred to.
template <class T>
T readField(const std::byte* record, std::uint16_t offset) noexcept {
  T v;
  std::memcpy(&v, record + offset, sizeof v);
  return v;
}
template <class T>
void writeField(std::byte* record, std::uint16_t offset, const T& v) noexcept {
  std::memcpy(record + offset, &v, sizeof v);
}

// A record's layout: R from the struct, C copied from the class's table.
template <class Record, std::uint16_t StateChars, std::size_t N>
consteval RecordLayout makeLayout(const Column (&columns)[N], TrailingField trailing) {
  static_assert(std::size_t{2} * StateChars >= sizeof(Record),
                "a state must hold the whole record");
  return RecordLayout{static_cast<std::uint16_t>(sizeof(Record)), StateChars, columns, trailing};
}

}  // namespace vrdppo
VRDPPO_PUBLIC_END

// A column spelled alike when read and written.
#define VRDPPO_COL(Rec, member, offset, render)                               \
  ::vrdppo::makeColumn<decltype(Rec::member), offsetof(Rec, member), offset>( \
      u"" #member, u"" #member, ::vrdppo::Render::render)
// A date column with its format.
#define VRDPPO_DATE(Rec, member, offset, render, format)                      \
  ::vrdppo::makeColumn<decltype(Rec::member), offsetof(Rec, member), offset>( \
      u"" #member, u"" #member, ::vrdppo::Render::render, format)
// A column read under one spelling and written under another.
#define VRDPPO_COL2(Rec, member, offset, read, write, render, ...)            \
  ::vrdppo::makeColumn<decltype(Rec::member), offsetof(Rec, member), offset>( \
      read, write, ::vrdppo::Render::render __VA_OPT__(, ) __VA_ARGS__)
#define VRDPPO_TRAILING(Rec, member, offset, literal) \
  ::vrdppo::makeTrailing<decltype(Rec::member), offsetof(Rec, member), offset>(literal)
