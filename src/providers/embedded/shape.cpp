#include "providers/embedded/shape.hpp"

#include <initializer_list>

#include "providers/embedded/sqlite_handles.hpp"
#include "providers/embedded/tokenizer.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/recordset.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded {

namespace {

bool isName(const Tokens& t, std::size_t i) {
  const Tok k = t[i].kind;
  return k == Tok::Word || k == Tok::Quoted || k == Tok::Bracketed;
}

class Shaper {
 public:
  explicit Shaper(const Tokens& t) : t_(t) {
    sig_.reserve(t.size());
    shape_.text.reserve(t.source().size() + 64);
    for (std::size_t i = 0; i < t.size(); ++i) {
      if (t[i].kind == Tok::Space) continue;
      sig_.push_back(i);
    }
  }

  std::optional<Shape> run() {
    // Parameters of its own would be numbered along with the lifted ones; SQLite reads comments
    // (they do not nest) and backquotes as these tokens do not, and a word holding # or @ as a
    // parameter: any of them leaves the text as it is.
    for (const std::size_t i : sig_) {
      const Tok k = t_[i].kind;
      if (k == Tok::Comment || k == Tok::Variable) return std::nullopt;
      if (k == Tok::Word && t_.text(i).find_first_of(u"#@") != std::u16string_view::npos)
        return std::nullopt;
      if (k == Tok::Punct && t_.text(i).find_first_of(u"?:$`") != std::u16string_view::npos)
        return std::nullopt;
    }
    const bool ok = word(u"INSERT")   ? insert()
                    : word(u"UPDATE") ? update()
                                      : word(u"DELETE") && remove();
    if (!ok || at_ != sig_.size() || shape_.values.empty() ||
        shape_.values.size() > kMaxShapeValues) {
      return std::nullopt;
    }
    shape_.text.append(t_.source().substr(copied_));
    return std::move(shape_);
  }

 private:
  bool more() const { return at_ < sig_.size(); }
  std::size_t token() const { return sig_[at_]; }
  bool word(std::u16string_view w) {
    if (!more() || !t_.isWord(token(), w)) return false;
    ++at_;
    return true;
  }
  bool punct(char16_t c) {
    if (!more() || !t_.isPunct(token(), c)) return false;
    ++at_;
    return true;
  }
  bool name() {
    if (!more() || !isName(t_, token())) return false;
    ++at_;
    return true;
  }
  bool tableName() { return name() && (!punct(u'.') || name()); }

  // INSERT INTO t [(c, ...)] VALUES (v, ...)[, (v, ...)]
  bool insert() {
    if (!word(u"INTO") || !tableName()) return false;
    if (punct(u'(')) {
      do {
        if (!name()) return false;
      } while (punct(u','));
      if (!punct(u')')) return false;
    }
    if (!word(u"VALUES")) return false;
    do {
      if (!punct(u'(')) return false;
      do {
        value({u',', u')'});
      } while (punct(u','));
      if (!punct(u')')) return false;
    } while (punct(u','));
    return true;
  }

  // UPDATE t SET c = v, ... [WHERE c = v]
  bool update() {
    if (!tableName() || !word(u"SET")) return false;
    do {
      if (!name() || !punct(u'=')) return false;
      value({u',', 0});
    } while (punct(u','));
    if (!more()) return true;
    if (!word(u"WHERE")) return false;
    const std::size_t where = at_;
    if (name() && punct(u'=') && value({0, 0}) && !more()) return true;
    // Any other condition stays as it is.
    at_ = where;
    while (more()) ++at_;
    return true;
  }

  // DELETE FROM t WHERE c = v
  bool remove() {
    return word(u"FROM") && tableName() && word(u"WHERE") && name() && punct(u'=') && value({0, 0});
  }

  // An expression up to a top-level stop character or WHERE (or the end), lifting it when it is
  // a lone literal. Returns whether it was lifted.
  bool value(std::initializer_list<char16_t> stops) {
    const std::size_t first = at_;
    int depth = 0;
    while (more()) {
      const std::size_t i = token();
      if (depth == 0) {
        bool stop = t_.isWord(i, u"WHERE");
        for (const char16_t c : stops) stop = stop || (c != 0 && t_.isPunct(i, c));
        if (stop) break;
      }
      if (t_.isPunct(i, u'(')) ++depth;
      if (t_.isPunct(i, u')')) --depth;
      ++at_;
    }
    const std::size_t count = at_ - first;
    const bool negated = count == 2 && t_.isPunct(sig_[first], u'-');
    if (count != 1 && !negated) return false;
    return lift(sig_[at_ - 1], negated ? sig_[first] : kNoMinus);
  }

  static constexpr std::size_t kNoMinus = static_cast<std::size_t>(-1);

  // Lifts literal token i, negated by the minus at token minus unless that is kNoMinus.
  bool lift(std::size_t i, std::size_t minus) {
    const bool negated = minus != kNoMinus;
    const Token& tok = t_[i];
    const std::u16string_view text = t_.text(i);
    ShapeValue v{ShapeValue::Kind::Text, 0, text};
    std::size_t from = tok.begin;  // where the text the parameter replaces begins
    if (tok.kind == Tok::Number) {
      const bool integral = text.find_first_not_of(u"0123456789") == std::u16string_view::npos;
      if (integral) {
        // Eighteen digits fit whatever they are; longer ones are left for SQLite to judge.
        if (text.size() > 18) return false;
        v.kind = ShapeValue::Kind::Integer;
        for (const char16_t c : text) v.integer = v.integer * 10 + (c - u'0');
      } else {
        // The minus goes into the bound text: negating a parameter subtracts it from 0, which
        // makes a zero (or a value too small for a double) a positive zero, where a negated
        // literal stays a negative one.
        v.kind = ShapeValue::Kind::Real;
        v.negated = negated;
        if (negated) from = t_[minus].begin;
      }
    } else if (tok.kind == Tok::String) {
      // N'...' is no SQLite literal, and U+0000 goes in as char(0): both stay as they are.
      if (i > 0 && t_[i - 1].end != tok.begin) return false;
      if (text.find(u'\0') != std::u16string_view::npos) return false;
    } else {
      return false;
    }
    shape_.values.push_back(v);
    shape_.text.append(t_.source().substr(copied_, from - copied_));
    const bool real = v.kind == ShapeValue::Kind::Real;
    shape_.text += real ? u"CAST(?" : u"?";
    shape_.text += ascii(std::to_string(shape_.values.size()));
    if (real) shape_.text += u" AS REAL)";
    copied_ = tok.end;
    return true;
  }

  const Tokens& t_;
  std::vector<std::size_t> sig_;  // the tokens that are not space
  std::size_t at_ = 0;            // index into sig_
  std::size_t copied_ = 0;        // how much of the source shape_.text has taken
  Shape shape_;
};

}  // namespace

void Shape::bind(Statement& st) const {
  int index = 1;
  for (const auto& v : values) {
    switch (v.kind) {
      case ShapeValue::Kind::Integer:
        st.bindInteger(index, v.integer);
        break;
      case ShapeValue::Kind::Real:
        // A literal is read by the same conversion as a text cast to REAL, so the bits agree.
        st.bindText(index, (v.negated ? "-" : "") + toUtf8(v.token));
        break;
      case ShapeValue::Kind::Text:
        st.bindText(index, toUtf8(unquote(v.token)));
        break;
    }
    ++index;
  }
}

std::optional<Shape> shapeOf(std::u16string_view sqlite) {
  // Only writes have a shape: the first word decides before the text is cut into tokens.
  const std::size_t first = sqlite.find_first_not_of(u" \t\r\n");
  if (first == std::u16string_view::npos) return std::nullopt;
  const std::u16string_view word = sqlite.substr(first, 6);
  if (!equalsNoCase(word, u"INSERT") && !equalsNoCase(word, u"UPDATE") &&
      !equalsNoCase(word, u"DELETE")) {
    return std::nullopt;
  }
  try {
    const Tokens tokens(sqlite);
    return Shaper(tokens).run();
  } catch (const Error&) {
    // Text the dialect's tokens cannot read goes to SQLite as it stands, to fail there.
    return std::nullopt;
  }
}

}  // namespace vrdppo::embedded
