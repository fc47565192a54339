// The C interface over the registry: every entry point catches whatever the library raises and
// hands it back as a status, so nothing but return values crosses into the caller's language.
#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "vrdppo/criteria.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/embedded_store.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/observer.hpp"
#include "vrdppo/odbc_pool.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/render.hpp"
#include "vrdppo/schema_check.hpp"
#include "vrdppo/text.hpp"
#include "vrdppo/vrdppo.h"
#include "vrdppo_build_config.hpp"

static_assert(sizeof(char16_t) == sizeof(uint16_t));

namespace {

// An object handed out: its class, so that the caller may ask without a call.
struct Handed {
  std::int32_t classIndex;
  std::unique_ptr<vrdppo::PersistObject> object;
};

// The objects handed out, each known by a number never handed out twice, so that a handle
// released (or never handed out) is found missing instead of followed into freed memory. A call
// holds its object while it runs, so a release from another thread cannot pull it away.
class Objects {
 public:
  vrdppo_object* add(std::shared_ptr<Handed> handed) {
    std::lock_guard lock(mutex_);
    // Odd, so that a handle is never a pointer the caller could follow by mistake.
    const std::uintptr_t id = (++last_ << 4U) | 0x5U;
    live_.emplace(id, std::move(handed));
    return reinterpret_cast<vrdppo_object*>(id);
  }
  std::shared_ptr<Handed> find(const vrdppo_object* handle) {
    std::lock_guard lock(mutex_);
    const auto it = live_.find(reinterpret_cast<std::uintptr_t>(handle));
    return it == live_.end() ? nullptr : it->second;
  }
  std::shared_ptr<Handed> remove(const vrdppo_object* handle) {
    std::lock_guard lock(mutex_);
    const auto it = live_.find(reinterpret_cast<std::uintptr_t>(handle));
    if (it == live_.end()) return nullptr;
    auto handed = std::move(it->second);
    live_.erase(it);
    return handed;
  }

 private:
  std::mutex mutex_;
  std::uintptr_t last_ = 0;
  std::unordered_map<std::uintptr_t, std::shared_ptr<Handed>> live_;
};

// Kept for the whole process: a caller may release objects from its own exit handlers.
Objects& objects() {
  static auto* all = new Objects;
  return *all;
}

// The strings of the values handed out, so that vrdppo_value_clear frees these and never one
// the caller made.
class HandedStrings {
 public:
  void add(const void* p) {
    std::lock_guard lock(mutex_);
    live_.insert(p);
  }
  bool remove(const void* p) {
    std::lock_guard lock(mutex_);
    return live_.erase(p) != 0;
  }

 private:
  std::mutex mutex_;
  std::unordered_set<const void*> live_;
};

HandedStrings& handedStrings() {
  static auto* all = new HandedStrings;
  return *all;
}

// A string of a value handed out, known as such from here on; freed if even that fails.
template <class T>
T* handedOut(T* p) {
  try {
    handedStrings().add(p);
  } catch (...) {
    std::free(p);
    throw;
  }
  return p;
}

using vrdppo::Error;
using vrdppo::Variant;
using vrdppo::VarType;

// UTF-8 copies of what the info structures point at, made once and kept for the process.
struct ArgEntry {
  std::string name;
  std::string defaultText;  // a string default's UTF-8
};
struct MemberEntry {
  std::vector<ArgEntry> args;
};
struct ColumnEntry {
  std::string read;
  std::string write;
};
struct ClassEntry {
  std::string source;
  std::string trailingLiteral;
  std::vector<MemberEntry> members;
  std::vector<ColumnEntry> columns;
};

const std::vector<ClassEntry>& catalog() {
  static const std::vector<ClassEntry> entries = [] {
    std::vector<ClassEntry> all;
    for (const vrdppo::ClassInfo* c : vrdppo::registry::classes()) {
      ClassEntry e;
      e.source = c->source;
      e.trailingLiteral = vrdppo::toUtf8(c->layout->trailing.literal);
      for (const auto& m : c->members) {
        MemberEntry me;
        for (const auto& a : m.args) {
          ArgEntry ae{a.name, {}};
          if (a.defaultValue.type() == VarType::String) {
            ae.defaultText = vrdppo::toUtf8(a.defaultValue.str());
          }
          me.args.push_back(std::move(ae));
        }
        e.members.push_back(std::move(me));
      }
      for (const auto& col : c->layout->columns) {
        e.columns.push_back({vrdppo::toUtf8(col.read), vrdppo::toUtf8(col.write)});
      }
      all.push_back(std::move(e));
    }
    return all;
  }();
  return entries;
}

char* copyText(const std::string& s) {
  auto* p = static_cast<char*>(std::malloc(s.size() + 1));
  if (p == nullptr) throw std::bad_alloc();
  std::memcpy(p, s.c_str(), s.size() + 1);
  return p;
}

void clearStatus(vrdppo_status* st) noexcept {
  if (st == nullptr) return;
  std::free(st->description);
  std::free(st->source);
  std::free(st->sql_state);
  std::free(st->statement);
  std::free(st->column);
  *st = vrdppo_status{};
}

// Fills the status from an error; where even that cannot be allocated, the number alone.
std::int32_t fail(vrdppo_status* st, const Error& e) noexcept {
  if (st == nullptr) return e.number();
  clearStatus(st);
  st->number = e.number();
  st->native_error = e.nativeError();
  try {
    st->description = copyText(e.description());
    st->source = copyText(e.source());
    st->sql_state = copyText(e.sqlState());
    st->statement = copyText(vrdppo::toUtf8(e.statement()));
    if (!e.column().empty()) st->column = copyText(vrdppo::toUtf8(e.column()));
    st->row = e.row();
  } catch (...) {
    const std::int32_t n = st->number;
    clearStatus(st);
    st->number = n;
  }
  return st->number;
}

// Runs a body, turning whatever it raises into the status.
template <class F>
std::int32_t guarded(vrdppo_status* st, F&& body) noexcept {
  try {
    clearStatus(st);
    body();
    return 0;
  } catch (const Error& e) {
    return fail(st, e);
  } catch (const std::bad_alloc&) {
    return fail(st, Error::runtime(vrdppo::err::kOutOfMemory));
  } catch (const std::exception& e) {
    return fail(st, Error(vrdppo::err::kInvalidCall, e.what()));
  } catch (...) {
    return fail(st, Error::runtime(vrdppo::err::kInvalidCall));
  }
}

Error invalidArgument(const char* what) {
  return Error(vrdppo::err::kInvalidCall,
               std::string("Invalid procedure call or argument: ") + what);
}

const vrdppo::ClassInfo& classAt(std::int32_t index) {
  const auto& all = vrdppo::registry::classes();
  if (index < 0 || static_cast<std::size_t>(index) >= all.size()) {
    throw invalidArgument("no class has that index");
  }
  return *all[static_cast<std::size_t>(index)];
}

std::u16string stringOf(const vrdppo_value& v) {
  if (v.length < 0) throw invalidArgument("a string's length is negative");
  const auto n = static_cast<std::size_t>(v.length);
  if (v.type == VRDPPO_STRING16) {
    if (v.u.str16 == nullptr && n != 0) throw invalidArgument("a string is NULL");
    std::u16string s(n, u'\0');
    if (n != 0) std::memcpy(s.data(), v.u.str16, n * sizeof(char16_t));
    return s;
  }
  if (v.u.str8 == nullptr && n != 0) throw invalidArgument("a string is NULL");
  return vrdppo::fromUtf8(std::string_view(v.u.str8 == nullptr ? "" : v.u.str8, n));
}

Variant fromValue(const vrdppo_value& v) {
  switch (v.type) {
    case VRDPPO_EMPTY:
      return Variant{};
    case VRDPPO_NULL:
      return Variant::null();
    case VRDPPO_BOOLEAN:
      return Variant(v.u.boolean != 0);
    case VRDPPO_LONG:
      return Variant(v.u.lng);
    case VRDPPO_DOUBLE:
      return Variant(v.u.dbl);
    case VRDPPO_CURRENCY:
      return Variant(vrdppo::Currency{v.u.i64});
    case VRDPPO_DATE:
      return Variant(vrdppo::Date{v.u.dbl});
    case VRDPPO_STRING16:
    case VRDPPO_STRING8:
      return Variant(stringOf(v));
    case VRDPPO_LONGLONG:
      return Variant(static_cast<std::int64_t>(v.u.i64));
    case VRDPPO_DECIMAL: {
      if (v.u.str8 == nullptr) throw invalidArgument("a decimal's text is NULL");
      return Variant(vrdppo::Decimal{std::string(v.u.str8)});
    }
    case VRDPPO_MISSING:
      return Variant::missing();
    default:
      throw invalidArgument("a value's type is unknown");
  }
}

vrdppo_value string16Value(const std::u16string& s) {
  auto* p = static_cast<uint16_t*>(std::malloc((s.size() + 1) * sizeof(uint16_t)));
  if (p == nullptr) throw std::bad_alloc();
  std::memcpy(p, s.data(), s.size() * sizeof(char16_t));
  p[s.size()] = 0;
  vrdppo_value out{};
  out.type = VRDPPO_STRING16;
  out.length = static_cast<std::int32_t>(s.size());
  out.u.str16 = handedOut(p);
  return out;
}

vrdppo_value toValue(const Variant& v) {
  vrdppo_value out{};
  switch (v.type()) {
    case VarType::Empty:
      out.type = VRDPPO_EMPTY;
      break;
    case VarType::Null:
      out.type = VRDPPO_NULL;
      break;
    case VarType::Boolean:
      out.type = VRDPPO_BOOLEAN;
      out.u.boolean = v.boolean() ? 1 : 0;
      break;
    case VarType::Long:
      out.type = VRDPPO_LONG;
      out.u.lng = v.lng();
      break;
    case VarType::Double:
      out.type = VRDPPO_DOUBLE;
      out.u.dbl = v.dbl();
      break;
    case VarType::Currency:
      out.type = VRDPPO_CURRENCY;
      out.u.i64 = v.cur().raw;
      break;
    case VarType::Date:
      out.type = VRDPPO_DATE;
      out.u.dbl = v.date().days;
      break;
    case VarType::String:
      return string16Value(v.str());
    case VarType::LongLong:
      out.type = VRDPPO_LONGLONG;
      out.u.i64 = v.longLong();
      break;
    case VarType::Decimal: {
      const std::string& t = v.decimal().text;
      out.type = VRDPPO_DECIMAL;
      out.length = static_cast<std::int32_t>(t.size());
      out.u.str8 = handedOut(copyText(t));
      break;
    }
    case VarType::Missing:
      out.type = VRDPPO_MISSING;
      break;
  }
  return out;
}

std::vector<Variant> argumentsOf(const vrdppo_value* args, std::int32_t count) {
  if (count < 0) throw invalidArgument("the argument count is negative");
  if (count > 0 && args == nullptr) throw invalidArgument("the arguments are NULL");
  std::vector<Variant> out;
  out.reserve(static_cast<std::size_t>(count));
  for (std::int32_t i = 0; i < count; ++i) out.push_back(fromValue(args[i]));
  return out;
}

// Whether a text holds a surrogate that is not half of a pair.
bool hasLoneSurrogate(std::u16string_view s) {
  for (std::size_t i = 0; i < s.size(); ++i) {
    if (s[i] >= 0xD800 && s[i] <= 0xDBFF && i + 1 < s.size() && s[i + 1] >= 0xDC00 &&
        s[i + 1] <= 0xDFFF) {
      ++i;
    } else if (s[i] >= 0xD800 && s[i] <= 0xDFFF) {
      return true;
    }
  }
  return false;
}

Error notAnObject() {
  return invalidArgument(
      "the object was released, or was not made by vrdppo_create; release an object once and "
      "call it only before");
}

std::shared_ptr<Handed> liveObject(const vrdppo_object* object) {
  if (object == nullptr) throw invalidArgument("the object is NULL");
  auto handed = objects().find(object);
  if (!handed) throw notAnObject();
  return handed;
}

// The thread's figure as the call leaves it, on whichever path it leaves.
class RecordsAffectedOut {
 public:
  explicit RecordsAffectedOut(std::int64_t* out) noexcept : out_(out) {}
  RecordsAffectedOut(const RecordsAffectedOut&) = delete;
  RecordsAffectedOut& operator=(const RecordsAffectedOut&) = delete;
  ~RecordsAffectedOut() {
    if (out_ != nullptr) *out_ = vrdppo::lastRecordsAffected();
  }

 private:
  std::int64_t* out_;
};

template <class Member>
std::int32_t invokeMember(vrdppo_object* object, Member member, const vrdppo_value* args,
                          std::int32_t count, vrdppo_value* result, std::int64_t* affected,
                          vrdppo_status* st) {
  if (result != nullptr) *result = vrdppo_value{};
  if (affected != nullptr) *affected = -1;
  return guarded(st, [&] {
    const std::shared_ptr<Handed> handed = liveObject(object);
    const std::vector<Variant> a = argumentsOf(args, count);
    vrdppo::resetLastRecordsAffected();
    const RecordsAffectedOut taken(affected);
    const Variant r = vrdppo::registry::invoke(*handed->object, member, a);
    if (result != nullptr) *result = toValue(r);
  });
}

void requireOut(const void* out) {
  if (out == nullptr) throw invalidArgument("the output is NULL");
}

// The UTF-8 copies of a target's and an error's text, kept while an observer is called.
struct EventText {
  EventText(const vrdppo::DatabaseTarget& t, const Error* error)
      : system(t.system),
        server(vrdppo::toUtf8(t.serverAddress)),
        database(vrdppo::toUtf8(t.databaseName)),
        connection(vrdppo::toUtf8(t.connection)) {
    if (error != nullptr) {
      sqlState = error->sqlState();
      description = error->description();
      source = error->source();
    }
  }
  template <class CEvent>
  void fill(CEvent& out, const vrdppo::DatabaseTarget& t, const Error* error) const {
    out.db_system_name = system.c_str();
    out.server_address = server.c_str();
    out.server_port = t.serverPort;
    out.db_namespace = database.c_str();
    out.connection = connection.c_str();
    if (error != nullptr) {
      out.error_number = error->number();
      out.error_native = error->nativeError();
      out.error_sql_state = sqlState.c_str();
      out.error_description = description.c_str();
      out.error_source = source.c_str();
    }
  }
  std::string system, server, database, connection, sqlState, description, source;
};

class CObserver;
// The C observer this thread is calling now: one that replaces itself from inside its own call
// must not wait for that call to end.
thread_local const CObserver* calling = nullptr;

// An observer of C functions. Once retired it is called no more, and retiring waits for the calls
// already running on other threads, so that the caller may free its user data after removing it.
class CObserver final : public vrdppo::Observer {
 public:
  CObserver(vrdppo_statement_observer onStatement, vrdppo_session_observer onSession, void* user)
      : onStatement_(onStatement), onSession_(onSession), user_(user) {}

  void onStatement(const vrdppo::StatementEvent& e) override {
    if (onStatement_ == nullptr) return;
    const EventText text(e.target, e.error);
    const std::string query = vrdppo::toUtf8(e.queryText);
    const std::string operation = vrdppo::toUtf8(e.operationName);
    vrdppo_statement_event out{};
    text.fill(out, e.target, e.error);
    out.db_query_text = query.c_str();
    out.db_operation_name = operation.c_str();
    out.returned_rows = e.returnedRows;
    out.affected_rows = e.affectedRows;
    out.duration_ns = e.duration.count();
    out.session = static_cast<int32_t>(e.session);
    const Running running(*this);
    if (running) onStatement_(&out, user_);
  }

  void onSession(const vrdppo::SessionEvent& e) override {
    if (onSession_ == nullptr) return;
    const EventText text(e.target, e.error);
    const std::string causeName(vrdppo::logoutCauseName(e.cause));
    vrdppo_session_event out{};
    text.fill(out, e.target, e.error);
    out.kind = static_cast<int32_t>(e.kind);
    out.cause = static_cast<int32_t>(e.cause);
    out.cause_name = causeName.c_str();
    out.duration_ns = e.duration.count();
    const Running running(*this);
    if (running) onSession_(&out, user_);
  }

  void retire() {
    std::unique_lock lock(mutex_);
    retired_ = true;
    const int mine = calling == this ? 1 : 0;
    ended_.wait(lock, [&] { return running_ == mine; });
  }

 private:
  // A call counted while it runs; false when the observer is retired.
  class Running {
   public:
    explicit Running(CObserver& o) : o_(o) {
      const std::lock_guard lock(o_.mutex_);
      if (o_.retired_) return;
      ++o_.running_;
      counted_ = true;
      calling = &o_;
    }
    ~Running() {
      if (!counted_) return;
      calling = nullptr;
      const std::lock_guard lock(o_.mutex_);
      --o_.running_;
      o_.ended_.notify_all();
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    explicit operator bool() const { return counted_; }

   private:
    CObserver& o_;
    bool counted_ = false;
  };

  vrdppo_statement_observer onStatement_;
  vrdppo_session_observer onSession_;
  void* user_;
  std::mutex mutex_;
  std::condition_variable ended_;
  int running_ = 0;
  bool retired_ = false;
};

std::string poolFiguresJson(const vrdppo::odbc::PoolFigures& f) {
  std::string out = "{\"idle\": " + std::to_string(f.idle) +
                    ", \"in_use\": " + std::to_string(f.inUse) + ", \"connections\": [";
  for (std::size_t i = 0; i < f.strings.size(); ++i) {
    const auto& s = f.strings[i];
    out += i == 0 ? "{\"connection\": " : ", {\"connection\": ";
    vrdppo::appendJsonString(out, vrdppo::toUtf8(s.connection));
    out +=
        ", \"idle\": " + std::to_string(s.idle) + ", \"in_use\": " + std::to_string(s.inUse) + "}";
  }
  out += "], \"logins\": " + std::to_string(f.logins) +
         ", \"failed_logins\": " + std::to_string(f.failedLogins) +
         ", \"reuses\": " + std::to_string(f.reuses) + ", \"logouts\": {";
  // Every cause, zeros too, so that a reader finds each key; "none" is no logout.
  for (std::size_t k = 1; k < f.logouts.size(); ++k) {
    if (k > 1) out += ", ";
    vrdppo::appendJsonString(out, vrdppo::logoutCauseName(static_cast<vrdppo::LogoutCause>(k)));
    out += ": " + std::to_string(f.logouts[k]);
  }
  out += "}, \"login_time_ns\": " + std::to_string(f.loginTime.count()) + "}";
  return out;
}

}  // namespace

extern "C" {

const char* vrdppo_version(void) {
  return VRDPPO_VERSION_TEXT;
}

int32_t vrdppo_class_count(void) {
  try {
    return static_cast<int32_t>(vrdppo::registry::classes().size());
  } catch (...) {
    return 0;
  }
}

int32_t vrdppo_class_find(const char* name) {
  if (name == nullptr) return -1;
  try {
    const auto& all = vrdppo::registry::classes();
    const vrdppo::ClassInfo* c = vrdppo::registry::find(name);
    for (std::size_t i = 0; i < all.size(); ++i) {
      if (all[i] == c) return static_cast<int32_t>(i);
    }
  } catch (...) {
  }
  return -1;
}

int32_t vrdppo_class_info_get(int32_t class_index, vrdppo_class_info* out, vrdppo_status* status) {
  return guarded(status, [&] {
    requireOut(out);
    const vrdppo::ClassInfo& c = classAt(class_index);
    const ClassEntry& e = catalog()[static_cast<std::size_t>(class_index)];
    *out = vrdppo_class_info{c.name.c_str(),
                             c.classId.c_str(),
                             c.interfaceId.c_str(),
                             e.source.c_str(),
                             c.isView ? 1 : 0,
                             static_cast<int32_t>(c.members.size()),
                             static_cast<int32_t>(c.layout->columns.size()),
                             c.layout->bytes,
                             c.layout->stateChars,
                             c.layout->trailing.offset,
                             c.layout->trailing.length,
                             e.trailingLiteral.c_str()};
  });
}

int32_t vrdppo_member_info_get(int32_t class_index, int32_t member_index, vrdppo_member_info* out,
                               vrdppo_status* status) {
  return guarded(status, [&] {
    requireOut(out);
    const vrdppo::ClassInfo& c = classAt(class_index);
    if (member_index < 0 || static_cast<std::size_t>(member_index) >= c.members.size()) {
      throw invalidArgument("no member has that index");
    }
    const vrdppo::MemberInfo& m = c.members[static_cast<std::size_t>(member_index)];
    *out = vrdppo_member_info{m.name.c_str(),
                              m.dispatchId,
                              m.isPublic ? 1 : 0,
                              m.invoke ? 1 : 0,
                              static_cast<int32_t>(m.result),
                              static_cast<int32_t>(m.args.size())};
  });
}

int32_t vrdppo_arg_info_get(int32_t class_index, int32_t member_index, int32_t arg_index,
                            vrdppo_arg_info* out, vrdppo_status* status) {
  return guarded(status, [&] {
    requireOut(out);
    const vrdppo::ClassInfo& c = classAt(class_index);
    if (member_index < 0 || static_cast<std::size_t>(member_index) >= c.members.size()) {
      throw invalidArgument("no member has that index");
    }
    const vrdppo::MemberInfo& m = c.members[static_cast<std::size_t>(member_index)];
    if (arg_index < 0 || static_cast<std::size_t>(arg_index) >= m.args.size()) {
      throw invalidArgument("no argument has that index");
    }
    const vrdppo::ArgInfo& a = m.args[static_cast<std::size_t>(arg_index)];
    const ArgEntry& e = catalog()[static_cast<std::size_t>(class_index)]
                            .members[static_cast<std::size_t>(member_index)]
                            .args[static_cast<std::size_t>(arg_index)];
    vrdppo_value def{};
    if (a.defaultValue.type() == VarType::String) {
      def.type = VRDPPO_STRING8;
      def.length = static_cast<int32_t>(e.defaultText.size());
      def.u.str8 = e.defaultText.c_str();
    } else if (a.defaultValue.type() != VarType::Decimal) {
      def = toValue(a.defaultValue);  // no allocation for the other types
    }
    *out = vrdppo_arg_info{e.name.c_str(), static_cast<int32_t>(a.type), a.byRef ? 1 : 0,
                           a.optional ? 1 : 0, def};
  });
}

int32_t vrdppo_column_info_get(int32_t class_index, int32_t column_index, vrdppo_column_info* out,
                               vrdppo_status* status) {
  return guarded(status, [&] {
    requireOut(out);
    const vrdppo::ClassInfo& c = classAt(class_index);
    const auto& columns = c.layout->columns;
    if (column_index < 0 || static_cast<std::size_t>(column_index) >= columns.size()) {
      throw invalidArgument("no column has that index");
    }
    const vrdppo::Column& col = columns[static_cast<std::size_t>(column_index)];
    const ColumnEntry& e = catalog()[static_cast<std::size_t>(class_index)]
                               .columns[static_cast<std::size_t>(column_index)];
    *out = vrdppo_column_info{e.read.c_str(), e.write.c_str(), static_cast<int32_t>(col.type),
                              col.offset, col.length};
  });
}

int32_t vrdppo_create(const char* class_name, vrdppo_object** out, vrdppo_status* status) {
  if (out != nullptr) *out = nullptr;
  return guarded(status, [&] {
    requireOut(out);
    if (class_name == nullptr) throw invalidArgument("the class name is NULL");
    auto object = vrdppo::registry::create(class_name);
    vrdppo::initialiseRecord(object->layout(), object->recordBytes());
    const int32_t index = vrdppo_class_find(object->classInfo().name.c_str());
    *out = objects().add(std::make_shared<Handed>(Handed{index, std::move(object)}));
  });
}

int32_t vrdppo_object_class(const vrdppo_object* object) {
  try {
    const auto handed = object == nullptr ? nullptr : objects().find(object);
    return handed ? handed->classIndex : -1;
  } catch (...) {
    return -1;
  }
}

int32_t vrdppo_release(vrdppo_object* object, vrdppo_status* status) {
  return guarded(status, [&] {
    if (object == nullptr) throw invalidArgument("the object is NULL");
    // The object goes here unless a call on another thread still holds it; then with that call.
    if (!objects().remove(object)) throw notAnObject();
  });
}

int32_t vrdppo_invoke(vrdppo_object* object, const char* member, const vrdppo_value* args,
                      int32_t arg_count, vrdppo_value* result, vrdppo_status* status) {
  if (member == nullptr) {
    if (result != nullptr) *result = vrdppo_value{};
    return fail(status, invalidArgument("the member name is NULL"));
  }
  return invokeMember(object, std::string_view(member), args, arg_count, result, nullptr, status);
}

int32_t vrdppo_invoke_id(vrdppo_object* object, int32_t dispatch_id, const vrdppo_value* args,
                         int32_t arg_count, vrdppo_value* result, vrdppo_status* status) {
  return invokeMember(object, dispatch_id, args, arg_count, result, nullptr, status);
}

int32_t vrdppo_invoke_id_counted(vrdppo_object* object, int32_t dispatch_id,
                                 const vrdppo_value* args, int32_t arg_count, vrdppo_value* result,
                                 int64_t* records_affected, vrdppo_status* status) {
  return invokeMember(object, dispatch_id, args, arg_count, result, records_affected, status);
}

int64_t vrdppo_last_records_affected(void) {
  return vrdppo::lastRecordsAffected();
}

int32_t vrdppo_record_new(int32_t class_index, vrdppo_value* out, vrdppo_status* status) {
  if (out != nullptr) *out = vrdppo_value{};
  return guarded(status, [&] {
    requireOut(out);
    const vrdppo::RecordLayout& layout = *classAt(class_index).layout;
    std::vector<std::byte> record(static_cast<std::size_t>(layout.bytes), std::byte{0});
    vrdppo::initialiseRecord(layout, record.data());
    *out = string16Value(vrdppo::recordState(layout, record.data()));
  });
}

int32_t vrdppo_session_set(int32_t key, const vrdppo_value* value, vrdppo_status* status) {
  return guarded(status, [&] {
    if (value == nullptr) throw invalidArgument("the value is NULL");
    const Variant v = fromValue(*value);
    switch (key) {
      case VRDPPO_SESSION_CONNECT_STRING:
        vrdppo::dbHelp::ConnectString = vrdppo::toString(v);
        break;
      case VRDPPO_SESSION_APP_NAME:
        vrdppo::dbHelp::AppName = vrdppo::toString(v);
        break;
      case VRDPPO_SESSION_AUDIT_TRAIL_ID:
        vrdppo::dbHelp::AuditTrailId = vrdppo::toLong(v);
        break;
      default:
        throw invalidArgument("no session value has that key");
    }
  });
}

int32_t vrdppo_session_get(int32_t key, vrdppo_value* out, vrdppo_status* status) {
  if (out != nullptr) *out = vrdppo_value{};
  return guarded(status, [&] {
    requireOut(out);
    switch (key) {
      case VRDPPO_SESSION_CONNECT_STRING:
        *out = string16Value(vrdppo::dbHelp::ConnectString);
        break;
      case VRDPPO_SESSION_APP_NAME:
        *out = string16Value(vrdppo::dbHelp::AppName);
        break;
      case VRDPPO_SESSION_AUDIT_TRAIL_ID:
        out->type = VRDPPO_LONG;
        out->u.lng = vrdppo::dbHelp::AuditTrailId;
        break;
      default:
        throw invalidArgument("no session value has that key");
    }
  });
}

int32_t vrdppo_embedded_connect_string(const char* path, vrdppo_value* out, vrdppo_status* status) {
  if (out != nullptr) *out = vrdppo_value{};
  return guarded(status, [&] {
    requireOut(out);
    if (path == nullptr) throw invalidArgument("the path is NULL");
    *out = string16Value(vrdppo::embedded::connectString(path));
  });
}

int32_t vrdppo_embedded_open(const char* path, vrdppo_status* status) {
  return guarded(status, [&] {
    if (path == nullptr) throw invalidArgument("the path is NULL");
    vrdppo::embedded::openStore(path);
  });
}

void vrdppo_embedded_release(const char* path) {
  if (path == nullptr) return;
  try {
    vrdppo::embedded::releaseStore(path);
  } catch (...) {
  }
}

int32_t vrdppo_check_schema(const char* connect, int32_t json, char** report, int32_t* problems,
                            vrdppo_status* status) {
  if (report != nullptr) *report = nullptr;
  if (problems != nullptr) *problems = 0;
  return guarded(status, [&] {
    if (connect == nullptr) throw invalidArgument("the connection string is NULL");
    const vrdppo::SchemaReport r = vrdppo::checkSchema(vrdppo::fromUtf8(connect));
    if (problems != nullptr) *problems = r.problems();
    if (report != nullptr) *report = copyText(json != 0 ? r.json() : r.text());
  });
}

int32_t vrdppo_criteria(const char* template_utf8, const vrdppo_value* values, int32_t count,
                        char** criteria_utf8, vrdppo_status* status) {
  if (criteria_utf8 != nullptr) *criteria_utf8 = nullptr;
  return guarded(status, [&] {
    requireOut(criteria_utf8);
    if (template_utf8 == nullptr) throw invalidArgument("the template is NULL");
    const std::vector<Variant> v = argumentsOf(values, count);
    // UTF-8 cannot carry a lone surrogate: it would come out as U+FFFD, another value.
    for (std::size_t i = 0; i < v.size(); ++i) {
      if (v[i].type() == VarType::String && hasLoneSurrogate(v[i].str())) {
        throw Error(vrdppo::err::kInvalidCall,
                    "Criteria: placeholder " + std::to_string(i + 1) +
                        ": a string holding a lone surrogate, which UTF-8 cannot carry",
                    "vrdppo.criteria");
      }
    }
    const std::u16string built = vrdppo::buildCriteria(vrdppo::fromUtf8(template_utf8), v);
    *criteria_utf8 = copyText(vrdppo::toUtf8(built));
  });
}

int32_t vrdppo_observer_set(int32_t scope, vrdppo_statement_observer on_statement,
                            vrdppo_session_observer on_session, void* user, vrdppo_status* status) {
  return guarded(status, [&] {
    if (scope != VRDPPO_OBSERVE_PROCESS && scope != VRDPPO_OBSERVE_THREAD) {
      throw invalidArgument("no observer scope has that number");
    }
    std::shared_ptr<vrdppo::Observer> observer;
    if (on_statement != nullptr || on_session != nullptr) {
      observer = std::make_shared<CObserver>(on_statement, on_session, user);
    }
    const std::shared_ptr<vrdppo::Observer> replaced =
        scope == VRDPPO_OBSERVE_PROCESS ? vrdppo::observe::setProcessObserver(std::move(observer))
                                        : vrdppo::observe::setThreadObserver(std::move(observer));
    if (auto* c = dynamic_cast<CObserver*>(replaced.get())) c->retire();
  });
}

int32_t vrdppo_pool_figures(char** json, vrdppo_status* status) {
  if (json != nullptr) *json = nullptr;
  return guarded(status, [&] {
    requireOut(json);
    *json = copyText(poolFiguresJson(vrdppo::odbc::poolFigures()));
  });
}

char* vrdppo_value_text(const vrdppo_value* value, vrdppo_status* status) {
  char* text = nullptr;
  guarded(status, [&] {
    if (value == nullptr) throw invalidArgument("the value is NULL");
    text = copyText(vrdppo::toUtf8(vrdppo::toString(fromValue(*value))));
  });
  return text;
}

int32_t vrdppo_value_clear(vrdppo_value* value, vrdppo_status* status) {
  return guarded(status, [&] {
    if (value == nullptr) return;
    const void* text = nullptr;
    if (value->type == VRDPPO_STRING16) {
      text = value->u.str16;
    } else if (value->type == VRDPPO_STRING8 || value->type == VRDPPO_DECIMAL) {
      text = value->u.str8;
    }
    if (text != nullptr) {
      if (!handedStrings().remove(text)) {
        throw invalidArgument(
            "the value's string was not handed out by the library (or was cleared before): it "
            "is the caller's to free, and is left as it is");
      }
      std::free(const_cast<void*>(text));
    }
    *value = vrdppo_value{};
  });
}

void vrdppo_status_clear(vrdppo_status* status) {
  clearStatus(status);
}

void vrdppo_free(void* p) {
  std::free(p);
}

}  // extern "C"
