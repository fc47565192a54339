#include <mutex>

#include "server/server.hpp"
#include "server/vtable.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::server {

namespace {

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  throw Error(err::kInvalidCall, "not a GUID");
}

}  // namespace

GUID guidOf(std::string_view text) {
  // {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}
  std::string hex;
  for (char c : text) {
    if (c != '{' && c != '}' && c != '-') hex += c;
  }
  if (hex.size() != 32) throw Error(err::kInvalidCall, "not a GUID");
  const auto field = [&](std::size_t from, std::size_t digits) {
    std::uint64_t v = 0;
    for (std::size_t i = from; i < from + digits; ++i) {
      v = (v << 4) | static_cast<std::uint64_t>(hexDigit(hex[i]));
    }
    return v;
  };
  GUID g{};
  g.Data1 = static_cast<unsigned long>(field(0, 8));
  g.Data2 = static_cast<unsigned short>(field(8, 4));
  g.Data3 = static_cast<unsigned short>(field(12, 4));
  for (std::size_t i = 0; i < 8; ++i) g.Data4[i] = static_cast<unsigned char>(field(16 + 2 * i, 2));
  return g;
}

std::wstring wideOf(std::string_view utf8) {
  const std::u16string s = fromUtf8(utf8);
  return std::wstring(s.begin(), s.end());
}

bool vtableFits(const MemberInfo& m) noexcept {
  if (m.args.size() + (m.result == ValueType::None ? 0 : 1) > kMaxSlotArgs) return false;
  for (const ArgInfo& a : m.args) {
    if (!a.byRef && (a.type == ValueType::Double || a.type == ValueType::Date)) return false;
  }
  return true;
}

const std::vector<ServedClass>& servedClasses() {
  static const std::vector<ServedClass> all = [] {
    std::vector<ServedClass> out;
    for (const ClassInfo* c : registry::classes()) {
      ServedClass s;
      s.info = c;
      s.classId = guidOf(c->classId);
      s.interfaceId = guidOf(c->interfaceId);
      for (const MemberInfo& m : c->members) {
        if (!m.isPublic) continue;
        if (!vtableFits(m)) {
          throw Error(err::kInvalidCall, c->name + "." + m.name + " does not fit a vtable slot");
        }
        s.members.push_back(&m);
      }
      s.vtable = dualVtable(s.members.size());
      out.push_back(std::move(s));
    }
    return out;
  }();
  return all;
}

const ServedClass* servedClass(REFCLSID classId) noexcept {
  try {
    for (const ServedClass& c : servedClasses()) {
      if (IsEqualCLSID(c.classId, classId)) return &c;
    }
  } catch (...) {
  }
  return nullptr;
}

}  // namespace vrdppo::server
