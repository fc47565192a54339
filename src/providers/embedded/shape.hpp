// A statement's shape: its SQLite text with the values it writes lifted out as parameters, so
// that the writes of one class, which differ only in their values, share one prepared statement.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vrdppo::embedded {

class Statement;

struct ShapeValue {
  enum class Kind : std::uint8_t {
    Integer,  // a decimal literal short enough to be an integer whatever its digits
    Real,     // a literal with a point or an exponent, bound as its text under CAST(? AS REAL)
    Text,     // a string literal, bound as its value
  };
  Kind kind;
  std::int64_t integer = 0;
  std::u16string_view token;  // the literal as it stands in the statement
  bool negated = false;       // a Real: the minus before it is bound with it
};

struct Shape {
  std::u16string text;  // the statement with ?1, ?2, ... where its values stood
  std::vector<ShapeValue> values;

  // Binds each value to its parameter.
  void bind(Statement& st) const;
};

// Shapes are taken only where a parameter means exactly what the literal meant: each value of
// INSERT INTO t [(columns)] VALUES (...)[, (...)], of UPDATE t SET c = value, ... [WHERE c =
// value] and of DELETE FROM t WHERE c = value, where a value is a lone number or string
// literal, optionally negated. Any other statement, or one with parameters, comments or nothing
// to lift, has no shape.
std::optional<Shape> shapeOf(std::u16string_view sqlite);

// More parameters than this and a statement is prepared as it stands.
inline constexpr std::size_t kMaxShapeValues = 500;

}  // namespace vrdppo::embedded
