// The tool's state text: any state escapes to ASCII and back unchanged, any text unescapes or is
// refused with std::invalid_argument, and every field's text sets the field to what it was.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <vector>

#include "fields.hpp"
#include "fuzz_input.hpp"
#include "vrdppo/render.hpp"
#include "vrdppo/text.hpp"

using namespace vrdppo;

namespace {

std::size_t fieldBytes(const Column& c) {
  return c.type == FieldType::String ? 2u * c.length : c.type == FieldType::Long ? 4u : 8u;
}

void stateRoundTrip(const std::u16string& state) {
  const std::string text = cli::escapeState(state);
  for (const char ch : text) check(ch >= 0x20 && ch < 0x7F);
  check(cli::unescapeState(text) == state);
  check(cli::unescapeState("\"" + text + "\"") == state);
}

void anyText(const std::string& text) {
  std::u16string state;
  try {
    state = cli::unescapeState(text);
  } catch (const std::invalid_argument&) {
    return;
  }
  stateRoundTrip(state);
}

void fields(fuzz::Input& in) {
  const auto& classes = registry::classes();
  const RecordLayout& layout = *classes[in.byte() % classes.size()]->layout;
  std::vector<std::byte> record(layout.bytes);
  setRecordState(layout, record.data(), in.rest());
  for (const Column& c : layout.columns) {
    std::string text;
    if (!fuzz::answers([&] { text = cli::fieldText(c, record.data()); })) continue;
    std::vector<std::byte> copy(layout.bytes);
    try {
      cli::setFieldText(c, copy.data(), text);
    } catch (const std::invalid_argument& e) {
      std::fprintf(stderr, "%s: \"%s\" does not read back: %s\n", toUtf8(c.read).c_str(),
                   text.c_str(), e.what());
      std::abort();  // the tool printed a value it cannot read back
    }
    if (!std::equal(record.begin() + c.offset, record.begin() + c.offset + fieldBytes(c),
                    copy.begin() + c.offset))
      std::fprintf(stderr, "%s: \"%s\" reads back otherwise\n", toUtf8(c.read).c_str(),
                   text.c_str());
    check(std::equal(record.begin() + c.offset, record.begin() + c.offset + fieldBytes(c),
                     copy.begin() + c.offset));
  }
  std::vector<std::byte> copy(record);
  cli::setTrailingText(layout, copy.data(), cli::trailingText(layout, record.data()));
  check(copy == record);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input in(data, size);
  switch (in.byte() % 3) {
    case 0:
      stateRoundTrip(in.rest());
      break;
    case 1:
      anyText(in.restBytes());
      break;
    default:
      fields(in);
      break;
  }
  return 0;
}
