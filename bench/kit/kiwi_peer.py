#!/usr/bin/python3
"""Times kiwisolver (Debian's python3-kiwisolver) on the systems ovix_solver_bench solves.

Builds the same column of views (same constraints, strengths and sizes as ColumnForm in
SolverBench.cpp) and times, per view count:
  SolveFromScratch        new solver, add every constraint, updateVariables
  ResolveAfterSuggestedWidth  the container width is an edit variable (strong) that flips between
                          390 and 428, then updateVariables
The interpreter's share is measured with the same loops calling a method that does next to nothing
(hasConstraint on an empty solver, suggest loop without the suggest), and subtracted. Prints one
line per case: name, raw us, overhead us, net us.

With --ovix-bench PATH (and optionally --ovix-bench-before PATH, an older build of the same bench)
it also runs ovix_solver_bench on the same sizes in the same go and prints ovix's CPU time, its
allocations per solve and the ratio ovix / kiwi (net).

Usage: kiwi_peer.py [--sizes 25,250] [--min-time 0.5] [--json]
                    [--ovix-bench PATH [--ovix-bench-before PATH]]
"""

import argparse
import gc
import json
import statistics
import subprocess
import sys
import time

import kiwisolver as kiwi

# fromPriority(750): the medium level with weight 750.
PRIORITY_750 = kiwi.strength.create(0, 750, 0)


class ColumnForm:
    """A column of views in a 390-wide container, as in SolverBench.cpp."""

    def __init__(self, count, editable_width=False):
        self.container = kiwi.Variable("container")
        self.constraints = []
        if not editable_width:
            self.constraints.append(self.container == 390)
        self.views = []
        for i in range(count):
            left, width = kiwi.Variable("left"), kiwi.Variable("width")
            top, height = kiwi.Variable("top"), kiwi.Variable("height")
            self.views.append((left, width, top, height))
            self.constraints.append(left == 20)
            self.constraints.append(left + width == self.container - 20)
            if i == 0:
                self.constraints.append(top == 20)
            else:
                _, _, above_top, above_height = self.views[i - 1]
                self.constraints.append(top == above_top + above_height + 8)
            self.constraints.append((height == 44) | PRIORITY_750)
            if i % 3 == 0:
                self.constraints.append(height >= 50)


# CPU time of this process, as the C++ bench's "CPU" column: other jobs on a shared machine then
# slow both sides alike instead of whichever ran while they were busy.
clock = time.process_time


def per_call(fn, min_time):
    """Median CPU seconds of one fn() call over batches lasting about min_time in all."""
    batch = 1
    while True:
        start = clock()
        for _ in range(batch):
            fn()
        elapsed = clock() - start
        if elapsed > min_time / 10:
            break
        batch *= 2
    samples = []
    deadline = clock() + min_time
    while len(samples) < 5 or clock() < deadline:
        start = clock()
        for _ in range(batch):
            fn()
        samples.append((clock() - start) / batch)
    return statistics.median(samples)


def solve_from_scratch(form, min_time):
    constraints = form.constraints
    last_top = form.views[-1][2]

    def solve():
        solver = kiwi.Solver()
        add = solver.addConstraint
        for c in constraints:
            add(c)
        solver.updateVariables()
        return last_top.value()

    def overhead():
        solver = kiwi.Solver()
        has = solver.hasConstraint  # a lookup in an empty map: the call costs, the work does not
        for c in constraints:
            has(c)
        solver.updateVariables()
        return last_top.value()

    solve()
    return per_call(solve, min_time), per_call(overhead, min_time)


def resolve_after_suggested_width(form, min_time):
    solver = kiwi.Solver()
    for c in form.constraints:
        solver.addConstraint(c)
    solver.addEditVariable(form.container, kiwi.strength.strong)
    container = form.container
    last_top = form.views[-1][2]
    suggest = solver.suggestValue
    update = solver.updateVariables
    state = [390.0]

    def resolve():
        state[0] = 428.0 if state[0] == 390.0 else 390.0
        suggest(container, state[0])
        update()
        return last_top.value()

    has_edit = solver.hasEditVariable

    def overhead():
        state[0] = 428.0 if state[0] == 390.0 else 390.0
        has_edit(container)  # same call shape as suggest, no solving
        return last_top.value()

    return per_call(resolve, min_time), per_call(overhead, min_time)


# ovix case -> kiwi case timing the same operation.
PEER_CASE = {"SolveFromScratch": "SolveFromScratch",
             "ResolveAfterSuggestedWidth": "ResolveAfterSuggestedWidth"}


def run_ovix(path, sizes, min_time):
    """{benchmark name: (cpu us, allocs per solve)} from one ovix_solver_bench run (medians of 5)."""
    size_pattern = "|".join(str(n) for n in sizes)
    cases = "|".join(PEER_CASE)
    out = subprocess.run(
        [path, f"--benchmark_filter=^({cases})/({size_pattern})$", "--benchmark_format=json",
         "--benchmark_repetitions=5", "--benchmark_report_aggregates_only=true",
         f"--benchmark_min_time={min_time / 5}"],
        check=True, capture_output=True, text=True).stdout
    found = {}
    for b in json.loads(out)["benchmarks"]:
        if b.get("aggregate_name") != "median":
            continue
        scale = {"ns": 1e-3, "us": 1.0, "ms": 1e3}[b["time_unit"]]
        found[b["run_name"]] = (b["cpu_time"] * scale, b.get("allocs_per_solve", float("nan")))
    return found


def print_comparison(results, ovix, before):
    print()
    header = f"{'case':34} {'kiwi net':>10} {'ovix cpu':>10} {'allocs':>8} {'ovix/kiwi':>10}"
    if before:
        header += f" {'before':>10} {'allocs':>8} {'before/kiwi':>11}"
    print(header)
    for r in results:
        if r["name"] not in ovix:
            continue
        us, allocs = ovix[r["name"]]
        line = f"{r['name']:34} {r['net_us']:10.3f} {us:10.3f} {allocs:8.0f} {us / r['net_us']:10.2f}"
        if before and r["name"] in before:
            bus, ballocs = before[r["name"]]
            line += f" {bus:10.3f} {ballocs:8.0f} {bus / r['net_us']:11.2f}"
        print(line)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--sizes", default="25,250")
    parser.add_argument("--min-time", type=float, default=0.5)
    parser.add_argument("--json", action="store_true")
    parser.add_argument("--ovix-bench")
    parser.add_argument("--ovix-bench-before")
    args = parser.parse_args()
    sizes = [int(s) for s in args.sizes.split(",")]
    gc.disable()  # the timed loops create no cycles; a collection would only add noise
    results = []
    for n in sizes:
        raw, over = solve_from_scratch(ColumnForm(n), args.min_time)
        results.append({"name": f"SolveFromScratch/{n}", "raw_us": raw * 1e6, "overhead_us": over * 1e6})
        raw, over = resolve_after_suggested_width(ColumnForm(n, editable_width=True), args.min_time)
        results.append(
            {"name": f"ResolveAfterSuggestedWidth/{n}", "raw_us": raw * 1e6, "overhead_us": over * 1e6})
    for r in results:
        r["net_us"] = r["raw_us"] - r["overhead_us"]
    if args.json:
        json.dump(results, sys.stdout)
        return
    print(f"kiwisolver {kiwi.__version__} (python {sys.version.split()[0]})")
    print(f"{'case':34} {'raw us':>10} {'python us':>10} {'net us':>10}")
    for r in results:
        print(f"{r['name']:34} {r['raw_us']:10.3f} {r['overhead_us']:10.3f} {r['net_us']:10.3f}")
    if args.ovix_bench:
        before = run_ovix(args.ovix_bench_before, sizes, args.min_time) if args.ovix_bench_before else None
        print_comparison(results, run_ovix(args.ovix_bench, sizes, args.min_time), before)


if __name__ == "__main__":
    main()
