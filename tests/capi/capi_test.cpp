// The C interface: its catalogue agrees with the registry, a whole request runs through it, and
// every failure comes back as a status.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "endtoend/store_fixture.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/observer.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/vrdppo.h"

using namespace vrdppo;
using namespace vrdppo::testing;

namespace {

vrdppo_value str8(const char* s) {
  vrdppo_value v{};
  v.type = VRDPPO_STRING8;
  v.length = static_cast<int32_t>(std::strlen(s));
  v.u.str8 = s;
  return v;
}
vrdppo_value str16(const std::u16string& s) {
  vrdppo_value v{};
  v.type = VRDPPO_STRING16;
  v.length = static_cast<int32_t>(s.size());
  v.u.str16 = reinterpret_cast<const uint16_t*>(s.data());
  return v;
}
vrdppo_value lng(int32_t n) {
  vrdppo_value v{};
  v.type = VRDPPO_LONG;
  v.u.lng = n;
  return v;
}
vrdppo_value missing() {
  vrdppo_value v{};
  v.type = VRDPPO_MISSING;
  return v;
}
std::u16string text16(const vrdppo_value& v) {
  EXPECT_EQ(v.type, VRDPPO_STRING16);
  return {reinterpret_cast<const char16_t*>(v.u.str16), static_cast<std::size_t>(v.length)};
}

// A status that clears itself.
struct Status : vrdppo_status {
  Status() : vrdppo_status{} {}
  ~Status() { vrdppo_status_clear(this); }
  std::string text() const { return description == nullptr ? "" : description; }
};
struct Object {
  vrdppo_object* p = nullptr;
  ~Object() {
    if (p != nullptr) vrdppo_release(p, nullptr);
  }
};
struct Value : vrdppo_value {
  Value() : vrdppo_value{} {}
  ~Value() { vrdppo_value_clear(this, nullptr); }
};

std::u16string stemState(Long key, double weight, Long run) {
  return newState<cStemsPersist>([&](StemsRecord& r) {
    r.StemsId = key;
    r.TotalNetWeight = weight;
    r.ContainerEnd = 12;
    r.StemTypeID = 3;
    r.ProductionRunId = run;
  });
}

using CInterface = StoreTest;

}  // namespace

TEST(CInterfaceCatalogue, AgreesWithTheRegistry) {
  const auto& classes = registry::classes();
  ASSERT_EQ(vrdppo_class_count(), static_cast<int32_t>(classes.size()));
  for (int32_t i = 0; i < vrdppo_class_count(); ++i) {
    const ClassInfo& c = *classes[static_cast<std::size_t>(i)];
    Status st;
    vrdppo_class_info info{};
    ASSERT_EQ(vrdppo_class_info_get(i, &info, &st), 0) << st.text();
    EXPECT_EQ(info.name, c.name);
    EXPECT_EQ(info.class_id, c.classId);
    EXPECT_EQ(info.is_view, c.isView ? 1 : 0);
    EXPECT_EQ(info.record_bytes, c.layout->bytes);
    EXPECT_EQ(info.state_chars, c.layout->stateChars);
    EXPECT_EQ(vrdppo_class_find(c.name.c_str()), i);
    ASSERT_EQ(info.member_count, static_cast<int32_t>(c.members.size()));
    for (int32_t m = 0; m < info.member_count; ++m) {
      vrdppo_member_info mi{};
      ASSERT_EQ(vrdppo_member_info_get(i, m, &mi, &st), 0);
      EXPECT_EQ(mi.name, c.members[static_cast<std::size_t>(m)].name);
      EXPECT_EQ(mi.dispatch_id, kFirstDispatchId + m);
    }
    ASSERT_EQ(info.column_count, static_cast<int32_t>(c.layout->columns.size()));
    for (int32_t k = 0; k < info.column_count; ++k) {
      vrdppo_column_info ci{};
      ASSERT_EQ(vrdppo_column_info_get(i, k, &ci, &st), 0);
      const Column& col = c.layout->columns[static_cast<std::size_t>(k)];
      EXPECT_EQ(ci.offset, col.offset);
      EXPECT_EQ(fromUtf8(ci.write_name), col.write);
    }
  }
}

TEST(CInterfaceCatalogue, StemsInDetail) {
  const int32_t stems = vrdppo_class_find("CSTEMSPERSIST");  // without regard to case
  ASSERT_GE(stems, 0);
  vrdppo_class_info info{};
  ASSERT_EQ(vrdppo_class_info_get(stems, &info, nullptr), 0);
  EXPECT_STREQ(info.name, "cStemsPersist");
  EXPECT_STREQ(info.source, "STEMS");
  EXPECT_EQ(info.record_bytes, 60);
  EXPECT_STREQ(info.trailing_literal, "StemId");

  vrdppo_column_info weight{};
  ASSERT_EQ(vrdppo_column_info_get(stems, 1, &weight, nullptr), 0);
  EXPECT_STREQ(weight.read_name, "TotalNetWeight");
  EXPECT_EQ(weight.type, VRDPPO_FIELD_DOUBLE);
  EXPECT_EQ(weight.offset, 4);

  // Load's third argument, lTop, is an optional Long with its default.
  const ClassInfo& c = *registry::find("cStemsPersist");
  const MemberInfo* load = c.member("Load");
  const auto index = static_cast<int32_t>(load - c.members.data());
  vrdppo_member_info mi{};
  ASSERT_EQ(vrdppo_member_info_get(stems, index, &mi, nullptr), 0);
  EXPECT_EQ(mi.result_type, VRDPPO_VT_STRING);
  ASSERT_EQ(mi.arg_count, static_cast<int32_t>(load->args.size()));
  vrdppo_arg_info ai{};
  ASSERT_EQ(vrdppo_arg_info_get(stems, index, 0, &ai, nullptr), 0);
  EXPECT_STREQ(ai.name, "sCriteria");
  EXPECT_EQ(ai.type, VRDPPO_VT_STRING);
  EXPECT_EQ(ai.by_ref, 1);

  EXPECT_EQ(vrdppo_class_find("cNoSuchPersist"), -1);
  EXPECT_EQ(vrdppo_class_find(nullptr), -1);
}

TEST(CInterfaceCatalogue, IndicesOutOfRangeAreStatuses) {
  Status st;
  vrdppo_class_info info{};
  EXPECT_EQ(vrdppo_class_info_get(-1, &info, &st), err::kInvalidCall);
  EXPECT_NE(st.text().find("no class has that index"), std::string::npos);
  EXPECT_EQ(vrdppo_class_info_get(vrdppo_class_count(), &info, &st), err::kInvalidCall);
  vrdppo_member_info mi{};
  EXPECT_EQ(vrdppo_member_info_get(0, 10000, &mi, &st), err::kInvalidCall);
  vrdppo_arg_info ai{};
  EXPECT_EQ(vrdppo_arg_info_get(0, 0, 99, &ai, &st), err::kInvalidCall);
  vrdppo_column_info ci{};
  EXPECT_EQ(vrdppo_column_info_get(0, -3, &ci, &st), err::kInvalidCall);
  EXPECT_EQ(vrdppo_class_info_get(0, nullptr, &st), err::kInvalidCall);
}

// A whole request: a new record is the initialiser's, for vrdppo_record_new and a new object
// alike; Commit, Load by dispatch identifier and Delete, each telling the rows it touched, and a
// Delete of a key no row has touching none.
TEST_F(CInterface, AWholeRequestOnTheStore) {
  Status st;
  const std::string path8 = path;
  Value cs;
  ASSERT_EQ(vrdppo_embedded_connect_string(path8.c_str(), &cs, &st), 0);
  ASSERT_EQ(text16(cs), connect);
  ASSERT_EQ(vrdppo_session_set(VRDPPO_SESSION_CONNECT_STRING, &cs, &st), 0);
  EXPECT_EQ(dbHelp::ConnectString, connect);

  const int32_t index = vrdppo_class_find("cStemsPersist");
  Value fresh;
  ASSERT_EQ(vrdppo_record_new(index, &fresh, &st), 0) << st.text();
  StemsRecord zero{};
  EXPECT_EQ(text16(fresh).size(), stemState(0, 0, 0).size());
  EXPECT_NE(std::memcmp(text16(fresh).data(), &zero, sizeof zero), 0);
  Value none;
  EXPECT_EQ(vrdppo_record_new(-1, &none, &st), err::kInvalidCall);
  EXPECT_EQ(vrdppo_record_new(index, nullptr, &st), err::kInvalidCall);

  Object stems;
  ASSERT_EQ(vrdppo_create("cStemsPersist", &stems.p, &st), 0) << st.text();
  EXPECT_EQ(vrdppo_object_class(stems.p), index);
  Value got;
  ASSERT_EQ(vrdppo_invoke(stems.p, "GetState", nullptr, 0, &got, &st), 0);
  EXPECT_EQ(text16(got), text16(fresh));
  EXPECT_EQ(vrdppo_last_records_affected(), -1);  // GetState ran no statement

  const std::u16string state = stemState(0, 125.5, 77);
  vrdppo_value commitArgs[] = {str16(state), str16(connect)};
  Value ok;
  ASSERT_EQ(vrdppo_invoke(stems.p, "commit", commitArgs, 2, &ok, &st), 0) << st.text();
  ASSERT_EQ(ok.type, VRDPPO_BOOLEAN);
  EXPECT_EQ(ok.u.boolean, 1);
  EXPECT_EQ(vrdppo_last_records_affected(), 1);

  Value after;
  ASSERT_EQ(vrdppo_invoke(stems.p, "GetState", nullptr, 0, &after, &st), 0);
  const std::u16string saved = text16(after);
  StemsRecord record{};
  std::memcpy(&record, saved.data(), sizeof record);
  EXPECT_GT(record.StemsId, 0);

  const ClassInfo& c = *registry::find("cStemsPersist");
  const int32_t loadId = c.member("Load")->dispatchId;
  vrdppo_value loadArgs[] = {str8("ProductionRunId = 77"), str16(connect)};
  Value loaded;
  ASSERT_EQ(vrdppo_invoke_id(stems.p, loadId, loadArgs, 2, &loaded, &st), 0) << st.text();
  const auto rows = rowsOf<cStemsPersist>(text16(loaded));
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].StemsId, record.StemsId);
  EXPECT_EQ(double{rows[0].TotalNetWeight}, 125.5);

  vrdppo_value deleteArgs[] = {str16(saved), str16(connect)};
  Value deleted;
  ASSERT_EQ(vrdppo_invoke(stems.p, "Delete", deleteArgs, 2, &deleted, &st), 0) << st.text();
  EXPECT_EQ(vrdppo_last_records_affected(), 1);
  ASSERT_EQ(vrdppo_invoke(stems.p, "Delete", deleteArgs, 2, &deleted, &st), 0) << st.text();
  EXPECT_EQ(vrdppo_last_records_affected(), 0);
  Value empty;
  ASSERT_EQ(vrdppo_invoke(stems.p, "Load", loadArgs, 2, &empty, &st), 0);
  EXPECT_TRUE(rowsOf<cStemsPersist>(text16(empty)).empty());

  // The figure of the call itself, whatever the thread runs after it; -1 for a call that failed.
  const int32_t commitId = c.member("Commit")->dispatchId;
  std::int64_t affected = 99;
  Value again;
  ASSERT_EQ(vrdppo_invoke_id_counted(stems.p, commitId, commitArgs, 2, &again, &affected, &st), 0)
      << st.text();
  EXPECT_EQ(affected, 1);
  Value failed;
  EXPECT_NE(vrdppo_invoke_id_counted(stems.p, commitId, commitArgs, 1, &failed, &affected, &st), 0);
  EXPECT_EQ(affected, -1);
  EXPECT_EQ(vrdppo_invoke_id_counted(stems.p, commitId, commitArgs, 2, &again, nullptr, &st), 0);
}

TEST_F(CInterface, FailuresComeBackAsStatuses) {
  Status st;
  Object o;
  EXPECT_EQ(vrdppo_create("cNoSuchPersist", &o.p, &st), err::kCannotCreate);
  EXPECT_EQ(o.p, nullptr);
  EXPECT_FALSE(st.text().empty());
  EXPECT_EQ(vrdppo_create(nullptr, &o.p, &st), err::kInvalidCall);
  ASSERT_EQ(vrdppo_create("cStemsPersist", &o.p, &st), 0);
  EXPECT_EQ(st.description, nullptr);  // a success clears the status

  Value r;
  EXPECT_EQ(vrdppo_invoke(o.p, "NoSuchMember", nullptr, 0, &r, &st), err::kMemberNotFound);
  EXPECT_EQ(vrdppo_invoke(nullptr, "Load", nullptr, 0, &r, &st), err::kInvalidCall);
  EXPECT_EQ(vrdppo_invoke(o.p, nullptr, nullptr, 0, &r, &st), err::kInvalidCall);
  EXPECT_EQ(vrdppo_invoke(o.p, "Load", nullptr, 2, &r, &st), err::kInvalidCall);
  EXPECT_EQ(vrdppo_invoke(o.p, "Load", nullptr, -1, &r, &st), err::kInvalidCall);

  EXPECT_EQ(vrdppo_invoke(o.p, "Load", nullptr, 0, &r, &st), err::kArgumentNotOptional);
  // An optional lTop: left out as missing, left off the end, or of the wrong type.
  Object comments;
  ASSERT_EQ(vrdppo_create("cCageMoveCommentPersist", &comments.p, &st), 0);
  vrdppo_value withMissing[] = {str8("1=1"), str16(connect), missing()};
  EXPECT_EQ(vrdppo_invoke(comments.p, "Load", withMissing, 3, &r, &st), 0) << st.text();
  vrdppo_value_clear(&r, nullptr);  // a result is overwritten, not freed
  EXPECT_EQ(vrdppo_invoke(comments.p, "Load", withMissing, 2, &r, &st), 0) << st.text();
  vrdppo_value_clear(&r, nullptr);
  vrdppo_value bad[] = {str8("1=1"), str16(connect), str8("x")};
  EXPECT_EQ(vrdppo_invoke(comments.p, "Load", bad, 3, &r, &st), err::kTypeMismatch);
  vrdppo_value tooMany[] = {str8("1=1"), str16(connect), str8("x")};
  EXPECT_NE(vrdppo_invoke(o.p, "Load", tooMany, 3, &r, &st), 0);
  vrdppo_value unknownTag = str8("1=1");
  unknownTag.type = 99;
  vrdppo_value tagged[] = {unknownTag, str16(connect)};
  EXPECT_EQ(vrdppo_invoke(o.p, "Load", tagged, 2, &r, &st), err::kInvalidCall);
  vrdppo_value negative = str8("1=1");
  negative.length = -4;
  vrdppo_value lengths[] = {negative, str16(connect)};
  EXPECT_EQ(vrdppo_invoke(o.p, "Load", lengths, 2, &r, &st), err::kInvalidCall);

  // A database error carries the provider's number, SQLSTATE and the statement.
  vrdppo_value sqlError[] = {str8("NoSuchColumn = 1"), str16(connect)};
  EXPECT_EQ(vrdppo_invoke(o.p, "Load", sqlError, 2, &r, &st), err::kCommandError);
  EXPECT_STRNE(st.sql_state, "");
  ASSERT_NE(st.statement, nullptr);
  EXPECT_NE(std::string(st.statement).find("NoSuchColumn = 1"), std::string::npos);
  EXPECT_EQ(st.column, nullptr);
  EXPECT_EQ(st.row, 0);
  EXPECT_EQ(r.type, VRDPPO_EMPTY);
  // A cell that will not go into its field names the column and the row besides.
  insert(u"INSERT INTO STEMS (ContainerStart) VALUES ('eight')");
  vrdppo_value all[] = {str8(""), str16(connect)};
  EXPECT_EQ(vrdppo_invoke(o.p, "Load", all, 2, &r, &st), err::kTypeMismatch);
  EXPECT_STREQ(st.description, "Type mismatch");
  EXPECT_STREQ(st.statement, "SELECT * FROM STEMS");
  EXPECT_STREQ(st.column, "ContainerStart");
  EXPECT_EQ(st.row, 1);

  // No status at all is allowed: the number still comes back.
  EXPECT_EQ(vrdppo_invoke(o.p, "NoSuchMember", nullptr, 0, nullptr, nullptr), err::kMemberNotFound);
}

TEST(CInterfaceSession, ValuesArePerThread) {
  Status st;
  const vrdppo_value app = str8("line 3 scales");
  ASSERT_EQ(vrdppo_session_set(VRDPPO_SESSION_APP_NAME, &app, &st), 0);
  const vrdppo_value id = lng(4711);
  ASSERT_EQ(vrdppo_session_set(VRDPPO_SESSION_AUDIT_TRAIL_ID, &id, &st), 0);
  Value got;
  ASSERT_EQ(vrdppo_session_get(VRDPPO_SESSION_APP_NAME, &got, &st), 0);
  EXPECT_EQ(text16(got), u"line 3 scales");
  Value gotId;
  ASSERT_EQ(vrdppo_session_get(VRDPPO_SESSION_AUDIT_TRAIL_ID, &gotId, &st), 0);
  EXPECT_EQ(gotId.u.lng, 4711);

  std::u16string other;
  std::thread([&] {
    Value v;
    vrdppo_session_get(VRDPPO_SESSION_APP_NAME, &v, nullptr);
    other = text16(v);
  }).join();
  EXPECT_NE(other, u"line 3 scales");

  const vrdppo_value notANumber = str8("x");
  EXPECT_EQ(vrdppo_session_set(VRDPPO_SESSION_AUDIT_TRAIL_ID, &notANumber, &st),
            err::kTypeMismatch);
  EXPECT_EQ(vrdppo_session_set(42, &app, &st), err::kInvalidCall);
  vrdppo_value_clear(&got, nullptr);
  EXPECT_EQ(vrdppo_session_get(42, &got, &st), err::kInvalidCall);
  dbHelp::AppName.clear();
  dbHelp::AuditTrailId = 0;
}

TEST(CInterfaceValues, TextOfAValue) {
  vrdppo_value d{};
  d.type = VRDPPO_DATE;
  d.u.dbl = 2.5;  // 1900-01-01 12:00
  char* t = vrdppo_value_text(&d, nullptr);
  ASSERT_NE(t, nullptr);
  EXPECT_STREQ(t, "1/1/1900 12:00:00 PM");
  vrdppo_free(t);
  const vrdppo_value s = str8("h\xc3\xa9");
  t = vrdppo_value_text(&s, nullptr);
  EXPECT_STREQ(t, "h\xc3\xa9");
  vrdppo_free(t);
  EXPECT_EQ(vrdppo_value_text(nullptr, nullptr), nullptr);
}

// Values travel as an invoke's arguments do; a refusal is a status naming its place, with no text.
TEST(CInterfaceCriteria, BuiltOrRefusedAsAStatus) {
  vrdppo_value dbl{};
  dbl.type = VRDPPO_DOUBLE;
  dbl.u.dbl = 12.5;
  vrdppo_value date{};
  date.type = VRDPPO_DATE;
  date.u.dbl = makeDate(2019, 3, 7, 14, 5, 9).days;
  vrdppo_value null{};
  null.type = VRDPPO_NULL;
  vrdppo_value boolean{};
  boolean.type = VRDPPO_BOOLEAN;
  boolean.u.boolean = 1;
  const std::u16string wide = u"\u00e9\U0001F600";
  const std::u16string nul(u"x\0y", 3);
  const std::u16string lone(1, char16_t{0xD800});
  const struct {
    const char* templ;
    std::vector<vrdppo_value> values;
    int32_t number;
    std::string text;  // the criteria, or a piece of the refusal's description
  } cases[] = {
      {"Code = ? AND Weight > ?", {str8("O'N"), dbl}, 0, "Code = 'O''N' AND Weight > 12.5"},
      {"StationId = ? AND SampleTime >= ? AND Note IS ?",
       {lng(7), date, null},
       0,
       "StationId = 7 AND SampleTime >= '2019/03/07 14:05:09' AND Note IS Null"},
      {"Name = ?", {str16(wide)}, 0, "Name = '\xc3\xa9\xf0\x9f\x98\x80'"},
      {"a = ? AND b = ?", {lng(1)}, err::kInvalidCall, "placeholder 2"},
      {"a = ?",
       {str16(nul)},
       err::kInvalidCall,
       "placeholder 1 (character 5): a string holding U+0000"},
      {"a = ?",
       {str16(lone)},
       err::kInvalidCall,
       "placeholder 1: a string holding a lone surrogate"},
      {"a = ?", {boolean}, err::kInvalidCall, "type Boolean"},
      {"a = 1; DROP TABLE STEMS", {}, err::kInvalidCall, "\";\" (character 6)"},
      {nullptr, {}, err::kInvalidCall, "the template is NULL"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.templ == nullptr ? "NULL" : c.templ);
    Status st;
    char mark = 0;
    char* out = &mark;
    const int32_t rc =
        vrdppo_criteria(c.templ, c.values.data(), static_cast<int32_t>(c.values.size()), &out, &st);
    EXPECT_EQ(rc, c.number);
    EXPECT_EQ(st.number, c.number);
    if (c.number == 0) {
      ASSERT_NE(out, nullptr);
      EXPECT_EQ(std::string(out), c.text);
      vrdppo_free(out);
    } else {
      EXPECT_EQ(out, nullptr);
      EXPECT_NE(st.text().find(c.text), std::string::npos) << st.text();
    }
  }
  Status st;
  EXPECT_EQ(vrdppo_criteria("a = ?", nullptr, 1, nullptr, &st), err::kInvalidCall);
  char* out = nullptr;
  EXPECT_EQ(vrdppo_criteria("a = ?", nullptr, 1, &out, &st), err::kInvalidCall);
  EXPECT_EQ(out, nullptr);
}

// What a caller in another language gets wrong: a handle released twice or called after its
// release, a string of its own handed to vrdppo_value_clear. Each is a status, never a crash.
TEST(CInterfaceMisuse, HandlesAndStringsAreCheckedNotFollowed) {
  Status st;
  vrdppo_object* stems = nullptr;
  ASSERT_EQ(vrdppo_create("cStemsPersist", &stems, &st), 0) << st.text();
  const int32_t stemsClass = vrdppo_object_class(stems);
  EXPECT_GE(stemsClass, 0);
  ASSERT_EQ(vrdppo_release(stems, &st), 0) << st.text();

  vrdppo_value r{};
  vrdppo_object* strangers[] = {stems, reinterpret_cast<vrdppo_object*>(&r)};
  for (vrdppo_object* stale : strangers) {
    EXPECT_EQ(vrdppo_release(stale, &st), err::kInvalidCall);
    EXPECT_NE(st.text().find("released"), std::string::npos) << st.text();
    EXPECT_EQ(vrdppo_invoke(stale, "GetState", nullptr, 0, &r, &st), err::kInvalidCall);
    EXPECT_NE(st.text().find("released"), std::string::npos) << st.text();
    EXPECT_EQ(vrdppo_invoke_id(stale, 0x60030000, nullptr, 0, &r, &st), err::kInvalidCall);
    EXPECT_EQ(vrdppo_object_class(stale), -1);
  }
  // A handle is never handed out again, so a stale one cannot reach the next object.
  Object next;
  ASSERT_EQ(vrdppo_create("cStemsPersist", &next.p, &st), 0);
  EXPECT_EQ(vrdppo_invoke(stems, "GetState", nullptr, 0, &r, &st), err::kInvalidCall);
  EXPECT_EQ(vrdppo_release(nullptr, &st), err::kInvalidCall);

  // The caller's own strings, in a value of either kind, are refused and left as they are.
  std::u16string mine16 = u"mine";
  vrdppo_value own[] = {str8("mine"), str16(mine16)};
  for (vrdppo_value& v : own) {
    const vrdppo_value before = v;
    EXPECT_EQ(vrdppo_value_clear(&v, &st), err::kInvalidCall);
    EXPECT_NE(st.text().find("caller's"), std::string::npos) << st.text();
    EXPECT_EQ(std::memcmp(&v, &before, sizeof v), 0);
  }
  // One the library handed out is freed once; the same bits again are refused.
  ASSERT_EQ(vrdppo_invoke(next.p, "GetState", nullptr, 0, &r, &st), 0) << st.text();
  const vrdppo_value copy = r;
  EXPECT_EQ(vrdppo_value_clear(&r, &st), 0);
  EXPECT_EQ(r.type, VRDPPO_EMPTY);
  vrdppo_value again = copy;
  EXPECT_EQ(vrdppo_value_clear(&again, &st), err::kInvalidCall);
  EXPECT_EQ(vrdppo_value_clear(nullptr, &st), 0);
}

TEST_F(CInterface, ASchemaCheckReportsAndCounts) {
  Status st;
  const std::string connect = "Provider=vrdppo.Embedded;Data Source=" + path;
  ASSERT_EQ(vrdppo_embedded_open(path.c_str(), &st), 0) << st.text();
  char* report = nullptr;
  int32_t problems = -1;
  ASSERT_EQ(vrdppo_check_schema(connect.c_str(), 1, &report, &problems, &st), 0) << st.text();
  ASSERT_NE(report, nullptr);
  EXPECT_EQ(problems, 0);
  EXPECT_EQ(std::string(report).rfind("{\"fits\": true, \"problems\": 0,", 0), 0u) << report;
  vrdppo_free(report);
  // A store that is not there is a failure, and nothing is made.
  const std::string missing = "Provider=vrdppo.Embedded;Data Source=" + path + ".none";
  EXPECT_NE(vrdppo_check_schema(missing.c_str(), 0, &report, &problems, &st), 0);
  EXPECT_EQ(report, nullptr);
  EXPECT_NE(st.text().find(".none"), std::string::npos) << st.text();
  EXPECT_NE(vrdppo_check_schema(nullptr, 0, nullptr, nullptr, &st), 0);
}

namespace {

struct Heard {
  std::string scope;  // which observer: its user data's
  std::string query;
  std::string operation;
  std::string system;
  std::string database;
  int64_t returned;
  int64_t affected;
  int32_t session;
  int32_t errorNumber;
  bool errorText;  // the error's strings are there
};
struct Log {
  std::mutex mutex;
  std::vector<Heard> heard;
};
struct Listener {
  std::string scope;
  Log* log;
};

void heardStatement(const vrdppo_statement_event* e, void* user) {
  auto* l = static_cast<Listener*>(user);
  const std::lock_guard lock(l->log->mutex);
  l->log->heard.push_back({l->scope, e->db_query_text, e->db_operation_name, e->db_system_name,
                           e->db_namespace, e->returned_rows, e->affected_rows, e->session,
                           e->error_number,
                           e->error_sql_state != nullptr && e->error_description != nullptr});
}

int selfRemovals = 0;
void removesItself(const vrdppo_statement_event*, void*) {
  ++selfRemovals;
  vrdppo_observer_set(VRDPPO_OBSERVE_PROCESS, nullptr, nullptr, nullptr, nullptr);
}

}  // namespace

// A C observer of the process and one of the thread hear a Commit's and a Load's statements, the
// thread's first, each with its own user data; a call on another thread only the process's; and
// neither anything once removed.
TEST_F(CInterface, ObserversHearTheStatementsUntilRemoved) {
  Status st;
  Log log;
  Listener process{"process", &log};
  Listener thread{"thread", &log};
  ASSERT_EQ(vrdppo_observer_set(VRDPPO_OBSERVE_PROCESS, heardStatement, nullptr, &process, &st), 0)
      << st.text();
  ASSERT_EQ(vrdppo_observer_set(VRDPPO_OBSERVE_THREAD, heardStatement, nullptr, &thread, &st), 0);

  Object stems;
  ASSERT_EQ(vrdppo_create("cStemsPersist", &stems.p, &st), 0);
  const std::u16string state = stemState(0, 125.5, 77);
  vrdppo_value commitArgs[] = {str16(state), str16(connect)};
  Value ok;
  ASSERT_EQ(vrdppo_invoke(stems.p, "Commit", commitArgs, 2, &ok, &st), 0) << st.text();
  vrdppo_value loadArgs[] = {str8("ProductionRunId = 77"), str16(connect)};
  Value loaded;
  ASSERT_EQ(vrdppo_invoke(stems.p, "Load", loadArgs, 2, &loaded, &st), 0) << st.text();
  vrdppo_value badArgs[] = {str8("NoSuchColumn = 1"), str16(connect)};
  Value failed;
  EXPECT_EQ(vrdppo_invoke(stems.p, "Load", badArgs, 2, &failed, &st), err::kCommandError);

  ASSERT_GE(log.heard.size(), 6u);
  ASSERT_EQ(log.heard.size() % 2, 0u);
  for (std::size_t i = 0; i < log.heard.size(); i += 2) {
    const Heard& h = log.heard[i];
    SCOPED_TRACE(h.query);
    EXPECT_EQ(h.scope, "thread");
    EXPECT_EQ(log.heard[i + 1].scope, "process");
    EXPECT_EQ(log.heard[i + 1].query, h.query);
    EXPECT_EQ(h.system, "sqlite");
    EXPECT_EQ(h.database, path);
    EXPECT_EQ(h.session, VRDPPO_ORIGIN_NONE);
    EXPECT_EQ(h.errorNumber != 0, i + 2 == log.heard.size());  // only the last failed
    EXPECT_EQ(h.errorText, h.errorNumber != 0);
  }
  const auto find = [&](const char* text) {
    return std::find_if(log.heard.begin(), log.heard.end(),
                        [&](const Heard& h) { return h.query.find(text) != std::string::npos; });
  };
  const auto commit = find("INSERT INTO STEMS");
  ASSERT_NE(commit, log.heard.end());
  EXPECT_EQ(commit->operation, "EXEC");
  EXPECT_EQ(commit->affected, 1);
  const auto load = find("ProductionRunId = 77");
  ASSERT_NE(load, log.heard.end());
  EXPECT_EQ(load->operation, "SELECT");
  EXPECT_EQ(load->returned, 1);

  const std::size_t before = log.heard.size();
  std::thread([&] {
    Object mine;
    Value rows;
    vrdppo_create("cStemsPersist", &mine.p, nullptr);
    EXPECT_EQ(vrdppo_invoke(mine.p, "Load", loadArgs, 2, &rows, nullptr), 0);
  }).join();
  ASSERT_GT(log.heard.size(), before);
  for (std::size_t i = before; i < log.heard.size(); ++i) EXPECT_EQ(log.heard[i].scope, "process");

  ASSERT_EQ(vrdppo_observer_set(VRDPPO_OBSERVE_PROCESS, nullptr, nullptr, nullptr, &st), 0);
  ASSERT_EQ(vrdppo_observer_set(VRDPPO_OBSERVE_THREAD, nullptr, nullptr, nullptr, &st), 0);
  const std::size_t removed = log.heard.size();
  Value again;
  ASSERT_EQ(vrdppo_invoke(stems.p, "Load", loadArgs, 2, &again, &st), 0);
  EXPECT_EQ(log.heard.size(), removed);

  // One that removes itself from inside its call does not wait for that call to end.
  selfRemovals = 0;
  ASSERT_EQ(vrdppo_observer_set(VRDPPO_OBSERVE_PROCESS, removesItself, nullptr, nullptr, &st), 0);
  Value twice;
  ASSERT_EQ(vrdppo_invoke(stems.p, "Load", loadArgs, 2, &twice, &st), 0);
  EXPECT_EQ(selfRemovals, 1);
  EXPECT_EQ(vrdppo_observer_set(2, heardStatement, nullptr, &process, &st), err::kInvalidCall);
}

TEST(CInterfacePool, FiguresAsJson) {
  Status st;
  char* text = nullptr;
  ASSERT_EQ(vrdppo_pool_figures(&text, &st), 0) << st.text();
  ASSERT_NE(text, nullptr);
  const auto figures = nlohmann::json::parse(text);
  vrdppo_free(text);
  for (const char* key : {"idle", "in_use", "logins", "failed_logins", "reuses", "login_time_ns"}) {
    EXPECT_TRUE(figures.at(key).is_number_unsigned()) << key;
  }
  EXPECT_TRUE(figures.at("connections").is_array());
  EXPECT_EQ(figures.at("logouts").size(), static_cast<std::size_t>(kLogoutCauses - 1));
  EXPECT_TRUE(figures.at("logouts").at("idle-life-ended").is_number_unsigned());
  EXPECT_EQ(vrdppo_pool_figures(nullptr, &st), err::kInvalidCall);
}
