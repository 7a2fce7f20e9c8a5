#!/usr/bin/env python3
"""mutants.py [--count N] [--seed N | --seeds LIST] [--files PATTERN...] [--which] ...

Asks what the tests notice: makes single changes to src/, one after the other, chosen by seed (a
negated condition, && for ||, < for <=, another constant, another return value, a dropped check or
statement), and runs the tests against each. The same seed over the same sources is the same change.
The sources stay as they are: the changed file is compiled aside, and linked in front of the
libraries of a build folder of its own (build/mutants; one more for each further job).
"""

import argparse
import collections
import concurrent.futures
import fnmatch
import json
import os
import pathlib
import queue
import random
import re
import resource
import shlex
import signal
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROGRAMS = ["orvo", "tests/orvo_tests", "tests/orvo_meta"]
META_RUNS = [[], ["--2021"], ["--faults"], ["--2021", "--faults"]]
MEMORY = 4 << 30

# ---- changes ----


def blanked(text):
    """The text with comments, literals and directives made blank, every character at its place."""
    parts = re.compile(
        r'//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|\b\d[\d\']*\d\b'
        r"|(?<!\w)'(?:\\.|[^'\\\n])+'|^[ \t]*\#(?:\\\n|[^\n])*", re.S | re.M)

    def blank(match):
        found = match.group()
        if found[0].isdigit():
            return found
        return re.sub(r"[^\n]", " ", found)

    return parts.sub(blank, text)


def closing(code, at):
    """Where the parenthesis that opens at `at` closes."""
    depth = 0
    for place in range(at, len(code)):
        depth += {"(": 1, ")": -1}.get(code[place], 0)
        if depth == 0:
            return place
    return len(code)


def conditions(code):
    """Conditions of if and while: where they begin and end."""
    for match in re.finditer(r"\b(if|while) \(", code):
        start, end = match.end(), closing(code, match.end() - 1)
        if ";" in code[start:end]:
            start += code[start:end].rindex(";") + 1
        if not re.match(r"\s*(const )?(auto|[\w:]+(<.*?>)?)[ *&]+\w+\s*(=[^=]|$)", code[start:end]):
            yield start, end, match.group(1)


def statements(code):
    """Statements that are a call, an assignment, a guard, or lead out of a loop."""
    pattern = re.compile(
        r"(?<=[;{})\n])\s*((?:(?!return|assert|static_assert|using|delete)"
        r"[\w:][\w:.>\[\]*-]*(?:\([^;{}]*\)|(?: [|&+-]?= )[^;{}]*)"
        r"|(?:Restore|CurrentModule|SnapShot|Depth|KeepRec<\w+>) \w+(?:\([^;{}]*\))?"
        r"|continue|break|\+\+[\w.>-]+|--[\w.>-]+);)")
    for match in pattern.finditer(code):
        before = code[:match.start()].rstrip()
        if code.count("(", 0, match.start()) == code.count(")", 0, match.start()) or \
                before.endswith(")"):
            yield match.start(1), match.end(1)


def changesOf(text):
    """All changes to a file by kind: (begin, end, what stands there instead)."""
    code = blanked(text)
    found = collections.defaultdict(list)
    for start, end, word in conditions(code):
        found["condition"].append((start, end, "!(" + text[start:end].strip() + ")"))
        if word == "if":
            found["check"].append((start, end, "false"))
    swaps = {"&&": "||", "||": "&&", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=",
             "!=": "=="}
    for match in re.finditer(r"(?<=\s)(&&|\|\||<=?|>=?|==|!=)(?=\s)", code):
        kind = "logic" if match.group() in ("&&", "||") else "comparison"
        found[kind].append((*match.span(), swaps[match.group()]))
    for match in re.finditer(r"(?<![\w.])\d[\d']*(?![\w.'])", code):
        value = int(match.group().replace("'", ""))
        for other in {value + 1, max(value - 1, 0)} - {value}:
            found["constant"].append((*match.span(), str(other)))
    for match in re.finditer(r"\breturn ([^;{}]+);", code):
        result = text[match.start(1):match.end(1)]
        if result in ("true", "false"):
            other = "false" if result == "true" else "true"
        elif re.search(r"&&|\|\||[^<>]==|!=|^!| [<>]=? |^(is|has)[A-Z]", result):
            other = "!(" + result + ")"
        else:
            other = "{}"
        found["return"].append((*match.span(1), other))
    for start, end in statements(code):
        found["statement"].append((start, end, ";"))
    return found


class Source:
    """A file and its changes."""

    def __init__(self, name):
        self.name = name
        self.text = (ROOT / name).read_text()
        self.changes = changesOf(self.text)


def choose(sources, seed):
    """The change of a seed: its kind first, then one of that kind, wherever it stands."""
    chance = random.Random(seed)
    kinds = sorted({kind for source in sources for kind in source.changes})
    kind = chance.choice(kinds)
    places = [(source, change) for source in sources for change in source.changes[kind]]
    return (kind, *chance.choice(places))


def shown(source, change):
    """What changes, on one line."""
    start, end, other = change
    old = " ".join(source.text[start:end].split())
    if len(old) > 60:
        old = old[:57] + "..."
    if other.startswith("!("):
        return f"negated: {old}"
    if other == ";":
        return f"dropped: {old}"
    if len(old) < 6:  # with what stands around it on its line
        begin = source.text.rfind("\n", 0, start) + 1
        stop = source.text.find("\n", end)
        left, right = source.text[begin:start].lstrip()[-30:], source.text[end:stop][:30]
        return f"{other} for {old} in: {left}[{old}]{right}"
    return f"{other} for {old}"


# ---- running ----


def run(command, seconds, folder=ROOT):
    """Output and status; None as status after the time, with all that it started killed."""
    def limit():
        resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        for number in (signal.SIGINT, signal.SIGHUP):  # ignored in the background
            signal.signal(number, signal.SIG_DFL)

    process = subprocess.Popen(command, cwd=folder, stdout=subprocess.PIPE, preexec_fn=limit,
                               stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL,
                               shell=isinstance(command, str), start_new_session=True)
    try:
        output, _ = process.communicate(timeout=seconds)
        status = process.returncode
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        output, _ = process.communicate()
        status = None
    return output.decode(errors="replace"), status


def mustRun(command):
    output, status = run(command, None)
    if status != 0:
        sys.exit(f"{shlex.join(map(str, command))}\n{output[-3000:]}")
    return output


def findings(output):
    """Tests that failed, each with the rows (traces, or places where there is none) that did."""
    failed, current, ended = {}, None, True
    lines = output.splitlines()
    for at, line in enumerate(lines):
        if line.startswith("[ RUN      ] "):
            current, ended = line[13:], False
            rows = []
        elif line.startswith("[       OK ] "):
            ended = True
        elif line.startswith("[  FAILED  ] ") and not ended:
            failed[current] = sorted(set(rows))
            ended = True
        elif match := re.match(r"(?:.*/)?([\w.]+\.(?:cpp|h):\d+): Failure$", line):
            rows.append(match.group(1))
        elif line == "Google Test trace:" and not ended and rows:
            rows[-1] = re.sub(r"^.*/", "", lines[at + 1])[:160]
    if not ended and not failed:  # a child that is killed leaves the like behind a failure
        failed[current] = ["killed"]
    return failed


class Folder:
    """A build folder, configured once and built once; the programs are linked anew for a change."""

    def __init__(self, path, arguments):
        self.path, self.arguments = path, arguments
        if not (path / "build.ninja").exists():
            mustRun(["cmake", "-S", str(ROOT), "-B", str(path), "-G", "Ninja",
                     "-DCMAKE_BUILD_TYPE=", "-DCMAKE_CXX_FLAGS=-O1 -w -D_GLIBCXX_ASSERTIONS"])
        for name in PROGRAMS:  # an earlier run may have ended with a change linked in
            (path / name).unlink(missing_ok=True)
        mustRun(["ninja", "-C", str(path), "-j1", *PROGRAMS])
        compile_commands = json.loads((path / "compile_commands.json").read_text())
        self.compiles = {entry["file"]: entry["command"] for entry in compile_commands}
        commands = {name: mustRun(["ninja", "-C", str(path), "-t", "commands", "-s", name])
                    for name in PROGRAMS}
        self.links = [text.strip().removeprefix(": && ").removesuffix(" && :")
                      for text in commands.values()]
        assert all(" -o " in link for link in self.links)
        # The first program is what the tests start; then what they are.
        started = time.time()
        failed = self.test()
        if failed:
            sys.exit(f"The tests fail without a change: {', '.join(failed)}")
        arguments.seconds = max(60, 6 * (time.time() - started))

    def test(self):
        """What fails: all of it with --which, else the first."""
        seconds = getattr(self.arguments, "seconds", 600)
        tests = [str(self.path / "tests/orvo_tests"), f"--gtest_filter={self.arguments.tests}"]
        if not self.arguments.which:
            tests.append("--gtest_fail_fast")
        output, status = run(tests, seconds)
        failed = findings(output)
        if status != 0 and not failed:
            failed = {"orvo_tests": [f"status {status}"]}
        for options in META_RUNS:
            if failed and not self.arguments.which:
                break
            output, status = run([str(self.path / "tests/orvo_meta"), "1",
                                  str(self.arguments.meta), "--pairs", *options], seconds)
            if status != 0:
                failed[" ".join(["orvo_meta", *options])] = []
        return failed

    def judge(self, source, change):
        """None when the change does not compile, else what fails with it."""
        start, end, other = change
        mutant = self.path / "mutant.cpp"
        mutant.write_text(source.text[:start] + other + source.text[end:])
        command = shlex.split(self.compiles[str(ROOT / source.name)])
        if "ccache" in command[0]:
            del command[0]
        command[command.index("-o") + 1] = str(self.path / "mutant.o")
        command[command.index("-c") + 1] = str(mutant)
        _, status = run(command, 600, self.path)
        if status != 0:
            return None
        for link in self.links:
            output, status = run(link.replace(" -o ", " mutant.o -o ", 1), 600, self.path)
            if status != 0:
                sys.exit(f"{link}\n{output}")
        return self.test()


# ---- tables ----


def row(seed, kind, source, change, failed, which):
    line = source.text.count("\n", 0, change[0]) + 1
    if failed is None:
        verdict = "does not compile"
    elif not failed:
        verdict = "SURVIVED"
    elif which:
        verdict = f"noticed by {len(failed)}: {', '.join(sorted(failed)[:3])}"
    else:
        verdict = ", ".join(failed)
    return f"{seed}\t{source.name}:{line}\t{kind}\t{shown(source, change)}\t{verdict}"


def summary(results):
    compiled = [failed for failed in results if failed is not None]
    noticed = sum(bool(failed) for failed in compiled)
    share = 100 * noticed / max(1, len(compiled))
    print(f"\n{len(results)} changes, {len(compiled)} compiled, {noticed} noticed ({share:.1f} %), "
          f"{len(compiled) - noticed} survived")


def usefulness(results, tests):
    """How many changes each test notices, and how many it alone does."""
    print("\nnoticed\talone\ttest")
    for test in tests:
        by = [failed for failed in results if failed and test in failed]
        print(f"{len(by)}\t{sum(len(failed) == 1 for failed in by)}\t{test}")


def allTests(folder, arguments):
    output = mustRun([str(folder.path / "tests/orvo_tests"), "--gtest_list_tests",
                      f"--gtest_filter={arguments.tests}"])
    names, suite = [], ""
    for line in output.splitlines():
        if not line.startswith(" ") and line.endswith("."):
            suite = line
        elif line.startswith("  "):
            names.append(suite + line.split()[0])
    return names + [" ".join(["orvo_meta", *options]) for options in META_RUNS]


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[1],
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--count", type=int, default=20, help="how many changes (20)")
    parser.add_argument("--seed", type=int, default=1, help="the first seed (1)")
    parser.add_argument("--seeds", help="these seeds instead: 3,17,40")
    parser.add_argument("--files", nargs="+", default=["*"], metavar="PATTERN",
                        help="files to change: src/check/*, p5val.cpp (all)")
    parser.add_argument("--jobs", type=int, default=1, help="changes tried at once (1)")
    parser.add_argument("--which", action="store_true",
                        help="run all tests for every change, and say which notice it")
    parser.add_argument("--tests", default="*", help="a filter for the unit tests")
    parser.add_argument("--meta", type=int, default=60,
                        help="projects of the metamorphic test, of each kind (60)")
    parser.add_argument("--out", help="append the results, a JSON object a line, with failing rows")
    parser.add_argument("--dry", action="store_true", help="print the changes, run nothing")
    arguments = parser.parse_args()

    names = sorted(str(path.relative_to(ROOT)) for path in (ROOT / "src").rglob("*.cpp"))
    sources = [Source(name) for name in names
               if any(fnmatch.fnmatch(name, pattern) or name.endswith("/" + pattern)
                      for pattern in arguments.files)]
    seeds = [int(seed) for seed in arguments.seeds.split(",")] if arguments.seeds else \
        list(range(arguments.seed, arguments.seed + arguments.count))
    if arguments.dry:
        for seed in seeds:
            kind, source, change = choose(sources, seed)
            print(row(seed, kind, source, change, {}, False).rsplit("\t", 1)[0])
        return

    folders, made = queue.Queue(), []
    for job in range(arguments.jobs):
        made.append(Folder(ROOT / "build" / ("mutants" + (str(job) if job else "")), arguments))
        folders.put(made[-1])
    tests = allTests(made[0], arguments)
    results = []

    def attempt(seed):
        kind, source, change = choose(sources, seed)
        folder = folders.get()
        failed = folder.judge(source, change)
        folders.put(folder)
        text = row(seed, kind, source, change, failed, arguments.which)
        results.append(failed)
        print(text, flush=True)
        if arguments.out:
            with open(arguments.out, "a") as out:
                out.write(json.dumps({"row": text, "seed": seed, "failed": failed}) + "\n")

    with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
        for future in [pool.submit(attempt, seed) for seed in seeds]:
            future.result()
    summary(results)
    if arguments.which:
        usefulness(results, tests)


if __name__ == "__main__":
    main()
