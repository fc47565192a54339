#!/usr/bin/env python3
"""Runs the benchmarks and prints each goal's ratio against its baseline from the same run.

    bench/ratios.py [path/to/vrdppo_bench] [--repetitions N] [--filter REGEX]

Medians of N repetitions (7 unless told), the benchmarks interleaved in a random order so that a
drift in the machine's speed falls on measurement and baseline alike. The T-SQL rows need
VRDPPO_TSQL_CONNECT; without it they say they were skipped.
"""
import argparse
import json
import os
import subprocess
import sys

UNIT = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}
HERE = os.path.dirname(os.path.abspath(__file__))
DEFAULT_BINARY = os.path.join(HERE, "..", "build", "release", "bench", "vrdppo_bench")

# (label, measured, baseline, goal[, clock]); the clock is wall time unless it says "cpu"
RATIOS = [
    ("Load STEMS / raw SQLite loop", "BM_LoadStemsIntoBuffer", "BM_PlainSqliteIntoStructs", 1.2),
    ("Load STEMS / SOCI bulk", "BM_LoadStemsIntoBuffer", "BM_SociStemsIntoStructs", 1.0),
    ("Load DEGRADATION / raw SQLite loop", "BM_LoadDegradationIntoBuffer",
     "BM_PlainSqliteDegradationIntoStructs", 1.2),
    ("Load DEGRADATION / SOCI bulk", "BM_LoadDegradationIntoBuffer",
     "BM_SociDegradationIntoStructs", 1.0),
    ("Load STATION / raw SQLite loop", "BM_LoadStationIntoBuffer",
     "BM_PlainSqliteStationIntoStructs", 1.2),
    ("Load STATION / SOCI bulk", "BM_LoadStationIntoBuffer", "BM_SociStationIntoStructs", 1.0),
    ("Load 1,000,000 / 100,000 STEMS", "BM_LoadMillionStemsIntoBuffer", "BM_LoadStemsIntoBuffer",
     11.0),
    ("(for reference) raw loop 1,000,000 / 100,000 STEMS", "BM_PlainSqliteMillionIntoStructs",
     "BM_PlainSqliteIntoStructs", None),
    ("Buffer GetState / memcpy", "BM_BufferGetState", "BM_MemcpyState", 2.0),
    ("Buffer SetState / memcpy", "BM_BufferSetState", "BM_MemcpyState", 2.0),
    ("decode every record / memcpy", "BM_DecodeEveryRecord", "BM_MemcpyState", 2.0),
    ("ODBC (SQLite driver) Load / plain block loop", "BM_OdbcLoadStemsIntoBuffer",
     "BM_PlainOdbcStemsIntoStructs", 1.3),
    ("ODBC (FreeTDS, T-SQL engine) Load / plain block loop", "BM_TsqlLoadStemsIntoBuffer",
     "BM_PlainTsqlStemsIntoStructs", 1.3),
    # One-row calls to the T-SQL engine: the library, its sessions kept, against the same
    # statements on one held connection; then with the sessions switched off (a login a call).
    ("server Load by key / held connection", "BM_CallLoadByKey", "BM_HeldLoadByKey", 1.3),
    ("server Commit, new record / held connection", "BM_CallCommitNew", "BM_HeldCommitNew", 1.3),
    ("server Commit, existing record / held connection", "BM_CallCommitExisting",
     "BM_HeldCommitExisting", 1.3),
    ("server Delete / held connection", "BM_CallDelete", "BM_HeldDelete", 1.3),
    ("(for reference) Load by key, no pooling / held", "BM_CallLoadByKeyUnpooled",
     "BM_HeldLoadByKey", None),
    ("(for reference) Commit new, no pooling / held", "BM_CallCommitNewUnpooled",
     "BM_HeldCommitNew", None),
    ("(for reference) Commit existing, no pooling / held", "BM_CallCommitExistingUnpooled",
     "BM_HeldCommitExisting", None),
    ("(for reference) Delete, no pooling / held", "BM_CallDeleteUnpooled", "BM_HeldDelete", None),
    # An observer installed that does nothing, against none, on one-row calls; the store's Commit
    # waits on its fdatasync either way, so its CPU time says what telling costs.
    ("server Load by key, no-op observer / none", "BM_CallLoadByKeyObserved", "BM_CallLoadByKey",
     1.1),
    ("server Commit existing, no-op observer / none", "BM_CallCommitExistingObserved",
     "BM_CallCommitExisting", 1.1),
    ("store Load by key, no-op observer / none", "BM_StoreLoadByKeyObserved", "BM_StoreLoadByKey",
     1.1),
    ("store Commit existing, no-op observer / none, CPU time", "BM_StoreCommitExistingObserved",
     "BM_StoreCommitExisting", 1.1, "cpu"),
    # Both sides wait on the same fdatasync a row, so the wall clock moves with the disk; the CPU
    # time is what the library adds.
    ("Commit / prepared INSERT, CPU time", "BM_CommitInsert", "BM_PreparedInsert", 1.2, "cpu"),
    ("(for reference) Commit / prepared INSERT, wall clock", "BM_CommitInsert",
     "BM_PreparedInsert", None),
]


def run(binary, repetitions, pattern):
    out = subprocess.run(
        [binary, "--benchmark_format=json", f"--benchmark_repetitions={repetitions}",
         f"--benchmark_filter={pattern}",
         "--benchmark_enable_random_interleaving=true",
         f"--benchmark_report_aggregates_only={'true' if repetitions > 1 else 'false'}"],
        check=True, stdout=subprocess.PIPE, text=True).stdout
    medians, skipped = {}, {}
    for b in json.loads(out)["benchmarks"]:
        full = b.get("run_name", b["name"])
        name = full.split("/")[0]
        if "/threads:" in full:  # one row per thread count
            name += "/threads:" + full.split("/threads:")[1].split("/")[0]
        if b.get("error_occurred"):
            skipped[name] = b.get("error_message", "error")
        elif b.get("aggregate_name") == "median" or (repetitions == 1 and
                                                     b.get("run_type") == "iteration"):
            unit = UNIT[b.get("time_unit", "ns")]
            medians[name] = {"real": b["real_time"] * unit, "cpu": b["cpu_time"] * unit,
                             "items": b.get("items_per_second", 0.0)}
    return medians, skipped


def peak(binary):
    out = subprocess.run([binary, "--peak-load-stems"], check=True, stdout=subprocess.PIPE,
                         text=True).stdout
    values = dict(line.split() for line in out.splitlines() if line.strip())
    return int(values["peak_rss_bytes"]) / int(values["state_bytes"])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("binary", nargs="?", default=DEFAULT_BINARY)
    parser.add_argument("--repetitions", type=int, default=7)
    parser.add_argument("--filter", default=".",
                        help="only the benchmarks whose names match (the rest: 'not run')")
    args = parser.parse_args()
    if not os.access(args.binary, os.X_OK):
        print(f"ratios.py: no benchmark program at {args.binary}; build it with\n"
              "  cmake --preset release && cmake --build --preset release --target vrdppo_bench",
              file=sys.stderr)
        return 2
    medians, skipped = run(args.binary, args.repetitions, args.filter)
    print("| Ratio | Measured | Goal | Met |")
    print("|---|---|---|---|")
    for label, measured, baseline, goal, *clock in RATIOS:
        missing = [n for n in (measured, baseline) if n not in medians]
        if missing:
            why = "; ".join(sorted({skipped.get(n, "not built or not run") for n in missing}))
            print(f"| {label} | {why} | {'-' if goal is None else f'<= {goal}'} | - |")
            continue
        clock = clock[0] if clock else "real"
        ratio = medians[measured][clock] / medians[baseline][clock]
        if goal is None:
            print(f"| {label} | {ratio:.2f}x | - | - |")
        else:
            print(f"| {label} | {ratio:.2f}x | <= {goal} | {'yes' if ratio <= goal else 'no'} |")
    threads = [n for n in sorted(medians) if n.startswith("BM_CallLoadByKeyThreads")]
    for n in threads:
        count = n.rsplit("threads:", 1)[-1] if "threads:" in n else "1"
        print(f"| (for reference) Load by key, {count} thread(s): calls per second | "
              f"{medians[n]['items']:.0f} | - | - |")
    if args.filter != ".":
        return 0
    ratio = peak(args.binary)
    print(f"| peak memory, Load of 1,000,000 STEMS / state size | {ratio:.2f}x | <= 1.5 | "
          f"{'yes' if ratio <= 1.5 else 'no'} |")
    return 0


if __name__ == "__main__":
    sys.exit(main())
