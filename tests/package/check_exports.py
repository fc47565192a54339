"""Checks the shared library's dynamic symbols: every C function that vrdppo.h declares, and
otherwise only names that the public headers declare (no internals, no standard library
instances)."""

import pathlib
import re
import subprocess
import sys

library, include = sys.argv[1], pathlib.Path(sys.argv[2])


def symbols(demangle):
    args = ["nm", "-D", "--defined-only"] + (["-C"] if demangle else []) + [library]
    lines = subprocess.run(args, check=True, capture_output=True, text=True).stdout.splitlines()
    return [line.split(" ", 2)[2] for line in lines if line.count(" ") >= 2]


def code_of(path):
    text = path.read_text()
    return re.sub(r"//[^\n]*|/\*.*?\*/", "", text, flags=re.S)


headers = [p for p in include.rglob("*") if p.suffix in (".hpp", ".h")]
words = set()
for h in headers:
    words.update(re.findall(r"\w+", code_of(h)))
declared_c = set(re.findall(r"VRDPPO_C_API[^;]*?\b(vrdppo_\w+)\s*\(",
                            code_of(include / "vrdppo" / "vrdppo.h")))

failures = []
raw = symbols(False)
exported_c = {s for s in raw if not s.startswith("_Z")}
for s in sorted(exported_c - declared_c):
    failures.append(f"exported but not declared in vrdppo.h: {s}")
for s in sorted(declared_c - exported_c):
    failures.append(f"declared in vrdppo.h but not exported: {s}")

leading = re.compile(r"^(?:[\w ]+ for )?(?:[\w:]+ )?vrdppo::((?:~?\w+::)*~?\w+)")
for s in symbols(True):
    if s in exported_c:
        continue
    m = leading.match(s)
    if not m:
        failures.append(f"not of the vrdppo namespace: {s[:160]}")
        continue
    unknown = [w for w in m.group(1).replace("~", "").split("::") if w not in words]
    if unknown:
        failures.append(f"not declared in a public header ({', '.join(unknown)}): {s[:160]}")

for h in headers:
    for inc in re.findall(r'#include\s+"([^"]+)"', h.read_text()):
        if not (include / inc).exists():
            failures.append(f"{h.relative_to(include)} includes {inc}, which is not public")

if not declared_c:
    failures.append("vrdppo.h declares no functions: the check would prove nothing")
print(f"{len(raw)} dynamic symbols, {len(declared_c)} C functions")
for f in failures[:50]:
    print(f)
sys.exit(1 if failures else 0)
