#include "providers/embedded/schema_reader.hpp"

#include <sqlite3.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "providers/embedded/catalog.hpp"
#include "providers/embedded/sqlite_handles.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded {

namespace {

std::u16string textAt(sqlite3_stmt* st, int column) {
  const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(st, column));
  return fromUtf8(p ? p : "");
}

// A declared type as a server's catalog gives it: the type word in lower case ("integer" as
// "int"), with the length of a text or the precision and scale of a decimal.
struct DeclaredType {
  std::u16string name;
  Variant length = Variant::null();
  Variant precision = Variant::null();
  Variant scale = Variant::null();
};

DeclaredType declaredType(std::string_view declared) {
  DeclaredType t;
  const auto open = declared.find('(');
  std::string word(declared.substr(0, open));
  while (!word.empty() && word.back() == ' ') word.pop_back();
  for (auto& c : word) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
  if (word == "integer") word = "int";
  t.name = fromUtf8(word);
  if (open == std::string_view::npos) return t;
  const auto close = declared.find(')', open);
  const std::string inside(declared.substr(open + 1, close - open - 1));
  const auto comma = inside.find(',');
  try {
    const bool text = word.find("char") != std::string::npos;
    const std::string first = inside.substr(0, comma);
    const bool max = first.find_first_not_of(' ') != std::string::npos &&
                     equalsNoCase(fromUtf8(first.substr(first.find_first_not_of(' '))), u"MAX");
    const std::int32_t n = max ? -1 : std::stoi(first);
    if (text) {
      t.length = Variant(n);
    } else {
      t.precision = Variant(n);
      t.scale = Variant(comma == std::string::npos ? 0 : std::stoi(inside.substr(comma + 1)));
    }
  } catch (const std::exception&) {
    // A size that is no number says nothing.
  }
  return t;
}

std::shared_ptr<Recordset> tables(sqlite3* db) {
  auto rs = std::make_shared<Recordset>(std::vector<std::u16string>{u"TABLE_NAME", u"TABLE_TYPE"});
  Statement st(db,
               std::string_view("SELECT name, type FROM sqlite_master WHERE type IN ('table', "
                                "'view') AND name NOT LIKE 'sqlite!_%' ESCAPE '!' ORDER BY name"),
               Purpose::Setup);
  while (st.step()) {
    rs->pushCell(Variant(textAt(st.get(), 0)));
    rs->pushCell(Variant(std::u16string(textAt(st.get(), 1) == u"view" ? u"VIEW" : u"BASE TABLE")));
  }
  rs->rewind();
  return rs;
}

std::shared_ptr<Recordset> columns(sqlite3* db) {
  auto rs = std::make_shared<Recordset>(std::vector<std::u16string>{
      u"TABLE_NAME", u"COLUMN_NAME", u"DATA_TYPE", u"CHARACTER_MAXIMUM_LENGTH",
      u"NUMERIC_PRECISION", u"NUMERIC_SCALE", u"IS_IDENTITY"});
  // A column that is the table's whole primary key and declared INTEGER is SQLite's row id: a new
  // row gets the next one, as an identity column's does.
  Statement st(db,
               std::string_view(
                   "SELECT m.name, p.name, p.type, p.pk = 1 AND UPPER(p.type) = 'INTEGER' AND "
                   "(SELECT COUNT(*) FROM pragma_table_info(m.name) k WHERE k.pk > 0) = 1 "
                   "FROM sqlite_master m JOIN pragma_table_info(m.name) p "
                   "WHERE m.type IN ('table', 'view') AND m.name NOT LIKE 'sqlite!_%' ESCAPE '!' "
                   "ORDER BY m.name, p.cid"),
               Purpose::Setup);
  while (st.step()) {
    const auto* declared = reinterpret_cast<const char*>(sqlite3_column_text(st.get(), 2));
    const DeclaredType type = declaredType(declared ? declared : "");
    rs->pushCell(Variant(textAt(st.get(), 0)));
    rs->pushCell(Variant(textAt(st.get(), 1)));
    rs->pushCell(Variant(type.name));
    rs->pushCell(type.length);
    rs->pushCell(type.precision);
    rs->pushCell(type.scale);
    rs->pushCell(Variant(sqlite3_column_int(st.get(), 3)));
  }
  rs->rewind();
  return rs;
}

std::shared_ptr<Recordset> procedures(bool withParameters) {
  auto rs = std::make_shared<Recordset>(
      withParameters
          ? std::vector<std::u16string>{u"PROCEDURE_NAME", u"PARAMETER_NAME", u"ORDINAL_POSITION"}
          : std::vector<std::u16string>{u"PROCEDURE_NAME"});
  const Catalog& catalog = storeCatalog();
  for (const auto& name : catalog.procedureNames()) {
    if (!withParameters) {
      rs->pushCell(Variant(name));
      continue;
    }
    const auto* p = catalog.findProcedure(name);
    for (std::size_t i = 0; i < p->parameters.size(); ++i) {
      rs->pushCell(Variant(name));
      rs->pushCell(Variant(u"@" + p->parameters[i]));
      rs->pushCell(Variant(static_cast<std::int32_t>(i + 1)));
    }
  }
  rs->rewind();
  return rs;
}

}  // namespace

std::shared_ptr<Recordset> readSchema(Session& session, SchemaKind kind) {
  switch (kind) {
    case SchemaKind::Tables:
      return tables(session.handle());
    case SchemaKind::Columns:
      return columns(session.handle());
    case SchemaKind::Procedures:
      return procedures(false);
    case SchemaKind::ProcedureParameters:
      return procedures(true);
  }
  return std::make_shared<Recordset>();
}

}  // namespace vrdppo::embedded
