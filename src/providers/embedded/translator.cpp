#include "providers/embedded/translator.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "providers/embedded/condition.hpp"
#include "providers/embedded/dates.hpp"
#include "providers/embedded/errors.hpp"
#include "providers/embedded/literals.hpp"
#include "providers/embedded/query.hpp"
#include "vrdppo/recordset.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded {

namespace {

// Words that end a table reference in a FROM list rather than name its alias.
constexpr std::array<std::u16string_view, 18> kNotAliases{
    u"INNER", u"LEFT",  u"RIGHT",  u"FULL",  u"OUTER",     u"CROSS",  u"JOIN",   u"ON",  u"WHERE",
    u"GROUP", u"ORDER", u"HAVING", u"UNION", u"INTERSECT", u"EXCEPT", u"OPTION", u"SET", u"WITH"};

bool isNotAlias(std::u16string_view word) {
  for (auto w : kNotAliases) {
    if (equalsNoCase(w, word)) return true;
  }
  return false;
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
    if (t_.isWord(first, u"INSERT")) {
      exactBegin_ = findTopLevel(t_, first + 1, end, u"VALUES");
      exactEnd_ = end;
    }
    caseless_ = t_.isWord(first, u"SELECT") || t_.isWord(first, u"UPDATE") ||
                t_.isWord(first, u"DELETE") || t_.isWord(first, u"INSERT") ||
                t_.isWord(first, u"WITH") || t_.isPunct(first, u'(');
    if (t_.isWord(first, u"UPDATE")) {
      update(first, end);
    } else if (t_.isPunct(first, u'(') && isQuery(t_, first, end)) {
      query(first, end);
    } else {
      emit(begin, end);
    }
    return std::move(out_);
  }

 private:
  // A pair of parentheses being written.
  struct Frame {
    std::size_t open;      // the "(", or kNone for the text around all parentheses
    bool collate = false;  // the call it belongs to yields a date text
  };

  bool isNameToken(std::size_t i) const {
    const Tok k = t_[i].kind;
    return k == Tok::Word || k == Tok::Bracketed || (qi_ && k == Tok::Quoted);
  }

  // `dbo` or `[dbo]` directly followed by a dot.
  bool isSchemaPrefix(std::size_t i) const {
    // The dot first: most words are not followed by one, and the name is then never unquoted.
    return (t_[i].kind == Tok::Word || t_[i].kind == Tok::Bracketed) && i + 1 < t_.size() &&
           t_.isPunct(i + 1, u'.') && equalsNoCase(nameOf(t_, i), u"dbo");
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

  void trimBlank() {
    while (!out_.empty() && out_.back() == u' ') out_.pop_back();
  }

  std::size_t previous(std::size_t i, std::size_t begin) const {
    while (i > begin) {
      --i;
      if (t_[i].kind != Tok::Space && t_[i].kind != Tok::Comment) return i;
    }
    return kNone;
  }

  // A value written into a column (INSERT's VALUES, UPDATE's SET) that a double cannot hold is
  // written as a blob of its exact digits: a money column's numeric affinity leaves a blob as
  // it is, and the row reader takes the Currency from it exactly, as a server keeps it. Only
  // a literal standing as a whole value, signed or not, is taken this way; arithmetic and
  // comparisons read a blob's text as the number it spells.
  bool exactValue(std::size_t i, std::size_t begin, std::size_t end) {
    if (i < exactBegin_ || i >= exactEnd_) return false;
    std::size_t before = previous(i, begin);
    bool negative = false;
    if (before != kNone && t_.isPunct(before, u'-')) {
      negative = true;
      before = previous(before, begin);
    }
    if (before == kNone ||
        !(t_.isPunct(before, u'(') || t_.isPunct(before, u',') || t_.isPunct(before, u'='))) {
      return false;
    }
    const std::size_t after = t_.skip(i + 1, end);
    if (after < end && !t_.isPunct(after, u',') && !t_.isPunct(after, u')') &&
        t_[after].kind != Tok::Word) {
      return false;
    }
    const std::string exact = exactDecimal(t_.text(i), negative);
    if (exact.empty()) return false;
    if (negative) {
      trimBlank();
      if (out_.empty() || out_.back() != u'-') return false;
      out_.pop_back();  // the sign, which the blob carries
    }
    appendBlob(out_, exact);
    return true;
  }

  // What emit() keeps while it writes a run of tokens.
  struct Run {
    std::size_t begin;
    std::size_t end;
    std::vector<Frame> frames{{kNone}};
    std::size_t parensEnd = 0;    // the first token after the run of "(" last looked at
    bool pendingCollate = false;  // the call just written yields a date text

    // Where the innermost open parentheses close.
    std::size_t frameEnd(const Tokens& t) const {
      return frames.back().open == kNone ? end : t.closing(frames.back().open, end);
    }
  };

  // Writes tokens [begin, end) to out_, each by its kind.
  void emit(std::size_t begin, std::size_t end) {
    Run run{begin, end};
    for (std::size_t i = begin; i < end; ++i) {
      if (drop_[i]) continue;
      switch (t_[i].kind) {
        case Tok::Space:
        case Tok::Comment:
          space();
          break;
        case Tok::Number:
        case Tok::String:
        case Tok::Quoted:
          literal(i, run);
          break;
        case Tok::Bracketed:
          if (isSchemaPrefix(i)) {
            ++i;
          } else {
            appendIdentifier(out_, unquote(t_.text(i)));
          }
          break;
        case Tok::Variable:
          variable(t_.text(i));
          break;
        case Tok::Punct:
          i = punct(i, run);
          break;
        case Tok::Word:
          if (t_.isWord(i, u"SELECT")) {
            // INSERT ... SELECT, WITH ... SELECT: the query runs to the end of its parentheses.
            const std::size_t stop = run.frameEnd(t_);
            query(i, stop);
            i = stop - 1;
          } else {
            i = word(i, end, run.frames, run.pendingCollate);
          }
          break;
      }
    }
  }

  // A number, a string, or a "..." that is a string with QUOTED_IDENTIFIER off.
  void literal(std::size_t i, const Run& run) {
    const auto text = t_.text(i);
    if (t_[i].kind == Tok::Number) {
      refuseFloatOutOfRange(text);
      if (!exactValue(i, run.begin, run.end)) out_ += text;
    } else if (t_[i].kind == Tok::Quoted && qi_) {
      out_ += text;
    } else {
      if (t_[i].kind == Tok::String) {
        out_ += text;
      } else {
        appendStringLiteral(out_, unquote(text));
      }
      caseless(text);
    }
  }

  // Only @@IDENTITY has a meaning here: the statements declare no variables.
  void variable(std::u16string_view text) {
    if (!equalsNoCase(text, u"@@IDENTITY")) {
      throw storeError(err::kCommandError,
                       "Must declare the scalar variable \"" + toUtf8(text) + "\".", "42000", 137);
    }
    out_ += u"scope_identity()";
  }

  // Parentheses open a subquery, a query's first member or a frame of their own, and close one;
  // any other punctuation stands as it is. Returns the last token consumed.
  std::size_t punct(std::size_t i, Run& run) {
    const std::size_t end = run.end;
    if (t_.isPunct(i, u')') && run.frames.size() > 1) {
      const Frame f = run.frames.back();
      run.frames.pop_back();
      out_ += u')';
      if (f.collate) {
        out_ += u" COLLATE ";
        out_ += kDateCollation;
      }
      return i;
    }
    if (!t_.isPunct(i, u'(')) {
      out_ += t_.text(i);
      return i;
    }
    if (i >= run.parensEnd) {
      // A run of "(" shares what follows it: look once per run, not once per "(".
      run.parensEnd = i + 1;
      while (run.parensEnd < end && (isBlank(run.parensEnd) || t_.isPunct(run.parensEnd, u'('))) {
        ++run.parensEnd;
      }
    }
    const bool leads = run.parensEnd < end && t_.isWord(run.parensEnd, u"SELECT");
    const std::size_t close = leads ? t_.closing(i, end) : end;
    const bool subquery = close < end && isQuery(t_, i + 1, close);
    const std::size_t after = subquery ? t_.skip(close + 1, end) : end;
    if (after < end && isSetOperator(t_, after)) {
      // INSERT ... (SELECT ...) UNION ...: the parentheses hold the query's first member.
      const std::size_t stop = run.frameEnd(t_);
      query(i, stop);
      return stop - 1;
    }
    out_ += u'(';
    if (subquery) {
      query(i + 1, close);  // its own TOP, ORDER BY and aliases
      out_ += u')';
      i = close;
    } else {
      run.frames.push_back({i, run.pendingCollate});
    }
    run.pendingCollate = false;
    return i;
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
    if (!call) {
      out_ += text;
      return i;
    }
    const auto upper = upperAscii(text);
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
      frames.push_back({next, upper == u"DATEADD"});
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
    frames.push_back({open, isDateType(type)});
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

  bool isBlank(std::size_t i) const {
    return t_[i].kind == Tok::Space || t_[i].kind == Tok::Comment;
  }

  // A query: its members joined by their set operators, then the ORDER BY of the whole.
  void query(std::size_t begin, std::size_t end) {
    struct Level {
      std::size_t& depth;
      explicit Level(std::size_t& d) : depth(++d) {}
      ~Level() { --depth; }
    } level(depth_);
    if (depth_ > kMaxQueryNesting) throw nestedTooDeeply();
    const Query q = parseQuery(t_, begin, end);
    if (q.members.size() == 1 && !q.members.front().parenthesised) {
      select(q.members.front().spec, q.orderBy, q.end);  // the ORDER BY is the SELECT's own
      return;
    }
    // SQLite takes no LIMIT on a member and reads INTERSECT, UNION and EXCEPT left to right,
    // where T-SQL's INTERSECT binds first. So a member with a TOP, a parenthesised member and a
    // run of INTERSECTs after the first member each become a subquery.
    std::size_t k = 0;
    while (k < q.members.size()) {
      std::size_t last = k;
      while (last < q.operators.size() && q.operators[last].intersect) ++last;
      const bool group = k > 0 && last > k;
      if (k > 0) setOperator(q.operators[k - 1]);
      if (group) out_ += u"SELECT * FROM (";
      for (std::size_t m = k; m <= last; ++m) {
        if (m > k) setOperator(q.operators[m - 1]);
        member(q.members[m]);
      }
      if (group) {
        trimBlank();
        out_ += u')';
      }
      k = last + 1;
    }
    if (q.orderBy < q.end) {
      space();
      emit(q.orderBy, q.end);
    }
  }

  void setOperator(const SetOperator& op) {
    space();
    emit(op.begin, op.end);
    space();
  }

  void member(const QueryMember& m) {
    if (m.parenthesised) {
      out_ += u"SELECT * FROM (";
      query(m.begin + 1, m.end - 1);
      trimBlank();
      out_ += u')';
    } else if (m.spec.top.empty()) {
      select(m.spec, m.spec.end, m.spec.end);
    } else {
      out_ += u"SELECT * FROM (";
      select(m.spec, m.spec.end, m.spec.end);
      out_ += u')';
    }
  }

  // One SELECT, the ORDER BY in [orderBy, orderEnd) that binds to it, then its TOP as a LIMIT.
  void select(const QuerySpec& s, std::size_t orderBy, std::size_t orderEnd) {
    std::u16string shadowed;
    if (!renameFrom_.empty() && declares(s, renameFrom_)) shadowed.swap(renameFrom_);
    out_ += t_.text(s.select);
    if (s.quantifier != s.select) {
      out_ += u' ';
      out_ += t_.text(s.quantifier);
    }
    if (!s.top.empty()) space();
    selectList(s.list, s.from);
    emit(s.from, s.end);
    if (orderBy < orderEnd) {
      space();
      emit(orderBy, orderEnd);
    }
    if (!s.top.empty()) {
      trimBlank();
      out_ += u" LIMIT ";
      out_ += s.top;
    }
    if (!shadowed.empty()) renameFrom_.swap(shadowed);
  }

  // The items of a select list, each alias written as SQLite reads one: expression AS "name".
  void selectList(std::size_t begin, std::size_t end) {
    bool first = true;
    for (const SelectItem& item : selectItems(t_, begin, end)) {
      if (!first) out_ += u',';
      first = false;
      if (item.alias == kNone) {
        emit(item.begin, item.end);
        continue;
      }
      if (t_.skip(item.begin, item.end) > item.begin) space();
      emit(item.exprBegin, item.exprEnd);
      trimBlank();
      out_ += u" AS ";
      const auto name = t_.text(item.alias);
      appendIdentifier(out_,
                       t_[item.alias].kind == Tok::Word ? std::u16string(name) : unquote(name));
      if (item.end > item.begin && isBlank(item.end - 1)) space();
    }
  }

  // The SELECT's FROM names a table or alias `name` of its own, which hides the UPDATE target.
  bool declares(const QuerySpec& s, std::u16string_view name) const {
    if (s.from >= s.end) return false;
    std::size_t stop = s.end;
    for (const auto* w : {u"WHERE", u"GROUP", u"HAVING"}) {
      stop = std::min(stop, findTopLevel(t_, s.from + 1, s.end, w));
    }
    for (const auto& r : tableRefs(s.from + 1, stop)) {
      if (equalsNoCase(r.alias.empty() ? r.table : r.alias, name)) return true;
    }
    return false;
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
    const std::size_t set = findTopLevel(t_, first + 1, end, u"SET");
    if (set >= end) {
      emit(first, end);
      return;
    }
    const std::size_t from = findTopLevel(t_, set + 1, end, u"FROM");
    const std::size_t where = findTopLevel(t_, from < end ? from + 1 : set + 1, end, u"WHERE");
    exactBegin_ = set + 1;
    exactEnd_ = from < end ? from : where;
    dropSetQualifiers(set + 1, exactEnd_);
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
  std::size_t depth_ = 0;  // queries open around the one being written
  bool caseless_ = false;
  std::vector<std::uint8_t> drop_;
  std::u16string out_;
  std::u16string renameFrom_;  // an alias of the UPDATE's target, written as the table
  std::u16string renameTo_;
  std::size_t exactBegin_ = 0;  // the tokens of the values written into columns
  std::size_t exactEnd_ = 0;
};

}  // namespace

std::u16string translate(const Tokens& tokens, std::size_t begin, std::size_t end,
                         bool quotedIdentifier) {
  checkConditions(tokens, begin, end);
  return Translator(tokens, quotedIdentifier).run(begin, end);
}

}  // namespace vrdppo::embedded
