#!/usr/bin/env python3
"""ratios.py [--no-goals] RESULTS.json...: the comparisons of scripts/bench
from Google Benchmark's JSON output, as ratios of wall time per iteration,
each beside its goal. Of repeated runs (--benchmark_repetitions) the fastest
counts: on a shared machine the others measure the neighbours' load. The
command runner's benchmarks give their own ratio (of the fastest calls made
in alternation); of repetitions the median one counts."""
import json
import sys

# (what, benchmark, baseline, goal): time(benchmark) / time(baseline) at most goal.
RATIOS = [
    ("vendor look-up / std::lower_bound (time)", "BM_OuiVesk", "BM_OuiLowerBound", 1 / 1.5),
    ("vendor look-up / std::unordered_map (time)", "BM_OuiVesk", "BM_OuiUnorderedMap", None),
    ("30 product getters, row chosen / no row", "BM_ProductPageChosenRow", "BM_ProductPageNoRow", None),
    ("ra0 survey from its file / from the driver", "BM_SurveyFromFile", "BM_SurveyByDriver", None),
    ("event-stream walk of a 64 KiB scan / libiw (time)", "BM_StreamWalkVesk", "BM_StreamWalkLibiw", 1.0),
    ("client count, Ralink (iwpriv) / QCA (driver request)", "BM_ClientsRalink", "BM_ClientsQca", None),
]
# (what, benchmark, goal): the benchmark's own "ratio" counter, ours / theirs
# measured call by call in alternation.
PAIRS = []
for mem in ("0", "512"):
    PAIRS += [
        ("sysinteract / popen, plain command, %s MiB" % mem, "pair/sysinteract_vs_popen_plain/%s" % mem, 0.6),
        ("posix_spawnp / popen, plain command, %s MiB" % mem, "pair/spawn_vs_popen_plain/%s" % mem, None),
        ("sysinteract / popen, shell command, %s MiB" % mem, "pair/sysinteract_vs_popen_shell/%s" % mem, 1.0),
        ("CMD / system, plain command, %s MiB" % mem, "pair/cmd_vs_system_plain/%s" % mem, 0.6),
        ("CMD / system, shell command, %s MiB" % mem, "pair/cmd_vs_system_shell/%s" % mem, 1.0),
    ]
# (what, benchmark, goal in ms); "fastest" is the fastest single run.
TIMES = [
    ("device start-up, default scenario", "BM_DeviceStart/real_time", None),
    ("device start-up, default scenario, fastest", "BM_DeviceStart/real_time fastest", 30.0),
    ("device start-up, empty scenario", "BM_DeviceStartEmptyScenario/real_time", None),
    ("device start-up, empty scenario, fastest", "BM_DeviceStartEmptyScenario/real_time fastest", None),
    ("bare unshare of the same namespaces", "BM_BareUnshare/real_time", None),
    ("bare unshare of the same namespaces, fastest", "BM_BareUnshare/real_time fastest", None),
]

SCALE = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}


def main(argv):
    goals = "--no-goals" not in argv
    times, ratios = {}, {}
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
                if "ratio" in b:
                    ratios.setdefault(name.replace("/real_time", ""), []).append(b["ratio"])
                if "fastest_ms" in b:
                    t = b["fastest_ms"]
                    times[name + " fastest"] = min(t, times.get(name + " fastest", t))
    if not goals:
        print("\n(a brief run: these numbers measure nothing)")
    print("\n%-52s %10s  %s" % ("comparison", "ratio", "goal" if goals else ""))
    failed = 0

    def report(what, value, goal, fmt, goal_fmt):
        nonlocal failed
        if value is None:
            print("%-52s %10s" % (what, "not run"))
            return
        mark = ""
        if goal is not None and goals:
            mark = ("at most " + goal_fmt + ": %s") % (goal, "met" if value <= goal else "NOT MET")
            failed += value > goal
        print(("%-52s " + fmt + "  %s") % (what, value, mark))

    for what, bench, base, goal in RATIOS:
        both = bench in times and base in times
        report(what, times[bench] / times[base] if both else None, goal, "%9.2fx", "%.2f")
    for what, bench, goal in PAIRS:
        runs = sorted(ratios.get(bench, []))
        report(what, runs[len(runs) // 2] if runs else None, goal, "%9.2fx", "%.2f")  # the median repetition
    for what, bench, goal in TIMES:
        report(what, times.get(bench), goal, "%8.1fms", "%.0f ms")
    if goals and failed:
        print("%d goal(s) not met on this run (a busy machine measures slow)" % failed)


if __name__ == "__main__":
    main(sys.argv)
