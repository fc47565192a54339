// vrdppo: the library from a shell.
#include <cstring>
#include <functional>
#include <initializer_list>
#include <iostream>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "commands.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/observer.hpp"
#include "vrdppo/odbc_pool.hpp"
#include "vrdppo/text.hpp"
#include "vrdppo/vrdppo.h"

namespace {

constexpr const char* kCommands = R"(
Each command's own arguments and options: vrdppo COMMAND --help.)";

constexpr const char* kFields = R"(
Fields: --set FIELD=VALUE sets a field of the record, which starts as the class's initialiser
leaves it; dates as YYYY-MM-DD[ HH:MM[:SS]], strings as text.)";

constexpr const char* kArguments = R"(
Arguments: --arg NAME=VALUE gives an argument of the operation by its name (sCriteria, lTop,
...); a name the operation does not take, or a value its type cannot hold, is a usage error.)";

constexpr const char* kConnection = R"(
Connection: --connect STRING; the default is the embedded store vrdppo.db in the working
directory, created with its schema on first use. An ODBC string (DRIVER=... or DSN=...) goes to
the ODBC driver manager.)";

constexpr const char* kStateText = R"(
State text: a state is written as the body of a JSON string, ASCII only, every other UTF-16
code unit as \uXXXX (a state's tail of U+0000 is \u0000 ...), a blank at either end as \u0020,
so that trimming cannot shift it, and a leading "-" as \u002d, so that no option parser takes it
for an option. It is lossless: any state decodes and encodes back to itself. A record's state has
exactly the class's state length (layout's third number) and a Buffer state the 8 header
characters plus that length times the count (and the one spare blank Load leaves): any other
length is refused. decode shows a String*N without its trailing blanks, a Date as
YYYY-MM-DD HH:MM:SS (or its day count where seconds do not hold it exactly), and the trailing
field and any non-zero padding bytes as (trailing) and (unused).)";

constexpr const char* kExitStatus = R"(
Exit status: 0 on success; 1 on an error of the library or the database (on standard error its
number, in hex where it is a provider's, its text, SQLSTATE and native number, and the statement
that failed); 2 on a usage error, naming what was wrong; 3 when commit or delete did nothing:
the operation answered False or its statement changed no row.)";

constexpr const char* kCheckStatus = R"(
Exit status: 0 when the database fits the classes (warnings allowed); 1 when it does not, or it
cannot be read; 2 on a usage error.)";

std::string joined(std::initializer_list<const char*> parts) {
  std::string out;
  // Each part starts on a line of its own; a blank line goes between them.
  for (const char* p : parts) out += out.empty() ? std::string(p + 1) : "\n" + std::string(p);
  return out;
}

// Which build this is: its version and build type, and what the build compiled in (the default
// connection string, its password masked, the application name and the audit trail id).
std::string versionText() {
  std::string text = std::string("vrdppo ") + vrdppo_version() + " (" + VRDPPO_BUILD_TYPE + ")";
  text += "\ndefault connection: " +
          vrdppo::toUtf8(vrdppo::observe::maskPasswords(vrdppo::dbHelp::DefaultConnectString()));
  text += "\napplication name: " + vrdppo::toUtf8(vrdppo::dbHelp::AppName) +
          "; audit trail id: " + std::to_string(vrdppo::dbHelp::AuditTrailId);
  return text;
}

// What the options and arguments hold before they become the commands' Options.
struct Raw {
  std::string className, operation, path, stateArgument, state, connect;
  std::vector<std::string> sets, args, params;
  std::string where;
  bool json = false, buffer = false, trace = false;
};

// --trace: each statement and session event on a line of standard error as it happens, so that
// what goes to standard output stays clean; the pool's figures at the end.
class Trace final : public vrdppo::Observer {
 public:
  void onStatement(const vrdppo::StatementEvent& e) override {
    line(vrdppo::observe::traceLine(e));
  }
  void onSession(const vrdppo::SessionEvent& e) override { line(vrdppo::observe::traceLine(e)); }

 private:
  void line(const std::string& text) {
    const std::lock_guard lock(mutex_);
    std::cerr << text << '\n' << std::flush;
  }
  std::mutex mutex_;
};

// Installs the trace for the command's run and ends it with the figures.
class Tracing {
 public:
  explicit Tracing(bool on) : on_(on) {
    if (on_) vrdppo::observe::setProcessObserver(std::make_shared<Trace>());
  }
  ~Tracing() {
    if (!on_) return;
    vrdppo::observe::setProcessObserver(nullptr);
    std::cerr << "vrdppo: " << vrdppo::odbc::poolFiguresText(vrdppo::odbc::poolFigures()) << '\n';
  }
  Tracing(const Tracing&) = delete;
  Tracing& operator=(const Tracing&) = delete;

 private:
  bool on_;
};

bool given(const CLI::App& command, const char* name) {
  const CLI::Option* option = command.get_option_no_throw(name);
  return option != nullptr && option->count() > 0;
}

vrdppo::cli::Options options(const Raw& raw, const CLI::App& command, const char* program) {
  vrdppo::cli::Options o;
  o.program = program;
  o.className = raw.className;
  o.operation = raw.operation;
  o.path = raw.path;
  for (const auto& s : raw.sets) o.sets.push_back(vrdppo::cli::parseAssignment(s, "--set"));
  for (const auto& a : raw.args) o.args.push_back(vrdppo::cli::parseAssignment(a, "--arg"));
  if (given(command, "--connect")) o.connect = raw.connect;
  if (given(command, "--state")) o.state = raw.state;
  if (given(command, "STATE")) o.state = raw.stateArgument;
  o.json = raw.json;
  o.buffer = raw.buffer;
  if (given(command, "--where")) o.where = raw.where;
  o.params = raw.params;
  return o;
}

int run(int argc, char** argv) {
  using namespace vrdppo::cli;
  Raw raw;
  CLI::App app("vrdppo: the persistence library from a shell.", "vrdppo");
  app.footer(joined({kCommands, kFields, kArguments, kConnection, kStateText, kExitStatus}));
  app.require_subcommand(1);
  app.set_version_flag("--version", versionText());

  using Run = std::function<int(const Options&)>;
  std::vector<std::pair<CLI::App*, Run>> commands;
  const auto command = [&](const char* name, const char* description, Run run,
                           std::initializer_list<const char*> footer = {kExitStatus}) {
    CLI::App* c = app.add_subcommand(name, description);
    c->footer(joined(footer));
    commands.emplace_back(c, std::move(run));
    return c;
  };
  const auto className = [&](CLI::App* c) {
    c->add_option("CLASS", raw.className, "a class, as `vrdppo classes` lists them")->required();
  };
  const auto sets = [&](CLI::App* c) {
    return c->add_option("--set", raw.sets, "FIELD=VALUE: a field of the record (repeatable)")
        ->allow_extra_args(false)
        ->type_name("FIELD=VALUE");
  };
  const auto args = [&](CLI::App* c) {
    c->add_option("--arg", raw.args, "NAME=VALUE: an argument of the operation (repeatable)")
        ->allow_extra_args(false)
        ->type_name("NAME=VALUE");
  };
  const auto state = [&](CLI::App* c, CLI::Option* set) {
    c->add_option("--state", raw.state, "the whole record's state (state text) instead of --set")
        ->excludes(set);
  };
  const auto connect = [&](CLI::App* c, const char* help) {
    return c->add_option("--connect", raw.connect, help)->type_name("STRING");
  };
  constexpr const char* kConnect =
      "a connection string; the default is the embedded store vrdppo.db in the working directory";
  const auto json = [&](CLI::App* c) {
    return c->add_flag("--json", raw.json,
                       "JSON, one object per record and line, instead of a table");
  };
  const auto where = [&](CLI::App* c, const char* what) {
    c->add_option("--where", raw.where, what)->type_name("TEMPLATE");
    c->add_option("--param", raw.params,
                  "a value for the next \"?\" of --where (repeatable), read as a value of the "
                  "field it is compared with is read in commit, or as its kind says: long:, "
                  "double:, currency:, date:, string:")
        ->allow_extra_args(false)
        ->type_name("VALUE");
  };
  const auto trace = [&](CLI::App* c) {
    c->add_flag("--trace", raw.trace,
                "each statement as it runs (time, rows, whether its server session was kept, "
                "text), and the server sessions' logins and logouts, one line each on standard "
                "error; the kept sessions' figures at the end");
  };

  command("classes", "every class, one name per line",
          [](const Options& o) { return listClasses(o, std::cout); });

  className(command("layout",
                    "the record: \"CLASS<TAB>record bytes<TAB>state chars\", then per field "
                    "\"offset<TAB>bytes<TAB>type<TAB>column<TAB>render\"",
                    [](const Options& o) { return showLayout(o, std::cout); }));

  {
    CLI::App* c = command("decode",
                          "a state (argument, --state or standard input) as named fields; with "
                          "--buffer, a Buffer state (what Load returns, as load --buffer prints "
                          "it) as a table",
                          [](const Options& o) { return decode(o, std::cin, std::cout); },
                          {kStateText, kExitStatus});
    className(c);
    CLI::Option* positional = c->add_option("STATE", raw.stateArgument, "the state text");
    c->add_option("--state", raw.state, "the state text, as the argument")->excludes(positional);
    c->add_flag("--buffer", raw.buffer, "the state is a Buffer state of many records");
    json(c);
  }
  {
    CLI::App* c = command("encode",
                          "a state from fields: --set, or lines \"F=V\" or decode's own "
                          "\"F<TAB>TYPE<TAB>VALUE\" on standard input",
                          [](const Options& o) { return encode(o, std::cin, std::cout); },
                          {kFields, kStateText, kExitStatus});
    className(c);
    sets(c);
  }
  {
    CLI::App* c = command("sql",
                          "every statement the operation sends, one per line, on a stand-in "
                          "database (no database is touched)",
                          [](const Options& o) { return showSql(o, std::cout); },
                          {kFields, kArguments, kStateText, kExitStatus});
    className(c);
    c->add_option("OPERATION", raw.operation, "a public member: Load, Commit, Delete, ...")
        ->required();
    state(c, sets(c));
    args(c);
    connect(c, "the connection string the operation is given (default DSN=vrdppo)");
  }
  {
    CLI::App* c = command("load",
                          "the class's Load, shown as a table (or --json, or --buffer); a "
                          "missing store file is made empty, with a note on standard error",
                          [](const Options& o) { return load(o, std::cout, std::cerr); },
                          {kArguments, kConnection, kStateText, kExitStatus});
    className(c);
    args(c);
    where(c,
          "criteria with \"?\" for each --param, the values written into it as the library "
          "writes values (quotes doubled): the criteria argument, built safely");
    connect(c, kConnect);
    c->add_flag("--buffer", raw.buffer,
                "the Buffer state Load answered, as state text on one line, for decode --buffer")
        ->excludes(json(c));
    trace(c);
  }
  {
    CLI::App* c = command("commit",
                          "Commit a record (key 0 or left out: insert) and show it after; exit 3 "
                          "when it changed no row",
                          [](const Options& o) { return commit(o, std::cout); },
                          {kFields, kArguments, kConnection, kStateText, kExitStatus});
    className(c);
    state(c, sets(c));
    args(c);
    connect(c, kConnect);
    json(c);
    trace(c);
  }
  {
    CLI::App* c =
        command("delete",
                "Delete the record whose key --set names, or with --where the rows the "
                "criteria select (the class's CriteriaDelete); exit 3 when it changed no row",
                [](const Options& o) { return remove(o, std::cout); },
                {kFields, kArguments, kConnection, kStateText, kExitStatus});
    className(c);
    state(c, sets(c));
    args(c);
    where(c, "criteria with \"?\" for each --param: the rows to delete, built safely");
    connect(c, kConnect);
    trace(c);
  }
  {
    CLI::App* c =
        command("demo",
                "a plant's day on a fresh embedded store (PATH, vrdppo-demo.db by "
                "default) or on the database --connect names",
                [](const Options& o) { return demo(o, std::cout); }, {kConnection, kExitStatus});
    CLI::Option* path = c->add_option("PATH", raw.path, "the store file, made anew");
    connect(c, "run the day on this connection string instead, keeping what it holds")
        ->excludes(path);
    trace(c);
  }

  {
    CLI::App* c =
        command("check",
                "whether the database --connect names fits the classes: every table, "
                "view, column, key and procedure they use, read from its catalog "
                "(nothing is written); a report by class, or --json",
                [](const Options& o) { return checkDatabase(o, std::cout); }, {kCheckStatus});
    connect(c, "the database: an ODBC connection string, or an existing embedded store's")
        ->required();
    c->add_flag("--json", raw.json, "the report as one JSON object");
    trace(c);
  }

  if (argc < 2 || std::strcmp(argv[1], "help") == 0) {
    std::cout << app.help();
    return argc < 2 ? 2 : 0;
  }
  const auto named = [&](const char* name) -> const CLI::App* {
    for (const auto& c : commands) {
      if (c.first->get_name() == name) return c.first;
    }
    return nullptr;
  };
  if (argv[1][0] != '-' && named(argv[1]) == nullptr) {
    std::cerr << "vrdppo: unknown command \"" << argv[1] << "\" (see vrdppo --help)\n";
    return 2;
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForAllHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForVersion& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    const CLI::App* c = named(argv[1]);
    std::cerr << "vrdppo: " << e.what() << " (see vrdppo " << (c ? c->get_name() + " " : "")
              << "--help)\n";
    return 2;
  }
  try {
    for (const auto& [c, run] : commands) {
      if (!c->parsed()) continue;
      const Options o = options(raw, *c, argv[0]);
      const Tracing tracing(raw.trace);
      return run(o);
    }
    return 2;  // require_subcommand has ruled this out
  } catch (const std::invalid_argument& e) {
    std::cerr << "vrdppo: " << e.what() << "\n";
    return 2;
  } catch (const vrdppo::Error& e) {
    std::cerr << "vrdppo: " << errorText(e);
    return 1;
  } catch (const NothingDone& e) {
    std::cerr << "vrdppo: " << e.what() << "\n";
    return 3;
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& e) {  // a fault of the tool itself, or memory exhausted
    std::cerr << "vrdppo: " << e.what() << "\n";
    return 1;
  }
}
