#!/usr/bin/env python3
"""determinism.py PROGRAM SOURCE-FOLDER: the same input gives the same bytes.

The examples and the modules of the fault tests are compiled under circumstances that must not
matter, and by the other builds that are there and newer than the sources; every file, the printed
text and the exit status must be the same.
"""
import glob
import os
import shutil
import subprocess
import sys
import tempfile

PROGRAM, ROOT = (os.path.abspath(argument) for argument in sys.argv[1:3])
sys.dont_write_bytecode = True
sys.path.insert(0, ROOT + "/tests/faults")
from faults import OPTIONS, SOURCES  # pylint: disable=wrong-import-position

ENVIRONMENT = {"PATH": os.environ.get("PATH", ""), "SOURCE_DATE_EPOCH": "951825601"}


def projects(folder):
    """Folders with modules, and the arguments of a run in each."""
    for arguments in sorted(glob.glob(ROOT + "/examples/*/arguments")):
        source = os.path.dirname(arguments)
        if not os.path.exists(source + "/kavrimol"):
            with open(arguments, encoding="ascii") as file:
                yield source, file.read().split()
    for name, text in SOURCES.items():
        path = f"{folder}/modules/{name}"
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="ascii") as file:
            file.write(text)
    yield folder + "/modules", OPTIONS


def compiled(source, arguments, folder, variables=None, before=(), program=PROGRAM):
    """All that a run prints and leaves behind."""
    shutil.rmtree(folder, ignore_errors=True)
    shutil.copytree(source, folder)
    run = subprocess.run([*before, program, *arguments], cwd=folder, capture_output=True, check=False,
                         env=dict(ENVIRONMENT, **(variables or {})), stdin=subprocess.DEVNULL)
    result = {"status": run.returncode, "printed": run.stdout, "reported": run.stderr}
    for path in glob.glob(folder + "/**", recursive=True):
        if os.path.isfile(path):
            with open(path, "rb") as file:
                result[os.path.relpath(path, folder)] = file.read()
    return result


def other_builds():
    newest = max(os.path.getmtime(path) for path in glob.glob(ROOT + "/src/*/*"))
    for program in sorted(glob.glob(ROOT + "/build/*/orvo")):
        if os.path.getmtime(program) > newest and not os.path.samefile(program, PROGRAM):
            yield program


def main():
    folder = tempfile.mkdtemp(prefix="orvo-same-")
    elsewhere = folder + "/" + "long-name/" * 12 + "x"
    fixed = ["setarch", "-R"]
    if shutil.which("setarch") is None or subprocess.run(fixed + ["true"], check=False).returncode != 0:
        fixed = []  # not allowed here
    circumstances = [
        ("another folder", {"folder": elsewhere}),
        ("locale", {"variables": {"LC_ALL": "tr_TR.UTF-8", "LANG": "de_DE", "TZ": "Asia/Kathmandu"}}),
        ("another environment", {"variables": {"HOME": "/", "X": "x" * 100000}}),
        ("memory that is not zero", {"variables": {"MALLOC_PERTURB_": "165"}}),
        ("fixed addresses", {"before": fixed}),
        ("without standard streams", {"before": ["sh", "-c", 'exec "$@" <&-', "sh"]}),
    ] + [(program, {"program": program}) for program in other_builds()]
    first = ["-KEEP-GOING=YES", "-CLEAN=NO", "-V=3", "-VERBOSE=TOOL", "-L=./"]
    failed = compared = 0
    for source, arguments in projects(folder):
        rows = [(what, arguments, changes) for what, changes in circumstances]
        base = compiled(source, arguments, folder + "/run")
        words = [word for word in arguments if not word.startswith(("-V=", "-CLEAN="))]
        ordered = compiled(source, first + words, folder + "/run")
        rows += [("options behind", words + first, {}), ("options reversed", first[::-1] + words, {}),
                 ("options around", first[3:] + words + first[:3], {})]
        if arguments == OPTIONS:
            rows.append(("another root", OPTIONS[:-1] + ["c", "b", "a"], {}))
        for what, words, changes in rows:
            other = compiled(source, words, **{"folder": folder + "/run", **changes})
            expected = ordered if what.startswith("options") else base
            if what == "another root":  # the trees number their records in another order
                expected, other = ({name: text for name, text in result.items() if name.endswith(".lst")}
                                   for result in (expected, other))
            compared += len(expected)
            for name in sorted(expected.keys() | other.keys()):
                if expected.get(name) != other.get(name):
                    failed += 1
                    print(f"{source}, {what}: {name} differs")
    shutil.rmtree(folder)
    print(f"{compared} compared, {failed} differ")
    return 1 if failed or compared == 0 else 0


sys.exit(main())
