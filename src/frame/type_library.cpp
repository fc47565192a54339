#include "frame/type_library.hpp"

#include <fmt/format.h>

#include "vrdppo/error.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo {

namespace {

// The IDL form of a GUID text: without braces, lower case as the compilers write it back.
std::string bare(const std::string& guid) {
  std::string out;
  for (char c : guid) {
    if (c == '{' || c == '}') continue;
    out += static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  }
  return out;
}

const char* idlType(ValueType t) {
  switch (t) {
    case ValueType::String:
      return "BSTR";
    case ValueType::Long:
      return "long";
    case ValueType::Boolean:
      return "VARIANT_BOOL";
    case ValueType::Double:
      return "double";
    case ValueType::Date:
      return "DATE";
    case ValueType::Variant:
      return "VARIANT";
    // A recordset travels as the object it is; no library type describes it.
    case ValueType::Recordset:
      return "IDispatch*";
    case ValueType::None:
      break;
  }
  throw Error(err::kInvalidCall, "no IDL type for a member without a result");
}

std::string quoted(const std::u16string& s) {
  std::string out = "\"";
  for (char c : toUtf8(s)) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  return out + '"';
}

std::string defaultText(const ArgInfo& a) {
  const Variant& v = a.defaultValue;
  switch (v.type()) {
    case VarType::Long:
      return std::to_string(v.lng());
    case VarType::Boolean:
      return v.boolean() ? "-1" : "0";
    case VarType::Double:
      return fmt::format("{}", v.dbl());
    case VarType::String:
      return quoted(v.str());
    default:
      return {};
  }
}

std::string parameter(const ArgInfo& a) {
  std::string attrs = a.byRef ? "in, out" : "in";
  if (a.optional) {
    attrs += ", optional";
    const std::string def = defaultText(a);
    if (!def.empty()) attrs += ", defaultvalue(" + def + ")";
  }
  return fmt::format("[{}] {}{} {}", attrs, idlType(a.type), a.byRef ? "*" : "", a.name);
}

void writeInterface(std::string& out, const ClassInfo& c) {
  out += fmt::format(
      "    [\n      odl,\n      uuid({}),\n      version({}.{}),\n      hidden,\n      dual,\n"
      "      nonextensible,\n      oleautomation\n    ]\n    interface _{} : IDispatch {{\n",
      bare(c.interfaceId), kLibraryMajor, kLibraryMinor, c.name);
  for (const MemberInfo& m : c.members) {
    if (!m.isPublic) continue;
    std::string params;
    for (const ArgInfo& a : m.args) {
      params += params.empty() ? "" : ",\n                ";
      params += parameter(a);
    }
    if (m.result != ValueType::None) {
      params += params.empty() ? "" : ",\n                ";
      params += fmt::format("[out, retval] {}* pRetVal", idlType(m.result));
    }
    out += fmt::format("        [id(0x{:08x})]\n        HRESULT {}({});\n",
                       static_cast<std::uint32_t>(m.dispatchId), m.name, params);
  }
  out += "    };\n\n";
}

void writeClass(std::string& out, const ClassInfo& c) {
  out += fmt::format(
      "    [\n      uuid({}),\n      version({}.{})\n    ]\n    coclass {} {{\n"
      "        [default] interface _{};\n    }};\n\n",
      bare(c.classId), kLibraryMajor, kLibraryMinor, c.name, c.name);
}

}  // namespace

std::string libraryId() {
  return stableGuid("vrdppo.library.vrdppo");
}

std::string typeLibraryIdl() {
  std::string out = fmt::format(
      "// Generated from the class registry; do not edit.\n\nimport \"oaidl.idl\";\n\n[\n"
      "  uuid({}),\n  version({}.{}),\n  helpstring(\"{}\")\n]\nlibrary {}\n{{\n"
      "    importlib(\"stdole2.tlb\");\n\n",
      bare(libraryId()), kLibraryMajor, kLibraryMinor, kLibraryHelp, kLibraryName);
  for (const ClassInfo* c : registry::classes()) {
    writeInterface(out, *c);
    writeClass(out, *c);
  }
  out += "};\n";
  return out;
}

}  // namespace vrdppo
