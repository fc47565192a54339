#include "vrdppo/schema_check.hpp"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "check/procedure_calls.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/persist.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo {

namespace {

std::string textOf(const Variant& v) {
  return v.isNull() ? std::string() : toUtf8(toString(v));
}

// A column name as the database compares it: no brackets, no table qualifier.
std::string bareName(std::u16string_view name) {
  const auto dot = name.rfind(u'.');
  if (dot != std::u16string_view::npos) name.remove_prefix(dot + 1);
  if (name.size() >= 2 && name.front() == u'[' && name.back() == u']') {
    name = name.substr(1, name.size() - 2);
  }
  return toUtf8(name);
}

// --- the database's side, as its catalog says ---

struct DbColumn {
  std::string name;
  std::string type;         // lower case; empty where the database does not say
  std::int32_t length = 0;  // of a text: -1 for max; 0 for no text
  std::int32_t precision = 0;
  std::int32_t scale = 0;
  bool identity = false;
};

// What the login may do with an object; unknown where the database does not say (the store has
// no rights: whoever opens its file may do everything).
enum class Right : std::uint8_t { Select, Insert, Update, Delete, Execute };
constexpr const char* kRightNames[] = {"SELECT", "INSERT", "UPDATE", "DELETE", "EXECUTE"};

struct Rights {
  std::uint8_t known = 0, granted = 0;  // bits by Right
  bool lacks(Right r) const noexcept {
    const auto bit = static_cast<std::uint8_t>(1U << static_cast<unsigned>(r));
    return (known & bit) != 0 && (granted & bit) == 0;
  }
};

struct DbSource {
  std::string schema;
  bool view = false;
  Rights rights;
  std::map<std::string, DbColumn> columns;  // by upper-case name
};

struct DbProcedure {
  std::string name;
  std::string schema;
  Rights rights;
  std::vector<std::string> parameters;  // upper case, without "@", in order
};

struct Database {
  std::map<std::string, DbSource> sources;        // by upper-case name
  std::map<std::string, DbProcedure> procedures;  // by upper-case name
  // The login may not see every object: one it cannot see reads as absent.
  bool partialView = false;
};

std::int32_t intOf(const Variant& v) {
  return v.isNull() ? 0 : toLong(v);
}

// A column the catalog may leave out (the store has no schemas and no rights): Null when absent.
const Variant& optionalField(const Recordset& rs, std::u16string_view name) {
  static const Variant kNull = Variant::null();
  const auto i = rs.findField(name);
  return i ? rs.Fields(*i) : kNull;
}

void readRight(const Recordset& rs, std::u16string_view column, Right right, Rights& rights) {
  const Variant& v = optionalField(rs, column);
  if (v.isNull()) return;
  const auto bit = static_cast<std::uint8_t>(1U << static_cast<unsigned>(right));
  rights.known |= bit;
  if (toLong(v) != 0) rights.granted |= bit;
}

// A name in the login's default schema when that is not dbo says so: it is not the one a dbo
// login would reach.
std::string qualified(const std::string& schema, const std::string& name) {
  return schema.empty() || upperAscii(schema) == "DBO" ? name : schema + "." + name;
}

// Whether the login may see every object of the database: a server administrator, the
// database's owner or one granted VIEW DEFINITION on it. Anyone else sees only the objects it
// has some right on. The store, which has no logins, sees everything.
bool seesEverything(Connection& c, const std::u16string& connect) {
  if (providers::nameFor(connect) == "embedded") return true;
  try {
    const auto rs = c.Execute(
        u"SELECT CASE WHEN IS_SRVROLEMEMBER('sysadmin') = 1 OR IS_MEMBER('db_owner') = 1 OR "
        u"USER_NAME() = 'dbo' OR HAS_PERMS_BY_NAME(DB_NAME(), 'DATABASE', 'VIEW DEFINITION') = 1 "
        u"THEN 1 ELSE 0 END AS SEES_ALL");
    return rs->EOF_() || intOf(rs->Fields(u"SEES_ALL")) != 0;
  } catch (const Error&) {
    return true;  // a database that cannot say is not one whose rights hide anything we know of
  }
}

Database readCatalog(const std::u16string& connect,
                     const std::function<void(std::string_view)>& progress) {
  const auto say = [&](std::string_view what) {
    if (progress) progress(what);
  };
  Connection c;
  c.Open(connect);
  Database db;
  db.partialView = !seesEverything(c, connect);
  // The catalog answers only the objects an unqualified name reaches, one of each name; the
  // schema is compared all the same, so that a catalog which answers more never merges two
  // schemas' objects into one.
  say("reading the tables and views");
  for (auto rs = c.OpenSchema(SchemaKind::Tables); !rs->EOF_(); rs->MoveNext()) {
    DbSource s;
    s.schema = textOf(optionalField(*rs, u"TABLE_SCHEMA"));
    s.view = upperAscii(textOf(rs->Fields(u"TABLE_TYPE"))) == "VIEW";
    readRight(*rs, u"CAN_SELECT", Right::Select, s.rights);
    readRight(*rs, u"CAN_INSERT", Right::Insert, s.rights);
    readRight(*rs, u"CAN_UPDATE", Right::Update, s.rights);
    readRight(*rs, u"CAN_DELETE", Right::Delete, s.rights);
    db.sources.emplace(upperAscii(textOf(rs->Fields(u"TABLE_NAME"))), std::move(s));
  }
  say("reading the columns");
  for (auto rs = c.OpenSchema(SchemaKind::Columns); !rs->EOF_(); rs->MoveNext()) {
    const auto it = db.sources.find(upperAscii(textOf(rs->Fields(u"TABLE_NAME"))));
    if (it == db.sources.end()) continue;
    if (upperAscii(textOf(optionalField(*rs, u"TABLE_SCHEMA"))) != upperAscii(it->second.schema)) {
      continue;
    }
    DbColumn col;
    col.name = textOf(rs->Fields(u"COLUMN_NAME"));
    col.type = textOf(rs->Fields(u"DATA_TYPE"));
    std::transform(col.type.begin(), col.type.end(), col.type.begin(), [](char ch) {
      return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch + 32) : ch;
    });
    col.length = intOf(rs->Fields(u"CHARACTER_MAXIMUM_LENGTH"));
    col.precision = intOf(rs->Fields(u"NUMERIC_PRECISION"));
    col.scale = intOf(rs->Fields(u"NUMERIC_SCALE"));
    col.identity = intOf(rs->Fields(u"IS_IDENTITY")) != 0;
    it->second.columns.emplace(upperAscii(col.name), std::move(col));
  }
  say("reading the procedures");
  for (auto rs = c.OpenSchema(SchemaKind::Procedures); !rs->EOF_(); rs->MoveNext()) {
    DbProcedure p;
    p.name = textOf(rs->Fields(u"PROCEDURE_NAME"));
    readRight(*rs, u"CAN_EXECUTE", Right::Execute, p.rights);
    const std::string key = upperAscii(p.name);
    p.schema = textOf(optionalField(*rs, u"PROCEDURE_SCHEMA"));
    db.procedures.emplace(key, std::move(p));
  }
  for (auto rs = c.OpenSchema(SchemaKind::ProcedureParameters); !rs->EOF_(); rs->MoveNext()) {
    const auto it = db.procedures.find(upperAscii(textOf(rs->Fields(u"PROCEDURE_NAME"))));
    if (it == db.procedures.end() || upperAscii(textOf(optionalField(*rs, u"PROCEDURE_SCHEMA"))) !=
                                         upperAscii(it->second.schema)) {
      continue;
    }
    std::string name = textOf(rs->Fields(u"PARAMETER_NAME"));
    if (!name.empty() && name.front() == '@') name.erase(0, 1);
    if (!name.empty()) it->second.parameters.push_back(upperAscii(name));
  }
  c.Close();
  return db;
}

// --- what a field needs of its column ---

enum class Family : std::uint8_t { Unknown, Integer, Exact, Float, Date, Text, Other };

Family familyOf(const std::string& type) {
  static const std::map<std::string, Family, std::less<>> kFamilies{
      {"int", Family::Integer},         {"bigint", Family::Integer},
      {"smallint", Family::Integer},    {"tinyint", Family::Integer},
      {"bit", Family::Integer},         {"decimal", Family::Exact},
      {"numeric", Family::Exact},       {"money", Family::Exact},
      {"smallmoney", Family::Exact},    {"float", Family::Float},
      {"real", Family::Float},          {"double", Family::Float},
      {"datetime", Family::Date},       {"datetime2", Family::Date},
      {"date", Family::Date},           {"smalldatetime", Family::Date},
      {"datetimeoffset", Family::Date}, {"char", Family::Text},
      {"varchar", Family::Text},        {"nchar", Family::Text},
      {"nvarchar", Family::Text},       {"text", Family::Text},
      {"ntext", Family::Text}};
  if (type.empty()) return Family::Unknown;
  const auto it = kFamilies.find(type);
  return it == kFamilies.end() ? Family::Other : it->second;
}

std::string typeText(const DbColumn& c) {
  if (familyOf(c.type) == Family::Text && c.length != 0) {
    return c.length < 0 ? c.type + "(max)" : fmt::format("{}({})", c.type, c.length);
  }
  if ((c.type == "decimal" || c.type == "numeric") && c.precision > 0) {
    return fmt::format("{}({},{})", c.type, c.precision, c.scale);
  }
  return c.type;
}

std::string fieldText(const Column& f) {
  switch (f.type) {
    case FieldType::Long:
      return "Long";
    case FieldType::Double:
      return "Double";
    case FieldType::Currency:
      return "Currency";
    case FieldType::Date:
      return "Date";
    case FieldType::String:
      return fmt::format("String*{}", f.length);
  }
  return "?";
}

bool isNumeric(Family f) {
  return f == Family::Integer || f == Family::Exact || f == Family::Float;
}

struct Use {
  const Column* field = nullptr;
  bool read = false;
  bool written = false;
};

struct Verdict {
  SchemaFinding::Severity severity;
  std::string needs;
};

// What is wrong with the column for the field's use, if anything.
std::optional<Verdict> judge(const Use& use, const DbColumn& col) {
  const Family family = familyOf(col.type);
  if (family == Family::Unknown) return std::nullopt;  // an expression the store cannot type
  const Column& f = *use.field;
  const std::string how = fieldText(f) + (use.written ? ", written" : ", read");
  const auto problem = [&](std::string needs) {
    return Verdict{SchemaFinding::Severity::Problem, needs + " (" + how + ")"};
  };
  const auto warning = [&](std::string needs) {
    return Verdict{SchemaFinding::Severity::Warning, needs + " (" + how + ")"};
  };
  switch (f.type) {
    case FieldType::Long:
      if (family == Family::Integer) {
        if (use.written && col.type != "int" && col.type != "bigint") {
          return problem("int or wider: a Long holds -2147483648 to 2147483647");
        }
        if (col.type == "bigint") return warning("int: a value beyond a Long fails to load");
        return std::nullopt;
      }
      if (family == Family::Exact && col.scale == 0 && (!use.written || col.precision >= 10)) {
        return std::nullopt;
      }
      if (isNumeric(family) && !use.written) return std::nullopt;  // rounded as it is read
      return problem("an integer type");
    case FieldType::Double:
      if (!isNumeric(family)) return problem("a number type");
      if (use.written && family == Family::Integer) {
        return problem("float, decimal or money: an integer drops a Double's fraction");
      }
      return std::nullopt;
    case FieldType::Currency:
      if (!isNumeric(family)) return problem("money, decimal or float");
      if (use.written && family == Family::Integer) {
        return problem("money, decimal or float: an integer drops a Currency's fraction");
      }
      if (use.written && col.type == "smallmoney") {
        return warning("money: smallmoney holds -214748.3648 to 214748.3647");
      }
      return std::nullopt;
    case FieldType::Date:
      if (family != Family::Date) return problem("a date and time type");
      return std::nullopt;
    case FieldType::String:
      if (family != Family::Text) {
        if (use.written) return problem("a character type");
        return std::nullopt;  // a number or date read as its text
      }
      if (use.written && col.length > 0 && col.length < f.length) {
        return problem(fmt::format("a character column of at least {}", f.length));
      }
      if (use.read && (col.length < 0 || col.length > f.length) &&
          !(use.written && col.length < 0)) {
        return warning(
            fmt::format("at most {} characters: a longer text is cut as it is read", f.length));
      }
      return std::nullopt;
  }
  return std::nullopt;
}

std::vector<std::u16string> splitNames(const std::u16string& list) {
  std::vector<std::u16string> names;
  std::size_t start = 0;
  while (start < list.size()) {
    auto end = list.find(u',', start);
    if (end == std::u16string::npos) end = list.size();
    std::u16string name = list.substr(start, end - start);
    const auto first = name.find_first_not_of(u' ');
    const auto last = name.find_last_not_of(u' ');
    if (first != std::u16string::npos) names.push_back(name.substr(first, last - first + 1));
    start = end + 1;
  }
  return names;
}

const Column* fieldWritten(const RecordLayout& layout, std::u16string_view name) {
  for (const Column& c : layout.columns) {
    if (equalsNoCase(c.write, name)) return &c;
  }
  return nullptr;
}

class Checker {
 public:
  explicit Checker(const Database& db) : db_(db) {}

  SchemaReport run() {
    for (const ClassInfo* info : registry::classes()) checkClass(*info);
    for (const auto& call : check::procedureCalls()) {
      checkProcedure(std::string(call.caller), call.procedure, call.named, call.positional);
    }
    report_.classes = static_cast<std::int32_t>(registry::classes().size());
    report_.sources = static_cast<std::int32_t>(sources_.size());
    report_.columns = static_cast<std::int32_t>(columns_.size());
    report_.procedures = static_cast<std::int32_t>(procedures_.size());
    return std::move(report_);
  }

 private:
  void add(SchemaFinding::Severity severity, const std::string& className, std::string object,
           std::string needs, std::string has) {
    report_.findings.push_back(
        {severity, className, std::move(object), std::move(needs), std::move(has)});
  }

  void checkClass(const ClassInfo& info) {
    const auto object = info.create();
    const RecordLayout& layout = *info.layout;
    const std::string source = info.source;
    sources_.insert(upperAscii(source));
    const auto it = db_.sources.find(upperAscii(source));
    if (it == db_.sources.end()) {
      add(SchemaFinding::Severity::Problem, info.name, source,
          info.isView ? "the view it loads from" : "the table it loads and writes", absent());
      return;
    }
    const DbSource& db = it->second;
    // The class's spelling: the catalog may answer a name in another case.
    const std::string shown = qualified(db.schema, source);
    const auto* table = dynamic_cast<const TableObject*>(object.get());
    if (table && db.view) {
      add(SchemaFinding::Severity::Problem, info.name, shown,
          "a table: Commit inserts and updates its rows and reads a new row's key back as its "
          "identity, Delete removes or flags them",
          "a view");
    }
    checkRights(info.name, shown, db, table);

    // Each column by the name the statements use, with how the class uses it.
    std::map<std::string, Use> uses;
    std::vector<std::string> order;
    const auto use = [&](const std::string& name, const Column* field, bool written) {
      auto [u, fresh] = uses.try_emplace(upperAscii(name));
      if (fresh) order.push_back(name);
      if (field && !u->second.field) u->second.field = field;
      (written ? u->second.written : u->second.read) = true;
    };
    std::u16string selectList;
    bool star = true;
    if (table) {
      const TableConfig& config = table->config();
      star = config.generation == Generation::First;
      if (!star) selectList = table->SelectFields();
      for (const auto& name : splitNames(table->InsertFields())) {
        use(bareName(name), fieldWritten(layout, name), true);
      }
      // A view's columns say nothing of a key it cannot give: it is reported as a view.
      if (!db.view) checkKey(info.name, shown, db, bareName(config.keyColumn));
      if (config.deleteStyle == DeleteStyle::Soft) use("DELETEDFLAG", nullptr, true);
    } else if (const auto* view = dynamic_cast<const ViewObject*>(object.get())) {
      star = view->config().shape == LoadStyle::Star;
      if (!star) selectList = view->SelectFields();
    }
    if (star) {
      for (const Column& c : layout.columns) use(bareName(c.read), &c, false);
    } else {
      for (const auto& name : splitNames(selectList)) {
        use(bareName(name), fieldWritten(layout, name), false);
      }
    }

    for (const auto& name : order) {
      const Use& u = uses.at(upperAscii(name));
      columns_.insert(upperAscii(shown) + "." + upperAscii(name));
      const auto col = db.columns.find(upperAscii(name));
      std::string where = shown;
      where.append(".").append(name);
      if (col == db.columns.end()) {
        add(SchemaFinding::Severity::Problem, info.name, where,
            "a column" + (u.field ? " for " + fieldText(*u.field) : std::string()) +
                (u.written ? ", written" : ", read"),
            "none");
        continue;
      }
      if (!u.field) continue;
      if (const auto verdict = judge(u, col->second)) {
        add(verdict->severity, info.name, where, verdict->needs, typeText(col->second));
      }
    }

    if (table) checkProcedure(info.name, table->config().insertProcedure, {u"p_Stmt"}, 0);
  }

  // "none", and for a login that does not see every object, that its rights may hide one.
  std::string absent() const {
    return db_.partialView ? "none this login can see (one it has no rights on is hidden from it)"
                           : "none";
  }

  // The rights each statement of the class needs of its table or view. A new row's insert runs
  // inside the insert procedure as text of its own, with the caller's rights: the login needs
  // INSERT on the table as well as EXECUTE on the procedure.
  void checkRights(const std::string& className, const std::string& shown, const DbSource& db,
                   const TableObject* table) {
    std::vector<Right> needed{Right::Select};
    std::string uses = "Load";
    if (table) {
      const TableConfig& config = table->config();
      needed.insert(needed.end(), {Right::Insert, Right::Update});
      // A flagged row is an UPDATE; a row its procedure deletes needs only EXECUTE on that.
      const bool deletes = config.deleteStyle == DeleteStyle::Hard ||
                           config.criteriaDelete != CriteriaDeleteForm::None;
      if (deletes) needed.push_back(Right::Delete);
      uses += config.deleteStyle == DeleteStyle::Procedure && !deletes ? " and Commit"
                                                                       : ", Commit and Delete";
    }
    std::vector<Right> lacking;
    for (const Right r : needed) {
      if (db.rights.lacks(r)) lacking.push_back(r);
    }
    if (lacking.empty()) return;
    add(SchemaFinding::Severity::Problem, className, shown,
        fmt::format("the {} right{} for {}", rightList(needed), needed.size() == 1 ? "" : "s",
                    uses),
        "this login lacks " + rightList(lacking));
  }

  static std::string rightList(const std::vector<Right>& rights) {
    std::string out;
    for (std::size_t i = 0; i < rights.size(); ++i) {
      if (i > 0) out += i + 1 == rights.size() ? " and " : ", ";
      out += kRightNames[static_cast<std::size_t>(rights[i])];
    }
    return out;
  }

  // A new record's insert answers the key its procedure reads back as the new identity.
  void checkKey(const std::string& className, const std::string& shown, const DbSource& db,
                const std::string& key) {
    columns_.insert(upperAscii(shown) + "." + upperAscii(key));
    const auto col = db.columns.find(upperAscii(key));
    const std::string where = shown + "." + key;
    if (col == db.columns.end()) {
      add(SchemaFinding::Severity::Problem, className, where, "the key, an identity column",
          "none");
    } else if (!col->second.identity) {
      add(SchemaFinding::Severity::Problem, className, where,
          "an identity: a new record's insert reads its key back as the new identity",
          typeText(col->second) + ", not an identity");
    }
  }

  void checkProcedure(const std::string& caller, std::u16string_view procedure,
                      const std::vector<std::u16string_view>& named, int positional) {
    const std::string name = toUtf8(procedure);
    const std::string key = upperAscii(name) + "/" + caller;
    if (!checked_.insert(key).second) return;
    procedures_.insert(upperAscii(name));
    const auto it = db_.procedures.find(upperAscii(name));
    if (it == db_.procedures.end()) {
      add(SchemaFinding::Severity::Problem, caller, name, "a stored procedure it calls", absent());
      return;
    }
    const std::string shown = qualified(it->second.schema, name);
    if (it->second.rights.lacks(Right::Execute)) {
      add(SchemaFinding::Severity::Problem, caller, shown, "the EXECUTE right: the class calls it",
          "this login lacks it");
    }
    const auto& parameters = it->second.parameters;
    std::string has = parameters.empty() ? "no parameters" : "";
    for (const auto& p : parameters) has += (has.empty() ? "@" : ", @") + p;
    for (const auto given : named) {
      const std::string parameter = "@" + toUtf8(given);
      if (std::find(parameters.begin(), parameters.end(), upperAscii(parameter.substr(1))) ==
          parameters.end()) {
        add(SchemaFinding::Severity::Problem, caller, fmt::format("{} {}", shown, parameter),
            "a parameter " + parameter + ", passed by name", has);
      }
    }
    if (static_cast<int>(parameters.size()) < positional) {
      add(SchemaFinding::Severity::Problem, caller, shown,
          fmt::format("{} parameters, passed by position", positional), has);
    }
  }

  const Database& db_;
  SchemaReport report_;
  std::set<std::string> sources_, columns_, procedures_, checked_;
};

}  // namespace

std::int32_t SchemaReport::problems() const noexcept {
  return static_cast<std::int32_t>(
      std::count_if(findings.begin(), findings.end(),
                    [](const auto& f) { return f.severity == SchemaFinding::Severity::Problem; }));
}

std::int32_t SchemaReport::warnings() const noexcept {
  return static_cast<std::int32_t>(findings.size()) - problems();
}

std::string SchemaReport::text() const {
  std::map<std::string, std::vector<const SchemaFinding*>> byClass;
  for (const auto& f : findings) byClass[f.className].push_back(&f);
  std::string out;
  for (const auto& [className, list] : byClass) {
    out += className.empty() ? "Every class (the library's own calls)" : className;
    out += '\n';
    for (const auto* f : list) {
      out += fmt::format("  {:<8} {}: needs {}; has {}\n",
                         f->severity == SchemaFinding::Severity::Problem ? "problem" : "warning",
                         f->object, f->needs, f->has);
    }
  }
  const auto plural = [](std::int32_t n, const char* one, const char* many) {
    return fmt::format("{} {}", n, n == 1 ? one : many);
  };
  out += fmt::format(
      "{} checked: {}, {}, {}: {}, {} ({:.1f} s)\n", plural(classes, "class", "classes"),
      plural(sources, "table or view", "tables and views"), plural(columns, "column", "columns"),
      plural(procedures, "procedure", "procedures"), plural(problems(), "problem", "problems"),
      plural(warnings(), "warning", "warnings"), seconds);
  out += fits() ? "The database fits the classes.\n" : "The database does not fit the classes.\n";
  return out;
}

std::string SchemaReport::json() const {
  std::string out = fmt::format(
      "{{\"fits\": {}, \"problems\": {}, \"warnings\": {}, \"classes\": {}, \"sources\": {}, "
      "\"columns\": {}, \"procedures\": {}, \"seconds\": {:.3f}, \"findings\": [",
      fits() ? "true" : "false", problems(), warnings(), classes, sources, columns, procedures,
      seconds);
  bool first = true;
  for (const auto& f : findings) {
    out += first ? "\n  {" : ",\n  {";
    first = false;
    out += "\"severity\": ";
    appendJsonString(out, f.severity == SchemaFinding::Severity::Problem ? "problem" : "warning");
    out += ", \"class\": ";
    appendJsonString(out, f.className);
    out += ", \"object\": ";
    appendJsonString(out, f.object);
    out += ", \"needs\": ";
    appendJsonString(out, f.needs);
    out += ", \"has\": ";
    appendJsonString(out, f.has);
    out += "}";
  }
  out += first ? "]}\n" : "\n]}\n";
  return out;
}

SchemaReport checkSchema(const std::u16string& connect,
                         const std::function<void(std::string_view)>& progress) {
  const auto start = std::chrono::steady_clock::now();
  // The store makes a file it opens that does not exist, and sets up one it opens to write; a
  // check makes nothing and writes nothing.
  const bool store = providers::nameFor(connect) == "embedded";
  const std::u16string reading = store ? connect + u";Mode=Read" : connect;
  if (store) {
    const std::string path = toUtf8(connectionValue(connect, u"Data Source"));
    std::error_code ec;
    if (path.empty() || !std::filesystem::exists(std::u8string(path.begin(), path.end()), ec)) {
      throw Error(err::kProviderFailure, "No store file at \"" + path + "\" to check.",
                  "vrdppo.check", "08001", 0);
    }
  }
  const Database db = readCatalog(reading, progress);
  if (progress) progress("checking the classes");
  SchemaReport report = Checker(db).run();
  if (store) {
    // A store of another build is checked as it stands; the first call brings it up to date.
    Connection c;
    c.Open(reading);
    const auto has = toLong(c.Execute(u"PRAGMA user_version")->Fields(std::size_t{0}));
    const auto needs = toLong(c.Execute(u"SELECT vr_schema_stamp()")->Fields(std::size_t{0}));
    c.Close();
    if (has != needs) {
      report.findings.insert(
          report.findings.begin(),
          {SchemaFinding::Severity::Warning, "", "the store's schema",
           fmt::format("the schema of this build (stamp {})", needs),
           fmt::format("that of another build (stamp {}): the first call that opens the file for "
                       "writing brings it up to date",
                       has)});
    }
  }
  report.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return report;
}

}  // namespace vrdppo
