#include <gtest/gtest.h>

#include "support/error_number.hpp"

#include <cmath>
#include <limits>

#include "vrdppo/error.hpp"
#include "vrdppo/locale.hpp"
#include "vrdppo/text.hpp"
#include "vrdppo/variant.hpp"

using namespace vrdppo;
using vrdppo::testing::numberOf;

TEST(NumberText, DoublesAtFifteenSignificantDigits) {
  const double pi = 3.14159265358979323846;
  struct Case {
    double value;
    const char* text;
  } cases[] = {
      {0.0, "0"},
      {-0.0, "0"},
      {125.5, "125.5"},
      {-3, "-3"},
      {pi, "3.14159265358979"},
      {12.345678901234567, "12.3456789012346"},
      {999999999999999.0, "999999999999999"},
      {1e15, "1E+15"},
      {1.2e15, "1.2E+15"},
      {1.0 / 30, "3.33333333333333E-02"},
      {5.6789e-11, "0.000000000056789"},
      {5.6789e-12, "5.6789E-12"},
      {0.1, "0.1"},
      {-1e-300, "-1E-300"},
      {1.7976931348623157e308, "1.79769313486232E+308"},
      {123456789012345678.0, "1.23456789012346E+17"},
  };
  for (const auto& c : cases) EXPECT_EQ(toUtf8(doubleText(c.value)), c.text) << c.value;
  EXPECT_EQ(numberOf([] { doubleText(std::numeric_limits<double>::quiet_NaN()); }), err::kOverflow);
}

TEST(NumberText, CurrencyExactlyAndLongPlainly) {
  struct Case {
    std::int64_t raw;
    const char* text;
  } cases[] = {{15000, "1.5"},
               {10000, "1"},
               {-15000, "-1.5"},
               {9, "0.0009"},
               {125000, "12.5"},
               {0, "0"},
               {std::numeric_limits<std::int64_t>::max(), "922337203685477.5807"},
               {std::numeric_limits<std::int64_t>::min(), "-922337203685477.5808"}};
  for (const auto& c : cases) EXPECT_EQ(toUtf8(currencyText(Currency{c.raw})), c.text);
  EXPECT_EQ(toUtf8(longText(std::numeric_limits<std::int32_t>::min())), "-2147483648");
}

TEST(NumberText, FollowsTheThreadsDecimalSeparator) {
  threadSeparators().decimal = u',';
  EXPECT_EQ(doubleText(125.5), u"125,5");
  EXPECT_EQ(currencyText(Currency{15000}), u"1,5");
  EXPECT_EQ(toDouble(Variant(u"1.234,5")), 1234.5);
  threadSeparators() = LocaleSeparators{};
}

TEST(Coercion, ToLongRoundsHalfToEvenAndChecksRange) {
  struct Case {
    Variant in;
    std::int32_t out;
  } cases[] = {
      {0.5, 0},
      {1.5, 2},
      {2.5, 2},
      {-1.5, -2},
      {0.6, 1},
      {true, -1},
      {false, 0},
      {Currency{25000}, 2},
      {Currency{35000}, 4},
      {u" 12 ", 12},
      {u"(5)", -5},
      {u"5-", -5},
      {u"1,234", 1234},
      {u"&HFFFFFFFF", -1},
      {u"&O17", 15},
      {u"2.5", 2},
      {u"3.5", 4},
      {u"1e3", 1000},
      {Variant(), 0},
      {Decimal{"12.50"}, 12},
      {std::int64_t{7}, 7},
      {u"True", -1},
  };
  for (const auto& c : cases) EXPECT_EQ(toLong(c.in), c.out) << toUtf8(toString(c.in));

  struct Bad {
    Variant in;
    std::int32_t error;
  } bad[] = {
      {2147483647.5, err::kOverflow},
      {-2147483648.6, err::kOverflow},
      {u"2147483648", err::kOverflow},
      {u"", err::kTypeMismatch},
      {u"abc", err::kTypeMismatch},
      {u"12abc", err::kTypeMismatch},
      {u",5", err::kTypeMismatch},
      {u"1e", err::kTypeMismatch},
      {u"(5", err::kTypeMismatch},
      {Variant::null(), err::kInvalidUseOfNull},
      {std::int64_t{1} << 40, err::kOverflow},
  };
  for (const auto& b : bad) {
    EXPECT_EQ(numberOf([&] { toLong(b.in); }), b.error);
  }
  EXPECT_EQ(toLong(Variant(-2147483648.5)), std::numeric_limits<std::int32_t>::min());
}

TEST(Coercion, ToCurrencyAndDouble) {
  EXPECT_EQ(toCurrency(Variant(1.23455)).raw, 12346);     // 12345.5 is not exact in binary
  EXPECT_EQ(toCurrency(Variant(u"1.23445")).raw, 12344);  // text rounds on its own digits
  EXPECT_EQ(toCurrency(Variant(u"922337203685477.5807")).raw,
            std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(numberOf([] { toCurrency(Variant(u"922337203685478")); }), err::kOverflow);
  EXPECT_EQ(toCurrency(Variant(Decimal{"1234.5678"})).raw, 12345678);
  EXPECT_EQ(toDouble(Variant(Currency{15000})), 1.5);
  EXPECT_EQ(toDouble(Variant(u"-1.25E+2")), -125.0);
}

TEST(Dates, SplitAndMakeAgree) {
  struct Case {
    double days;
    DateParts parts;
  } cases[] = {
      {0, {1899, 12, 30, 0, 0, 0}},
      {2.0, {1900, 1, 1, 0, 0, 0}},
      {-1.25, {1899, 12, 29, 6, 0, 0}},
      {0.25, {1899, 12, 30, 6, 0, 0}},
      {-0.25, {1899, 12, 30, 6, 0, 0}},
      {-657434, {100, 1, 1, 0, 0, 0}},
      {2958465, {9999, 12, 31, 0, 0, 0}},
      {43531 + (14 * 3600 + 5 * 60 + 9) / 86400.0, {2019, 3, 7, 14, 5, 9}},
      {43531.99999999, {2019, 3, 8, 0, 0, 0}},  // rounds up, carrying into the day
  };
  for (const auto& c : cases) {
    const DateParts p = splitDate(Date{c.days});
    EXPECT_EQ(std::tie(p.year, p.month, p.day, p.hour, p.minute, p.second),
              std::tie(c.parts.year, c.parts.month, c.parts.day, c.parts.hour, c.parts.minute,
                       c.parts.second))
        << c.days;
  }
  EXPECT_EQ(makeDate(1900, 1, 1).days, 2.0);
  EXPECT_EQ(makeDate(1899, 12, 29, 6).days, -1.25);
  EXPECT_EQ(numberOf([] { makeDate(2019, 2, 29); }), err::kInvalidCall);
  EXPECT_EQ(numberOf([] { splitDate(Date{3e6}); }), err::kInvalidCall);
  EXPECT_EQ(numberOf([] { splitDate(Date{std::nan("")}); }), err::kInvalidCall);
}

TEST(Dates, ParseTheCommonForms) {
  const double d = makeDate(2019, 3, 7, 14, 5, 9).days;
  const double day = makeDate(2019, 3, 7).days;
  struct Case {
    const char16_t* text;
    double days;
  } cases[] = {
      {u"2019/03/07 14:05:09", d},
      {u"2019-03-07 14:05:09", d},
      {u"2019-03-07T14:05:09", d},
      {u"3/7/2019 2:05:09 PM", d},
      {u"2019/03/07", day},
      {u"7 March 2019", day},
      {u"Mar 7, 2019", day},
      {u"13/3/2019", makeDate(2019, 3, 13).days},
      {u"14:05", (14 * 60 + 5) / 1440.0},
  };
  for (const auto& c : cases) {
    EXPECT_DOUBLE_EQ(parseDate(c.text).days, c.days) << toUtf8(c.text);
    EXPECT_EQ(tryParseDate(c.text), Date{c.days}) << toUtf8(c.text);
  }
  for (const char16_t* bad : {u"", u"abc", u"2019/02/30", u"14:05:09.5", u"25:00", u"0/0/0",
                              u"2019/13/01", u"99999/1/1"}) {
    EXPECT_EQ(numberOf([&] { parseDate(bad); }), err::kTypeMismatch) << toUtf8(bad);
    EXPECT_EQ(tryParseDate(bad), std::nullopt) << toUtf8(bad);
  }
}

// The forms that answer nullopt agree with the ones that raise, on both sides of each limit.
TEST(Dates, TheNonRaisingFormsAgreeWithTheRaisingOnes) {
  for (const double days : {kMinDate, kMinDate - 0.5, kMinDate - 1, kMaxDate - 1e-6, kMaxDate, 0.0,
                            -1.25, 3e6, std::nan(""), HUGE_VAL}) {
    const auto parts = trySplitDate(Date{days});
    if (numberOf([&] { splitDate(Date{days}); }) == err::kInvalidCall) {
      EXPECT_FALSE(parts) << days;
    } else {
      ASSERT_TRUE(parts) << days;
      EXPECT_EQ(parts->year, splitDate(Date{days}).year);
    }
  }
  struct Fields {
    int year, month, day, hour, minute;
    double second;
    bool valid;
  };
  for (const Fields& f :
       {Fields{2024, 2, 29, 0, 0, 0, true}, Fields{2023, 2, 29, 0, 0, 0, false},
        Fields{2024, 0, 1, 0, 0, 0, false}, Fields{2024, 13, 1, 0, 0, 0, false},
        Fields{99, 1, 1, 0, 0, 0, false}, Fields{9999, 12, 31, 23, 59, 59.5, true},
        Fields{2024, 1, 1, 24, 0, 0, false}, Fields{2024, 1, 1, 0, 0, 60, false}}) {
    const auto d = tryMakeDate(f.year, f.month, f.day, f.hour, f.minute, f.second);
    EXPECT_EQ(d.has_value(), f.valid) << f.year << "-" << f.month << "-" << f.day;
    EXPECT_EQ(numberOf([&] { makeDate(f.year, f.month, f.day, f.hour, f.minute, f.second); }),
              f.valid ? 0 : err::kInvalidCall);
  }
}

TEST(Coercion, ToStringOfEachType) {
  EXPECT_EQ(toString(Variant(true)), u"True");
  EXPECT_EQ(toString(Variant(makeDate(2019, 3, 7, 14, 5, 9))), u"3/7/2019 2:05:09 PM");
  EXPECT_EQ(toString(Variant(makeDate(2019, 3, 7))), u"3/7/2019");
  EXPECT_EQ(toString(Variant(Date{0.5})), u"12:00:00 PM");
  EXPECT_EQ(toString(Variant(std::int64_t{-5000000000})), u"-5000000000");
  EXPECT_EQ(numberOf([] { toString(Variant::null()); }), err::kInvalidUseOfNull);
}

// The ASCII run at the front is copied apart from the rest; what follows it must still encode.
TEST(Utf8, EncodesWhateverFollowsAnAsciiRun) {
  struct Case {
    std::u16string in;
    std::string out;
  } cases[] = {
      {u"", ""},
      {u"SELECT 1", "SELECT 1"},
      {u"\u00e9", "\xc3\xa9"},
      {u"caf\u00e9 au lait", "caf\xc3\xa9 au lait"},
      {u"x\u20ac\u00e9y", "x\xe2\x82\xac\xc3\xa9y"},
      {u"ab\U0001F600c",
       "ab\xf0\x9f\x98\x80"
       "c"},
      {std::u16string(u"a") + char16_t{0xD800} + u"b",
       "a\xef\xbf\xbd"
       "b"},
      {std::u16string(u"a") + char16_t{0xDC00}, "a\xef\xbf\xbd"},
      {std::u16string(u"a\0b", 3), std::string("a\0b", 3)},
      {u"\u007f\u0080", "\x7f\xc2\x80"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(toUtf8(c.in), c.out) << c.out;
    if (c.in.find_first_of(std::u16string{char16_t{0xD800}, char16_t{0xDC00}}) ==
        std::u16string::npos) {
      EXPECT_EQ(fromUtf8(c.out), c.in) << c.out;
    }
  }
}
