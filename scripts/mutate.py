#!/usr/bin/env python3
"""Plants single faults into the sources and runs the tests on each, for scripts/mutate."""

import fcntl
import json
import os
import random
import re
import resource
import signal
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
WORK = ROOT / "build" / "mutate"
TREE = WORK / "tree"
BUILD = WORK / "build"
RESULTS = WORK / "results.json"

# An "and" that became an "or" is a fault whether or not it has its brackets.
FLAGS = "-O1 -Wno-parentheses"
# What tests a folder, and what stands on it, with the fastest first. The last is left to what has passed all before.
SIMULATION = ["sim_run", "--seeds", "40"]
# Window tests run in one process here, which is much faster than a process for each.
WINDOWS = [["lists_tests"], ["pane_tests"], ["shell_tests"]]
# The real program, by keys and mouse, on a screen of its own for each case.
REAL_INPUT = ["real_input_tests", "-j2"]
PROGRAMS = {
    "store": [["store_tests"], ["link_tests"], SIMULATION],
    "link": [["link_tests"], SIMULATION],
    "files": [["files_tests"]],
    "lists": WINDOWS,
    "pane": [*reversed(WINDOWS)],
    "shell": [["shell_tests"], ["pane_tests"]],
    "platform/desktop": [["window_tests"], ["desktop_tests"], ["drawing_tests"], *WINDOWS],
}
# Minutes for each fault, so these are left to the survivors.
AGAIN = {"lists": [REAL_INPUT], "pane": [REAL_INPUT], "shell": [REAL_INPUT], "platform/desktop": [REAL_INPUT]}
# What ctest has to run. Transfers by the menu mostly wait for the line.
CASES = {"real_input_tests": r"^real\.(Input|Elsewhere|Front|SessionTest\.T(yped|itles))"}
# On real threads and a pseudo terminal: the simulation has a line and threads of its own.
REAL_LINE = ["link_thread_tests"]
MORE_PROGRAMS = {"link/SerialPort.cpp": [REAL_LINE], "link/WorkerThread.cpp": [REAL_LINE]}
# The chooser belongs to the desktop; the window tests look at it.
LEFT_OUT = {"files/TitleFileDialog.cpp"}

SWAPS = {
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"], "==": ["!="], "!=": ["=="],
    "&&": ["||"], "||": ["&&"], "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"], "&": ["|"], "|": ["&"],
    "<<": [">>"], ">>": ["<<"], "+=": ["-="], "-=": ["+="], "++": ["--"], "--": ["++"], "true": ["false"],
    "false": ["true"], "!": [""],
}
# The formatting tells a comparison from a template and a product from a pointer.
TOKEN = re.compile(
    r"(?<= )(?:[<>=!]=|&&|\|\||<<|>>|[+-]=|[<>+\-*/%&|])(?=[ \n])|\+\+|--|\b(?:true|false)\b|!(?=[\w(])"
)
NUMBER = re.compile(r"(?<![\w.])(0x[0-9A-Fa-f]+|\d+)(?=[uU]?(?![\w.']))")
CONDITION = re.compile(r"\b(?:if|while) \(")
# A call, an assignment or a jump alone on its line; declarations are none.
STATEMENT = re.compile(
    r"^[ ]+((?!return\b(?!;)|using\b|case\b)(?:\+\+|--)?[A-Za-z_][^\s;(=]*(?: [-+*/%&|]?= [^;{}]*|\([^;{}]*\))?;)$", re.M
)
UNTOUCHED = re.compile(
    r"//[^\n]*|^#[^\n]*|\b(?:static_)?assert\((?:[^;]*)\);|\"(?:\\.|[^\"\\\n])*\"|'(?:\\.|[^'\\\n])+'", re.M
)


def mutations(text):
    """All faults, by line: each a list of (begin, end, replacement)."""
    code = UNTOUCHED.sub(lambda match: re.sub(r"[^\n]", " ", match.group()), text)
    found = []
    for match in TOKEN.finditer(code):
        found += [[(match.start(), match.end(), other)] for other in SWAPS[match.group()]]
    for match in NUMBER.finditer(code):
        value = int(match.group(1), 0)
        form = "0x{:X}" if match.group(1).startswith("0x") else "{}"
        found += [[(match.start(), match.end(), form.format(other))] for other in (value - 1, value + 1) if other >= 0]
    for match in CONDITION.finditer(code):
        depth, end = 1, match.end()
        while depth > 0:
            depth += {"(": 1, ")": -1}.get(code[end], 0)
            end += 1
        if code[match.end() : end - 1] != "true":
            found.append([(match.end(), match.end(), "!("), (end - 1, end - 1, ")")])
    found += [[(match.start(1), match.end(1), "")] for match in STATEMENT.finditer(code)]
    lines = {}
    for edits in found:
        lines.setdefault(text.count("\n", 0, edits[0][0]), []).append(edits)
    return lines


def mutated(text, edits):
    for begin, end, replacement in reversed(edits):
        text = text[:begin] + replacement + text[end:]
    return text


def sources(folders):
    paths = [path for folder in folders for path in sorted((ROOT / folder).glob("**/*.cpp"))]
    return [name for name in (str(path.relative_to(ROOT)) for path in paths) if name not in LEFT_OUT]


def draw(seed, folders):
    """Endless faults, each once: a line first, so that long tables of constants do not push out everything else."""
    lines = []
    for name in sources(folders):
        lines += [(name, edits) for edits in mutations((TREE / name).read_text()).values()]
    numbers = random.Random(seed)
    while lines:
        name, faults = numbers.choice(lines)
        if faults:
            yield name, faults.pop(numbers.randrange(len(faults)))
        else:
            lines = [line for line in lines if line[1]]


def copy_tree():
    """What differs is written, so that the next build is short and a fault of an interrupted run goes."""
    listed = ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"]
    for name in subprocess.check_output(listed, cwd=ROOT, text=True).split("\0"):
        source, target = ROOT / name, TREE / name
        if name and source.is_file() and not (target.is_file() and target.read_bytes() == source.read_bytes()):
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(source.read_bytes())
            target.chmod(source.stat().st_mode)


def build(program):
    log = subprocess.run(["ninja", "-j1", program], cwd=BUILD, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    return log.returncode == 0, log.stdout


def limit_memory():
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_AS, (4 << 30, 4 << 30))


def command(program):
    name, *options = program
    if name in CASES:
        return ["ctest", "--test-dir", str(BUILD), "-R", CASES[name], "--stop-on-failure", *options]
    # The help is looked for beside the folder of the program, so this one stands in a folder of its own.
    folder = "tests/platform/desktop/program/bin" if name == "desktop_tests" else "bin"
    options = ["--gtest_fail_fast", *options] if name.endswith("_tests") else options
    return [str(BUILD / folder / name), *options]


def passes(program, seconds):
    process = subprocess.Popen(
        command(program),
        env=os.environ | {"LANG": "en_US.UTF-8"},
        stdin=subprocess.DEVNULL,
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
        start_new_session=True,
        preexec_fn=limit_memory,
    )
    try:
        return process.wait(timeout=seconds) == 0
    except subprocess.TimeoutExpired:
        return False
    finally:
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()


def folder_of(name):
    return next(folder for folder in PROGRAMS if name.startswith(folder + "/"))


def programs_for(name, again):
    folder = folder_of(name)
    return PROGRAMS[folder] + MORE_PROGRAMS.get(name, []) + (AGAIN.get(folder, []) if again else [])


def prepare(names, again):
    """Gives a time limit for each program, from its time on the true sources."""
    copy_tree()
    subprocess.run(
        ["cmake", "-S", TREE, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug", f"-DCMAKE_CXX_FLAGS_DEBUG={FLAGS}"],
        check=True,
        stdout=subprocess.DEVNULL,
    )
    limits = {}
    for program in sum((programs_for(name, again) for name in names), []):
        if program[0] in limits:
            continue
        built, log = build(program[0])
        begin = time.monotonic()
        if not built or not passes(program, 600):
            sys.exit(f"{log}\n{' '.join(program)} fails without any fault" if built else log)
        limits[program[0]] = 15 + 8 * (time.monotonic() - begin)
        print(f"{' '.join(program)}: at most {limits[program[0]]:.0f} s", file=sys.stderr)
    return limits


def judge(name, edits, limits, again):
    """Who catches the fault: a program, None, or "" for the compiler."""
    path = TREE / name
    path.write_text(mutated((ROOT / name).read_text(), edits))
    for program in programs_for(name, again):
        if not build(program[0])[0]:
            return ""
        if not passes(program, limits[program[0]]):
            return program[0]
    return None


def describe(name, edits):
    text = (ROOT / name).read_text()
    line = text.count("\n", 0, edits[0][0])
    before = text.split("\n")[line].strip()
    after = mutated(text, edits).split("\n")[line].strip() or "(removed)"
    return f"{name}:{line + 1}", before, after


def run(faults, limits, wanted, again):
    """Takes as many as count. Sorted by file, so that mostly one file is compiled for each."""
    judged = []
    last = None
    while len(judged) < wanted:
        batch = [fault for fault, _ in zip(faults, range(wanted - len(judged)))]
        if not batch:
            break
        for name, edits in sorted(batch):
            if last not in (None, name):
                (TREE / last).write_bytes((ROOT / last).read_bytes())
            last = name
            caught = judge(name, edits, limits, again)
            place, before, after = describe(name, edits)
            verdict = "survived" if caught is None else f"caught by {caught}" if caught else "does not compile"
            print(f"{len(judged) + (caught != '')}/{wanted} {place}: {verdict}\n    {before}\n    {after}", file=sys.stderr)
            if caught != "":
                judged.append((name, edits, caught))
    return judged


def report(judged):
    survivors = [(name, edits) for name, edits, caught in judged if caught is None]
    for name, edits in survivors:
        place, before, after = describe(name, edits)
        print(f"{place}\n    before  {before}\n    after   {after}")
    for folder in sorted({folder_of(name) for name, _, _ in judged}):
        own = [caught for name, _, caught in judged if folder_of(name) == folder]
        by = {program: own.count(program) for program in sorted(set(filter(None, own)))}
        print(f"{folder}: {len(own) - own.count(None)} of {len(own)} caught", *(f"{n} by {p}" for p, n in by.items()), sep=", ")
    print(f"all: {len(judged) - len(survivors)} of {len(judged)} caught")
    return survivors


def main():
    WORK.mkdir(parents=True, exist_ok=True)
    lock = (WORK / "lock").open("w")
    try:
        fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except OSError:
        sys.exit("Another run works in build/mutate")
    if sys.argv[1] == "--again":
        last = json.loads(RESULTS.read_text())
        limits = prepare([name for name, _, _ in last], again=True)
        # Where the source has changed the places are no longer the same.
        kept = [(name, edits) for name, edits, text in last if (ROOT / name).read_text() == text]
        report(run(iter(kept), limits, len(kept), again=True))
        return
    folders = sys.argv[3:] or list(PROGRAMS)
    unknown = [folder for folder in folders if folder not in PROGRAMS]
    if unknown:
        sys.exit(f"No tests are known for {' '.join(unknown)}; there are {' '.join(PROGRAMS)}")
    limits = prepare(sources(folders), again=False)
    wanted = int(sys.argv[2])
    survivors = report(run(draw(int(sys.argv[1]), folders), limits, wanted, again=False))
    RESULTS.write_text(json.dumps([(name, edits, (ROOT / name).read_text()) for name, edits in survivors]))


if __name__ == "__main__":
    main()
