#!/usr/bin/env python3
"""ratios.py [--no-goals] RESULTS.json...: the comparisons of scripts/bench
from Google Benchmark's JSON output, as ratios of wall time per iteration,
each beside its goal. Of repeated runs (--benchmark_repetitions) the fastest
counts: on a shared machine the others measure the neighbours' load."""
import json
import sys

# (what, benchmark, baseline, goal): time(benchmark) / time(baseline) at most goal.
RATIOS = [
    ("vendor look-up / std::lower_bound (time)", "BM_OuiVesk", "BM_OuiLowerBound", 1 / 1.5),
    ("vendor look-up / std::unordered_map (time)", "BM_OuiVesk", "BM_OuiUnorderedMap", None),
    ("30 product getters, row chosen / no row", "BM_ProductPageChosenRow", "BM_ProductPageNoRow", None),
]
for mem in ("0", "512"):
    RATIOS += [
        ("sysinteract / popen, plain command, %s MiB" % mem,
         "BM_Sysinteract/plain/%s/real_time" % mem, "BM_Popen/plain/%s/real_time" % mem, 0.6),
        ("posix_spawnp / popen, plain command, %s MiB" % mem,
         "BM_Spawn/%s/real_time" % mem, "BM_Popen/plain/%s/real_time" % mem, None),
        ("sysinteract / popen, shell command, %s MiB" % mem,
         "BM_Sysinteract/shell/%s/real_time" % mem, "BM_Popen/shell/%s/real_time" % mem, 1.0),
        ("CMD / system, plain command, %s MiB" % mem,
         "BM_Cmd/plain/%s/real_time" % mem, "BM_System/plain/%s/real_time" % mem, 0.6),
        ("CMD / system, shell command, %s MiB" % mem,
         "BM_Cmd/shell/%s/real_time" % mem, "BM_System/shell/%s/real_time" % mem, 1.0),
    ]
# (what, benchmark, goal in ms)
TIMES = [
    ("device start-up, default scenario", "BM_DeviceStart/real_time", 30.0),
    ("device start-up, empty scenario", "BM_DeviceStartEmptyScenario/real_time", None),
    ("bare unshare of the same namespaces", "BM_BareUnshare/real_time", None),
]

SCALE = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}


def main(argv):
    goals = "--no-goals" not in argv
    times = {}
    for path in (a for a in argv[1:] if not a.startswith("--")):
        with open(path) as f:
            for b in json.load(f)["benchmarks"]:
                if b.get("error_occurred"):
                    continue
                if b.get("run_type") == "aggregate":
                    continue
                name = b.get("run_name", b["name"])
                t = b["real_time"] * SCALE[b["time_unit"]]
                times[name] = min(t, times.get(name, t))
    failed = 0
    print("\n%-52s %10s  %s" % ("comparison", "ratio", "goal" if goals else ""))
    for what, bench, base, goal in RATIOS:
        if bench not in times or base not in times:
            print("%-52s %10s" % (what, "not run"))
            continue
        r = times[bench] / times[base]
        mark = "" if goal is None or not goals else ("at most %.2f: %s" % (goal, "met" if r <= goal else "NOT MET"))
        failed += goal is not None and r > goal
        print("%-52s %9.2fx  %s" % (what, r, mark))
    for what, bench, goal in TIMES:
        if bench not in times:
            print("%-52s %10s" % (what, "not run"))
            continue
        t = times[bench]
        mark = "" if goal is None or not goals else ("at most %.0f ms: %s" % (goal, "met" if t <= goal else "NOT MET"))
        failed += goal is not None and t > goal
        print("%-52s %8.1fms  %s" % (what, t, mark))
    if goals and failed:
        print("%d goal(s) not met on this run (a busy machine measures slow)" % failed)


if __name__ == "__main__":
    main(sys.argv)
