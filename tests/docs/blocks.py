#!/usr/bin/env python3
"""Runs the code blocks of README.md and docs/*.md as a reader would.

Every fenced block is one of:

  sh, python     run as written, in a scratch directory of its page: the page's blocks in order,
                 sharing that directory (so a venv or a store one block makes, the next uses).
                 `vrdppo` is the installed tool, `python3` finds the installed module (or the
                 page's own venv `v`), the source tree's top-level folders are there to name
                 (`scripts/`, `sql/`, `examples/`, `build/`, a copy of `python/`), and HOME is
                 the scratch directory's. `sudo apt-get install P...` checks that each P is
                 installed instead of installing it.
  cpp, c         compiled against the installed package with pkg-config (C++ as C++20); run
                 when it has a main, compiled alone as a translation unit when it has none.
  cmake          a project of one program, configured and built against the installed package.
  text (or none) a transcript when its first line begins with "$ ": each command run, its output
                 compared line by line (an expected line ending in "..." matches a line that
                 begins with what precedes it). `text tree`: each folder named must exist.

The info string may add words after the language:

  server         needs a database server: run only with --server (the T-SQL suite), against
                 VRDPPO_TSQL_CONNECT (its SERVER, PORT, UID and PWD); skipped, and counted
                 as such, without it.
  yours          the values a reader puts in for their own server (`NAME=value` words): with
                 --server the test's own values take their place; the only block not run as it
                 stands.
  ci             too long for a test (a build of a preset, the whole suite): each command must be
                 one that .ci/run runs, as written.
  wine           run by the Wine suite, scripts/windows-suite.sh, which takes the block from its
                 page (a VBScript client and its output): the suite must name the page.

A block of any other kind, or one not meant to run, carries a caption a reader sees: an italic
line just above it that begins with "*Not run". A block that is neither runnable nor captioned is
an error, so a new block cannot go unchecked.

The paths a page uses for an installed tree or a scratch file stand for the test's own:
/opt/vrdppo and PREFIX for the scratch install, /tmp/ and /srv/plant/ for the page's directory.
"""

import argparse
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

FENCE = re.compile(r"^(\s*)```(.*)$")
CAPTION = re.compile(r"^\s*\*Not run\b")
VERBOSE = False
RUNNABLE = {"sh", "python", "cpp", "c", "cmake", "text", ""}
SERVER_VALUES = {
    "VRD_SERVER": "SERVER",
    "VRD_PORT": "PORT",
    "VRD_LOGIN": "UID",
    "VRD_PASSWORD": "PWD",
}


class Block:
    def __init__(self, page, line, info, body, captioned):
        words = info.split()
        self.page, self.line = page, line
        self.lang = words[0] if words else ""
        self.words = set(words[1:])
        self.body = body
        self.captioned = captioned

    def where(self):
        return f"{self.page}:{self.line}"


def blocks_of(path, root):
    lines = path.read_text(encoding="utf-8").split("\n")
    out, i = [], 0
    while i < len(lines):
        m = FENCE.match(lines[i])
        if not m:
            i += 1
            continue
        indent, info, start = m.group(1), m.group(2).strip(), i
        body = []
        i += 1
        while i < len(lines) and not re.match(r"^\s*```\s*$", lines[i]):
            body.append(lines[i][len(indent):] if lines[i].startswith(indent) else lines[i])
            i += 1
        # The paragraph just above the fence: its first line.
        j = start - 1
        while j >= 0 and not lines[j].strip():
            j -= 1
        while j > 0 and lines[j - 1].strip() and not FENCE.match(lines[j - 1]):
            j -= 1
        above = lines[j] if j >= 0 else ""
        out.append(Block(str(path.relative_to(root)), start + 1, info, "\n".join(body),
                         bool(CAPTION.match(above))))
        i += 1
    return out


def connect_fields(connect):
    fields = {}
    for part in connect.split(";"):
        if "=" in part:
            k, v = part.split("=", 1)
            fields[k.strip().upper()] = v.strip()
    return fields


class Run:
    def __init__(self, args):
        self.root = Path(args.root).resolve()
        self.build = Path(args.build).resolve()
        self.server = args.server
        self.scratch = Path(tempfile.mkdtemp(prefix="vrdppo-docs-"))
        self.prefix = self.scratch / "opt" / "vrdppo"
        self.failures = []
        self.databases = []
        ci = (self.root / ".ci" / "run").read_text()
        self.ci_lines = {l.strip() for l in ci.split("\n")}
        self.wine_suite = (self.root / "scripts" / "windows-suite.sh").read_text()

    # -- the scratch install every page shares -------------------------------------------------
    def install(self):
        subprocess.run(["cmake", "--install", str(self.build), "--prefix", str(self.prefix)],
                       check=True, stdout=subprocess.DEVNULL)
        python = self.scratch / "python-src"
        shutil.copytree(self.root / "python", python)
        lib = self.prefix / "lib" / "libvrdppo.so"
        subprocess.run([sys.executable, "-m", "pip", "install", "--quiet", "--no-index",
                        "--no-build-isolation", "--disable-pip-version-check",
                        "--target", str(self.scratch / "pylib"), str(python),
                        "--config-settings", f"library={lib}"],
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        shim = self.scratch / "bin"
        shim.mkdir()
        # A reader runs the page's sudo; the test, as root, runs the command itself.
        (shim / "sudo").write_text('#!/bin/sh\nif [ "$(id -u)" = 0 ]; then exec "$@"; fi\n'
                                   'exec /usr/bin/sudo -n "$@"\n')
        (shim / "sudo").chmod(0o755)

    def page_dir(self, page):
        d = self.scratch / "pages" / page.replace("/", "_")
        if not d.exists():
            (d / "home").mkdir(parents=True)
            for sub in ("tmp", "srv/plant"):
                (d / sub).mkdir(parents=True)
            # No CMakePresets.json: a preset configured here would point a build at this
            # directory.
            for name in ("scripts", "sql", "examples", "build", "include", "bench", "fuzz"):
                os.symlink(self.root / name, d / name)
            shutil.copytree(self.scratch / "python-src", d / "python")
        return d

    def env(self, d):
        e = dict(os.environ)
        e.update(HOME=str(d / "home"), PYTHONPATH=str(self.scratch / "pylib"),
                 PATH=f"{self.scratch / 'bin'}:{self.prefix / 'bin'}:{e.get('PATH', '')}",
                 PKG_CONFIG_PATH=str(self.prefix / "lib" / "pkgconfig"))
        for k in ("VRDPPO_LIBRARY", "ODBCSYSINI", "ODBCINI", "TDSVER", "FREETDSCONF"):
            e.pop(k, None)
        return e

    def text_of(self, block, d):
        places = {"/opt/vrdppo": str(self.prefix), "PREFIX/": f"{self.prefix}/",
                  "/tmp/": f"{d}/tmp/", "/srv/plant/": f"{d}/srv/plant/"}
        return re.sub(r"/opt/vrdppo|\bPREFIX/|(?<![\w.])/tmp/|/srv/plant/",
                      lambda m: places[m.group(0)], block.body)

    def fail(self, block, what, output=""):
        self.failures.append(f"{block.where()} [{block.lang}]: {what}\n{output}".rstrip())

    def sh(self, block, d, text, env, keep=False):
        # A page's blocks are typed into one shell: what one exports, the next has.
        state = d / ".exports"
        script = f"[ ! -f {state} ] || source {state}\n{text}\n"
        if keep:
            script += f"export -p > {state}\n"
        r = subprocess.run(["bash", "-euo", "pipefail", "-c", script], cwd=d, env=env,
                           capture_output=True, text=True, timeout=600)
        if r.returncode != 0:
            self.fail(block, f"exit {r.returncode}", r.stdout + r.stderr)
        return r

    # -- each kind -------------------------------------------------------------------------------
    def run_sh(self, block, d, env):
        text = self.text_of(block, d)
        installs = re.findall(r"^\s*sudo apt-get install\s+(.*)$", text, re.M)
        for line in installs:
            for p in shlex.split(line):
                if p.startswith("-"):
                    continue
                r = subprocess.run(["dpkg-query", "-W", "-f=${Status}", p], capture_output=True,
                                   text=True)
                if "install ok installed" not in r.stdout:
                    self.fail(block, f"package {p} is not installed here "
                                     "(scripts/install-deps.sh should install it)")
        text = re.sub(r"^\s*sudo apt-get (install|update)\b.*$", ":", text, flags=re.M)
        self.sh(block, d, text, env, keep=True)

    def run_yours(self, block, d, env):
        fields = connect_fields(os.environ["VRDPPO_TSQL_CONNECT"])
        values = {name: fields.get(key, "") for name, key in SERVER_VALUES.items()}
        values["VRD_PORT"] = values["VRD_PORT"] or "1433"
        database = f"vrd_docs_{os.getpid()}"
        self.databases.append((values, database))
        values["VRD_DATABASE"] = database
        named = set(re.findall(r"\b(VRD_[A-Z]+)=", block.body))
        if named != set(values):
            self.fail(block, f"names {sorted(named)}; the test puts in {sorted(values)}")
            return
        exports = " ".join(f"{k}={shlex.quote(v)}" for k, v in values.items())
        self.sh(block, d, f"export {exports}", env, keep=True)

    def run_python(self, block, d, env):
        venv = d / "v" / "bin" / "python"
        python = str(venv) if venv.exists() else sys.executable
        script = d / f"block_{block.line}.py"
        script.write_text(self.text_of(block, d))
        self.sh(block, d, f"{shlex.quote(python)} {shlex.quote(str(script))}", env)

    def run_compiled(self, block, d, env):
        cxx = block.lang == "cpp"
        src = d / f"block_{block.line}.{'cpp' if cxx else 'c'}"
        src.write_text(self.text_of(block, d) + "\n")
        has_main = re.search(r"\bint\s+main\s*\(", block.body) is not None
        exe = d / f"block_{block.line}"
        compiler = ["c++", "-std=c++20"] if cxx else ["cc", "-std=c99"]
        flags = subprocess.run(["pkg-config", "--cflags", "--libs", "vrdppo"], env=env,
                               capture_output=True, text=True, check=True).stdout.split()
        rpath = f"-Wl,-rpath,{self.prefix / 'lib'}"
        cmd = compiler + ["-Wall", "-Werror", str(src)]
        cmd += ["-o", str(exe)] + flags + [rpath] if has_main else ["-c", "-o", str(exe) + ".o"]
        if not has_main:
            cmd += [f for f in flags if f.startswith("-I")]
        r = subprocess.run(cmd, cwd=d, env=env, capture_output=True, text=True)
        if r.returncode != 0:
            self.fail(block, "does not compile", r.stderr)
            return
        if has_main:
            self.sh(block, d, shlex.quote(str(exe)), env)

    def run_cmake(self, block, d, env):
        proj = d / f"cmake_{block.line}"
        proj.mkdir()
        (proj / "app.cpp").write_text('#include "vrdppo/production/stems.hpp"\n'
                                      "int main() { return vrdppo::cStemsPersist().GetState()"
                                      ".empty() ? 1 : 0; }\n")
        (proj / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.20)\nproject(app CXX)\n"
            "set(CMAKE_CXX_STANDARD 20)\nadd_executable(app app.cpp)\n" + block.body + "\n")
        self.sh(block, proj, f"cmake -S . -B b -DCMAKE_PREFIX_PATH={shlex.quote(str(self.prefix))}"
                             " >/dev/null && cmake --build b >/dev/null && b/app", env)

    def run_transcript(self, block, d, env):
        lines = self.text_of(block, d).split("\n")
        i = 0
        while i < len(lines):
            if not lines[i].startswith("$ "):
                self.fail(block, f"a transcript line outside any command: {lines[i]!r}")
                return
            cmd = lines[i][2:]
            while cmd.endswith("\\") and i + 1 < len(lines):
                i += 1
                cmd = cmd[:-1] + " " + lines[i].strip()
            i += 1
            expected = []
            while i < len(lines) and not lines[i].startswith("$ "):
                expected.append(lines[i])
                i += 1
            r = subprocess.run(["bash", "-c", f"[ ! -f .exports ] || source .exports\n{cmd}"],
                               cwd=d, env=env, capture_output=True, text=True, timeout=300)
            got = r.stdout.rstrip("\n").split("\n") if r.stdout.strip() else []
            if r.returncode != 0 or not lines_match(expected, got):
                self.fail(block, f"$ {cmd}: exit {r.returncode}; expected:\n" +
                          "\n".join(expected) + "\ngot:\n" + r.stdout + r.stderr)

    def run_tree(self, block):
        for line in block.body.split("\n"):
            for word in line.split()[:1] + re.findall(r"\b(?:src|tools|tests)/\S+/", line):
                if word.endswith("/") and not (self.root / word).is_dir():
                    self.fail(block, f"names {word}, which is no folder of the project")

    def run_ci(self, block):
        for line in block.body.split("\n"):
            cmd = re.sub(r"\s+#.*$", "", line).strip()
            if cmd and cmd not in self.ci_lines:
                self.fail(block, f"{cmd!r} is not what .ci/run runs")

    # -- a page ------------------------------------------------------------------------------------
    def page(self, path, counts):
        blocks = blocks_of(path, self.root)
        served = any(b.words & {"server", "yours"} for b in blocks)
        if self.server and not served:
            return
        d, env = None, None
        tally = counts.setdefault(str(path.relative_to(self.root)),
                                  {"run": 0, "ci": 0, "wine": 0, "server": 0, "not run": 0})
        for b in blocks:
            if VERBOSE:
                print(f"{b.where()} [{b.lang} {' '.join(sorted(b.words))}]"
                      f"{' not run' if b.captioned else ''}", flush=True)
            if b.captioned:
                tally["not run"] += 1
                continue
            if "wine" in b.words:
                if b.page not in self.wine_suite:
                    self.fail(b, "a wine block of a page that scripts/windows-suite.sh never names")
                tally["wine"] += 1
                continue
            if b.lang not in RUNNABLE:
                self.fail(b, f"a {b.lang} block neither runs nor has a '*Not run' caption")
                continue
            if b.lang in ("text", "") and not b.words & {"ci", "tree"} and \
                    not b.body.startswith("$ "):
                self.fail(b, "a block of text that is no transcript needs a '*Not run' caption")
                continue
            if "ci" in b.words:
                self.run_ci(b)
                tally["ci"] += 1
                continue
            if "tree" in b.words:
                self.run_tree(b)
                tally["run"] += 1
                continue
            if b.words & {"server", "yours"} and not self.server:
                tally["server"] += 1
                continue
            if d is None:
                d = self.page_dir(b.page)
                env = self.env(d)
            tally["run"] += 1
            if "yours" in b.words:
                self.run_yours(b, d, env)
            elif b.lang == "sh":
                self.run_sh(b, d, env)
            elif b.lang == "python":
                self.run_python(b, d, env)
            elif b.lang in ("cpp", "c"):
                self.run_compiled(b, d, env)
            elif b.lang == "cmake":
                self.run_cmake(b, d, env)
            else:
                self.run_transcript(b, d, env)

    def drop_databases(self):
        for values, database in self.databases:
            subprocess.run(["tsql", "-H", values["VRD_SERVER"], "-p", values["VRD_PORT"], "-U",
                            values["VRD_LOGIN"], "-P", values["VRD_PASSWORD"]],
                           input=f"DROP DATABASE {database}\ngo\n", capture_output=True,
                           text=True, timeout=120)


def lines_match(expected, got):
    if len(expected) != len(got):
        return False
    for e, g in zip(expected, got):
        if e.endswith("...") and g.startswith(e[:-3]):
            continue
        if e.rstrip() != g.rstrip():
            return False
    return True


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("--root", required=True, help="the source tree")
    ap.add_argument("--build", required=True, help="a build tree to install from")
    ap.add_argument("--server", action="store_true",
                    help="run the blocks that need a server, on VRDPPO_TSQL_CONNECT")
    ap.add_argument("--keep", action="store_true", help="keep the scratch directory")
    ap.add_argument("pages", nargs="*", help="pages to run (default: README.md and docs/*.md)")
    ap.add_argument("-v", "--verbose", action="store_true", help="name each block as it runs")
    args = ap.parse_args()
    global VERBOSE
    VERBOSE = args.verbose
    if args.server:
        fields = connect_fields(os.environ.get("VRDPPO_TSQL_CONNECT", ""))
        if not all(fields.get(k) for k in ("SERVER", "UID", "PWD")):
            # A page's reader types a server, a login and a password: a DSN will not stand in.
            print("VRDPPO_TSQL_CONNECT names no SERVER, UID and PWD: the server's blocks are "
                  "not run")
            return 77
    run = Run(args)
    root = run.root
    pages = [Path(p).resolve() for p in args.pages] or \
        [root / "README.md"] + sorted((root / "docs").glob("*.md"))
    counts = {}
    try:
        run.install()
        for p in pages:
            run.page(p, counts)
    finally:
        if run.server:
            run.drop_databases()
        if not args.keep:
            shutil.rmtree(run.scratch, ignore_errors=True)
        else:
            print(f"scratch: {run.scratch}")
    for page, t in counts.items():
        print(f"{page}: " + ", ".join(f"{n} {k}" for k, n in t.items() if n))
    total = {k: sum(t[k] for t in counts.values()) for k in ("run", "ci", "wine", "server", "not run")}
    print("in all: " + ", ".join(f"{n} {k}" for k, n in total.items()))
    for f in run.failures:
        print("\nFAILED " + f)
    return 1 if run.failures else 0


if __name__ == "__main__":
    sys.exit(main())
