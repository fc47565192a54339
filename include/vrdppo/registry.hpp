// The class registry and late-bound dispatch: every class by name, its identifiers, its members in
// source order (private ones too: they count in the dispatch identifiers) with their arguments.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vrdppo/persist.hpp"
#include "vrdppo/variant.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

inline constexpr std::int32_t kFirstDispatchId = 0x60030000;

enum class ValueType : std::uint8_t {
  None,
  String,
  Long,
  Boolean,
  Double,
  Date,
  Variant,
  Recordset
};
const char* valueTypeName(ValueType t) noexcept;

struct ArgInfo {
  std::string name;
  ValueType type = ValueType::String;
  bool byRef = true;
  bool optional = false;
  Variant defaultValue{};  // for an optional argument; Empty when it has none
};

// Receives the arguments already coerced to their declared types, optional ones filled in.
using Invoker = std::function<Variant(PersistObject&, std::span<const Variant>)>;

struct MemberInfo {
  std::string name;
  bool isPublic = true;
  std::vector<ArgInfo> args;
  ValueType result = ValueType::None;
  Invoker invoke;  // empty where an argument cannot travel as a variant (a recordset)
  std::int32_t dispatchId = 0;
};

struct ClassInfo {
  std::string name;
  std::string classId;      // GUID text, stable across builds
  std::string interfaceId;  // of the default interface "_" + name
  bool isView = false;
  std::string source;  // the table or view
  const RecordLayout* layout = nullptr;
  std::function<std::unique_ptr<PersistObject>()> create;
  std::vector<MemberInfo> members;

  const MemberInfo* member(std::string_view name) const noexcept;  // without regard to case
  const MemberInfo* member(std::int32_t dispatchId) const noexcept;
};

// A stable GUID text derived from a name.
std::string stableGuid(std::string_view name);

// Members of the contracts by name, for building a class's member list in its source order.
MemberInfo tableMember(const TableConfig& config, std::string_view name);
MemberInfo viewMember(const ViewConfig& config, std::string_view name);
// The contract's member order for a table's generation, or a view's shape.
std::vector<MemberInfo> tableMembers(const TableConfig& config);
std::vector<MemberInfo> viewMembers(const ViewConfig& config);
std::vector<MemberInfo> tableMembers(const TableConfig& config,
                                     std::initializer_list<std::string_view> order);

// A member beyond the contract, invoked on the concrete class.
template <class Class, class F>
MemberInfo method(std::string name, std::vector<ArgInfo> args, ValueType result, F f,
                  bool isPublic = true) {
  MemberInfo m{std::move(name), isPublic, std::move(args), result, {}, 0};
  m.invoke = [f](PersistObject& o, std::span<const Variant> a) -> Variant {
    return f(static_cast<Class&>(o), a);
  };
  return m;
}

// Completes a class's entry: identifiers, dispatch identifiers from the members' places.
ClassInfo makeClassInfo(std::string name, bool isView, std::u16string_view source,
                        const RecordLayout& layout,
                        std::function<std::unique_ptr<PersistObject>()> create,
                        std::vector<MemberInfo> members);

template <class Class>
ClassInfo tableClass(std::string name, const TableConfig& config, std::vector<MemberInfo> members) {
  return makeClassInfo(
      std::move(name), false, config.table, *config.layout,
      [] { return std::make_unique<Class>(); }, std::move(members));
}
template <class Class>
ClassInfo tableClass(std::string name, const TableConfig& config) {
  return tableClass<Class>(std::move(name), config, tableMembers(config));
}
template <class Class>
ClassInfo viewClass(std::string name, const ViewConfig& config, std::vector<MemberInfo> members) {
  return makeClassInfo(
      std::move(name), true, config.view, *config.layout, [] { return std::make_unique<Class>(); },
      std::move(members));
}
template <class Class>
ClassInfo viewClass(std::string name, const ViewConfig& config) {
  return viewClass<Class>(std::move(name), config, viewMembers(config));
}

namespace registry {

// Every class, in the order the library lists them.
const std::vector<const ClassInfo*>& classes();
const ClassInfo* find(std::string_view name) noexcept;  // without regard to case
// Error 429 for a name no class has.
std::unique_ptr<PersistObject> create(std::string_view name);
// Late-bound calls. Error 438 for a member the class has not, or has only privately; 449 for a
// required argument left out; 5 for a member that cannot be reached late-bound; the coercion
// errors for arguments of the wrong type.
Variant invoke(PersistObject& object, std::string_view member, std::span<const Variant> args);
Variant invoke(PersistObject& object, std::int32_t dispatchId, std::span<const Variant> args);

// The class whose record state this is, when it is not one of `self`'s: the state holds that
// class's key name in that class's place and not self's own in self's (classes that share a key
// name cannot be told apart, and are not). nullptr when the state may be self's.
const ClassInfo* foreignOwner(const RecordLayout& self, std::u16string_view state);

}  // namespace registry

}  // namespace vrdppo
VRDPPO_PUBLIC_END
