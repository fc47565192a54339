// The ways a database can fail to fit the classes, each made on a database that fits, with the
// one finding a check must then report. The T-SQL suite makes them on the engine and the store's
// suite on a store (where the database can hold them: a store's procedures are its code).
#pragma once

#include <set>
#include <string>
#include <vector>

#include "vrdppo/schema_check.hpp"

namespace vrdppo::testing {

struct SchemaDamage {
  const char* name;
  std::vector<const char16_t*> server;  // T-SQL, each statement a batch of its own
  const char* store;                    // SQLite run on the store's file; nullptr: none
  const char* finding;                  // "problem|class|object", the one new finding
};

inline const std::vector<SchemaDamage>& schemaDamages() {
  // The store's column types are edited in its schema text, as no ALTER there can change one.
  static const std::vector<SchemaDamage> damages{
      {"a dropped column",
       {u"ALTER TABLE SAND DROP COLUMN VSSCasePercentage"},
       "ALTER TABLE SAND DROP COLUMN VSSCasePercentage",
       "problem|cSandPersist|SAND.VSSCasePercentage"},
      {"a narrowed varchar",
       {u"ALTER TABLE PRODUCTIONRUN ALTER COLUMN Comments VARCHAR(100)"},
       "PRAGMA writable_schema = ON; UPDATE sqlite_master SET sql = replace(sql, 'Comments "
       "VARCHAR(255)', 'Comments VARCHAR(100)') WHERE name = 'PRODUCTIONRUN'",
       "problem|cProductionRunPersist|PRODUCTIONRUN.Comments"},
      {"a Long column made smallint",
       {u"ALTER TABLE PRODUCTIONRUN ALTER COLUMN MachineMinutes SMALLINT"},
       "PRAGMA writable_schema = ON; UPDATE sqlite_master SET sql = replace(sql, 'MachineMinutes "
       "INT', 'MachineMinutes SMALLINT') WHERE name = 'PRODUCTIONRUN'",
       "problem|cProductionRunPersist|PRODUCTIONRUN.MachineMinutes"},
      {"a key without identity",
       {u"DROP TABLE STEMCLASS",
        u"CREATE TABLE STEMCLASS (STEMCLASSID INT NOT NULL PRIMARY KEY, Description VARCHAR(20), "
        u"DeletedFlag VARCHAR(1))"},
       "PRAGMA writable_schema = ON; UPDATE sqlite_master SET sql = replace(sql, 'STEMCLASSID "
       "INTEGER PRIMARY KEY AUTOINCREMENT', 'STEMCLASSID INT') WHERE name = 'STEMCLASS'",
       "problem|cStemClassPersist|STEMCLASS.STEMCLASSID"},
      {"a missing procedure",
       {u"DROP PROCEDURE qsp_LabLockHeader"},
       nullptr,
       "problem|cLabHeaderPersist|qsp_LabLockHeader"},
      {"a renamed parameter",
       {u"DROP PROCEDURE qsp_LabLockHeader",
        u"CREATE PROCEDURE qsp_LabLockHeader @p_HeaderId INT AS SELECT 1 AS Granted"},
       nullptr,
       "problem|cLabHeaderPersist|qsp_LabLockHeader @p_LabHeaderId"},
      {"a missing view",
       {u"DROP VIEW VLABWORKLIST"},
       "DROP VIEW VLABWORKLIST",
       "problem|cvLabWorkListPersist|VLABWORKLIST"},
  };
  return damages;
}

// The findings of `damaged` beyond those of `baseline`, as "severity|class|object".
inline std::set<std::string> newFindings(const SchemaReport& baseline,
                                         const SchemaReport& damaged) {
  const auto key = [](const SchemaFinding& f) {
    return std::string(f.severity == SchemaFinding::Severity::Problem ? "problem" : "warning") +
           "|" + f.className + "|" + f.object;
  };
  std::set<std::string> before;
  for (const auto& f : baseline.findings) before.insert(key(f));
  std::set<std::string> added;
  for (const auto& f : damaged.findings) {
    if (!before.contains(key(f))) added.insert(key(f));
  }
  return added;
}

}  // namespace vrdppo::testing
