#include "providers/embedded/translator.hpp"

#include <array>
#include <vector>

#include "providers/embedded/dates.hpp"
#include "providers/embedded/errors.hpp"
#include "vrdppo/recordset.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded {

namespace {

// Words that end a table reference in a FROM list rather than name its alias.
constexpr std::array<std::u16string_view, 17> kNotAliases{
    u"INNER", u"LEFT",  u"RIGHT",  u"FULL",  u"OUTER", u"CROSS",  u"JOIN",   u"ON", u"WHERE",
    u"GROUP", u"ORDER", u"HAVING", u"UNION", u"WITH",  u"EXCEPT", u"OPTION", u"SET"};

bool isNotAlias(std::u16string_view word) {
  for (auto w : kNotAliases) {
    if (equalsNoCase(w, word)) return true;
  }
  return false;
}

void appendStringLiteral(std::u16string& out, std::u16string_view value) {
  out += u'\'';
  for (char16_t c : value) {
    if (c == u'\'') out += u'\'';
    out += c;
  }
  out += u'\'';
}

void appendIdentifier(std::u16string& out, std::u16string_view name) {
  out += u'"';
  for (char16_t c : name) {
    if (c == u'"') out += u'"';
    out += c;
  }
  out += u'"';
}

// Functions whose first argument is a bare datepart word (day, month, yy, ...).
bool takesDatepart(std::u16string_view upper) {
  return upper == u"DATEADD" || upper == u"DATEDIFF" || upper == u"DATEPART" ||
         upper == u"DATENAME";
}

bool isDateType(std::u16string_view type) {
  const auto base = upperAscii(type.substr(0, type.find(u'(')));
  return base == u"DATETIME" || base == u"DATE" || base == u"SMALLDATETIME" || base == u"DATETIME2";
}

struct TableRef {
  std::u16string table;
  std::u16string alias;
};

class Translator {
 public:
  Translator(const Tokens& t, bool quotedIdentifier)
      : t_(t), qi_(quotedIdentifier), drop_(t.size(), 0) {}

  std::u16string run(std::size_t begin, std::size_t end) {
    const std::size_t first = t_.skip(begin, end);
    caseless_ = t_.isWord(first, u"SELECT") || t_.isWord(first, u"UPDATE") ||
                t_.isWord(first, u"DELETE") || t_.isWord(first, u"INSERT") ||
                t_.isWord(first, u"WITH") || t_.isPunct(first, u'(');
    if (t_.isWord(first, u"UPDATE")) {
      update(first, end);
    } else {
      emit(begin, end);
    }
    return std::move(out_);
  }

 private:
  struct Frame {
    std::u16string_view limit;  // a TOP met at this depth: " LIMIT n" before the frame closes
    bool collate = false;       // the call this frame belongs to yields a date text
  };

  bool isNameToken(std::size_t i) const {
    const Tok k = t_[i].kind;
    return k == Tok::Word || k == Tok::Bracketed || (qi_ && k == Tok::Quoted);
  }

  // `dbo` or `[dbo]` directly followed by a dot.
  bool isSchemaPrefix(std::size_t i) const {
    return (t_[i].kind == Tok::Word || t_[i].kind == Tok::Bracketed) &&
           equalsNoCase(nameOf(t_, i), u"dbo") && i + 1 < t_.size() && t_.isPunct(i + 1, u'.');
  }

  // Text compares without regard to case on a server. Columns say so by their collation; a
  // literal says so here, which covers the comparisons of expressions (LEFT(x, 1) = 'a') too. A
  // literal that reads as a date keeps to the collation of the date it is compared with.
  void caseless(std::u16string_view literal) {
    if (!caseless_) return;
    const auto value = unquote(literal);
    if (value.size() >= 4 && value.size() <= 40 && parseMoment(toUtf8(value))) return;
    out_ += u" COLLATE NOCASE";
  }

  void space() {
    if (!out_.empty() && out_.back() != u' ') out_ += u' ';
  }

  void emit(std::size_t begin, std::size_t end) {
    std::vector<Frame> frames(1);
    bool pendingCollate = false;
    for (std::size_t i = begin; i < end; ++i) {
      if (drop_[i]) continue;
      const Token& tok = t_[i];
      const auto text = t_.text(i);
      switch (tok.kind) {
        case Tok::Space:
        case Tok::Comment:
          space();
          break;
        case Tok::Number:
          out_ += text;
          break;
        case Tok::String:
          out_ += text;
          caseless(text);
          break;
        case Tok::Quoted:
          if (qi_) {
            out_ += text;
          } else {
            appendStringLiteral(out_, unquote(text));
            caseless(text);
          }
          break;
        case Tok::Bracketed:
          if (isSchemaPrefix(i)) {
            ++i;
          } else {
            appendIdentifier(out_, unquote(text));
          }
          break;
        case Tok::Variable:
          if (equalsNoCase(text, u"@@IDENTITY")) {
            out_ += u"scope_identity()";
          } else {
            throw storeError(err::kCommandError,
                             "Must declare the scalar variable \"" + toUtf8(text) + "\".", "42000",
                             137);
          }
          break;
        case Tok::Punct:
          if (t_.isPunct(i, u'(')) {
            frames.push_back({});
            frames.back().collate = pendingCollate;
            pendingCollate = false;
            out_ += u'(';
          } else if (t_.isPunct(i, u')') && frames.size() > 1) {
            const Frame f = frames.back();
            frames.pop_back();
            if (!f.limit.empty()) {
              out_ += u" LIMIT ";
              out_ += f.limit;
            }
            out_ += u')';
            if (f.collate) {
              out_ += u" COLLATE ";
              out_ += kDateCollation;
            }
          } else {
            out_ += text;
          }
          break;
        case Tok::Word:
          i = word(i, end, frames, pendingCollate);
          break;
      }
    }
    if (!frames.front().limit.empty()) {
      space();
      out_ += u"LIMIT ";
      out_ += frames.front().limit;
    }
  }

  // Emits the word at i and whatever it takes with it; returns the last token consumed.
  std::size_t word(std::size_t i, std::size_t end, std::vector<Frame>& frames,
                   bool& pendingCollate) {
    const auto text = t_.text(i);
    if (isSchemaPrefix(i)) return i + 1;
    if (t_.isPunct(i + 1, u'.') && i + 2 < end && isSchemaPrefix(i + 2)) return i + 3;  // db.dbo.
    if (!renameFrom_.empty() && equalsNoCase(text, renameFrom_) && t_.isPunct(i + 1, u'.')) {
      appendIdentifier(out_, renameTo_);
      return i;
    }
    const std::size_t next = t_.skip(i + 1, end);
    const bool call = next < end && t_.isPunct(next, u'(');
    const auto upper = upperAscii(text);
    if (upper == u"SELECT") return select(i, end, frames.back());
    if (!call) {
      out_ += text;
      return i;
    }
    if (upper == u"ISNULL") {
      out_ += u"ifnull";
    } else if (upper == u"LEFT") {
      out_ += u"vr_left";
    } else if (upper == u"RIGHT") {
      out_ += u"vr_right";
    } else if (upper == u"GETDATE" || upper == u"GETUTCDATE" || upper == u"SYSDATETIME" ||
               upper == u"SCOPE_IDENTITY") {
      out_ += text;
      pendingCollate = upper != u"SCOPE_IDENTITY";
    } else if (takesDatepart(upper)) {
      // The datepart is a bare word in T-SQL; the functions take it as text.
      out_ += text;
      out_ += u'(';
      frames.push_back({});
      frames.back().collate = upper == u"DATEADD";
      const std::size_t arg = t_.skip(next + 1, end);
      if (arg < end && t_[arg].kind == Tok::Word) {
        appendStringLiteral(out_, t_.text(arg));
        return arg;
      }
      return next;
    } else if (upper == u"CONVERT") {
      return convert(next, end, frames);
    } else if (upper == u"CAST") {
      return cast(next, end);
    } else {
      out_ += text;
    }
    return i;
  }

  // CONVERT(type, value [, style]) becomes vr_convert('type', value [, style]).
  std::size_t convert(std::size_t open, std::size_t end, std::vector<Frame>& frames) {
    std::size_t comma = open + 1;
    int depth = 0;
    for (; comma < end; ++comma) {
      if (t_.isPunct(comma, u'(')) ++depth;
      if (t_.isPunct(comma, u')') && depth-- == 0) break;
      if (depth == 0 && t_.isPunct(comma, u',')) break;
    }
    if (comma >= end || !t_.isPunct(comma, u',')) throw syntaxErrorNear(u"CONVERT");
    const auto type = span(open + 1, comma);
    if (type.empty()) throw syntaxErrorNear(u",");
    out_ += u"vr_convert(";
    appendStringLiteral(out_, type);
    frames.push_back({});
    frames.back().collate = isDateType(type);
    return comma - 1;
  }

  // The source text of tokens [first, last), blanks at either end left out.
  std::u16string_view span(std::size_t first, std::size_t last) const {
    first = t_.skip(first, last);
    while (last > first && (t_[last - 1].kind == Tok::Space || t_[last - 1].kind == Tok::Comment)) {
      --last;
    }
    if (first >= last) return {};
    return t_.source().substr(t_[first].begin, t_[last - 1].end - t_[first].begin);
  }

  // CAST(value AS type) becomes vr_convert('type', value): SQLite's CAST neither cuts text to a
  // length nor knows dates, and reads '20190307' AS datetime as a number.
  std::size_t cast(std::size_t open, std::size_t end) {
    const std::size_t close = t_.closing(open, end);
    std::size_t as = close;
    for (std::size_t i = open + 1; i < close; ++i) {
      if (t_.isPunct(i, u'(')) {
        i = t_.closing(i, close);
      } else if (t_.isWord(i, u"AS")) {
        as = i;
      }
    }
    const auto type = span(as + 1, close);
    if (close >= end || as >= close || type.empty()) throw syntaxErrorNear(u"CAST");
    out_ += u"vr_convert(";
    appendStringLiteral(out_, type);
    out_ += u", ";
    emit(open + 1, as);
    while (!out_.empty() && out_.back() == u' ') out_.pop_back();
    out_ += u')';
    if (isDateType(type)) {
      out_ += u" COLLATE ";
      out_ += kDateCollation;
    }
    return close;
  }

  // SELECT [DISTINCT | ALL] [TOP n | TOP (n)]: the TOP moves to a LIMIT at the frame's end.
  std::size_t select(std::size_t i, std::size_t end, Frame& frame) {
    out_ += t_.text(i);
    std::size_t j = t_.skip(i + 1, end);
    if (t_.isWord(j, u"DISTINCT") || t_.isWord(j, u"ALL")) {
      out_ += u' ';
      out_ += t_.text(j);
      i = j;
      j = t_.skip(j + 1, end);
    }
    if (!t_.isWord(j, u"TOP")) return i;
    std::size_t n = t_.skip(j + 1, end);
    std::size_t last = n;
    if (t_.isPunct(n, u'(')) {
      n = t_.skip(n + 1, end);
      last = t_.skip(n + 1, end);
      if (!t_.isPunct(last, u')')) throw syntaxErrorNear(u"TOP");
    }
    if (n >= end || t_[n].kind != Tok::Number) throw syntaxErrorNear(u"TOP");
    const std::size_t after = t_.skip(last + 1, end);
    if (t_.isWord(after, u"PERCENT") || t_.isWord(after, u"WITH")) {
      throw syntaxErrorNear(t_.text(after));
    }
    frame.limit = t_.text(n);
    return last;
  }

  // The next top-level word `word` in [from, end), or end.
  std::size_t findTop(std::size_t from, std::size_t end, std::u16string_view word) const {
    for (std::size_t i = from; i < end; ++i) {
      if (t_.isPunct(i, u'(')) {
        i = t_.closing(i, end);
      } else if (t_.isWord(i, word)) {
        return i;
      }
    }
    return end;
  }

  std::vector<TableRef> tableRefs(std::size_t begin, std::size_t end) const {
    std::vector<TableRef> refs;
    bool expect = true;
    for (std::size_t i = t_.skip(begin, end); i < end; i = t_.skip(i + 1, end)) {
      if (t_.isPunct(i, u'(')) {
        i = t_.closing(i, end);
        expect = false;
      } else if (expect && isNameToken(i)) {
        if (isSchemaPrefix(i)) i = t_.skip(i + 2, end);
        if (i >= end) break;
        TableRef ref{nameOf(t_, i), {}};
        std::size_t a = t_.skip(i + 1, end);
        if (t_.isWord(a, u"AS")) a = t_.skip(a + 1, end);
        if (a < end && isNameToken(a) && !(t_[a].kind == Tok::Word && isNotAlias(t_.text(a)))) {
          ref.alias = nameOf(t_, a);
          i = a;
        }
        refs.push_back(std::move(ref));
        expect = false;
      } else if (t_.isWord(i, u"JOIN") || t_.isPunct(i, u',')) {
        expect = true;
      }
    }
    return refs;
  }

  // Drops the qualifier of each assignment's column in SET a.x = ..., b.y = ...
  void dropSetQualifiers(std::size_t begin, std::size_t end) {
    bool start = true;
    for (std::size_t i = t_.skip(begin, end); i < end; i = t_.skip(i + 1, end)) {
      if (t_.isPunct(i, u'(')) {
        i = t_.closing(i, end);
        start = false;
      } else if (t_.isPunct(i, u',')) {
        start = true;
      } else if (start) {
        start = false;
        if (isNameToken(i) && t_.isPunct(i + 1, u'.') && i + 2 < end && isNameToken(i + 2)) {
          drop_[i] = drop_[i + 1] = 1;
        }
      }
    }
  }

  // UPDATE t SET ... [FROM ...] [WHERE ...]. SQLite takes no qualified column on the left of an
  // assignment, and where T-SQL names the target again in its FROM, the two are one row source;
  // the target's rows are then picked by rowid through a subquery over the whole FROM.
  void update(std::size_t first, std::size_t end) {
    const std::size_t set = findTop(first + 1, end, u"SET");
    if (set >= end) {
      emit(first, end);
      return;
    }
    const std::size_t from = findTop(set + 1, end, u"FROM");
    const std::size_t where = findTop(from < end ? from + 1 : set + 1, end, u"WHERE");
    dropSetQualifiers(set + 1, from < end ? from : where);
    std::size_t target = t_.skip(first + 1, set);
    if (target < set && isSchemaPrefix(target)) target = t_.skip(target + 2, set);
    if (from >= end || target >= set || !isNameToken(target)) {
      emit(first, end);
      return;
    }
    const std::u16string name = nameOf(t_, target);
    std::u16string table;
    std::u16string ref;
    for (const auto& r : tableRefs(from + 1, where)) {
      if (equalsNoCase(r.table, name) || (!r.alias.empty() && equalsNoCase(r.alias, name))) {
        table = r.table;
        ref = r.alias.empty() ? r.table : r.alias;
        break;
      }
    }
    if (table.empty()) {
      // The target stands apart from the FROM: SQLite's own UPDATE ... FROM has that meaning.
      emit(first, end);
      return;
    }
    out_ += u"UPDATE ";
    appendIdentifier(out_, table);
    out_ += u" SET ";
    renameFrom_ = ref;
    renameTo_ = table;
    emit(set + 1, from);
    renameFrom_.clear();
    space();
    out_ += u"WHERE rowid IN (SELECT ";
    appendIdentifier(out_, ref);
    out_ += u".rowid FROM ";
    emit(from + 1, where);
    if (where < end) {
      space();
      emit(where, end);
    }
    out_ += u')';
  }

  const Tokens& t_;
  bool qi_;
  bool caseless_ = false;
  std::vector<std::uint8_t> drop_;
  std::u16string out_;
  std::u16string renameFrom_;  // an alias of the UPDATE's target, written as the table
  std::u16string renameTo_;
};

}  // namespace

std::u16string translate(const Tokens& tokens, std::size_t begin, std::size_t end,
                         bool quotedIdentifier) {
  return Translator(tokens, quotedIdentifier).run(begin, end);
}

}  // namespace vrdppo::embedded
