#include "providers/embedded/catalog.hpp"

#include <sqlite3.h>

#include <algorithm>
#include <unordered_set>

#include "providers/embedded/errors.hpp"
#include "providers/embedded/sqlite_handles.hpp"
#include "providers/embedded/tokenizer.hpp"

namespace vrdppo::embedded {

namespace {

std::string_view trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\n' || s.front() == '\t'))
    s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\n' || s.back() == '\t'))
    s.remove_suffix(1);
  return s;
}

// The column definitions of a table's DDL: split at the commas outside parentheses.
std::vector<std::string_view> splitColumns(std::string_view columns) {
  std::vector<std::string_view> out;
  int depth = 0;
  std::size_t start = 0;
  for (std::size_t i = 0; i <= columns.size(); ++i) {
    if (i == columns.size() || (columns[i] == ',' && depth == 0)) {
      const auto part = trim(columns.substr(start, i - start));
      if (!part.empty()) out.push_back(part);
      start = i + 1;
    } else if (columns[i] == '(') {
      ++depth;
    } else if (columns[i] == ')') {
      --depth;
    }
  }
  return out;
}

// The type word of a column definition in upper case, a view into it; empty when it has none.
std::string_view typeOf(std::string_view up) {
  const auto nameEnd = up.find(' ');
  const auto typeStart = up.find_first_not_of(' ', nameEnd);
  if (typeStart == std::string_view::npos) return {};
  const auto typeEnd = up.find_first_of(" (", typeStart);
  return up.substr(
      typeStart, typeEnd == std::string_view::npos ? std::string_view::npos : typeEnd - typeStart);
}

bool isDateType(std::string_view type) {
  return type == "DATETIME" || type == "DATE" || type == "SMALLDATETIME";
}

// A column as the store declares it: texts compare without regard to case and dates by their
// moments, as on the server; a text longer than its declared length is refused, as the server
// refuses it, though blanks at its end are let through (the server drops them).
std::string storeDefinition(std::string_view definition) {
  std::string def(definition);
  const std::string up = upperAscii(definition);
  const auto nameEnd = up.find(' ');
  const std::string_view type = typeOf(up);
  if (type.empty()) return def;
  const auto typeEnd = static_cast<std::size_t>(type.data() - up.data()) + type.size();
  if (type == "VARCHAR" || type == "NVARCHAR" || type == "CHAR" || type == "NCHAR" ||
      type == "TEXT" || type == "NTEXT") {
    if (up.find(" COLLATE ") == std::string::npos) def += " COLLATE NOCASE";
    if (typeEnd < up.size() && up[typeEnd] == '(') {
      const auto close = up.find(')', typeEnd);
      const std::string size = up.substr(typeEnd + 1, close - typeEnd - 1);
      if (!size.empty() && size.find_first_not_of("0123456789") == std::string::npos) {
        def += " CONSTRAINT " + std::string(kTruncatedConstraint) + " CHECK (length(rtrim(" +
               def.substr(0, nameEnd) + ", ' ')) <= " + size + ")";
      }
    }
  } else if (isDateType(type) && up.find(" COLLATE ") == std::string::npos) {
    def += " COLLATE VDATE";
  }
  return def;
}

void run(sqlite3* db, const std::string& sql) {
  execute(db, sql, Purpose::Setup);
}

std::unordered_set<std::string> existingColumns(sqlite3* db, const std::string& table) {
  std::unordered_set<std::string> names;
  Statement st(db, std::string_view("SELECT name FROM pragma_table_info(?1)"), Purpose::Setup);
  st.bindText(1, table);
  while (st.step()) {
    names.insert(upperAscii(reinterpret_cast<const char*>(sqlite3_column_text(st.get(), 0))));
  }
  return names;
}

}  // namespace

void Catalog::mix(std::string_view text) noexcept {
  for (unsigned char c : text) {
    hash_ = (hash_ ^ c) * 16777619u;
  }
  hash_ = (hash_ ^ 0xFFu) * 16777619u;
  stamp_ = static_cast<std::int32_t>(hash_ & 0x7FFFFFFFu);
  if (stamp_ == 0) stamp_ = 1;
}

void Catalog::table(std::string name, std::string_view columns) {
  Table t{name, {}, {}};
  Declared d{std::move(name), {}};
  mix(t.name);
  for (auto def : splitColumns(columns)) {
    const auto space = def.find_first_of(" \t\n");
    t.columns.emplace_back(std::string(def.substr(0, space)), storeDefinition(def));
    d.columns.emplace_back(t.columns.back().first, std::string(def));
    mix(t.columns.back().second);
    if (isDateType(typeOf(upperAscii(def)))) t.dates.push_back(t.columns.back().first);
  }
  if (!t.dates.empty()) mix(kDateRangeFunction);
  tables_.push_back(std::move(t));
  declared_.push_back(std::move(d));
}

void Catalog::view(std::string name, std::string_view select) {
  mix(name);
  mix(select);
  views_.emplace_back(std::move(name), std::string(select));
}

void Catalog::statement(std::string sql) {
  mix(sql);
  statements_.push_back(std::move(sql));
}

void Catalog::procedure(std::u16string_view name,
                        std::initializer_list<std::u16string_view> parameters, Procedure body) {
  StoredProcedure p{std::u16string(name), {}, std::move(body)};
  for (const auto parameter : parameters) p.parameters.emplace_back(parameter);
  procedures_[upperAscii(name)] = std::move(p);
}

std::vector<std::u16string> Catalog::procedureNames() const {
  std::vector<std::u16string> names;
  for (const auto& [key, p] : procedures_) names.push_back(p.name);
  std::sort(names.begin(), names.end());
  return names;
}

const Catalog::StoredProcedure* Catalog::findProcedure(std::u16string_view name) const {
  const auto it = procedures_.find(upperAscii(name));
  return it == procedures_.end() ? nullptr : &it->second;
}

void Catalog::apply(sqlite3* db) const {
  for (auto it = views_.rbegin(); it != views_.rend(); ++it)
    run(db, "DROP VIEW IF EXISTS " + it->first);
  for (const auto& t : tables_) {
    const auto existing = existingColumns(db, t.name);
    if (existing.empty()) {
      std::string ddl = "CREATE TABLE " + t.name + " (\n  ";
      for (std::size_t i = 0; i < t.columns.size(); ++i) {
        if (i) ddl += ",\n  ";
        ddl += t.columns[i].second;
      }
      run(db, ddl + "\n)");
      continue;
    }
    for (const auto& [column, def] : t.columns) {
      if (!existing.contains(upperAscii(column)))
        run(db, "ALTER TABLE " + t.name + " ADD COLUMN " + def);
    }
  }
  // A datetime column holds 1753-01-01 to 9999-12-31 on a server. Triggers rather than checks,
  // so that stores made before them gain them too.
  for (const auto& t : tables_) {
    if (t.dates.empty()) continue;
    std::string values;
    std::string columns;
    for (const auto& c : t.dates) {
      values += (values.empty() ? "NEW." : ", NEW.") + c;
      columns += (columns.empty() ? "" : ", ") + c;
    }
    const std::string body = " ON " + t.name + " BEGIN SELECT " + std::string(kDateRangeFunction) +
                             "(" + values + "); END";
    run(db, "DROP TRIGGER IF EXISTS vr_dates_insert_" + t.name);
    run(db, "CREATE TRIGGER vr_dates_insert_" + t.name + " BEFORE INSERT" + body);
    run(db, "DROP TRIGGER IF EXISTS vr_dates_update_" + t.name);
    run(db, "CREATE TRIGGER vr_dates_update_" + t.name + " BEFORE UPDATE OF " + columns + body);
  }
  for (const auto& [name, select] : views_) {
    std::string ddl = "CREATE VIEW ";
    ddl += name;
    ddl += " AS ";
    ddl += select;
    run(db, ddl);
  }
  for (const auto& sql : statements_) run(db, sql);
}

}  // namespace vrdppo::embedded
