#include "commands.hpp"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string_view>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "providers/embedded/tokenizer.hpp"
#include "vrdppo/buffer.hpp"
#include "vrdppo/criteria.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/embedded_store.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/render.hpp"
#include "vrdppo/schema_check.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::cli {

namespace {

std::string readAll(std::istream& in) {
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::u16string stateArgument(const Options& o, std::istream& in) {
  if (o.state) return unescapeState(*o.state);
  std::string text = readAll(in);
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
  return unescapeState(text);
}

const std::string& className(const Options& o) {
  if (o.className.empty()) throw std::invalid_argument("name a class (see `vrdppo classes`)");
  return o.className;
}

// The text of a field for a person: strings as they are, control characters escaped.
std::string displayText(const Column& c, const std::byte* record) {
  if (c.type != FieldType::String) return fieldText(c, record);
  std::u16string_view s(reinterpret_cast<const char16_t*>(record + c.offset), c.length);
  while (!s.empty() && s.back() == u' ') s.remove_suffix(1);
  std::string out;
  for (char16_t ch : s) {
    if (ch < 0x20 || ch == 0x7F) {
      out += fmt::format("\\u{:04x}", static_cast<unsigned>(ch));
    } else {
      out += toUtf8(std::u16string_view(&ch, 1));
    }
  }
  return out;
}

std::size_t displayWidth(const std::string& s) {
  std::size_t n = 0;
  for (unsigned char c : s) n += (c & 0xC0) != 0x80;
  return n;
}

// Long and Double as JSON numbers (a Double that is no number, such as inf, as text), Currency
// and Date as decode writes them, strings as they are without their trailing blanks.
nlohmann::ordered_json jsonValue(const Column& c, const std::byte* record) {
  switch (c.type) {
    case FieldType::Long:
      return readField<Long>(record, c.offset);
    case FieldType::Double: {
      const double v = readField<Double>(record, c.offset);
      if (std::isfinite(v)) return v;
      return fieldText(c, record);
    }
    case FieldType::String: {
      std::u16string_view s(reinterpret_cast<const char16_t*>(record + c.offset), c.length);
      while (!s.empty() && s.back() == u' ') s.remove_suffix(1);
      return toUtf8(s);
    }
    default:
      return fieldText(c, record);
  }
}

// One line of JSON, ASCII only like the state text.
std::string jsonLine(const nlohmann::ordered_json& j) {
  return j.dump(-1, ' ', true, nlohmann::ordered_json::error_handler_t::replace);
}

// An --arg's text as the argument's type, or a usage error that names the argument.
Variant argumentValue(const ArgInfo& a, const Assignment& given) {
  Variant text(fromUtf8(given.value));
  try {
    switch (a.type) {
      case ValueType::Long:
        return toLong(text);
      case ValueType::Boolean:
        return toBoolean(text);
      case ValueType::Double:
        return toDouble(text);
      case ValueType::Date:
        return toDate(text);
      default:
        return text;
    }
  } catch (const Error& e) {
    throw std::invalid_argument(fmt::format("--arg {}: \"{}\" is no {}: {}", a.name, given.value,
                                            valueTypeName(a.type), e.what()));
  }
}

// Arguments of a member from the options: sBuffer from --set, sConnect from --connect. Every
// --arg must name an argument of the member, once.
std::vector<Variant> argumentsFor(const ClassInfo& info, const MemberInfo& m, const Options& o,
                                  const std::u16string& state, const std::u16string& connect) {
  const auto named = [](const std::string& a, const std::string& b) {
    return equalsNoCase(fromUtf8(a), fromUtf8(b));
  };
  for (std::size_t i = 0; i < o.args.size(); ++i) {
    const std::string& name = o.args[i].name;
    if (std::none_of(m.args.begin(), m.args.end(),
                     [&](const ArgInfo& a) { return named(a.name, name); })) {
      std::string names;
      for (const ArgInfo& a : m.args) names += (names.empty() ? "" : ", ") + a.name;
      throw std::invalid_argument(
          fmt::format("--arg {}: {}.{} has no argument \"{}\"; {}", name, info.name, m.name, name,
                      names.empty() ? "it takes none" : "it takes " + names));
    }
    for (std::size_t k = 0; k < i; ++k) {
      if (named(o.args[k].name, name)) {
        throw std::invalid_argument("--arg " + name + ": given twice");
      }
    }
  }
  std::vector<Variant> args;
  std::size_t given = 0;  // how many of the arguments the options gave
  for (const ArgInfo& a : m.args) {
    if (given == o.args.size() && a.optional) break;  // this and the rest take their defaults
    const auto arg = std::find_if(o.args.begin(), o.args.end(),
                                  [&](const Assignment& x) { return named(x.name, a.name); });
    if (arg != o.args.end()) {
      args.push_back(argumentValue(a, *arg));
      ++given;
    } else if (a.name == "sBuffer") {
      args.emplace_back(state);
    } else if (a.name == "sConnect") {
      args.emplace_back(connect);
    } else if (a.optional) {
      // Left out before one that was given: its default, or missing where it has none.
      args.push_back(a.defaultValue.isEmpty() ? Variant::missing() : a.defaultValue);
    } else if (a.type == ValueType::Recordset) {
      throw std::invalid_argument(m.name + " takes a recordset and cannot be called from here");
    } else if (a.type == ValueType::Variant) {
      break;  // left out, as a caller may leave out a Variant
    } else {
      // What a caller passes who has nothing to say: an empty text, 0, False.
      args.push_back(a.type == ValueType::String    ? Variant(u"")
                     : a.type == ValueType::Boolean ? Variant(false)
                                                    : Variant(std::int32_t{0}));
    }
  }
  return args;
}

std::unique_ptr<PersistObject> objectWithState(const ClassInfo& info, const Options& o,
                                               std::u16string& state) {
  if (o.state) {
    state = unescapeState(*o.state);
    checkRecordState(*info.layout, state);
  } else {
    state = buildState(*info.layout, o.sets);
  }
  auto object = info.create();
  object->SetState(state);
  return object;
}

// A Commit or Delete that answered False, or whose statement changed no row, did nothing: the
// key names no row. A provider that cannot count (-1) is taken at its word.
void requireEffect(const ClassInfo& info, const char* operation, const PersistObject& object,
                   const Variant& result) {
  const Column& key = info.layout->columns.front();
  const std::string which =
      fmt::format("{} {}", toUtf8(key.read), readField<Long>(object.recordBytes(), key.offset));
  if (result.type() == VarType::Boolean && !toBoolean(result)) {
    throw NothingDone(fmt::format("{}.{} answered False ({})", info.name, operation, which));
  }
  if (lastRecordsAffected() == 0) {
    throw NothingDone(
        fmt::format("{}.{} changed no row: no row has {}", info.name, operation, which));
  }
}

// The kinds a --param may state before its value ("date:2019-03-07").
constexpr std::array<std::pair<std::string_view, FieldType>, 5> kParamKinds{{
    {"long", FieldType::Long},
    {"double", FieldType::Double},
    {"currency", FieldType::Currency},
    {"date", FieldType::Date},
    {"string", FieldType::String},
}};

// For each placeholder of the template, the field it is compared with: the nearest name of one
// before it in its condition, else the nearest after it; null where its condition names none.
std::vector<const Column*> comparedFields(const RecordLayout& layout, const std::u16string& where) {
  std::vector<const Column*> fields;
  try {
    const embedded::Tokens tokens(where);
    const auto columnAt = [&](std::size_t i) -> const Column* {
      if (tokens[i].kind != embedded::Tok::Word && tokens[i].kind != embedded::Tok::Bracketed) {
        return nullptr;
      }
      std::u16string_view name = tokens.text(i);
      if (tokens[i].kind == embedded::Tok::Bracketed) name = name.substr(1, name.size() - 2);
      return findColumn(layout, toUtf8(name));
    };
    // AND and OR end a condition, but for the AND of a BETWEEN.
    const auto joinsConditions = [&](std::size_t i) {
      if (tokens.isWord(i, u"OR")) return true;
      if (!tokens.isWord(i, u"AND")) return false;
      for (std::size_t k = i; k-- > 0;) {
        if (tokens.isWord(k, u"BETWEEN")) return false;
        if (tokens.isWord(k, u"AND") || tokens.isWord(k, u"OR")) return true;
      }
      return true;
    };
    for (std::size_t i = 0; i < tokens.size(); ++i) {
      if (tokens[i].kind != embedded::Tok::Punct || tokens.text(i) != u"?") continue;
      const Column* field = nullptr;
      for (std::size_t k = i; k-- > 0 && field == nullptr && !joinsConditions(k);) {
        field = columnAt(k);
      }
      for (std::size_t k = i + 1; k < tokens.size() && field == nullptr && !joinsConditions(k);
           ++k) {
        field = columnAt(k);
      }
      fields.push_back(field);
    }
  } catch (const Error&) {
    // An unclosed quote or comment: the builder says so.
  }
  return fields;
}

// A --param's value: of the kind its text states, or else of the field it is compared with, read
// as --set reads that field.
Variant paramValue(const ClassInfo& info, const Column* field, std::size_t number,
                   const std::string& text) {
  std::string_view value = text;
  std::optional<FieldType> kind;
  if (const auto colon = value.find(':'); colon != std::string_view::npos) {
    for (const auto& [name, type] : kParamKinds) {
      if (equalsNoCase(fromUtf8(value.substr(0, colon)), fromUtf8(name))) {
        kind = type;
        value.remove_prefix(colon + 1);
        break;
      }
    }
  }
  if (!kind && field == nullptr) {
    throw std::invalid_argument(
        fmt::format("--param {}: placeholder {} is compared with no field of {}: state its kind "
                    "(long:, double:, currency:, date:, string:)",
                    text, number, info.name));
  }
  Column c = field != nullptr ? *field : Column{};
  if (kind && (field == nullptr || *kind != field->type)) {
    const auto length = static_cast<std::uint16_t>(std::min<std::size_t>(value.size(), 32767));
    c = Column{u"--param",   u"", *kind, 0, *kind == FieldType::String ? length : std::uint16_t{0},
               Render::None, u""};
  }
  std::vector<std::byte> scratch(c.offset + std::max<std::size_t>(16, std::size_t{c.length} * 2));
  try {
    setFieldText(c, scratch.data(), value);
  } catch (const std::invalid_argument& e) {
    throw std::invalid_argument(
        fmt::format("--param {} (placeholder {}): {}", text, number, e.what()));
  }
  return fieldValue(c, scratch.data());
}

// The criteria of --where with its --param values in their places, refused as a usage error
// where the builder refuses it.
std::u16string whereCriteria(const ClassInfo& info, const Options& o) {
  const std::u16string where = fromUtf8(*o.where);
  const auto fields = comparedFields(*info.layout, where);
  std::vector<Variant> values;
  for (std::size_t i = 0; i < o.params.size(); ++i) {
    values.push_back(paramValue(info, i < fields.size() ? fields[i] : nullptr, i + 1, o.params[i]));
  }
  try {
    return buildCriteria(where, values);
  } catch (const Error& e) {
    throw std::invalid_argument("--where: " + e.description());
  }
}

// The options with --where's criteria as the member's sCriteria argument.
Options withWhere(const ClassInfo& info, const Options& o) {
  Options with = o;
  if (!o.where) {
    if (!o.params.empty()) throw std::invalid_argument("--param goes with --where");
    return with;
  }
  for (const Assignment& a : o.args) {
    if (equalsNoCase(fromUtf8(a.name), u"sCriteria")) {
      throw std::invalid_argument("--where and --arg sCriteria both give the criteria");
    }
  }
  with.args.push_back({"sCriteria", toUtf8(whereCriteria(info, o))});
  return with;
}

}  // namespace

const ClassInfo& classNamed(const std::string& name) {
  if (const ClassInfo* c = registry::find(name)) return *c;
  std::string near;
  std::string lower = name;
  std::transform(lower.begin(), lower.end(), lower.begin(), ::tolower);
  for (const ClassInfo* c : registry::classes()) {
    std::string n = c->name;
    std::transform(n.begin(), n.end(), n.begin(), ::tolower);
    if (n.find(lower) != std::string::npos) near += (near.empty() ? "" : ", ") + c->name;
  }
  throw std::invalid_argument("no class \"" + name + "\"" +
                              (near.empty() ? std::string() : "; did you mean " + near + "?"));
}

std::u16string connectionOf(const Options& o) {
  if (o.connect) return fromUtf8(*o.connect);
  return embedded::connectString("vrdppo.db");
}

void checkRecordState(const RecordLayout& layout, std::u16string_view state) {
  if (state.size() != layout.stateChars) {
    throw std::invalid_argument(fmt::format("a state of this class has {} characters, not {}",
                                            layout.stateChars, state.size()));
  }
}

std::vector<std::u16string> checkedRecordsOf(const RecordLayout& layout,
                                             std::u16string_view bufferState) {
  constexpr std::size_t kHeader = 8;
  if (bufferState.size() < kHeader) {
    throw std::invalid_argument(
        fmt::format("a Buffer state has a header of {} characters; this one has {} in all", kHeader,
                    bufferState.size()));
  }
  const BufferHeader h = readBufferHeader(bufferState);
  if (h.recordLength != static_cast<std::int64_t>(layout.stateChars)) {
    throw std::invalid_argument(
        fmt::format("the Buffer state's records have {} characters, this class's {}",
                    h.recordLength, layout.stateChars));
  }
  if (h.count < 0) {
    throw std::invalid_argument(fmt::format("the Buffer state counts {} records", h.count));
  }
  // The records, and the spare blank that Load leaves behind them or not.
  const std::size_t records =
      kHeader + static_cast<std::size_t>(h.recordLength) * static_cast<std::size_t>(h.count);
  if (bufferState.size() != records && bufferState.size() != records + 1) {
    throw std::invalid_argument(
        fmt::format("a Buffer state of {} records of {} characters has {} or {} characters, not {}",
                    h.count, h.recordLength, records, records + 1, bufferState.size()));
  }
  return recordsOf(bufferState);
}

std::vector<std::u16string> recordsOf(std::u16string_view bufferState) {
  Buffer b;
  b.SetState(bufferState);
  std::vector<std::u16string> records;
  for (std::int32_t i = 1; i <= b.Count(); ++i) records.push_back(b.Item(i));
  return records;
}

void printRecords(const RecordLayout& layout, const std::vector<std::u16string>& states, bool json,
                  std::ostream& out) {
  std::vector<std::byte> record(layout.bytes);
  const auto fill = [&](const std::u16string& s) { setRecordState(layout, record.data(), s); };
  if (json) {
    for (const auto& s : states) {
      fill(s);
      nlohmann::ordered_json line = nlohmann::ordered_json::object();
      for (const Column& c : layout.columns) line[toUtf8(c.read)] = jsonValue(c, record.data());
      out << jsonLine(line) << "\n";
    }
    return;
  }
  std::vector<std::vector<std::string>> rows;
  std::vector<std::string> header;
  for (const Column& c : layout.columns) header.push_back(toUtf8(c.read));
  rows.push_back(header);
  for (const auto& s : states) {
    fill(s);
    std::vector<std::string> row;
    for (const Column& c : layout.columns) row.push_back(displayText(c, record.data()));
    rows.push_back(row);
  }
  std::vector<std::size_t> width(header.size(), 0);
  for (const auto& r : rows) {
    for (std::size_t i = 0; i < r.size(); ++i) width[i] = std::max(width[i], displayWidth(r[i]));
  }
  for (std::size_t k = 0; k < rows.size(); ++k) {
    std::string line;
    for (std::size_t i = 0; i < rows[k].size(); ++i) {
      const bool right = layout.columns[i].type != FieldType::String &&
                         layout.columns[i].type != FieldType::Date && k > 0;
      const std::string pad(width[i] - displayWidth(rows[k][i]), ' ');
      line += (i ? "  " : "") + (right ? pad + rows[k][i] : rows[k][i] + pad);
    }
    while (!line.empty() && line.back() == ' ') line.pop_back();
    out << line << "\n";
  }
  out << fmt::format("({} record{})\n", states.size(), states.size() == 1 ? "" : "s");
}

int listClasses(const Options&, std::ostream& out) {
  for (const ClassInfo* c : registry::classes()) out << c->name << "\n";
  return 0;
}

int showLayout(const Options& o, std::ostream& out) {
  const ClassInfo& info = classNamed(className(o));
  const RecordLayout& l = *info.layout;
  out << info.name << "\t" << l.bytes << "\t" << l.stateChars << "\n";
  for (const Column& c : l.columns) {
    const std::size_t bytes = c.type == FieldType::String ? 2u * c.length
                              : c.type == FieldType::Long ? 4u
                                                          : 8u;
    out << c.offset << "\t" << bytes << "\t" << typeText(c) << "\t" << toUtf8(c.read) << "\t"
        << renderCodeText(c) << "\n";
  }
  const TrailingField& t = l.trailing;
  if (t.length > 0) {  // a record may end without one
    out << t.offset << "\t" << 2 * t.length << "\tString*" << t.length << "\t"
        << (t.literal.empty() ? std::string() : "\"" + toUtf8(t.literal) + "\"") << "\t\n";
  }
  return 0;
}

int decode(const Options& o, std::istream& in, std::ostream& out) {
  const ClassInfo& info = classNamed(className(o));
  const RecordLayout& l = *info.layout;
  const std::u16string state = stateArgument(o, in);
  if (o.buffer) {
    const auto records = checkedRecordsOf(l, state);
    const BufferHeader h = readBufferHeader(state);
    if (!o.json) {
      out << fmt::format("record length {}, estimate {}, capacity {}, count {}\n", h.recordLength,
                         h.estimate, h.capacity, h.count);
    }
    printRecords(l, records, o.json, out);
    return 0;
  }
  checkRecordState(l, state);
  std::vector<std::byte> record(l.bytes);
  setRecordState(l, record.data(), state);
  const std::string unused = unusedText(
      l, std::u16string_view(state).substr(0, std::min<std::size_t>(state.size(), l.stateChars)));
  if (o.json) {
    nlohmann::ordered_json line = nlohmann::ordered_json::object();
    for (const Column& c : l.columns) line[toUtf8(c.read)] = jsonValue(c, record.data());
    // The state text of the trailing field, as encode takes it back.
    if (l.trailing.length > 0) line["(trailing)"] = trailingText(l, record.data());
    if (!unused.empty()) line["(unused)"] = unused;
    out << jsonLine(line) << "\n";
    return 0;
  }
  for (const Column& c : l.columns) {
    out << toUtf8(c.read) << "\t" << typeText(c) << "\t" << fieldText(c, record.data()) << "\n";
  }
  if (l.trailing.length > 0) {
    out << "(trailing)\tString*" << l.trailing.length << "\t" << trailingText(l, record.data())
        << "\n";
  }
  if (!unused.empty()) out << "(unused)\tbytes\t" << unused << "\n";
  return 0;
}

int encode(const Options& o, std::istream& in, std::ostream& out) {
  const ClassInfo& info = classNamed(className(o));
  std::vector<Assignment> sets = o.sets;
  if (sets.empty()) {
    // Lines as decode prints them (NAME<TAB>TYPE<TAB>VALUE), NAME=VALUE, or records as load
    // --json prints them.
    std::string line;
    while (std::getline(in, line)) {
      if (!line.empty() && line.back() == '\r') line.pop_back();
      if (line.empty()) continue;
      if (line.front() == '{') {
        // A record as load --json prints it.
        nlohmann::json record;
        try {
          record = nlohmann::json::parse(line);
        } catch (const nlohmann::json::exception& e) {
          throw std::invalid_argument(
              "a line that starts with { must be a record as load --json "
              "prints it: " +
              std::string(e.what()));
        }
        for (const auto& [name, value] : record.items()) {
          if (!value.is_null()) {
            sets.push_back({name, value.is_string() ? value.get<std::string>() : value.dump()});
          }
        }
        continue;
      }
      const auto tab = line.find('\t');
      if (tab != std::string::npos) {
        const auto second = line.find('\t', tab + 1);
        sets.push_back(
            {line.substr(0, tab), second == std::string::npos ? "" : line.substr(second + 1)});
      } else {
        sets.push_back(parseAssignment(line));
      }
    }
  }
  out << escapeState(buildState(*info.layout, sets)) << "\n";
  return 0;
}

int showSql(const Options& o, std::ostream& out) {
  const ClassInfo& info = classNamed(className(o));
  const MemberInfo* m = info.member(o.operation);
  if (!m || !m->isPublic) {
    std::string names;
    for (const auto& x : info.members) {
      if (x.isPublic && x.invoke) names += (names.empty() ? "" : ", ") + x.name;
    }
    throw std::invalid_argument(info.name + " has no operation \"" + o.operation + "\"; it has " +
                                names);
  }
  // A stand-in database: an insert procedure answers an Identity of 1; a SELECT answers no
  // rows; every other statement answers no rowset.
  struct StandIn : ProviderConnection {
    std::ostream& out;
    explicit StandIn(std::ostream& o) : out(o) {}
    void setCursorLocation(int) override {}
    void open(const std::u16string&, const std::u16string&, const std::u16string&, int) override {}
    void setCommandTimeout(int) override {}
    void close() override {}
    std::shared_ptr<Recordset> execute(const std::u16string& sql, int) override {
      out << toUtf8(sql) << "\n";
      if (sql.find(u"sp_InsertStatement") != std::u16string::npos) {
        auto rs = std::make_shared<Recordset>(std::vector<std::u16string>{u"Identity"});
        rs->addRow({Variant(std::int32_t{1})});
        rs->rewind();
        return rs;
      }
      const auto head = trimBlanks(sql).substr(0, 6);
      if (equalsNoCase(head, u"SELECT")) {
        return std::make_shared<Recordset>(std::vector<std::u16string>{});
      }
      return std::make_shared<Recordset>();
    }
  };
  providers::Registration standIn(
      "stand-in", [](std::u16string_view) { return true; },
      [&out] { return std::make_unique<StandIn>(out); });
  std::u16string state;
  auto object = objectWithState(info, o, state);
  const auto args =
      argumentsFor(info, *m, o, state, o.connect ? fromUtf8(*o.connect) : u"DSN=vrdppo");
  registry::invoke(*object, m->name, args);
  return 0;
}

int load(const Options& given, std::ostream& out, std::ostream& err) {
  const ClassInfo& info = classNamed(className(given));
  const Options o = withWhere(info, given);
  auto object = info.create();
  const MemberInfo* m = info.member("Load");
  const std::u16string connect = connectionOf(o);
  const auto args = argumentsFor(info, *m, o, u"", connect);
  // A read makes a missing store as any other call does; a person who mistyped the path is told
  // so on standard error, which leaves the output an empty result's.
  std::string file;
  if (providers::nameFor(connect) == "embedded") {
    file = toUtf8(connectionValue(connect, u"Data Source"));
    if (std::filesystem::exists(file)) file.clear();
  }
  const Variant state = registry::invoke(*object, "Load", args);
  if (!file.empty() && std::filesystem::exists(file)) {
    err << "vrdppo: there was no store file \"" << file << "\"; it is now an empty store\n";
  }
  if (o.buffer) {
    out << escapeState(state.str()) << "\n";
  } else {
    printRecords(*info.layout, recordsOf(state.str()), o.json, out);
  }
  return 0;
}

int commit(const Options& o, std::ostream& out) {
  const ClassInfo& info = classNamed(className(o));
  if (info.isView) throw std::invalid_argument(info.name + " reads a view: it has no Commit");
  std::u16string state;
  auto object = objectWithState(info, o, state);
  const auto args = argumentsFor(info, *info.member("Commit"), o, state, connectionOf(o));
  resetLastRecordsAffected();
  requireEffect(info, "Commit", *object, registry::invoke(*object, "Commit", args));
  printRecords(*info.layout, {object->GetState()}, o.json, out);
  return 0;
}

int remove(const Options& given, std::ostream& out) {
  const ClassInfo& info = classNamed(className(given));
  if (info.isView) throw std::invalid_argument(info.name + " reads a view: it has no Delete");
  if (given.where) {
    // The rows the criteria select, through the class's CriteriaDelete.
    const MemberInfo* m = info.member("CriteriaDelete");
    if (m == nullptr) {
      throw std::invalid_argument(info.name + " has no CriteriaDelete: --where cannot delete");
    }
    const Options o = withWhere(info, given);
    std::u16string state;
    auto object = objectWithState(info, o, state);
    const auto args = argumentsFor(info, *m, o, state, connectionOf(o));
    resetLastRecordsAffected();
    const Variant result = registry::invoke(*object, "CriteriaDelete", args);
    if (result.type() == VarType::Boolean && !toBoolean(result)) {
      throw NothingDone(info.name + ".CriteriaDelete answered False");
    }
    if (lastRecordsAffected() == 0) throw NothingDone("the criteria select no row");
    out << "deleted";
    if (lastRecordsAffected() > 0) out << ' ' << lastRecordsAffected();
    out << "\n";
    return 0;
  }
  const Options o = withWhere(info, given);
  std::u16string state;
  auto object = objectWithState(info, o, state);
  const Column& key = info.layout->columns.front();
  if (readField<Long>(object->recordBytes(), key.offset) == 0) {
    throw std::invalid_argument(
        fmt::format("delete needs the record's key: --set {}=N", toUtf8(key.read)));
  }
  const auto args = argumentsFor(info, *info.member("Delete"), o, state, connectionOf(o));
  resetLastRecordsAffected();
  requireEffect(info, "Delete", *object, registry::invoke(*object, "Delete", args));
  out << "deleted\n";
  return 0;
}

int checkDatabase(const Options& o, std::ostream& out) {
  // The progress goes to a terminal only, overwritten in place, and is gone before the report.
  const bool terminal = ::isatty(2) != 0;
  const auto progress = [&](std::string_view line) {
    if (terminal) std::cerr << "\r\x1b[K" << line << "..." << std::flush;
  };
  const SchemaReport report = checkSchema(fromUtf8(o.connect.value_or("")), progress);
  if (terminal) std::cerr << "\r\x1b[K" << std::flush;
  out << (o.json ? report.json() : report.text());
  return report.fits() ? 0 : 1;
}

}  // namespace vrdppo::cli
