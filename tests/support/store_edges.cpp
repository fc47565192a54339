#include "support/store_edges.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "vrdppo/buffer.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/render.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::testing {

namespace {

struct Edge {
  const char* name;
  const char* className;
  std::u16string_view field;
  Variant value;
  // What Load gives back; none when the commit is refused, with `refusal` its SQLSTATE.
  std::optional<Variant> expected;
  const char* refusal = "";
};

constexpr std::int64_t kMaxCurrency = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMinCurrency = std::numeric_limits<std::int64_t>::min();

const Column& columnOf(const RecordLayout& layout, std::u16string_view name) {
  for (const Column& c : layout.columns) {
    if (c.read == name) return c;
  }
  throw std::logic_error("no column " + toUtf8(name));
}

}  // namespace

void expectStoreEdges(const std::u16string& connect) {
  const char* packed = "cLabPackedPersist";
  const char* stems = "cStemsPersist";
  const Edge edges[] = {
      // Currency over its whole range, exactly: most of these have more digits than a double.
      {"largest Currency", packed, u"Temperature", Currency{kMaxCurrency}, Currency{kMaxCurrency}},
      {"smallest Currency", packed, u"Temperature", Currency{kMinCurrency}, Currency{kMinCurrency}},
      {"negative largest", packed, u"Temperature", Currency{-kMaxCurrency},
       Currency{-kMaxCurrency}},
      {"2^53 + 1 ten-thousandths", packed, u"Temperature", Currency{9007199254740993},
       Currency{9007199254740993}},
      {"one ten-thousandth over 10^14", packed, u"Temperature", Currency{1000000000000000001},
       Currency{1000000000000000001}},
      {"one ten-thousandth", packed, u"Temperature", Currency{1}, Currency{1}},
      {"ordinary Currency", packed, u"Temperature", Currency{-123456}, Currency{-123456}},
      // Doubles as the library renders them, to 15 digits.
      {"largest Double", stems, u"TotalNetWeight", 1.7976931348623157e308, std::nullopt, "42000"},
      {"smallest Double", stems, u"TotalNetWeight", -1.7976931348623157e308, std::nullopt, "42000"},
      {"4483 kg in lb", stems, u"TotalNetWeight", 4483 * 2.20462, 9883.31146},
      {"fifteen digits", stems, u"TotalNetWeight", 123456789.123456, 123456789.123456},
      {"a small fraction", stems, u"TotalNetWeight", 0.000123, 0.000123},
      // A datetime column holds 1753 to 9999.
      {"first datetime day", packed, u"SampleDateTime", makeDate(1753, 1, 1), makeDate(1753, 1, 1)},
      {"the day before it", packed, u"SampleDateTime", makeDate(1752, 12, 31), std::nullopt,
       "22007"},
      {"the year 100", packed, u"SampleDateTime", makeDate(100, 1, 1), std::nullopt, "22007"},
      {"last datetime second", packed, u"SampleDateTime", makeDate(9999, 12, 31, 23, 59, 59),
       makeDate(9999, 12, 31, 23, 59, 59)},
      {"day zero", packed, u"SampleDateTime", Date{0}, Date{0}},
      {"a leap day", packed, u"SampleDateTime", makeDate(2024, 2, 29, 12, 34, 56),
       makeDate(2024, 2, 29, 12, 34, 56)},
      // Text within the server's code page; a String*2 comes back padded.
      {"full text", packed, u"ResultCode", u"AB", u"AB"},
      {"short text", packed, u"ResultCode", u"A", u"A "},
      {"Latin-1 text", packed, u"ResultCode", u"\u00e9\u00fc", u"\u00e9\u00fc"},
      {"quote", packed, u"ResultCode", u"'", u"' "},
  };
  for (const Edge& e : edges) {
    SCOPED_TRACE(e.name);
    auto object = registry::create(e.className);
    auto& table = dynamic_cast<TableObject&>(*object);
    const Column& column = columnOf(table.layout(), e.field);
    initialiseRecord(table.layout(), table.recordBytes());
    storeField(column, table.recordBytes(), e.value);
    std::string refused;
    try {
      table.Commit(table.GetState(), connect);
    } catch (const Error& error) {
      refused = error.sqlState() + " " + error.description();
    }
    if (!e.expected) {
      EXPECT_EQ(refused.substr(0, 5), e.refusal) << "refused: " << refused;
      continue;
    }
    ASSERT_EQ(refused, "");
    // Loaded after the insert, then written back as an update and loaded again.
    const std::u16string criteria =
        std::u16string(table.config().keyColumn) + u" = " + longText(table.key());
    for (const char* step : {"insert", "update"}) {
      SCOPED_TRACE(step);
      try {
        if (std::string_view(step) == "update") table.Commit(table.GetState(), connect);
        Buffer rows;
        rows.SetState(table.Load(criteria, connect));
        ASSERT_EQ(rows.Count(), 1);
        table.SetState(rows.Item(1));
      } catch (const Error& error) {
        ADD_FAILURE() << error.sqlState() << " " << error.description();
        break;
      }
      const Variant got = fieldValue(column, table.recordBytes());
      EXPECT_EQ(got, *e.expected) << toUtf8(toString(got)) << " for "
                                  << toUtf8(toString(*e.expected));
    }
  }
}

}  // namespace vrdppo::testing
