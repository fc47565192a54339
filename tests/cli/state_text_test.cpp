// The tool's text form of a state: whatever a state holds, its text reads back to the same code
// units, also after the trimming a shell or a file may apply around it.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "fields.hpp"

namespace {

using vrdppo::cli::escapeState;
using vrdppo::cli::unescapeState;

TEST(StateText, BlanksAtEitherEndSurvive) {
  // A Long field holding 32 starts its state with U+0020.
  for (const std::u16string& s :
       {std::u16string(u" "), std::u16string(u"  "), std::u16string(u" \0\0\0", 4),
        std::u16string(u"ab "), std::u16string(u" a b ")}) {
    const std::string text = escapeState(s);
    EXPECT_EQ(unescapeState(text), s) << text;
    EXPECT_EQ(unescapeState("  \"" + text + "\"\n"), s) << text;
  }
  EXPECT_EQ(escapeState(u" a b "), "\\u0020a b\\u0020");
  // Nor is a leading '-' taken for an option on the command line.
  EXPECT_EQ(escapeState(u"-a-"), "\\u002da-");
}

}  // namespace

// A Double field's text sets the field to the same bits: every NaN among them, whose payload a
// state may carry and which "nan" alone would not keep.
TEST(StateText, EveryDoubleFieldReadsBackToItsBits) {
  const vrdppo::Column column{
      u"Weight", u"Weight", vrdppo::FieldType::Double, 0, 0, vrdppo::Render::None, u""};
  for (const std::uint64_t bits :
       {0x7ff8000000000000ull, 0xfff8000000000000ull, 0x7ff0000000000001ull, 0xffffffffffffffffull,
        0x8000000000000000ull, 0x7ff0000000000000ull, 0x3ff0000000000001ull}) {
    std::byte record[8];
    std::memcpy(record, &bits, 8);
    const std::string text = vrdppo::cli::fieldText(column, record);
    std::byte back[8] = {};
    vrdppo::cli::setFieldText(column, back, text);
    EXPECT_EQ(std::memcmp(record, back, 8), 0) << text;
  }
}

// A Date field's text is exact to the bit too: -0 days is no midnight of 1899-12-30.
TEST(StateText, EveryDateFieldReadsBackToItsBits) {
  const vrdppo::Column column{
      u"LastUpdated", u"LastUpdated", vrdppo::FieldType::Date, 0, 0, vrdppo::Render::None, u""};
  for (const double days : {-0.0, 0.0, 36526.5, -1.25, 1e-12}) {
    std::byte record[8];
    std::memcpy(record, &days, 8);
    const std::string text = vrdppo::cli::fieldText(column, record);
    std::byte back[8] = {};
    vrdppo::cli::setFieldText(column, back, text);
    EXPECT_EQ(std::memcmp(record, back, 8), 0) << text;
  }
}
