// Criteria built from a template and values: each value written as the statements write one of
// its kind, what cannot be written refused by its place, and on the store, for values chosen to
// break a statement, exactly the rows holding the value and a statement of the same shape.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "endtoend/store_fixture.hpp"
#include "support/hostile_criteria.hpp"
#include "vrdppo/criteria.hpp"
#include "vrdppo/error.hpp"

namespace vrdppo::testing {

namespace {

std::u16string build(std::u16string_view templ, std::vector<Variant> values) {
  return buildCriteria(templ, values);
}

using CriteriaOnTheStore = StoreTest;

}  // namespace

TEST(Criteria, ValuesAreWrittenAsTheStatementsWriteThem) {
  const struct {
    std::u16string templ;
    std::vector<Variant> values;
    std::u16string expected;
  } cases[] = {
      {u"StationId = ?", {Variant(Long{7})}, u"StationId = 7"},
      {u"Code = ? AND Weight > ?",
       {Variant(u"O'N"), Variant(12.5)},
       u"Code = 'O''N' AND Weight > 12.5"},
      {u"Code = ?", {Variant(u"  padded  ")}, u"Code = 'padded'"},  // as a field is written
      {u"SampleTime >= ?",
       {Variant(makeDate(2019, 3, 7, 14, 5, 9))},
       u"SampleTime >= '2019/03/07 14:05:09'"},
      {u"Price = ?", {Variant(Currency{12345})}, u"Price = 1.2345"},
      {u"x = '?' AND [a?] = ? /* ? */ AND y = \"?\"",
       {Variant(Long{5})},
       u"x = '?' AND [a?] = 5 /* ? */ AND y = \"?\""},
      {u"ContainerStart IS ?", {Variant::null()}, u"ContainerStart IS Null"},
      // Glued to the template's own text, a value stays a token of its own.
      {u"Weight > -?", {Variant(Long{-1})}, u"Weight > - -1"},
      {u"Weight > ?e5", {Variant(Long{1})}, u"Weight > 1 e5"},
      {u"Weight > 2e-?", {Variant(Long{5})}, u"Weight > 2e- 5"},  // not the number 2e-5
      {u"Code = '?'?", {Variant(u"a")}, u"Code = '?' 'a'"},       // not one string 'a''a'
      {u"Name = N?", {Variant(u"\u4e2d")}, u"Name = N'\u4e2d'"},
      {u"Name = N'?' OR Name = ?", {Variant(u"a")}, u"Name = N'?' OR Name = 'a'"},
      {u"Id IN (SELECT Id FROM T WHERE Code = ?)",
       {Variant(u"a")},
       u"Id IN (SELECT Id FROM T WHERE Code = 'a')"},
      {u"", {}, u""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(toUtf8(c.templ));
    EXPECT_EQ(build(c.templ, c.values), c.expected);
  }
}

TEST(Criteria, WhatCannotBeWrittenIsRefusedNamingItsPlace) {
  const double inf = std::numeric_limits<double>::infinity();
  const struct {
    std::u16string templ;
    std::vector<Variant> values;
    std::string says;
  } cases[] = {
      {u"a = ? AND b = ?", {Variant(Long{1})}, "placeholder 2 (character 15): no value for it"},
      {u"a = ?", {Variant(Long{1}), Variant(Long{2})}, "2 values for 1 placeholders"},
      {u"a = ?",
       {Variant(std::u16string(u"x\0y", 3))},
       "placeholder 1 (character 5): a string "
       "holding U+0000"},
      {u"a = ?", {Variant(makeDate(1700, 1, 1))}, "before 1753-01-01"},
      {u"a = ?", {Variant(inf)}, "not a finite number"},
      {u"a = ?", {Variant(true)}, "type Boolean"},
      {u"a = ?", {Variant()}, "type Empty"},
      {u"a = 1; DROP TABLE STEMS", {}, "\";\" (character 6)"},
      {u"a = 1 -- the rest", {}, "\"--\" comment"},
      {u"a = 1) OR (1 = 1", {}, "closes nothing"},
      {u"a = (1", {}, "is not closed"},
      {u"a = 1 UNION SELECT 1", {}, "\"SELECT\" (character 13) begins another statement"},
      {u"a = 1 exec sp_x", {}, "\"exec\""},
      {u"a = 'x", {}, "does not end what it opens"},
      {u"a = 1 /* open", {}, "does not end what it opens"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(toUtf8(c.templ));
    try {
      (void)build(c.templ, c.values);
      ADD_FAILURE() << "not refused";
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), err::kInvalidCall);
      EXPECT_NE(e.description().find(c.says), std::string::npos) << e.description();
    }
  }
}

TEST_F(CriteriaOnTheStore, AValueSelectsExactlyTheRowsHoldingIt) {
  expectCriteriaSelectExactlyTheirRows(connect);
}

}  // namespace vrdppo::testing
