// The conversions: number and date text parsed and formatted. Each text either converts or
// raises the library's error, the raising and the answering forms agree, and what the library
// writes it reads back as the same value.
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "fuzz_input.hpp"
#include "vrdppo/variant.hpp"

using namespace vrdppo;

namespace {

void text(const std::u16string& s) {
  const std::optional<Date> tried = tryParseDate(s);
  Date parsed{};
  const bool raised = !fuzz::answers([&] { parsed = parseDate(s); });
  check(raised == !tried.has_value());
  if (tried) {
    check(parsed == *tried);
    // The general date form names the same second.
    std::u16string shown;
    if (fuzz::answers([&] { shown = dateText(*tried); })) {
      const auto again = tryParseDate(shown);
      check(again.has_value());
      const auto a = trySplitDate(*tried);
      const auto b = trySplitDate(*again);
      check(a && b && a->year == b->year && a->month == b->month && a->day == b->day &&
            a->hour == b->hour && a->minute == b->minute && a->second == b->second);
    }
  }
  double number = 0;
  if (fuzz::answers([&] { number = parseNumber(s); }) && std::isfinite(number)) {
    std::u16string shown;
    double back = 0;
    if (fuzz::answers([&] { shown = doubleText(number); }) &&
        fuzz::answers([&] { back = parseNumber(shown); })) {
      check(doubleText(back) == shown);
    }
  }
  const Variant v(s);
  fuzz::answers([&] { toLong(v); });
  fuzz::answers([&] { toCurrency(v); });
  fuzz::answers([&] { toDouble(v); });
  fuzz::answers([&] { toDate(v); });
  fuzz::answers([&] { toBoolean(v); });
}

void values(fuzz::Input& in) {
  const auto l = in.integer<std::int32_t>();
  check(toLong(Variant(longText(l))) == l);
  const Currency c{in.integer<std::int64_t>()};
  check(toCurrency(Variant(currencyText(c))) == c);
  const double d = in.integer<double>();
  if (!std::isfinite(d)) return;
  std::u16string shown;
  if (fuzz::answers([&] { shown = doubleText(d); })) {
    // Fifteen digits: the text of what the text reads as is the same text. Near the largest
    // Double the fifteen digits round past it, and reading them back overflows.
    double back = 0;
    if (fuzz::answers([&] { back = parseNumber(shown); })) {
      check(doubleText(back) == shown);
      check(doubleText(toDouble(Variant(shown))) == shown);
    }
  }
  fuzz::answers([&] { longFromDouble(d); });
  fuzz::answers([&] { currencyFromDouble(d); });
  const auto parts = trySplitDate(Date{d});
  Date date{};
  check(parts.has_value() == fuzz::answers([&] { splitDate(Date{d}); }));
  if (parts && fuzz::answers([&] {
        date = makeDate(parts->year, parts->month, parts->day, parts->hour, parts->minute,
                        parts->second);
      })) {
    // The parts name the same second as the value they came from.
    const auto back = trySplitDate(date);
    check(back && back->year == parts->year && back->month == parts->month &&
          back->day == parts->day && back->hour == parts->hour && back->minute == parts->minute &&
          back->second == parts->second);
  }
  fuzz::answers([&] { dateText(Date{d}); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input in(data, size);
  if (in.byte() & 1) {
    values(in);
  } else {
    text(in.rest());
  }
  return 0;
}
