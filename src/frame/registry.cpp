#include "vrdppo/registry.hpp"

#include <cstdio>

#include "frame/builtins.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/recordset.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo {

const char* valueTypeName(ValueType t) noexcept {
  switch (t) {
    case ValueType::None:
      return "";
    case ValueType::String:
      return "String";
    case ValueType::Long:
      return "Long";
    case ValueType::Boolean:
      return "Boolean";
    case ValueType::Double:
      return "Double";
    case ValueType::Date:
      return "Date";
    case ValueType::Variant:
      return "Variant";
    case ValueType::Recordset:
      return "Recordset";
  }
  return "?";
}

namespace {

bool sameName(std::string_view a, std::string_view b) {
  return equalsNoCase(ascii(a), ascii(b));
}

ArgInfo str(std::string name) {
  return ArgInfo{std::move(name), ValueType::String};
}
ArgInfo lng(std::string name, bool optional = false) {
  return ArgInfo{std::move(name), ValueType::Long, true, optional,
                 optional ? Variant(std::int32_t{0}) : Variant()};
}

Variant boolean(bool b) {
  return Variant(b);
}

template <class Object>
Object& as(PersistObject& o) {
  return static_cast<Object&>(o);
}

// Members every contract has, or that only the tables have.
MemberInfo commonMember(std::string_view name) {
  if (name == "RecordToObj") {
    return MemberInfo{"RecordToObj",   true, {ArgInfo{"ars", ValueType::Recordset}},
                      ValueType::None, {},   0};
  }
  if (name == "GetState") {
    return method<PersistObject>("GetState", {}, ValueType::String,
                                 [](PersistObject& o, auto) { return Variant(o.GetState()); });
  }
  if (name == "SetState") {
    return method<PersistObject>("SetState", {str("sState")}, ValueType::None,
                                 [](PersistObject& o, std::span<const Variant> a) {
                                   o.SetState(a[0].str());
                                   return Variant();
                                 });
  }
  throw Error::runtime(err::kMemberNotFound);
}

std::uint64_t fnv1a(std::string_view s, std::uint64_t seed) {
  std::uint64_t h = seed;
  for (unsigned char c : s) {
    h ^= c;
    h *= 0x100000001b3ULL;
  }
  return h;
}

Variant coerce(const ArgInfo& arg, const Variant& v) {
  switch (arg.type) {
    case ValueType::String:
      return toString(v);
    case ValueType::Long:
      return toLong(v);
    case ValueType::Boolean:
      return toBoolean(v);
    case ValueType::Double:
      return toDouble(v);
    case ValueType::Date:
      return toDate(v);
    default:
      return v;
  }
}

}  // namespace

std::string stableGuid(std::string_view name) {
  const std::uint64_t a = fnv1a(name, 0xcbf29ce484222325ULL);
  const std::uint64_t b = fnv1a(name, 0x84222325cbf29ce4ULL ^ a);
  char buf[40];
  std::snprintf(buf, sizeof buf, "{%08X-%04X-%04X-%04X-%012llX}", static_cast<unsigned>(a >> 32),
                static_cast<unsigned>((a >> 16) & 0xFFFF),
                static_cast<unsigned>((a & 0x0FFF) | 0x8000),
                static_cast<unsigned>(((b >> 48) & 0x3FFF) | 0x8000),
                static_cast<unsigned long long>(b & 0xFFFFFFFFFFFFULL));
  return buf;
}

MemberInfo tableMember(const TableConfig& config, std::string_view name) {
  const bool second = config.generation == Generation::Second;
  MemberInfo m;
  if (name == "RecordToObj" || name == "GetState" || name == "SetState") {
    m = commonMember(name);
    m.isPublic = name == "GetState" || (name == "RecordToObj" && !second);
    return m;
  }
  const auto text = [](std::string n, std::u16string (TableObject::*f)() const, bool pub) {
    return method<TableObject>(
        std::move(n), {}, ValueType::String,
        [f](TableObject& o, auto) { return Variant((o.*f)()); }, pub);
  };
  if (name == "InsertValues") return text("InsertValues", &TableObject::InsertValues, !second);
  if (name == "InsertFields") return text("InsertFields", &TableObject::InsertFields, !second);
  if (name == "UpdateFields") return text("UpdateFields", &TableObject::UpdateFields, !second);
  if (name == "SelectFields") return text("SelectFields", &TableObject::SelectFields, false);
  if (name == "FieldValue") {
    return method<TableObject>(
        "FieldValue", {str("sFieldName")}, ValueType::String,
        [](TableObject& o, std::span<const Variant> a) {
          return Variant(o.FieldValue(a[0].str()));
        },
        false);
  }
  if (name == "Load") {
    std::vector<ArgInfo> args{str("sCriteria"), str("sConnect")};
    if (config.top != TopArg::None) args.push_back(lng("lTop", config.top == TopArg::Optional));
    return method<TableObject>("Load", std::move(args), ValueType::String,
                               [](TableObject& o, std::span<const Variant> a) {
                                 const std::int32_t top = a.size() > 2 ? a[2].lng() : 0;
                                 return Variant(o.Load(a[0].str(), a[1].str(), top));
                               });
  }
  if (name == "Commit" || name == "Delete") {
    const bool commit = name == "Commit";
    return method<TableObject>(std::string(name), {str("sBuffer"), str("sConnect")},
                               ValueType::Boolean,
                               [commit](TableObject& o, std::span<const Variant> a) {
                                 return boolean(commit ? o.Commit(a[0].str(), a[1].str())
                                                       : o.Delete(a[0].str(), a[1].str()));
                               });
  }
  if (name == "CriteriaDelete") {
    std::vector<ArgInfo> args;
    if (config.criteriaDelete == CriteriaDeleteForm::First) {
      args = {str("sBuffer"), str("sCriteria"), str("sConnect")};
    } else {
      args = {str("sBuffer"), str("sConnect"), str("sCriteria")};
      if (config.criteriaDelete == CriteriaDeleteForm::SecondWithHardDelete) {
        args.push_back(ArgInfo{"bHardDelete", ValueType::Boolean});
      }
    }
    return method<TableObject>(
        "CriteriaDelete", std::move(args), ValueType::Boolean,
        [](TableObject& o, std::span<const Variant> a) {
          const bool hard = a.size() > 3 ? a[3].boolean() : true;
          return boolean(o.CriteriaDelete(a[0].str(), a[1].str(), a[2].str(), hard));
        });
  }
  throw Error::runtime(err::kMemberNotFound);
}

MemberInfo viewMember(const ViewConfig& config, std::string_view name) {
  const bool list = config.shape == LoadStyle::List;
  MemberInfo m;
  if (name == "RecordToObj" || name == "GetState" || name == "SetState") {
    m = commonMember(name);
    m.isPublic = name == "GetState" || (name == "RecordToObj" && !list);
    return m;
  }
  if (name == "SelectFields") {
    return method<ViewObject>(
        "SelectFields", {}, ValueType::String,
        [](ViewObject& o, auto) { return Variant(o.SelectFields()); }, false);
  }
  if (name == "FieldValue") {
    return method<ViewObject>(
        "FieldValue", {str("sFieldName")}, ValueType::String,
        [](ViewObject& o, std::span<const Variant> a) { return Variant(o.FieldValue(a[0].str())); },
        false);
  }
  if (name == "Load") {
    std::vector<ArgInfo> args{str("sCriteria"), str("sConnect")};
    if (config.top != TopArg::None) args.push_back(lng("lTop", config.top == TopArg::Optional));
    return method<ViewObject>("Load", std::move(args), ValueType::String,
                              [](ViewObject& o, std::span<const Variant> a) {
                                const std::int32_t top = a.size() > 2 ? a[2].lng() : 0;
                                return Variant(o.Load(a[0].str(), a[1].str(), top));
                              });
  }
  throw Error::runtime(err::kMemberNotFound);
}

std::vector<MemberInfo> tableMembers(const TableConfig& config,
                                     std::initializer_list<std::string_view> order) {
  std::vector<MemberInfo> members;
  for (const auto name : order) members.push_back(tableMember(config, name));
  return members;
}

std::vector<MemberInfo> tableMembers(const TableConfig& config) {
  std::vector<MemberInfo> members =
      config.generation == Generation::First
          ? tableMembers(config,
                         {"RecordToObj", "GetState", "SetState", "InsertValues", "InsertFields",
                          "UpdateFields", "FieldValue", "Load", "Commit", "Delete"})
          : tableMembers(
                config, {"RecordToObj", "GetState", "SetState", "InsertValues", "InsertFields",
                         "UpdateFields", "SelectFields", "FieldValue", "Load", "Commit", "Delete"});
  if (config.criteriaDelete != CriteriaDeleteForm::None) {
    members.push_back(tableMember(config, "CriteriaDelete"));
  }
  return members;
}

std::vector<MemberInfo> viewMembers(const ViewConfig& config) {
  std::vector<MemberInfo> members;
  std::vector<std::string_view> order{"RecordToObj", "GetState", "SetState"};
  if (config.shape == LoadStyle::List) order.push_back("SelectFields");
  order.push_back("FieldValue");
  order.push_back("Load");
  members.reserve(order.size());
  for (const auto name : order) members.push_back(viewMember(config, name));
  return members;
}

ClassInfo makeClassInfo(std::string name, bool isView, std::u16string_view source,
                        const RecordLayout& layout,
                        std::function<std::unique_ptr<PersistObject>()> create,
                        std::vector<MemberInfo> members) {
  ClassInfo info;
  info.classId = stableGuid("vrdppo.class." + name);
  info.interfaceId = stableGuid("vrdppo.interface._" + name);
  info.name = std::move(name);
  info.isView = isView;
  info.source = toUtf8(source);
  info.layout = &layout;
  info.create = std::move(create);
  for (std::size_t i = 0; i < members.size(); ++i) {
    members[i].dispatchId = kFirstDispatchId + static_cast<std::int32_t>(i);
  }
  info.members = std::move(members);
  return info;
}

const MemberInfo* ClassInfo::member(std::string_view n) const noexcept {
  for (const auto& m : members) {
    if (sameName(m.name, n)) return &m;
  }
  return nullptr;
}

const MemberInfo* ClassInfo::member(std::int32_t id) const noexcept {
  for (const auto& m : members) {
    if (m.dispatchId == id) return &m;
  }
  return nullptr;
}

namespace registry {

const std::vector<const ClassInfo*>& classes() {
  static const std::vector<const ClassInfo*> all = builtinClasses();
  return all;
}

const ClassInfo* find(std::string_view name) noexcept {
  for (const ClassInfo* c : classes()) {
    if (sameName(c->name, name)) return c;
  }
  return nullptr;
}

std::unique_ptr<PersistObject> create(std::string_view name) {
  const ClassInfo* c = find(name);
  if (!c) throw Error::runtime(err::kCannotCreate);
  return c->create();
}

namespace {

Variant call(PersistObject& object, const MemberInfo* m, std::span<const Variant> args) {
  if (!m || !m->isPublic) throw Error::runtime(err::kMemberNotFound);
  if (!m->invoke) throw Error::runtime(err::kInvalidCall);
  if (args.size() > m->args.size()) throw Error::runtime(err::kInvalidCall);
  std::vector<Variant> coerced;
  coerced.reserve(m->args.size());
  for (std::size_t i = 0; i < m->args.size(); ++i) {
    const ArgInfo& a = m->args[i];
    // A missing argument is one left out, as a late-bound caller leaves out one in the middle.
    if (i < args.size() && !args[i].isMissing()) {
      coerced.push_back(coerce(a, args[i]));
    } else if (a.optional && a.type == ValueType::Variant && a.defaultValue.isEmpty()) {
      // A left-out Variant without a default reaches the member as missing, which it can test.
      coerced.push_back(Variant::missing());
    } else if (a.optional) {
      coerced.push_back(a.defaultValue);
    } else {
      throw Error::runtime(err::kArgumentNotOptional);
    }
  }
  // The whole call under the object's lock, whatever the member calls on it.
  const auto one = object.lock();
  return m->invoke(object, coerced);
}

// Whether a state holds the layout's key name in the layout's place (blank padded, case aside).
bool carriesKeyName(const RecordLayout& layout, std::u16string_view state) noexcept {
  const TrailingField& t = layout.trailing;
  const std::u16string_view name = t.literal.substr(0, t.length);
  const std::size_t at = t.offset / sizeof(char16_t);
  if (name.empty() || state.size() < at + t.length) return false;
  return equalsNoCase(trimBlanks(state.substr(at, t.length)), name);
}

}  // namespace

const ClassInfo* foreignOwner(const RecordLayout& self, std::u16string_view state) {
  if (carriesKeyName(self, state)) return nullptr;
  const std::u16string_view own = self.trailing.literal.substr(0, self.trailing.length);
  for (const ClassInfo* c : classes()) {
    const RecordLayout& other = *c->layout;
    // Classes of one key name have states that nothing tells apart: each takes the other's.
    if (other.stateChars != self.stateChars || other.trailing.literal.empty() ||
        equalsNoCase(other.trailing.literal.substr(0, other.trailing.length), own)) {
      continue;
    }
    if (carriesKeyName(other, state)) return c;
  }
  return nullptr;
}

Variant invoke(PersistObject& object, std::string_view member, std::span<const Variant> args) {
  return call(object, object.classInfo().member(member), args);
}

Variant invoke(PersistObject& object, std::int32_t dispatchId, std::span<const Variant> args) {
  return call(object, object.classInfo().member(dispatchId), args);
}

}  // namespace registry

}  // namespace vrdppo
