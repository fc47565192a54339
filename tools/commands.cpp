#include "commands.hpp"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <stdexcept>

#include <fmt/format.h>

#include "vrdppo/buffer.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/embedded_store.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/render.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::cli {

namespace {

std::string readAll(std::istream& in) {
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::u16string stateArgument(const Options& o, std::istream& in, std::size_t position) {
  if (o.state) return unescapeState(*o.state);
  if (o.positional.size() > position) return unescapeState(o.positional[position]);
  std::string text = readAll(in);
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
  return unescapeState(text);
}

const std::string& className(const Options& o) {
  if (o.positional.empty()) throw std::invalid_argument("name a class (see `vrdppo classes`)");
  return o.positional[0];
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

std::string jsonValue(const Column& c, const std::byte* record) {
  std::string text = fieldText(c, record);
  if (c.type == FieldType::Long) return text;
  if (c.type == FieldType::Double) {
    return text.find_first_of("in") == std::string::npos ? text : "\"" + text + "\"";
  }
  return "\"" + (c.type == FieldType::String ? text : escapeState(fromUtf8(text))) + "\"";
}

// Arguments of a member from the options: sBuffer from --set, sConnect from --connect.
std::vector<Variant> argumentsFor(const MemberInfo& m, const Options& o,
                                  const std::u16string& state, const std::u16string& connect) {
  std::vector<Variant> args;
  for (const ArgInfo& a : m.args) {
    const auto given = std::find_if(o.args.begin(), o.args.end(), [&](const Assignment& x) {
      return equalsNoCase(fromUtf8(x.name), fromUtf8(a.name));
    });
    if (given != o.args.end()) {
      args.emplace_back(fromUtf8(given->value));
    } else if (a.name == "sBuffer") {
      args.emplace_back(state);
    } else if (a.name == "sConnect") {
      args.emplace_back(connect);
    } else if (a.optional) {
      break;  // this and the rest take their defaults
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
  state = o.state ? unescapeState(*o.state) : buildState(*info.layout, o.sets);
  auto object = info.create();
  object->SetState(state);
  return object;
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
      std::string line = "{";
      for (const Column& c : layout.columns) {
        if (line.size() > 1) line += ",";
        line += "\"" + toUtf8(c.read) + "\":" + jsonValue(c, record.data());
      }
      out << line << "}\n";
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
  const std::u16string state = stateArgument(o, in, 1);
  if (o.buffer) {
    const BufferHeader h = readBufferHeader(state);
    if (!o.json) {
      out << fmt::format("record length {}, estimate {}, capacity {}, count {}\n", h.recordLength,
                         h.estimate, h.capacity, h.count);
    }
    printRecords(l, recordsOf(state), o.json, out);
    return 0;
  }
  std::vector<std::byte> record(l.bytes);
  setRecordState(l, record.data(), state);
  const std::string unused = unusedText(
      l, std::u16string_view(state).substr(0, std::min<std::size_t>(state.size(), l.stateChars)));
  if (o.json) {
    std::string line = "{";
    for (const Column& c : l.columns) {
      line += (line.size() > 1 ? "," : "") + ("\"" + toUtf8(c.read) + "\":") +
              jsonValue(c, record.data());
    }
    if (l.trailing.length > 0) {
      line += ",\"(trailing)\":\"" + trailingText(l, record.data()) + "\"";
    }
    if (!unused.empty()) line += ",\"(unused)\":\"" + unused + "\"";
    out << line << "}\n";
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
    // Lines as decode prints them (NAME<TAB>TYPE<TAB>VALUE) or NAME=VALUE.
    std::string line;
    while (std::getline(in, line)) {
      if (!line.empty() && line.back() == '\r') line.pop_back();
      if (line.empty()) continue;
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
  if (o.positional.size() < 2) throw std::invalid_argument("usage: vrdppo sql CLASS OPERATION");
  const ClassInfo& info = classNamed(o.positional[0]);
  const MemberInfo* m = info.member(o.positional[1]);
  if (!m || !m->isPublic) {
    std::string names;
    for (const auto& x : info.members) {
      if (x.isPublic && x.invoke) names += (names.empty() ? "" : ", ") + x.name;
    }
    throw std::invalid_argument(info.name + " has no operation \"" + o.positional[1] +
                                "\"; it has " + names);
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
  const auto args = argumentsFor(*m, o, state, o.connect ? fromUtf8(*o.connect) : u"DSN=vrdppo");
  registry::invoke(*object, m->name, args);
  return 0;
}

int load(const Options& o, std::ostream& out) {
  const ClassInfo& info = classNamed(className(o));
  auto object = info.create();
  const MemberInfo* m = info.member("Load");
  const auto args = argumentsFor(*m, o, u"", connectionOf(o));
  const Variant state = registry::invoke(*object, "Load", args);
  printRecords(*info.layout, recordsOf(state.str()), o.json, out);
  return 0;
}

int commit(const Options& o, std::ostream& out) {
  const ClassInfo& info = classNamed(className(o));
  if (info.isView) throw std::invalid_argument(info.name + " reads a view: it has no Commit");
  std::u16string state;
  auto object = objectWithState(info, o, state);
  const auto args = argumentsFor(*info.member("Commit"), o, state, connectionOf(o));
  registry::invoke(*object, "Commit", args);
  printRecords(*info.layout, {object->GetState()}, o.json, out);
  return 0;
}

int remove(const Options& o, std::ostream& out) {
  const ClassInfo& info = classNamed(className(o));
  if (info.isView) throw std::invalid_argument(info.name + " reads a view: it has no Delete");
  std::u16string state;
  auto object = objectWithState(info, o, state);
  const auto args = argumentsFor(*info.member("Delete"), o, state, connectionOf(o));
  registry::invoke(*object, "Delete", args);
  if (!o.json) out << "deleted\n";
  return 0;
}

}  // namespace vrdppo::cli
