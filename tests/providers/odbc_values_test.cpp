#include <gtest/gtest.h>

#include <limits>
#include <optional>

#include "../../src/providers/odbc/odbc_values.hpp"
#include "vrdppo/error.hpp"

namespace vrdppo::odbc {
namespace {

TEST(OdbcErrorNumber, FollowsTheSqlStateClass) {
  const struct {
    const char* state;
    std::int32_t number;
  } cases[] = {
      {"42S02", err::kMissingTable},    {"S0002", err::kMissingTable},
      {"42000", err::kCommandError},    {"42S22", err::kCommandError},
      {"37000", err::kCommandError},    {"22012", err::kCommandError},
      {"23000", err::kCommandError},    {"08001", err::kProviderFailure},
      {"28000", err::kProviderFailure}, {"IM002", err::kProviderFailure},
      {"HY000", err::kProviderFailure}, {"HYT00", err::kProviderFailure},
      {"01000", err::kProviderFailure}, {"", err::kProviderFailure},
  };
  for (const auto& c : cases) EXPECT_EQ(errorNumberFor(c.state), c.number) << c.state;
}

TEST(OdbcDecimalText, BecomesPlainDigitsWithAPoint) {
  const struct {
    const char16_t* text;
    std::optional<std::string> plain;
  } cases[] = {
      {u"12.34", "12.34"},   {u".5000", "0.5000"},     {u"-.5", "-0.5"},
      {u"+007.10", "7.10"},  {u"1,25", "1.25"},        {u"1.5E+3", "1500"},
      {u"1.5e-3", "0.0015"}, {u"-0.00", "0.00"},       {u" 42 ", "42"},
      {u"-120E-1", "-12.0"}, {u"abc", std::nullopt},   {u"", std::nullopt},
      {u"1e", std::nullopt}, {u"1.2.3", std::nullopt}, {u"12abc", std::nullopt},
      {u".", std::nullopt},  {u"-", std::nullopt},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(normaliseDecimal(c.text), c.plain) << std::string(c.plain.value_or("(none)"));
  }
}

TEST(OdbcDecimalText, BecomesCurrencyRoundingHalfToEven) {
  constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
  constexpr auto kMin = std::numeric_limits<std::int64_t>::min();
  const struct {
    const char* plain;
    std::int64_t raw;
  } cases[] = {
      {"123.4567", 1234567},
      {"-1.5", -15000},
      {"0.00005", 0},
      {"0.00015", 2},
      {"0.00025", 2},
      {"0.000250001", 3},
      {"-0.00035", -4},
      {"922337203685477.5807", kMax},
      {"-922337203685477.5808", kMin},
  };
  for (const auto& c : cases) EXPECT_EQ(currencyFromDecimal(c.plain).raw, c.raw) << c.plain;

  for (const char* tooBig : {"922337203685477.5808", "-922337203685477.5809",
                             "922337203685477.58075", "100000000000000000000"}) {
    try {
      currencyFromDecimal(tooBig);
      ADD_FAILURE() << tooBig;
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), err::kOverflow) << tooBig;
    }
  }
}

}  // namespace
}  // namespace vrdppo::odbc
