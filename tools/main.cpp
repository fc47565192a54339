// vrdppo: the library from a shell.
#include <cstring>
#include <iostream>
#include <stdexcept>
#include <string>

#include "commands.hpp"
#include "vrdppo/error.hpp"

namespace {

constexpr const char* kHelp = R"(usage: vrdppo COMMAND [ARGUMENTS] [OPTIONS]

Commands:
  classes                      every class, one name per line
  layout CLASS                 the record: "CLASS<TAB>record bytes<TAB>state chars", then per
                               field "offset<TAB>bytes<TAB>type<TAB>column<TAB>render"
  decode CLASS [STATE]         a state (argument, --state or standard input) as named fields;
                               with --buffer, a Buffer state (what Load returns) as a table
  encode CLASS [--set F=V]...  a state from fields: --set, or lines "F=V" or decode's own
                               "F<TAB>TYPE<TAB>VALUE" on standard input
  sql CLASS OPERATION          every statement the operation sends, one per line, on a
                               stand-in database (no database is touched)
  load CLASS                   the class's Load, shown as a table (or --json)
  commit CLASS --set F=V...    Commit a record (key 0 or left out: insert) and show it after
  delete CLASS --set KEY=N     Delete a record
  demo                         a plant's day on a fresh embedded store (vrdppo-demo.db)

Options:
  --set FIELD=VALUE   a field of the record, which starts as the class's initialiser leaves it;
                      dates as YYYY-MM-DD[ HH:MM[:SS]], strings as text
  --arg NAME=VALUE    an argument of the operation by its name (sCriteria, lTop, ...)
  --state TEXT        the whole record state instead of --set
  --connect STRING    a connection string; the default is the embedded store vrdppo.db in the
                      working directory, created with its schema on first use. An ODBC string
                      (DRIVER=... or DSN=...) goes to the ODBC driver manager.
  --json              JSON (one object per record and line) instead of a table
  --buffer            decode: the state is a Buffer state of many records
  -h, --help          this text

State text: a state is written as the body of a JSON string, ASCII only, every other UTF-16
code unit as \uXXXX (a state's tail of U+0000 is \u0000 ...), and a blank at either end as
\u0020, so that trimming cannot shift it. It is lossless: any state decodes and encodes back
to itself. decode shows a String*N without its trailing blanks, a
Date as YYYY-MM-DD HH:MM:SS (or its day count where seconds do not hold it exactly), and the
trailing field and any non-zero padding bytes as (trailing) and (unused).

Exit status: 0 on success, 1 on an error of the library or the database (on standard error its
number, in hex where it is a provider's, its text, SQLSTATE and native number, and the statement
that failed), 2 on a usage error.
)";

vrdppo::cli::Options parse(int argc, char** argv, int first) {
  vrdppo::cli::Options o;
  for (int i = first; i < argc; ++i) {
    const std::string a = argv[i];
    const auto value = [&]() -> std::string {
      if (i + 1 >= argc) throw std::invalid_argument(a + " needs a value");
      return argv[++i];
    };
    if (a == "--set") {
      o.sets.push_back(vrdppo::cli::parseAssignment(value()));
    } else if (a == "--arg") {
      o.args.push_back(vrdppo::cli::parseAssignment(value()));
    } else if (a == "--connect") {
      o.connect = value();
    } else if (a == "--state") {
      o.state = value();
    } else if (a == "--json") {
      o.json = true;
    } else if (a == "--buffer") {
      o.buffer = true;
    } else if (a.size() > 1 && a[0] == '-' && a != "-") {
      throw std::invalid_argument("unknown option " + a);
    } else {
      o.positional.push_back(a);
    }
  }
  return o;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace vrdppo::cli;
  if (argc < 2 || !std::strcmp(argv[1], "-h") || !std::strcmp(argv[1], "--help") ||
      !std::strcmp(argv[1], "help")) {
    std::cout << kHelp;
    return argc < 2 ? 2 : 0;
  }
  const std::string command = argv[1];
  try {
    const Options o = parse(argc, argv, 2);
    if (command == "classes") return listClasses(o, std::cout);
    if (command == "layout") return showLayout(o, std::cout);
    if (command == "decode") return decode(o, std::cin, std::cout);
    if (command == "encode") return encode(o, std::cin, std::cout);
    if (command == "sql") return showSql(o, std::cout);
    if (command == "load") return load(o, std::cout);
    if (command == "commit") return commit(o, std::cout);
    if (command == "delete") return remove(o, std::cout);
    if (command == "demo") return demo(o, std::cout);
    std::cerr << "vrdppo: unknown command \"" << command << "\" (see vrdppo --help)\n";
    return 2;
  } catch (const std::invalid_argument& e) {
    std::cerr << "vrdppo: " << e.what() << "\n";
    return 2;
  } catch (const vrdppo::Error& e) {
    std::cerr << "vrdppo: " << vrdppo::cli::errorText(e);
    return 1;
  }
}
