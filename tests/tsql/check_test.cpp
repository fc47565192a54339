// The schema check on a server: the project's own schema fits the classes, each damage is
// reported as exactly the one finding it makes, and so is each way a name reaches another object
// than the one the classes need: another schema's, a view, one the login may not write.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "support/schema_damage.hpp"
#include "tsql/tsql_schema.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/schema_check.hpp"
#include "vrdppo/text.hpp"
#include "vrdppo/variant.hpp"

namespace vrdppo {
namespace {

using testing::newFindings;
using testing::schemaDamages;

void run(const std::u16string& connect, const std::vector<const char16_t*>& statements) {
  Connection c;
  c.Open(connect);
  for (const char16_t* statement : statements) c.Execute(statement);
  c.Close();
}

// The plant's database as the admin's login has it: every check compares with this one.
const SchemaReport& baselineReport(const std::u16string& admin) {
  static const SchemaReport baseline = [&] {
    const tsql::PlantDatabase fits(admin, u"vrdppo_check_");
    return checkSchema(fits.connect());
  }();
  return baseline;
}

TEST(SchemaCheck, TheServersSchemaFitsAndEachDamageIsReportedAlone) {
  const char* connect = std::getenv("VRDPPO_TSQL_CONNECT");
  if (connect == nullptr || *connect == '\0') GTEST_SKIP() << "VRDPPO_TSQL_CONNECT names no server";
  const std::u16string admin = fromUtf8(connect);
  const SchemaReport& baseline = baselineReport(admin);
  EXPECT_EQ(baseline.problems(), 0) << baseline.text();
  std::printf("[ check    ] %d classes, %d tables and views, %d columns, %d procedures in %.2f s\n",
              baseline.classes, baseline.sources, baseline.columns, baseline.procedures,
              baseline.seconds);

  for (const auto& damage : schemaDamages()) {
    SCOPED_TRACE(damage.name);
    const tsql::PlantDatabase database(admin, u"vrdppo_check_");
    run(database.connect(), damage.server);
    const SchemaReport report = checkSchema(database.connect());
    EXPECT_EQ(newFindings(baseline, report), std::set<std::string>{damage.finding})
        << report.text();
    EXPECT_FALSE(report.fits());
  }
}

// The connection string with another login: UID and PWD replaced, its sessions not kept, so
// that the login can be dropped as the test ends.
std::u16string asLogin(const std::u16string& connect, const std::u16string& login) {
  std::u16string out;
  std::size_t start = 0;
  while (start < connect.size()) {
    auto end = connect.find(u';', start);
    if (end == std::u16string::npos) end = connect.size();
    const std::u16string part = connect.substr(start, end - start);
    const std::u16string key = part.substr(0, part.find(u'='));
    if (!part.empty() && !equalsNoCase(key, u"UID") && !equalsNoCase(key, u"PWD")) {
      out += part + u";";
    }
    start = end + 1;
  }
  return out + u"UID=" + login + u";PWD=Check_reader_1;Pooling=No";
}

enum class Login : std::uint8_t {
  Admin,            // the test's own login
  ReadsStemClass,   // every right on every object, but only SELECT on STEMCLASS
  BlindToStemClass  // every right on every object, but none on STEMCLASS
};

struct NameCase {
  const char* name;
  std::vector<const char16_t*> statements;  // run by the admin on a database that fits
  Login login;
  const char* finding;  // "problem|class|object", the one new finding
  const char* has;      // what that finding says the database has
};

TEST(SchemaCheck, EachNameIsTheObjectTheServerResolvesForTheLogin) {
  const char* connect = std::getenv("VRDPPO_TSQL_CONNECT");
  if (connect == nullptr || *connect == '\0') GTEST_SKIP() << "VRDPPO_TSQL_CONNECT names no server";
  const std::u16string admin = fromUtf8(connect);
  const SchemaReport& baseline = baselineReport(admin);
  static const std::vector<NameCase> cases{
      {"a procedure only in another schema",
       {u"CREATE SCHEMA s2", u"DROP PROCEDURE qsp_LabLockHeader",
        u"CREATE PROCEDURE s2.qsp_LabLockHeader @p_LabHeaderId INT AS SELECT 1 AS Granted"},
       Login::Admin,
       "problem|cLabHeaderPersist|qsp_LabLockHeader",
       "none"},
      {"a table only in another schema",
       {u"CREATE SCHEMA s2", u"DROP TABLE STEMCLASS",
        u"CREATE TABLE s2.STEMCLASS (STEMCLASSID INT IDENTITY(1,1) NOT NULL PRIMARY KEY, "
        u"Description VARCHAR(20), DeletedFlag VARCHAR(1))"},
       Login::Admin,
       "problem|cStemClassPersist|STEMCLASS",
       "none"},
      // s2's table has the column dbo's lacks, and a text where dbo's has a number.
      {"another schema's table of the same name",
       {u"CREATE SCHEMA s2", u"ALTER TABLE dbo.STEMS DROP COLUMN ContainerEnd",
        u"CREATE TABLE s2.STEMS (TotalNetWeight VARCHAR(5), ContainerEnd INT)"},
       Login::Admin,
       "problem|cStemsPersist|STEMS.ContainerEnd",
       "none"},
      {"a view standing in for a table the class writes",
       {u"DROP TABLE STEMCLASS",
        u"CREATE TABLE STEMCLASSDATA (STEMCLASSID INT IDENTITY(1,1) NOT NULL PRIMARY KEY, "
        u"Description VARCHAR(20), DeletedFlag VARCHAR(1))",
        u"CREATE VIEW STEMCLASS AS SELECT STEMCLASSID, Description, DeletedFlag FROM "
        u"STEMCLASSDATA"},
       Login::Admin,
       "problem|cStemClassPersist|STEMCLASS",
       "a view"},
      {"a login that may read a table but not write it",
       {},
       Login::ReadsStemClass,
       "problem|cStemClassPersist|STEMCLASS",
       "this login lacks INSERT, UPDATE and DELETE"},
      {"a login that may not see a table",
       {},
       Login::BlindToStemClass,
       "problem|cStemClassPersist|STEMCLASS",
       "none this login can see (one it has no rights on is hidden from it)"},
  };
  const std::u16string login = u"vrdppo_check_reader" + fromUtf8(std::to_string(::getpid()));
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    const tsql::PlantDatabase database(admin, u"vrdppo_check_");
    run(database.connect(), test.statements);
    std::u16string checked = database.connect();
    if (test.login != Login::Admin) {
      std::vector<std::u16string> grants{
          u"CREATE LOGIN " + login + u" WITH PASSWORD = 'Check_reader_1'",
          u"CREATE USER " + login + u" FOR LOGIN " + login,
          u"GRANT EXECUTE ON SCHEMA::dbo TO " + login};
      Connection c;
      c.Open(database.connect());
      for (auto rs = c.Execute(u"SELECT TABLE_NAME FROM INFORMATION_SCHEMA.TABLES WHERE "
                               u"TABLE_SCHEMA = 'dbo'");
           !rs->EOF_(); rs->MoveNext()) {
        const std::u16string table = toString(rs->Fields(u"TABLE_NAME"));
        const bool stemClass = equalsNoCase(table, u"STEMCLASS");
        if (stemClass && test.login == Login::BlindToStemClass) continue;
        grants.push_back(u"GRANT " +
                         std::u16string(stemClass ? u"SELECT" : u"SELECT, INSERT, UPDATE, DELETE") +
                         u" ON dbo." + table + u" TO " + login);
      }
      for (const auto& grant : grants) c.Execute(grant);
      c.Close();
      checked = asLogin(database.connect(), login);
    }
    SchemaReport report;
    try {
      report = checkSchema(checked);
    } catch (const Error& e) {
      ADD_FAILURE() << e.description();
    }
    if (test.login != Login::Admin) run(admin, {(u"DROP LOGIN " + login).c_str()});
    EXPECT_EQ(newFindings(baseline, report), std::set<std::string>{test.finding}) << report.text();
    for (const auto& f : report.findings) {
      if (f.className + "|" + f.object == std::string(test.finding).substr(8)) {
        EXPECT_EQ(f.has, test.has);
      }
    }
  }
}

}  // namespace
}  // namespace vrdppo
