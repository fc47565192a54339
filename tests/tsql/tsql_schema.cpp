#include "tsql/tsql_schema.hpp"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include <unistd.h>

#include <cstdio>

#include "vrdppo/error.hpp"
#include "vrdppo/odbc_pool.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/recordset.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::tsql {

namespace {

std::string upper(std::string s) {
  for (auto& c : s) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  }
  return s;
}

// A column definition in the store's DDL, in T-SQL: the identity key and the types are all that
// differ, as the store's DDL keeps to types both understand.
std::string column(const std::string& definition) {
  const std::string up = upper(definition);
  const auto auto_ = up.find(" INTEGER PRIMARY KEY AUTOINCREMENT");
  if (auto_ != std::string::npos) {
    return definition.substr(0, auto_) + " INT IDENTITY(1,1) NOT NULL PRIMARY KEY";
  }
  if (up.find(" COLLATE ") != std::string::npos) {
    throw std::runtime_error("a collation has no T-SQL form: " + definition);
  }
  return definition;
}

// "CREATE INDEX IF NOT EXISTS X ON T (c)": SQL Server has no IF NOT EXISTS on an index, and the
// script runs on a fresh database.
std::string statement(const std::string& sql) {
  std::string out = sql;
  const std::string ine = " IF NOT EXISTS";
  const auto at = upper(out).find(ine);
  if (at != std::string::npos) out.erase(at, ine.size());
  return out;
}

std::string trimmed(const std::string& s) {
  const auto b = s.find_first_not_of(" \n\t");
  if (b == std::string::npos) return {};
  const auto e = s.find_last_not_of(" \n\t");
  return s.substr(b, e - b + 1);
}

}  // namespace

std::string schemaScript(const embedded::Catalog& catalog) {
  std::ostringstream out;
  out << "-- The plant's tables, views and indexes, for SQL Server. Generated from the embedded\n"
         "-- store's catalog (tests/tsql/tsql_schema.cpp); procedures.sql holds the procedures.\n"
         "-- Run on an empty database: sqlcmd -d VRD -i schema.sql -i procedures.sql\n"
         "SET QUOTED_IDENTIFIER ON\nGO\n";
  for (const auto& t : catalog.tables()) {
    out << "\nCREATE TABLE " << t.name << " (\n";
    for (std::size_t i = 0; i < t.columns.size(); ++i) {
      out << "  " << column(t.columns[i].second) << (i + 1 < t.columns.size() ? ",\n" : "\n");
    }
    out << ")\nGO\n";
  }
  for (const auto& [name, select] : catalog.views()) {
    out << "\nCREATE VIEW " << name << " AS\n" << trimmed(select) << "\nGO\n";
  }
  out << "\n";
  for (const auto& sql : catalog.statements()) out << statement(sql) << "\nGO\n";
  return out.str();
}

std::vector<std::string> batches(const std::string& script) {
  std::vector<std::string> out;
  std::istringstream in(script);
  std::string line, batch;
  while (std::getline(in, line)) {
    if (trimmed(line) == "GO" || trimmed(line) == "go") {
      if (!trimmed(batch).empty()) out.push_back(batch);
      batch.clear();
    } else {
      batch += line;
      batch += '\n';
    }
  }
  if (!trimmed(batch).empty()) out.push_back(batch);
  return out;
}

std::string readSqlFile(const std::string& name) {
  std::ifstream in(std::string(VRDPPO_SQL_DIR) + "/" + name, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read sql/sqlserver/" + name);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

std::u16string withDatabase(std::u16string connect, const std::u16string& database) {
  std::u16string out;
  std::size_t start = 0;
  while (start <= connect.size()) {
    auto end = connect.find(u';', start);
    if (end == std::u16string::npos) end = connect.size();
    const std::u16string part = connect.substr(start, end - start);
    const auto eq = part.find(u'=');
    const bool isDatabase =
        eq != std::u16string::npos && equalsNoCase(part.substr(0, eq), u"DATABASE");
    if (!part.empty() && !isDatabase) out += part + u";";
    start = end + 1;
  }
  return out + u"DATABASE=" + database;
}

void runScript(const std::u16string& connect, const std::string& script) {
  Connection c;
  c.Open(connect);
  c.Execute(u"SET QUOTED_IDENTIFIER ON");
  for (const auto& batch : tsql::batches(script)) c.Execute(fromUtf8(batch));
  c.Close();
}

PlantDatabase::PlantDatabase(const std::u16string& admin, const std::u16string& prefix)
    : admin_(admin), name_(prefix + fromUtf8(std::to_string(::getpid()))) {
  Connection c;
  c.Open(admin_);
  c.Execute(u"CREATE DATABASE " + name_);
  c.Close();
  connect_ = withDatabase(admin_, name_);
  runScript(connect_, readSqlFile("schema.sql"));
  runScript(connect_, readSqlFile("procedures.sql"));
}

PlantDatabase::~PlantDatabase() {
  try {
    // A kept session holds the database in use, and the server refuses to drop it.
    odbc::releaseIdleConnections();
    Connection c;
    c.Open(admin_);
    c.Execute(u"DROP DATABASE " + name_);
  } catch (const Error& e) {
    std::fprintf(stderr, "could not drop %s: %s\n", toUtf8(name_).c_str(), e.description().c_str());
  }
}

}  // namespace vrdppo::tsql
