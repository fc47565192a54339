// The criteria builder: any template and values either build or raise the library's error 5,
// and what is built reads as the template did, each value one token in a placeholder's place (a
// negative number two): no ";", no "--" comment, parentheses balanced, a string value one string.
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "fuzz_input.hpp"
#include "providers/embedded/tokenizer.hpp"
#include "vrdppo/criteria.hpp"

using namespace vrdppo;

namespace {

Variant value(fuzz::Input& in) {
  switch (in.byte() % 7) {
    case 0:
      return Variant(in.integer<std::int32_t>());
    case 1:
      return Variant(in.integer<double>());
    case 2:
      return Variant(Date{in.integer<double>()});
    case 3:
      return Variant(Currency{in.integer<std::int64_t>()});
    case 4:
      return Variant::null();
    case 5:
      return Variant(in.integer<std::int64_t>());
    default:
      return Variant(in.units(in.byte() % 64));
  }
}

struct Shape {
  std::size_t strings = 0;
  std::size_t tokens = 0;  // neither space nor comment
};

Shape shape(const embedded::Tokens& t) {
  Shape s;
  int depth = 0;
  for (std::size_t i = 0; i < t.size(); ++i) {
    const auto kind = t[i].kind;
    const auto text = t.text(i);
    check(!(kind == embedded::Tok::Comment && text.starts_with(u"--")));
    check(!(kind == embedded::Tok::Punct && text == u";"));
    if (kind == embedded::Tok::Punct && text == u"(") ++depth;
    if (kind == embedded::Tok::Punct && text == u")") check(--depth >= 0);
    if (kind == embedded::Tok::String) ++s.strings;
    if (kind != embedded::Tok::Space && kind != embedded::Tok::Comment) ++s.tokens;
  }
  check(depth == 0);
  return s;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input in(data, size);
  std::vector<Variant> values(in.byte() % 5);
  for (auto& v : values) v = value(in);
  const std::u16string templ = in.rest();
  std::u16string built;
  const std::int32_t number = fuzz::errorNumber([&] { built = buildCriteria(templ, values); });
  if (number != 0) {
    check(number == 5);
    return 0;
  }
  const embedded::Tokens before(templ);
  const embedded::Tokens after(built);
  const Shape a = shape(before);
  const Shape b = shape(after);
  std::size_t strings = 0;
  std::size_t extra = 0;  // a negative number is a sign and a number
  for (const Variant& v : values) {
    if (v.type() == VarType::String || v.type() == VarType::Date) ++strings;  // a date is quoted
    if (!built.empty() && (v.type() == VarType::Long || v.type() == VarType::LongLong ||
                           v.type() == VarType::Double || v.type() == VarType::Currency)) {
      const double n = v.type() == VarType::Long       ? v.lng()
                       : v.type() == VarType::LongLong ? static_cast<double>(v.longLong())
                       : v.type() == VarType::Double   ? v.dbl()
                                                       : static_cast<double>(v.cur().raw);
      if (n < 0) ++extra;
    }
  }
  // A quoted value (a string, a date) right after an N of the template is one N'...' token.
  std::size_t merged = 0;
  std::size_t placeholder = 0;
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (before[i].kind != embedded::Tok::Punct || before.text(i) != u"?") continue;
    const Variant& v = values[placeholder++];
    if (i > 0 && before[i - 1].end == before[i].begin &&
        before[i - 1].kind == embedded::Tok::Word &&
        (before.text(i - 1) == u"N" || before.text(i - 1) == u"n") &&
        (v.type() == VarType::String || v.type() == VarType::Date)) {
      ++merged;
    }
  }
  check(b.strings == a.strings + strings);
  check(b.tokens == a.tokens + extra - merged);
  return 0;
}
