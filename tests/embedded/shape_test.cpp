// Writes prepared once per shape: which values a statement lifts out as parameters, that a
// lifted value writes exactly what its literal wrote, and that the statements a connection keeps
// serve every session that the pool hands the connection to.
#include <sqlite3.h>

#include <cstring>
#include <random>

#include "providers/embedded/session.hpp"
#include "providers/embedded/shape.hpp"
#include "providers/embedded/sqlite_handles.hpp"
#include "store_fixture.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded::testing {

namespace {

// The shape's text, its values after "|" as kind:token; "none" without a shape.
std::string described(std::u16string_view sql) {
  const auto shape = shapeOf(sql);
  if (!shape) return "none";
  std::string out = toUtf8(shape->text) + " |";
  for (const auto& v : shape->values) {
    out += v.negated ? " -" : " ";
    out += v.kind == ShapeValue::Kind::Integer ? "i:"
           : v.kind == ShapeValue::Kind::Real  ? "r:"
                                               : "t:";
    out += toUtf8(v.token);
  }
  return out;
}

TEST(StatementShape, LiftsLoneLiteralsOfTheWritesOfAClass) {
  struct Case {
    std::u16string_view sql;
    std::string shape;
  };
  for (const auto& c : {
           Case{u"INSERT INTO STEMS (A, B, C) VALUES (125.5, NULL, 12)",
                "INSERT INTO STEMS (A, B, C) VALUES (CAST(?1 AS REAL), NULL, ?2) | r:125.5 i:12"},
           Case{u"insert into \"T\" values ('it''s', -7, -2.5e-3)",
                "insert into \"T\" values (?1, -?2, CAST(?3 AS REAL)) | t:'it''s' i:7 "
                "-r:2.5e-3"},
           Case{u"INSERT INTO main.T VALUES (1), (getdate()), ('x')",
                "INSERT INTO main.T VALUES (?1), (getdate()), (?2) | i:1 t:'x'"},
           Case{u"INSERT INTO T (A) VALUES ((2))", "none"},
           Case{u"UPDATE T SET A = 'x', B = B + 1, C = .5 WHERE TID = 42",
                "UPDATE T SET A = ?1, B = B + 1, C = CAST(?2 AS REAL) WHERE TID = ?3 | t:'x' "
                "r:.5 i:42"},
           Case{u"UPDATE T SET A = 1 WHERE TID = 4 AND B = 5",
                "UPDATE T SET A = ?1 WHERE TID = 4 AND B = 5 | i:1"},
           Case{u"UPDATE T SET DELETEDFLAG = 'Y' WHERE TID = 3",
                "UPDATE T SET DELETEDFLAG = ?1 WHERE TID = ?2 | t:'Y' i:3"},
           // What a parameter cannot stand for exactly stays as it is.
           Case{u"INSERT INTO T VALUES (1234567890123456789, 0x10, N'x', 'a' 'b', - -1)", "none"},
           Case{u"INSERT INTO T VALUES (- 0.0, 123456789012345678)",
                "INSERT INTO T VALUES (CAST(?1 AS REAL), ?2) | -r:0.0 i:123456789012345678"},
           // Statements without a shape.
           Case{u"INSERT INTO T VALUES (1) RETURNING A", "none"},
           Case{u"INSERT INTO T SELECT 1", "none"},
           Case{u"INSERT INTO T DEFAULT VALUES", "none"},
           Case{u"INSERT OR REPLACE INTO T VALUES (1)", "none"},
           Case{u"INSERT INTO T VALUES (1) ON CONFLICT DO NOTHING", "none"},
           Case{u"INSERT INTO T VALUES (1, ?)", "none"},
           Case{u"INSERT INTO T VALUES (1, :a)", "none"},
           Case{u"INSERT INTO T VALUES (1, @a)", "none"},
           Case{u"INSERT INTO T VALUES (1, $a)", "none"},
           Case{u"INSERT INTO T VALUES (1, #a)", "none"},
           Case{u"INSERT INTO T VALUES (1, a@b)", "none"},
           Case{u"INSERT INTO T VALUES (`x,'`, 'y')", "none"},
           Case{u"INSERT INTO T VALUES (X'41', 1)", "INSERT INTO T VALUES (X'41', ?1) | i:1"},
           Case{u"INSERT INTO T VALUES (1 /* no */)", "none"},
           Case{u"INSERT INTO T VALUES (1) -- no", "none"},
           Case{u"INSERT INTO T VALUES (1);", "none"},
           Case{u"INSERT INTO T VALUES ('open", "none"},
           Case{u"SELECT 1", "none"},
           Case{u"DELETE FROM T WHERE A = 1", "DELETE FROM T WHERE A = ?1 | i:1"},
           Case{u"DELETE FROM T WHERE A = 1 AND B = 2", "none"},
           Case{u"DELETE FROM T", "none"},
           Case{u"UPDATE T SET A = B", "none"},
           Case{u"UPDATE T SET A = B WHERE C = 1", "UPDATE T SET A = B WHERE C = ?1 | i:1"},
           Case{u"UPDATE T SET A = 1 FROM U", "none"},
       }) {
    EXPECT_EQ(described(c.sql), c.shape) << toUtf8(c.sql);
  }
}

TEST(StatementShape, KeepsNoMoreParametersThanItsLimit) {
  std::u16string sql = u"INSERT INTO T VALUES (1";
  for (std::size_t i = 1; i < kMaxShapeValues; ++i) sql += u", 1";
  EXPECT_NE(shapeOf(sql + u")"), std::nullopt);
  EXPECT_EQ(shapeOf(sql + u", 1)"), std::nullopt);
}

// Every column affinity, so that each conversion a literal goes through on its way in is
// compared as well.
constexpr char kAffinities[] = "CREATE TABLE V (i INTEGER, r REAL, n NUMERIC, t TEXT, b)";

struct Cell {
  int type;
  std::string bytes;  // the value's bits: an integer's or a double's, or the text
  bool operator==(const Cell&) const = default;
};

std::vector<Cell> row(sqlite3* db, sqlite3_int64 rowid) {
  Statement st(db, std::string_view("SELECT i, r, n, t, b FROM V WHERE rowid = ?1"));
  st.bindInteger(1, rowid);
  EXPECT_TRUE(st.step());
  std::vector<Cell> out;
  for (int c = 0; c < 5; ++c) {
    Cell cell{sqlite3_column_type(st.get(), c), {}};
    if (cell.type == SQLITE_INTEGER) {
      const sqlite3_int64 v = sqlite3_column_int64(st.get(), c);
      cell.bytes.assign(reinterpret_cast<const char*>(&v), sizeof v);
    } else if (cell.type == SQLITE_FLOAT) {
      const double v = sqlite3_column_double(st.get(), c);
      cell.bytes.assign(reinterpret_cast<const char*>(&v), sizeof v);
    } else if (cell.type != SQLITE_NULL) {
      const auto* text = static_cast<const char*>(sqlite3_column_blob(st.get(), c));
      cell.bytes.assign(text ? text : "",
                        static_cast<std::size_t>(sqlite3_column_bytes(st.get(), c)));
    }
    out.push_back(cell);
  }
  return out;
}

// A decimal literal of the forms a program writes and a few it rarely does: up to twenty
// digits, a point anywhere or nowhere, an exponent to the ends of the double range and beyond.
std::u16string randomReal(std::mt19937& rng) {
  std::uniform_int_distribution<int> digit(0, 9);
  std::uniform_int_distribution<int> length(1, 20);
  std::u16string s;
  const int n = length(rng);
  const int point = std::uniform_int_distribution<int>(0, n)(rng);
  for (int i = 0; i < n; ++i) {
    if (i == point) s += u'.';
    s += static_cast<char16_t>(u'0' + digit(rng));
  }
  if (point == n) s += u'.';
  if (rng() % 2) {
    s += rng() % 2 ? u"e" : u"E-";
    for (const char c : std::to_string(std::uniform_int_distribution<int>(0, 340)(rng)))
      s += static_cast<char16_t>(c);
  }
  return s;
}

TEST(StatementShape, ALiftedValueWritesWhatItsLiteralWrote) {
  std::vector<std::u16string> literals = {u"0",
                                          u"7",
                                          u"007",
                                          u"123456789012345678",
                                          u"0.0",
                                          u".5",
                                          u"5.",
                                          u"1e5",
                                          u"1E+05",
                                          u"125.5",
                                          u"0.1",
                                          u"2.5e-3",
                                          u"1.7976931348623157e308",
                                          u"1e400",
                                          u"4.9e-324",
                                          u"2.2250738585072011e-308",
                                          u"9007199254740993",
                                          u"0.30000000000000004",
                                          u"'abc'",
                                          u"'it''s'",
                                          u"''",
                                          u"'12'",
                                          u"'1.5'",
                                          u"' 12 '",
                                          u"'1e5'",
                                          u"'-0.0'",
                                          u"'\u00e9t\u00e9'",
                                          u"'\U0001D11E'",
                                          u"'\xD800 lone'"};
  std::mt19937 rng(20261123);
  for (int i = 0; i < 600; ++i) literals.push_back(randomReal(rng));

  sqlite3* raw = nullptr;
  ASSERT_EQ(sqlite3_open(":memory:", &raw), SQLITE_OK);
  const ConnectionHandle db(raw);
  execute(db.get(), kAffinities);
  StatementCache cache;
  int compared = 0;
  for (const auto& literal : literals) {
    for (const std::u16string_view sign : {u"", u"-"}) {
      if (literal[0] == u'\'' && !sign.empty()) continue;
      const std::u16string v = std::u16string(sign) + literal;
      std::u16string sql = u"INSERT INTO V VALUES (";
      for (int column = 0; column < 5; ++column) {
        sql += column ? u", " : u"";
        sql += v;
      }
      sql += u")";
      Statement(db.get(), std::u16string_view(sql)).run();
      const auto asWritten = row(db.get(), sqlite3_last_insert_rowid(db.get()));
      const auto shape = shapeOf(sql);
      if (!shape) continue;  // integers too long to lift
      {
        Statement st(db.get(), cache, shape->text);
        shape->bind(st);
        st.run();
      }
      EXPECT_TRUE(row(db.get(), sqlite3_last_insert_rowid(db.get())) == asWritten) << toUtf8(sql);
      ++compared;
    }
  }
  EXPECT_GT(compared, 1100);
  // Three shapes for the whole run: a real with or without its minus, an integer or a text, and
  // a negated integer.
  EXPECT_EQ(cache.size(), 3u);
}

TEST(StatementCache, KeepsTheMostRecentlyUsedAndServesANestedUseApart) {
  sqlite3* raw = nullptr;
  ASSERT_EQ(sqlite3_open(":memory:", &raw), SQLITE_OK);
  const ConnectionHandle db(raw);
  execute(db.get(), "CREATE TABLE T (a INTEGER NOT NULL)");
  StatementCache cache(2);
  const auto insert = [&](const std::u16string& sql, std::int64_t v) {
    Statement st(db.get(), cache, sql);
    st.bindInteger(1, v);
    st.run();
  };
  insert(u"INSERT INTO T VALUES (?1)", 1);
  insert(u"INSERT INTO T VALUES (?1 + 0)", 2);
  insert(u"INSERT INTO T VALUES (?1)", 3);  // now the most recent of the two
  insert(u"INSERT INTO T VALUES (?1 + 1)", 3);
  EXPECT_EQ(cache.size(), 2u);
  sqlite3_stmt* kept = cache.take(u"INSERT INTO T VALUES (?1)");
  ASSERT_NE(kept, nullptr);
  EXPECT_EQ(cache.take(u"INSERT INTO T VALUES (?1 + 0)"), nullptr);  // dropped as least recent
  cache.give(u"INSERT INTO T VALUES (?1)", kept);

  {
    // Out of the cache while it runs, so a use inside it prepares its own; the spare is dropped.
    Statement outer(db.get(), cache, u"INSERT INTO T VALUES (?1)");
    insert(u"INSERT INTO T VALUES (?1)", 5);
    outer.bindInteger(1, 6);
    outer.run();
  }
  EXPECT_EQ(cache.size(), 2u);

  // A failed step leaves the statement fit for the next use, with nothing of its values bound.
  EXPECT_EQ(errorOf([&] {
              Statement st(db.get(), cache, u"INSERT INTO T VALUES (?1)");
              st.run();
            }).nativeError(),
            515);
  insert(u"INSERT INTO T VALUES (?1)", 7);
  Statement sum(db.get(), std::string_view("SELECT group_concat(a) FROM T"));
  ASSERT_TRUE(sum.step());
  EXPECT_STREQ(reinterpret_cast<const char*>(sqlite3_column_text(sum.get(), 0)), "1,2,3,4,5,6,7");
}

class KeptStatements : public StoreTest {};

TEST_F(KeptStatements, ServeEverySessionOfTheirConnectionWithoutPreparingAgain) {
  for (std::int32_t id = 1; id <= 3; ++id) {
    Session s(path_);
    s.execute(u"ZZ_SetAuditTrailID " + ascii(std::to_string(id * 10)));
    s.execute(u"INSERT INTO STEMCLASS (STEMCLASSID, Description, DeletedFlag) VALUES (" +
              ascii(std::to_string(id)) + u", audittrailid(), 'N')");
    if (id < 3) continue;
    // The pool hands the one connection from session to session, its statement with it.
    sqlite3_stmt* kept = sqlite3_next_stmt(s.handle(), nullptr);
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(sqlite3_next_stmt(s.handle(), kept), nullptr);
    EXPECT_EQ(sqlite3_stmt_status(kept, SQLITE_STMTSTATUS_RUN, 0), 3);
    EXPECT_EQ(sqlite3_stmt_status(kept, SQLITE_STMTSTATUS_REPREPARE, 0), 0);
  }
  // Each row has the id of the session that wrote it, though one statement wrote them all.
  EXPECT_EQ(scalar(u"SELECT group_concat(Description) FROM (SELECT Description FROM STEMCLASS "
                   u"ORDER BY STEMCLASSID)"),
            Variant(u"10,20,30"));
}

}  // namespace

}  // namespace vrdppo::embedded::testing
