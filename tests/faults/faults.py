#!/usr/bin/env python3
"""faults.py PROGRAM [--all]: what the compiler leaves behind when the n-th request of a kind fails.

PROGRAM is the compiler as faults.cpp has it. Three modules are compiled, over outputs of an earlier
run. Whatever fails, the run ends as described: done, or a fatal error that fits and status 2; every
output is the earlier or the new one, whole, and nothing else is left. Without --all a spread of the
requests is tried, with it each.
"""
import errno
import os
import shutil
import signal
import struct
import subprocess
import sys
import tempfile

KINDS = ["alloc", "map", "open", "read", "write", "close", "rename", "stat", "thread", "signal", "swap"]
OPEN = ["Can not open file for reading", "Can not open file for writing"]
SPACE, READ, WRITE, CLOSE = ("Can not allocate space", "Can not read from file",
                             "Can not write into file", "Can not close file")
# Fatal errors that a fault may end in, and how many requests the spread tries.
FAULTS = {
    "alloc": ([SPACE], 50), "map": ([SPACE], 10), "open": (OPEN, 16), "read": ([READ], 15),
    "write": ([WRITE, CLOSE], 30), "close": ([WRITE, CLOSE], 40), "rename": ([CLOSE], 20),
    "stat": (OPEN, 20), "thread": ([], 20), "signal": ([], 20), "swap": (OPEN + [READ], 12),
}
OPTIONS = ["+run.opt", "-A=asn", "-V=2", "-CLEAN=YES", "a"]
SOURCES = {
    "run.opt": "# modules\n-PREFIX=Alpha:a:a\n-PREFIX=Beta:b:b\n-PREFIX=Gamma:c:c\n-ZOV-PREFIX=env\n-STANDARD-VERSION=2021\n",
    "asn/a.asn": """Alpha DEFINITIONS AUTOMATIC TAGS ::= BEGIN
IMPORTS Pair, CLS, Things FROM Beta small, Text FROM Gamma;
A ::= SEQUENCE { a Pair {INTEGER}, b Pair {Text} OPTIONAL, c CLS.&id ({Things}), d CLS.&Type ({Things}{@c}), ... }
B ::= CHOICE { x SET OF A, y ENUMERATED { one, two, ... }, z BIT STRING { p(0), q(9) } }
v A ::= { a { first small, second 2 }, c 1, d INTEGER : 5 }
r REAL ::= { mantissa 3, base 10, exponent -2 }
w UTF8String ::= "two words"
u UniversalString ::= { plain, {0, 1, 2, 3} }
plain UniversalString ::= "plain"
END
""",
    "asn/b.asn": """Beta DEFINITIONS AUTOMATIC TAGS ::= BEGIN
Pair {T} ::= SEQUENCE { first T, second T }
CLS ::= CLASS { &id INTEGER UNIQUE, &Type } WITH SYNTAX { &id IS &Type }
Things CLS ::= { {1 IS INTEGER} | {2 IS BOOLEAN}, ... }
t TIME ::= "2026-01-01"
o OBJECT IDENTIFIER ::= { iso member-body(2) 5 }
END
""",
    "asn/c.asn": "Gamma DEFINITIONS ::= BEGIN\nsmall INTEGER (0..100) ::= 7\n"
                 "Text ::= IA5String (FROM (\"a\"..\"z\")) (SIZE (1..8 | 10))\nEND\n",
}
OUTPUTS = ["a.lst", "b.lst", "c.lst", "a.stx", "b.stx", "c.stx", "env.atl"]
APPENDED = "env.acs"
EARLIER = b"earlier\n"


class Project:
    def __init__(self, program, folder):
        self.program, self.folder = program, folder
        self.counts = folder + ".counts"
        self.failures, self.runs = [], 0

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, text):
        os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
        with open(self.path(name), "wb") as file:
            file.write(text if isinstance(text, bytes) else text.encode())

    def read(self, name):
        try:
            with open(self.path(name), "rb") as file:
                return file.read()
        except OSError:
            return b""

    def run(self, fault=None, options=OPTIONS, **variables):
        """A run in a fresh folder; its status and what it printed."""
        for name in os.listdir(self.folder):
            path = self.path(name)
            if name != "asn":
                os.unlink(path)
        for name in OUTPUTS:
            self.write(name, EARLIER)
        for name, text in self.sources.items():
            self.write(name, text)
        with open(self.counts, "wb") as file:
            file.write(bytes(8 * len(KINDS)))
        environment = dict(os.environ, SOURCE_DATE_EPOCH="951825601", ORVO_FAULT_COUNTS=self.counts)
        environment.update({"ORVO_FAULT_" + name.upper(): str(value) for name, value in variables.items()})
        if fault:
            environment["ORVO_FAULT"] = fault
        self.runs += 1
        return subprocess.run([self.program] + options, cwd=self.folder, env=environment,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=120, check=False)

    def requests(self, kind):
        with open(self.counts, "rb") as file:
            return struct.unpack(f"{len(KINDS)}q", file.read())[KINDS.index(kind)]

    def fail(self, fault, why):
        self.failures.append(f"{fault}: {why}")

    def expect(self, fault, run, texts, contents):
        """`contents`: what each output may hold beside the earlier text."""
        message = run.stderr.decode(errors="replace")
        if run.returncode == 2:
            lines = [line for line in message.split("\n") if line.startswith("FATAL ERROR : ")]
            # Where nothing more can be written, not even standard error can.
            silent = not lines and fault.startswith("write") and fault.endswith("+")
            if not silent and [line[14:] for line in lines] not in [[text] for text in texts]:
                self.fail(fault, f"fatal errors {lines}")
        elif run.returncode == -signal.SIGTERM and fault.startswith("signal"):
            pass
        elif run.returncode not in (0, 1) or (run.returncode == 1 and not fault.startswith("swap")):
            self.fail(fault, f"status {run.returncode}, {message[-600:]}")
        if "anitizer" in message or "runtime error" in message:
            self.fail(fault, message[-600:])
        left = set(os.listdir(self.folder)) - set(OUTPUTS) - {"asn", "run.opt", APPENDED}
        if left:
            self.fail(fault, f"left behind: {left}")
        for name in OUTPUTS:
            held = self.read(name)
            if run.returncode == 0 and held not in contents[name]:
                self.fail(fault, f"status 0, but {name} is not what it should be")
            elif held != EARLIER and held not in contents[name]:
                self.fail(fault, f"{name} is neither the earlier nor the new one")

    def try_kind(self, kind, points, texts, contents, suffixes=("",), **variables):
        for number in points:
            for suffix in suffixes:
                fault = f"{kind}:{number}{suffix}"
                self.expect(fault, self.run(fault, **variables), texts, contents)


def spread(count, most):
    """Up to `most` of 1..count: the first ones, the last ones, and some between."""
    if count <= most:
        return range(1, count + 1)
    return sorted(set(range(1, most // 4)) | {count - at for at in range(most // 4)} |
                  {1 + at * (count - 1) // (most // 2) for at in range(most // 2)})


def changes(project):
    """The source of a module is another one when its listing is made."""
    wrong = "Gamma DEFINITIONS ::= BEGIN\nA ::= NULL\n\n\nA ::= NULL\nEND\n"
    whole = "    5:  A ::= NULL\n  ** ERROR on line   5 : Symbol already defined: A\n    6:  END\n"
    cases = [  # the source then, and what its listing holds of it
        (wrong + "-- more\n", whole + "    7:  -- more\n\n"),
        ("short\n", "    1:  short\n  ** ERROR on line   5 : Symbol already defined: A\n\n"),
        ("", "\n\n  ** ERROR on line   5 : Symbol already defined: A\n\n"),
        (None, None),
    ]
    source = project.path("asn/c.asn")
    project.sources = dict(SOURCES, **{"asn/c.asn": wrong})
    last = 0
    for later, shown in cases:
        if later is not None:
            project.sources["asn/c.asn.next"] = later
        if last == 0:  # the source is opened for the listing, the listing, the tree of no other
            project.run("swap:0", ["asn/c.asn"])
            last = project.requests("swap") - 2
        fault = f"swap:{last}"
        run = project.run(fault, ["asn/c.asn"], swap="asn/c.asn")
        listing = project.read("asn/c.lst").decode()
        if later is None:
            if run.returncode != 2 or b"for reading\n              asn/c.asn" not in run.stderr:
                project.fail("changes", f"vanished: {run}")
        elif run.returncode != 1 or shown not in listing:
            project.fail("changes", f"{later!r}: {run} {listing}")
        project.sources.pop("asn/c.asn.next", None)
    for name in os.listdir(project.path("asn")):
        os.unlink(project.path("asn/" + name))


def lowered(project):
    """A limit that is out of reach in debug builds: the modules have two instances."""
    for most, status in ((2, 0), (1, 2)):
        run = project.run(instances=most)
        if run.returncode != status or (b"Too many instances of par" in run.stderr) != (status == 2):
            project.fail("instances", f"{most}: {run}")


def large(project):
    """Storage of another sort, which only large modules need, and only outside debug builds."""
    project.sources = {"asn/a.asn": "A DEFINITIONS ::= BEGIN\n" +
                       "".join(f"T{nr} ::= SEQUENCE {{ a INTEGER ({nr}), b NULL }}\n" for nr in range(12000)) +
                       "END\n"}
    project.run("", ["-A=asn", "-V=2", "a"])
    contents = {name: [project.read(name)] for name in OUTPUTS}
    requests = {kind: project.requests(kind) for kind in ("map", "alloc")}
    for kind, count in requests.items() if requests["map"] else ():
        for number in spread(count, 12):
            fault = f"{kind}:{number}"
            project.expect("large " + fault, project.run(fault, ["-A=asn", "-V=2", "a"]), [SPACE], contents)


def main():
    program, every = os.path.abspath(sys.argv[1]), "--all" in sys.argv
    folder = tempfile.mkdtemp(prefix="orvo-faults-")
    project = Project(program, folder)
    os.mkdir(project.path("asn"))
    changes(project)
    project.sources = SOURCES
    base = project.run()
    if base.returncode != 0:
        sys.exit(f"the modules do not compile: {base}\n{project.read('a.lst').decode()}")
    contents = {name: [project.read(name)] for name in OUTPUTS}
    counts = {kind: project.requests(kind) for kind in KINDS}
    for kind, (texts, most) in FAULTS.items():
        points = range(1, counts[kind] + 1) if every else spread(counts[kind], most)
        if kind == "swap":  # a module is another one, or gone, when it is opened
            project.sources = dict(SOURCES, **{"asn/b.asn.next": SOURCES["asn/b.asn"] + "-- longer\n"})
            contents = dict(contents)
            project.run("swap:1", swap="asn/b.asn")
            for name in OUTPUTS:
                contents[name] = contents[name] + [project.read(name)]
            project.try_kind(kind, points, texts, contents, swap="asn/b.asn")
            project.sources = SOURCES
            os.path.exists(project.path("asn/b.asn.next")) and os.unlink(project.path("asn/b.asn.next"))
            project.try_kind(kind, points, texts, contents, swap="asn/b.asn")
            continue
        suffixes = ("", "+") if kind in ("alloc", "write", "open") else ("",)
        project.try_kind(kind, points, texts, contents, suffixes)
        if kind == "open":
            project.try_kind(kind, points, [SPACE], contents, errno=errno.ENOMEM)
    lowered(project)
    large(project)
    shutil.rmtree(folder)
    os.unlink(project.counts)
    print(f"{project.runs} runs; requests: " + ", ".join(f"{counts[kind]} {kind}" for kind in FAULTS))
    print("\n".join(project.failures[:40]))
    sys.exit(1 if project.failures else 0)


if __name__ == "__main__":
    main()
