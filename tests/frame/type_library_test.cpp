#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "frame/type_library.hpp"
#include "vrdppo/registry.hpp"

using namespace vrdppo;

namespace {

std::size_t count(const std::string& text, const std::regex& re) {
  return static_cast<std::size_t>(
      std::distance(std::sregex_iterator(text.begin(), text.end(), re), std::sregex_iterator()));
}

// The body of `interface _NAME : IDispatch { ... };`.
std::string interfaceBody(const std::string& idl, const std::string& name) {
  const std::string head = "interface _" + name + " : IDispatch {";
  const auto from = idl.find(head);
  if (from == std::string::npos) return {};
  return idl.substr(from, idl.find("};", from) - from);
}

}  // namespace

TEST(TypeLibrary, OneDualInterfaceAndOneClassPerRegisteredClassAndNothingElse) {
  const std::string idl = typeLibraryIdl();
  EXPECT_EQ(count(idl, std::regex(R"(\n    interface _\w+ : IDispatch \{)")), 84u);
  EXPECT_EQ(count(idl, std::regex(R"(\n    coclass \w+ \{)")), 84u);
  EXPECT_EQ(count(idl, std::regex(R"(hidden,\n      dual,\n      nonextensible)")), 84u);
  EXPECT_NE(idl.find("helpstring(\"VRD Production Persistence Object\")\n]\nlibrary vrdppo\n"),
            std::string::npos);
  EXPECT_EQ(count(idl, std::regex(R"((interface _?|coclass |module )(Buffer|dbHelp|pudt)\b)")), 0u);
}

TEST(TypeLibrary, InterfacesHoldThePublicMembersWithTheirDispatchIdentifiers) {
  const std::string idl = typeLibraryIdl();
  for (const ClassInfo* c : registry::classes()) {
    const std::string body = interfaceBody(idl, c->name);
    ASSERT_FALSE(body.empty()) << c->name;
    for (const MemberInfo& m : c->members) {
      char id[16];
      std::snprintf(id, sizeof id, "%08x", static_cast<unsigned>(m.dispatchId));
      const std::string declared =
          std::string("[id(0x") + id + ")]\n        HRESULT " + m.name + "(";
      EXPECT_EQ(body.find(declared) != std::string::npos, m.isPublic) << c->name << "." << m.name;
    }
  }
}

TEST(TypeLibrary, ArgumentsAsTheClassesDeclareThem) {
  const std::string idl = typeLibraryIdl();
  // The contract's arguments by reference, an optional lTop with its default, the result as retval.
  EXPECT_NE(interfaceBody(idl, "cGreenGradePersist")
                .find("HRESULT Load([in, out] BSTR* sCriteria,\n                [in, out] BSTR* "
                      "sConnect,\n                [in, out, optional, defaultvalue(0)] long* "
                      "lTop,\n                [out, retval] BSTR* pRetVal);"),
            std::string::npos);
  EXPECT_NE(interfaceBody(idl, "cStemsPersist")
                .find("HRESULT Commit([in, out] BSTR* sBuffer,\n                [in, out] BSTR* "
                      "sConnect,\n                [out, retval] VARIANT_BOOL* pRetVal);"),
            std::string::npos);
  // Arguments by value where the class takes them so, and an optional Variant without default.
  EXPECT_NE(interfaceBody(idl, "cCagePersist").find("[in] BSTR sConnect"), std::string::npos);
  EXPECT_NE(interfaceBody(idl, "cLabHeaderPersist")
                .find("[in, out, optional] VARIANT* vProductionGradeId"),
            std::string::npos);
}

TEST(TypeLibrary, GuidsAreStableAndDistinctFromTheClasses) {
  EXPECT_EQ(libraryId(), stableGuid("vrdppo.library.vrdppo"));
  for (const ClassInfo* c : registry::classes()) {
    EXPECT_NE(c->classId, libraryId());
    EXPECT_EQ(c->classId, stableGuid("vrdppo.class." + c->name));
    EXPECT_EQ(c->interfaceId, stableGuid("vrdppo.interface._" + c->name));
  }
}
