#include "providers/embedded/call.hpp"

#include <charconv>

#include "providers/embedded/errors.hpp"
#include "vrdppo/recordset.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded {

namespace {

std::string procName(const ProcArgs& a) {
  return toUtf8(a.procedure());
}

Variant numberValue(std::u16string_view text, bool negative) {
  std::string s;
  s.reserve(text.size() + 1);
  if (negative) s += '-';
  for (char16_t c : text) s += static_cast<char>(c);
  const char* first = s.data();
  const char* last = s.data() + s.size();
  if (text.find_first_of(u".eE") == std::u16string_view::npos) {
    std::int64_t v = 0;
    const auto r = std::from_chars(first, last, v);
    if (r.ec == std::errc() && r.ptr == last) {
      if (v >= INT32_MIN && v <= INT32_MAX) return Variant(static_cast<std::int32_t>(v));
      return Variant(v);
    }
  }
  double d = 0;
  const auto r = std::from_chars(first, last, d);
  if (r.ec != std::errc() || r.ptr != last) throw syntaxErrorNear(text);
  return Variant(d);
}

}  // namespace

void ProcArgs::add(std::u16string name, Variant value) {
  args_.push_back({std::move(name), std::move(value)});
}

const Variant* ProcArgs::find(std::size_t position, std::u16string_view name) const {
  for (const auto& a : args_) {
    if (!a.name.empty() && equalsNoCase(a.name, name))
      return a.value.isEmpty() ? nullptr : &a.value;
  }
  if (position < args_.size() && args_[position].name.empty() && !args_[position].value.isEmpty()) {
    return &args_[position].value;
  }
  return nullptr;
}

const Variant& ProcArgs::get(std::size_t position, std::u16string_view name) const {
  if (const Variant* v = find(position, name)) return *v;
  throw storeError(err::kCommandError,
                   "Procedure or function '" + procName(*this) + "' expects parameter '@" +
                       toUtf8(name) + "', which was not supplied.",
                   "42000", native::kMissingParameter);
}

void ProcArgs::expect(const std::vector<std::u16string>& parameters) const {
  if (args_.size() > parameters.size()) {
    throw storeError(
        err::kCommandError,
        "Procedure or function " + procName(*this) + " has too many arguments specified.", "42000",
        native::kTooManyArguments);
  }
  for (const auto& a : args_) {
    if (a.name.empty()) continue;
    bool known = false;
    for (const auto& p : parameters) known = known || equalsNoCase(p, a.name);
    if (!known) {
      throw storeError(
          err::kCommandError,
          "@" + toUtf8(a.name) + " is not a parameter for procedure " + procName(*this) + ".",
          "42000", 8145);
    }
  }
}

ProcArgs parseCall(const Tokens& t, std::size_t at, std::size_t end) {
  std::size_t i = t.skip(at, end);
  if (i >= end) throw syntaxError(u"Incorrect syntax: a procedure name was expected.");
  const auto isName = [&](std::size_t k) {
    return k < end &&
           (t[k].kind == Tok::Word || t[k].kind == Tok::Bracketed || t[k].kind == Tok::Quoted);
  };
  if (!isName(i)) throw syntaxErrorNear(t.text(i));
  // A schema (and database) prefix: the last part names the procedure.
  while (i + 2 < end && t.isPunct(i + 1, u'.') && isName(i + 2)) i += 2;
  ProcArgs args(nameOf(t, i));

  bool named = false;
  i = t.skip(i + 1, end);
  while (i < end) {
    std::u16string name;
    if (t[i].kind == Tok::Variable && t.isPunct(t.skip(i + 1, end), u'=')) {
      const std::size_t eq = t.skip(i + 1, end);
      name = std::u16string(t.text(i).substr(1));
      i = t.skip(eq + 1, end);
      named = true;
    } else if (named) {
      throw storeError(err::kCommandError,
                       "Must pass parameter number " + std::to_string(args.size() + 1) +
                           " and subsequent parameters as '@name = value'. After the form "
                           "'@name = value' has been used, all subsequent parameters must be "
                           "passed in the form '@name = value'.",
                       "42000", 119);
    }
    if (i >= end) throw syntaxError(u"Incorrect syntax: a value was expected.");
    Variant value;
    bool negative = false;
    if (t.isPunct(i, u'-') || t.isPunct(i, u'+')) {
      negative = t.isPunct(i, u'-');
      i = t.skip(i + 1, end);
      if (i >= end || t[i].kind != Tok::Number) throw syntaxErrorNear(negative ? u"-" : u"+");
    }
    switch (t[i].kind) {
      case Tok::Number:
        value = numberValue(t.text(i), negative);
        break;
      case Tok::String:
      case Tok::Quoted:
      case Tok::Bracketed:
        value = Variant(unquote(t.text(i)));
        break;
      case Tok::Word:
        if (t.isWord(i, u"NULL")) {
          value = Variant::null();
        } else if (!t.isWord(i, u"DEFAULT")) {
          value = Variant(t.text(i));  // T-SQL takes a bare word as a text argument
        }
        break;
      case Tok::Variable:
        throw storeError(err::kCommandError,
                         "Must declare the scalar variable \"" + toUtf8(t.text(i)) + "\".", "42000",
                         137);
      default:
        throw syntaxErrorNear(t.text(i));
    }
    args.add(std::move(name), std::move(value));
    i = t.skip(i + 1, end);
    if (t.isWord(i, u"OUTPUT") || t.isWord(i, u"OUT")) i = t.skip(i + 1, end);
    if (i >= end) break;
    if (!t.isPunct(i, u',')) throw syntaxErrorNear(t.text(i));
    i = t.skip(i + 1, end);
    if (i >= end) throw syntaxErrorNear(u",");
  }
  return args;
}

}  // namespace vrdppo::embedded
