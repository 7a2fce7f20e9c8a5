#!/usr/bin/env python3
"""Times whole runs of the compiler over generated modules: processor seconds, best of several runs, with
listings and trees written. Bytes in and out are source, listings and trees; a scan reads them and splits them into words."""

import argparse
import glob
import math
import os
import platform
import re
import shutil
import subprocess
import sys
import tempfile

from shapes import SHAPES, single

HERE = os.path.dirname(os.path.abspath(__file__))
REPORT = os.path.join(HERE, "..", "docs", "performance.md")
CORPUS = os.environ.get("ORVO_CORPUS", os.path.join(HERE, "..", "..", "shared", "corpus"))
CORPUS_SETS = ["nbap", "rrc-umts", "lpp"]

GROWTH = [4000, 8000, 16000, 32000, 64000]
LARGE = [128000, 256000, 500000]
FULL_SIZE = 64000
OTHER_SIZE = {"mixed": 50000, "objects": 16000}  # of the first table
PHASES = ["Read", "Pass 1", "Pass 2", "Pass 3", "Pass 4", "Pass 5", "Listing", "Tree", "Rest"]


class Input:
    """Files of a run in a folder of their own, and the arguments that compile them."""

    def __init__(self, folder, files):
        self.folder, self.sources, self.allowed = folder, [], (0,)
        os.makedirs(folder)
        for name, text in files.items():
            path = os.path.join(folder, name)
            with open(path, "w") as file:
                file.write(text)
            if name.endswith(".asn"):
                self.sources.append(path)
        first = next(name for name in files if name.endswith(".asn"))
        self.arguments = ["-PREFIXLEN=32"] + (["+prefix.opt"] if "prefix.opt" in files else []) + [first[:-4]]

    def outputs(self):
        return [path for end in ("lst", "stx") for path in glob.glob(glob.escape(self.folder) + "/*." + end)]


class CorpusInput(Input):
    def __init__(self, folder, name):
        corpus = os.path.realpath(os.path.join(CORPUS, name))
        self.folder, self.allowed = folder, (0, 1)
        os.makedirs(folder)
        self.sources = glob.glob(glob.escape(corpus) + "/asn/*.asn")
        with open(corpus + "/roots.txt") as file:
            roots = file.read().split()
        self.arguments = [f"+{corpus}/prefix.opt", f"-A={corpus}/asn", "-PREFIXLEN=32", "-NAMELEN=128", *roots]


class Bench:
    def __init__(self, build, against, times):
        self.program = os.path.join(build, "orvo")
        self.scanner = os.path.join(build, "bench", "orvo_scan")
        self.once = os.path.join(build, "bench", "orvo_once")
        self.programs = [self.program] + ([os.path.abspath(against)] if against else [])
        self.times = times

    def run(self, program, work, *options):
        """Seconds and peak kB of one run."""
        result = subprocess.run([self.once, program, "-VERBOSE=NONE", *options, *work.arguments], cwd=work.folder,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, errors="replace")
        status, seconds, peak = result.stdout.split("\n")[-2].split()
        if int(status) not in work.allowed:
            sys.exit(f"exit status {status} in {work.folder}:\n{result.stdout}{result.stderr}")
        return float(seconds), int(peak), result.stderr

    def best(self, work):
        """Best seconds and peak kB by program; the programs take turns, as the machine may slow down meanwhile."""
        runs = [[self.run(program, work) for program in self.programs] for _ in range(self.times)]
        return [(min(turn[i][0] for turn in runs), min(turn[i][1] for turn in runs))
                for i in range(len(self.programs))]

    def phases(self, work):
        runs = [self.run(self.program, work, "-TIMING=YES") for _ in range(self.times)]
        text = min(runs, key=lambda run: run[0])[2]
        return {name: float(re.search(rf"^{name} *: +([0-9.]+) s", text, re.M).group(1)) for name in PHASES}

    def scan_once(self, files):
        text = subprocess.run([self.scanner, *files], stdout=subprocess.PIPE, text=True, check=True).stdout
        return float(text.split()[0])

    def scan(self, files):
        seconds, rest = 0.0, list(files)
        while rest:  # a command line takes so many
            part, rest = rest[:1000], rest[1000:]
            seconds += min(self.scan_once(part) for _ in range(9))
        return seconds


def size_of(files):
    return sum(os.path.getsize(path) for path in files)


def exponent(points):
    """The slope of the line through the logarithms, by least squares."""
    logs = [(math.log(x), math.log(y)) for x, y in points]
    mean_x = sum(x for x, _ in logs) / len(logs)
    mean_y = sum(y for _, y in logs) / len(logs)
    return (sum((x - mean_x) * (y - mean_y) for x, y in logs) / sum((x - mean_x) ** 2 for x, _ in logs))


class Table:
    def __init__(self, *heads):
        self.rows = [heads]

    def add(self, *cells):
        self.rows.append([cell if isinstance(cell, str) else f"{cell:.2f}" for cell in cells])

    def text(self):
        widths = [max(len(row[i]) for row in self.rows) for i in range(len(self.rows[0]))]
        lines = ["| " + " | ".join(cell.ljust(width) if i == 0 else cell.rjust(width)
                                   for i, (cell, width) in enumerate(zip(row, widths))) + " |" for row in self.rows]
        rule = "|" + "|".join("-" * (width + 2) if i == 0 else "-" * (width + 1) + ":"
                              for i, width in enumerate(widths)) + "|"
        return "\n".join([lines[0], rule] + lines[1:]) + "\n"


def whole_runs(bench, inputs, tables):
    """Costs in scans, memory and phases of each input."""
    costs, phases = tables
    for name, work in inputs:
        results = bench.best(work)
        seconds, peak = results[0]
        source, outputs = size_of(work.sources), work.outputs()
        tree = size_of(path for path in outputs if path.endswith(".stx"))
        scans = seconds / bench.scan(work.sources)
        allowed = 12 * source if name.startswith("mixed") else 2 * tree + 6 * source
        costs.add(name, source / 1e6, size_of(outputs) / 1e6, f"{seconds:.3f}", source / 1e6 / seconds,
                  scans, scans * source / (source + size_of(outputs)),
                  peak * 1024 / 1e6, peak * 1024 / source, peak * 1024 / allowed,
                  *[f"{old[0] / seconds:.2f}" for old in results[1:]])
        took = bench.phases(work)
        total = sum(took.values())
        phases.add(name, *[f"{100 * took[phase] / total:.0f}" if total else "" for phase in PHASES])
        print(costs.rows[-1], flush=True)


def growth(bench, folder, names, sizes, start, table):
    """Exponents over the sizes, without what the start of any run costs."""
    start_seconds, start_peak = start
    for name in names:
        points = []
        for size in sizes:
            if name == "circle" and size > FULL_SIZE:  # its output would fill the disk
                continue
            work = Input(os.path.join(folder, "growth"), SHAPES[name](size))
            seconds, peak = bench.best(work)[0]
            shutil.rmtree(work.folder)
            points.append((size, max(seconds - start_seconds, 1e-4), max(peak - start_peak, 1)))
        by_time = [(size, seconds) for size, seconds, _ in points]
        within = [point for point in by_time if point[0] <= FULL_SIZE]
        table.add(name, *[f"{seconds:.3f}" for _, seconds in by_time], *[""] * (len(sizes) - len(points)),
                  exponent(within), *([exponent(by_time)] if sizes[-1] > FULL_SIZE else []),
                  exponent([(size, peak) for size, _, peak in points]))
        print(table.rows[-1], flush=True)


def report(options, bench, start, costs, phases, exponents):
    compiler = subprocess.run(["c++", "--version"], stdout=subprocess.PIPE, text=True, check=True).stdout.split("\n")[0]
    against = "\n`ratio`: the time of the other program by its own." if options.against else ""
    return f"""# Performance

Written by `./bench.sh{" --large" if options.large else ""}{" --against PROGRAM" if options.against else ""}`, which builds a release with the
hardening flags of distributions and compiles generated modules (`bench/shapes.py`) and, where they are at hand,
published ones. Times are processor seconds, the best of {bench.times} runs, listings and trees written.
A *scan* reads files and splits them into words with a plain loop (`bench/scan.cpp`), which is what the program would
cost if it only did that: ratios to it hardly depend on the machine.
`--quick` takes less than a minute; `--help` shows the other options. Measured on {platform.machine()}, compiled by
{compiler}.

Start-up, with a module of one type: {start[0] * 1000:.1f} ms, {start[1] * 1024 / 1e6:.1f} MB.

## Whole runs

`scans`: how often the sources can be scanned in the time of a run; `of all`: how often text of the size of the
sources, listings and trees together.
Memory is the largest amount, in MB, by the size of the sources, and by what it should not exceed: 12 times the sources
for mixed definitions, otherwise 6 times the sources and twice the trees.{against}

{costs.text()}
## Where the time goes

In percent, as `TIMING=YES` has it.

{phases.text()}
## Growth

Seconds by number of definitions, without the start-up, and the exponents of growth by least squares: 1 is linear.

{exponents.text()}"""


def main():
    parser = argparse.ArgumentParser(prog="./bench.sh", description=__doc__,
                                     epilog="--parts [OPTION...] times parts of the program instead.")
    parser.add_argument("build", help=argparse.SUPPRESS)
    parser.add_argument("--quick", action="store_true", help="smaller modules, fewer runs; only prints")
    parser.add_argument("--large", action="store_true", help="growth up to 500,000 definitions")
    parser.add_argument("--against", metavar="PROGRAM", help="compare with another build, in alternation")
    parser.add_argument("--shape", action="append", choices=list(SHAPES), help="only this shape; only prints")
    parser.add_argument("--times", type=int, help="how often each run is measured")
    options = parser.parse_args()
    bench = Bench(os.path.abspath(options.build), options.against, options.times or (2 if options.quick else 5))
    names = options.shape or list(SHAPES)
    sizes = [2000, 8000] if options.quick else GROWTH + (LARGE if options.large else [])
    ratio = ["ratio"] if options.against else []
    costs = Table("input", "source MB", "output MB", "seconds", "MB/s", "scans", "of all", "memory", "by source",
                  "by limit", *ratio)
    phases = Table("input", *PHASES)
    exponents = Table("shape", *[f"{size:,}" for size in sizes], "time", *(["to 500,000"] if options.large else []),
                      "memory")
    with tempfile.TemporaryDirectory(prefix="orvo-bench") as folder:
        small = Input(folder + "/start", single(["T ::= INTEGER"]))
        start = min(bench.best(small)[0] for _ in range(5))
        print("start-up", start, flush=True)
        inputs = []
        for name in names:
            size = sizes[-1] if options.quick else OTHER_SIZE.get(name, FULL_SIZE)
            inputs.append((f"{name} {size:,}", Input(f"{folder}/{name}", SHAPES[name](size))))
        if not options.shape and os.path.isdir(CORPUS):
            inputs += [(name, CorpusInput(f"{folder}/{name}", name)) for name in CORPUS_SETS]
        whole_runs(bench, inputs, (costs, phases))
        bench.programs = bench.programs[:1]
        growth(bench, folder, names, sizes, start, exponents)
    text = report(options, bench, start, costs, phases, exponents)
    if options.quick or options.shape:
        print("\n" + text)
    else:
        with open(REPORT, "w") as file:
            file.write(text)
        print("written: docs/performance.md")


if __name__ == "__main__":
    main()
