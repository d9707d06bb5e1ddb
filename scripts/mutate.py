#!/usr/bin/env python3
"""Mutation testing: how many small faults in the library does the test suite catch?

Each mutant is one small change to one source file: a comparison flipped, a boundary moved, `&&`
and `||` swapped, an integer constant off by one, a call statement deleted, or one letter of a
string literal changed. For each, the file is changed in place, the build tree is rebuilt
incrementally, `ctest` runs (a test that hangs past the timeout kills the mutant; a failure counts
only when the failed tests fail again on their own), and the file is restored. A mutant that does
not compile is not counted.

Results go one line per mutant, tab-separated:
    FILE:LINE  CHANGE  killed|survived|no-compile  FAILING-TESTS  LINE-TEXT
and a score at the end: killed / (killed + survived). Mutants listed in
tests/equivalent_mutants.txt (FILE<TAB>LINE-TEXT<TAB>CHANGE<TAB>why; keyed by the line's text, not
its number) are skipped. --resume skips mutants already in a results file, so a sweep can span
sessions.

Examples:
    scripts/mutate.py kavo/push/common --sample all --out mutation/common.tsv
    scripts/mutate.py kavo/push --seed 7 --sample 200 --out sample.tsv
    scripts/mutate.py kavo/push/json --sample all --resume mutation/json.tsv
    scripts/mutate.py --score mutation/json.tsv
"""

import argparse
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
EQUIVALENTS = os.path.join(ROOT, "tests", "equivalent_mutants.txt")
DEFAULT_BUILD = os.path.join(ROOT, "build", "mutate")
CONFIGURE = ["-DCMAKE_LINK_DEPENDS_NO_SHARED=ON", "-DKAVO_BUILD_BENCH=OFF", "-DKAVO_WERROR=OFF"]

COMPARISON_FLIP = {"<": ">", ">": "<", "<=": ">=", ">=": "<=", "==": "!=", "!=": "=="}
BOUNDARY = {"<": "<=", ">": ">=", "<=": "<", ">=": ">"}
LOGICAL = {"&&": "||", "||": "&&"}
# A binary operator with a space on each side, as the formatter writes it: template brackets,
# shifts, arrows and rvalue references never match.
BINARY_OP = re.compile(r"(?<= )(<=|>=|==|!=|<|>|&&|\|\|)(?= )")
INTEGER = re.compile(r"(?<![\w.'])(0[xX][0-9a-fA-F]+|\d+)([uUlL]*)(?![\w.'])")
CALL_START = re.compile(r"(?:[A-Za-z_]\w*\s*(?:::|\.|->)\s*)*[A-Za-z_]\w*\s*\(")
NOT_CALLS = {"if", "for", "while", "switch", "return", "sizeof", "catch", "throw", "static_assert",
             "case", "else", "do", "new", "delete", "decltype", "alignof", "typeid", "defined"}
# A printf conversion or a log privacy marker: never a letter to change.
FORMAT_SPEC = re.compile(r"%(?:\{(?:public|private)\})?[-+ #0]*\d*(?:\.\d+)?(?:hh|h|ll|l|z|j|t|L)?[diouxXeEfgGcspn%]")


class Mutant:
    def __init__(self, path, line, text, change, start, end, replacement, kind):
        self.path, self.line, self.text, self.change = path, line, text, change
        self.start, self.end, self.replacement, self.kind = start, end, replacement, kind

    def key(self):
        return (self.path, self.text, self.change)

    def apply(self, source):
        return source[:self.start] + self.replacement + source[self.end:]


def mask(source):
    """The source with comments, preprocessor lines and the insides of literals blanked out (same
    length, newlines kept), and the spans of the string literals' contents."""
    out = list(source)
    strings = []
    i, n = 0, len(source)
    line_start = True
    while i < n:
        c = source[i]
        if line_start and c == "#":
            # A preprocessor line, with its continuations.
            while i < n and not (source[i] == "\n" and source[i - 1] != "\\"):
                out[i] = " "
                i += 1
            continue
        if c == "\n":
            line_start = True
            i += 1
            continue
        if not c.isspace():
            line_start = False
        if source.startswith("//", i):
            while i < n and source[i] != "\n":
                out[i] = " "
                i += 1
        elif source.startswith("/*", i):
            end = source.find("*/", i + 2)
            end = n if end < 0 else end + 2
            for j in range(i, end):
                if out[j] != "\n":
                    out[j] = " "
            i = end
        elif c == "R" and source.startswith('R"', i) and (i == 0 or not (source[i - 1].isalnum() or source[i - 1] == "_")):
            delim = source[i + 2:source.find("(", i + 2)]
            end = source.find(")" + delim + '"', i)
            end = n if end < 0 else end + len(delim) + 2
            for j in range(i, end):
                if out[j] != "\n":
                    out[j] = " "
            i = end
        elif c in "\"'":
            j = i + 1
            while j < n and source[j] != c and source[j] != "\n":
                j += 2 if source[j] == "\\" else 1
            if c == '"':
                strings.append((i + 1, j))
            for k in range(i + 1, min(j, n)):
                out[k] = " "
            i = j + 1
        else:
            i += 1
    return "".join(out), strings


def statement_end(masked, pos):
    """The end (after the ';') of the call statement starting at pos, or None if the statement is
    not a plain call (an assignment, a declaration, an expression using the result)."""
    n = len(masked)
    i = pos
    while True:
        m = CALL_START.match(masked, i)
        if not m:
            return None
        i = m.end()
        depth = 1
        while i < n and depth:
            if masked[i] == "(":
                depth += 1
            elif masked[i] == ")":
                depth -= 1
            i += 1
        while i < n and masked[i].isspace():
            i += 1
        if masked.startswith(";", i):
            return i + 1
        if masked.startswith(".", i):
            i += 1
        elif masked.startswith("->", i):
            i += 2
        else:
            return None


def letter_change(text):
    """The first letter of a literal outside conversions and privacy markers, and its successor."""
    i = 0
    while i < len(text):
        m = FORMAT_SPEC.match(text, i)
        if m:
            i = m.end()
        elif text[i] == "\\":
            i += 2
        elif text[i].isascii() and text[i].isalpha():
            c = text[i]
            new = "a" if c == "z" else "A" if c == "Z" else chr(ord(c) + 1)
            return i, new
        else:
            i += 1
    return None


def occurrence(seen, name):
    seen[name] = seen.get(name, 0) + 1
    return name if seen[name] == 1 else "%s [%d]" % (name, seen[name])


def generate(path, source):
    masked, strings = mask(source)
    starts = [0]
    for m in re.finditer("\n", source):
        starts.append(m.end())
    mutants = []
    previous = ""
    for number, begin in enumerate(starts, 1):
        end = source.find("\n", begin)
        end = len(source) if end < 0 else end
        code = masked[begin:end]
        if not code.strip():
            continue
        text = source[begin:end].strip()
        seen = {}

        def add(change, start, stop, replacement, kind):
            mutants.append(Mutant(path, number, text, occurrence(seen, change), start, stop, replacement, kind))

        for m in BINARY_OP.finditer(code):
            op = m.group(1)
            at = begin + m.start(1)
            if op in LOGICAL:
                add("%s to %s" % (op, LOGICAL[op]), at, at + len(op), LOGICAL[op], "logical")
                continue
            add("%s to %s" % (op, COMPARISON_FLIP[op]), at, at + len(op), COMPARISON_FLIP[op], "comparison")
            if op in BOUNDARY:
                add("%s to %s" % (op, BOUNDARY[op]), at, at + len(op), BOUNDARY[op], "boundary")
        for m in INTEGER.finditer(code):
            digits = m.group(1)
            value = int(digits, 0) if not (len(digits) > 1 and digits[0] == "0" and digits[1].isdigit()) else int(digits, 8)
            new = hex(value + 1) if digits[:2].lower() == "0x" else str(value + 1)
            at = begin + m.start(1)
            add("%s to %s" % (digits, new), at, at + len(digits), new, "constant")
        stripped = code.lstrip()
        first = re.match(r"[A-Za-z_]\w*", stripped)
        if (first and first.group(0) not in NOT_CALLS and (previous.endswith((";", "{", "}", ":", ")")) or previous == "else")
                and not previous.endswith("::")):
            at = begin + len(code) - len(stripped)
            stop = statement_end(masked, at)
            if stop is not None:
                add("call deleted", at, stop, "{}" + "\n" * source.count("\n", at, stop), "call")
        for lo, hi in strings:
            if begin <= lo <= end:
                literal = source[lo:hi]
                found = letter_change(literal)
                if found:
                    k, new = found
                    changed = literal[:k] + new + literal[k + 1:]
                    add('"%s" to "%s"' % (literal, changed), lo + k, lo + k + 1, new, "text")
        previous = code.strip()
    # A line whose text repeats in the file keys its mutants by which occurrence it is.
    keys = {}
    for m in mutants:
        keys[(m.text, m.change)] = keys.get((m.text, m.change), 0) + 1
        if keys[(m.text, m.change)] > 1:
            m.change += " #%d" % keys[(m.text, m.change)]
    return mutants


def source_files(targets):
    files = []
    for target in targets:
        full = os.path.join(ROOT, target) if not os.path.isabs(target) else target
        if os.path.isdir(full):
            for folder, _, names in os.walk(full):
                files += [os.path.join(folder, name) for name in names if name.endswith(".cpp")]
        elif os.path.isfile(full):
            files.append(full)
        else:
            sys.exit("mutate: no such file or folder: %s" % target)
    return sorted({os.path.relpath(f, ROOT) for f in files})


def read_equivalents():
    keys = {}
    if os.path.exists(EQUIVALENTS):
        with open(EQUIVALENTS, encoding="utf-8") as f:
            for row in f:
                fields = row.rstrip("\n").split("\t")
                if row.startswith("#") or len(fields) < 4:
                    continue
                keys[tuple(fields[:3])] = fields[3]
    return keys


def read_results(path):
    results = {}
    if path and os.path.exists(path):
        with open(path, encoding="utf-8") as f:
            for row in f:
                fields = row.rstrip("\n").split("\t")
                if row.startswith("#") or len(fields) < 5:
                    continue
                # A mutant run again (--recheck) counts by its last line.
                results[(fields[0].rsplit(":", 1)[0], fields[4], fields[1])] = fields[2]
    return results


class Workspace:
    """The one file being mutated: backed up before it changes, restored after, whatever stops
    the run. A backup left by a run that was killed outright is restored at the next start."""

    def __init__(self, build):
        self.folder = os.path.join(build, "mutate-backup")
        self.current = None
        self.child = None

    def recover(self):
        record = os.path.join(self.folder, "path")
        if os.path.exists(record):
            with open(record) as f:
                path = f.read()
            shutil.copyfile(os.path.join(self.folder, "original"), os.path.join(ROOT, path))
            print("mutate: restored %s from an interrupted run" % path, file=sys.stderr)
            shutil.rmtree(self.folder)

    def change(self, path, original, mutated):
        os.makedirs(self.folder, exist_ok=True)
        with open(os.path.join(self.folder, "original"), "w", encoding="utf-8") as f:
            f.write(original)
        with open(os.path.join(self.folder, "path"), "w") as f:
            f.write(path)
        self.current = (path, original)
        with open(os.path.join(ROOT, path), "w", encoding="utf-8") as f:
            f.write(mutated)

    def restore(self):
        if self.current:
            path, original = self.current
            with open(os.path.join(ROOT, path), "w", encoding="utf-8") as f:
                f.write(original)
            self.current = None
        if os.path.isdir(self.folder):
            shutil.rmtree(self.folder)

    def run(self, command, timeout=None):
        self.child = subprocess.Popen(command, cwd=ROOT, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                      text=True, errors="replace")
        try:
            output, _ = self.child.communicate(timeout=timeout)
        except subprocess.TimeoutExpired:
            self.child.kill()
            output, _ = self.child.communicate()
            return 124, output
        finally:
            code, self.child = self.child.returncode, None
        return code, output

    def interrupt(self, signum, _frame):
        if self.child:
            self.child.terminate()
            try:
                self.child.wait(10)
            except subprocess.TimeoutExpired:
                self.child.kill()
        self.restore()
        print("mutate: interrupted; the source tree is restored", file=sys.stderr)
        sys.exit(128 + signum)


def failed_tests(output):
    found = re.findall(r"^\s*\d+ - (\S+) \((\w+)", output, re.M)
    names = [name + (" (timeout)" if kind == "Timeout" else "") for name, kind in found]
    return names or ["ctest"]


def run_tests(workspace, ctest):
    """The failing tests, or None when all pass. A failure counts only when the failed tests fail
    again on their own: a machine paused or loaded past a timeout is not a kill."""
    for _ in range(2):
        code, output = workspace.run(ctest)
        if code == 0:
            return None
        tests = failed_tests(output)
        code, _ = workspace.run(ctest + ["--rerun-failed"])
        if code:
            return tests
    return tests


def score(statuses):
    killed = statuses.count("killed")
    compiled = killed + statuses.count("survived")
    return 100.0 * killed / compiled if compiled else 100.0


def score_line(statuses, equivalent):
    counts = {s: sum(1 for v in statuses if v == s) for s in ("killed", "survived", "no-compile")}
    compiled = counts["killed"] + counts["survived"]
    percent = 100.0 * counts["killed"] / compiled if compiled else 0.0
    return ("mutants %d (equivalent, skipped %d), no-compile %d, compiled %d, killed %d, survived %d: score %.1f%%"
            % (len(statuses) + equivalent, equivalent, counts["no-compile"], compiled, counts["killed"],
               counts["survived"], percent))


def report(results_path):
    equivalents = read_equivalents()
    results = read_results(results_path)
    listed = [k for k in results if k in equivalents]
    results = {k: v for k, v in results.items() if k not in equivalents}
    print(score_line(list(results.values()), len(listed)))
    plain = [v for k, v in results.items() if not k[2].startswith('"')]
    print("without text changes: " + score_line(plain, len([k for k in listed if not k[2].startswith('"')])))


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0],
                                     epilog=__doc__.split("\n\n", 1)[1], formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("targets", nargs="*", help="source files or folders to mutate (their *.cpp)")
    parser.add_argument("--seed", type=int, default=1, help="seed of the random sample (default 1)")
    parser.add_argument("--sample", default="all", help="how many mutants to draw at random, or 'all' (default)")
    parser.add_argument("--same-as", metavar="RESULTS", help="only the mutants of an earlier results file (a sample run again after new tests)")
    parser.add_argument("--grep", metavar="REGEX", help="only mutants whose FILE:LINE<TAB>CHANGE<TAB>LINE-TEXT matches")
    parser.add_argument("--out", help="append results to this file (default: standard output only)")
    parser.add_argument("--resume", metavar="RESULTS", help="skip mutants already in RESULTS; results append to it unless --out")
    parser.add_argument("--recheck", action="store_true", help="with --resume, run the survivors in RESULTS again (after new tests)")
    parser.add_argument("--build", default=DEFAULT_BUILD,
                        help="build tree (default build/mutate, configured on first use with %s)" % " ".join(CONFIGURE))
    parser.add_argument("--jobs", type=int, default=2, help="build and ctest parallel jobs (default 2)")
    parser.add_argument("--timeout", type=int, default=60, help="seconds a single test may run before it counts as killing (default 60)")
    parser.add_argument("--all-tests", action="store_true", help="run every test on each mutant, listing all that fail (default: stop at the first failure)")
    parser.add_argument("--no-baseline", action="store_true", help="skip the check that the unchanged code passes the tests")
    parser.add_argument("--min-score", type=float, metavar="PERCENT", help="exit 1 when the score is below PERCENT")
    parser.add_argument("--list", action="store_true", help="only list the mutants that would run")
    parser.add_argument("--score", metavar="RESULTS", help="only print the score of a results file")
    args = parser.parse_args()

    if args.score:
        report(args.score)
        return 0
    if not args.targets:
        parser.error("give the files or folders to mutate")
    out_path = args.out or args.resume
    done = read_results(args.resume)
    if args.recheck:
        done = {key: status for key, status in done.items() if status != "survived"}
    equivalents = read_equivalents()

    mutants = []
    for path in source_files(args.targets):
        with open(os.path.join(ROOT, path), encoding="utf-8") as f:
            mutants += generate(path, f.read())
    if args.grep:
        mutants = [m for m in mutants if re.search(args.grep, "%s:%d\t%s\t%s" % (m.path, m.line, m.change, m.text))]
    generated = len(mutants)
    # Drawn before the equivalents are left out, so a sample stays the same as the list grows.
    if args.sample != "all":
        chosen = random.Random(args.seed).sample(range(len(mutants)), min(int(args.sample), len(mutants)))
        mutants = [mutants[i] for i in sorted(chosen)]
    if args.same_as:
        again = read_results(args.same_as)
        mutants = [m for m in mutants if m.key() in again]
    skipped = [m for m in mutants if m.key() in equivalents]
    mutants = [m for m in mutants if m.key() not in equivalents]
    todo = [m for m in mutants if m.key() not in done]
    print("mutate: %d mutants generated, %d selected, %d of them listed as equivalent, %d to run"
          % (generated, len(mutants) + len(skipped), len(skipped), len(todo)), file=sys.stderr)
    if args.list:
        for m in todo:
            print("%s:%d\t%s\t%s" % (m.path, m.line, m.change, m.text))
        return 0

    workspace = Workspace(args.build)
    for signum in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(signum, workspace.interrupt)
    if os.path.isdir(args.build):
        workspace.recover()
        with open(os.path.join(args.build, "CMakeCache.txt"), encoding="utf-8") as f:
            linked = re.search(r"^CMAKE_LINK_DEPENDS_NO_SHARED:\w+=ON$", f.read(), re.M)
        if not linked:
            # A tree the test command built: without this, every mutant relinks every program.
            workspace.run(["cmake", "-B", args.build, CONFIGURE[0]])
    else:
        code, output = workspace.run(["cmake", "--preset", "default", "-B", args.build] + CONFIGURE)
        if code:
            sys.exit("mutate: configuring %s failed:\n%s" % (args.build, output))
    build = ["cmake", "--build", args.build, "-j", str(args.jobs)]
    ctest = ["ctest", "--test-dir", args.build, "-j", str(args.jobs), "--timeout", str(args.timeout)]
    if not args.all_tests:
        ctest.append("--stop-on-failure")
    code, output = workspace.run(build)
    if code:
        sys.exit("mutate: the unchanged tree does not build:\n%s" % output[-4000:])
    if not args.no_baseline:
        failed = run_tests(workspace, ctest)
        if failed:
            sys.exit("mutate: the unchanged tree fails its tests: %s" % " ".join(failed))

    out = open(out_path, "a", encoding="utf-8") if out_path else None
    statuses = [done[m.key()] for m in mutants if m.key() in done]
    sources = {}
    try:
        for index, m in enumerate(todo, 1):
            if m.path not in sources:
                with open(os.path.join(ROOT, m.path), encoding="utf-8") as f:
                    sources[m.path] = f.read()
            original = sources[m.path]
            started = time.time()
            workspace.change(m.path, original, m.apply(original))
            code, output = workspace.run(build)
            tests = "-"
            if code:
                status = "no-compile"
            else:
                failed = run_tests(workspace, ctest)
                status = "killed" if failed else "survived"
                if failed:
                    tests = ",".join(failed)
            workspace.restore()
            statuses.append(status)
            row = "%s:%d\t%s\t%s\t%s\t%s" % (m.path, m.line, m.change, status, tests, m.text)
            print("[%d/%d %.0fs] %s" % (index, len(todo), time.time() - started, row), file=sys.stderr)
            if out:
                out.write(row + "\n")
                out.flush()
            else:
                print(row)
    finally:
        workspace.restore()
        if out:
            out.close()
    # The build tree follows the restored sources again.
    workspace.run(build)
    print(score_line(statuses, len(skipped)))
    return 1 if args.min_score is not None and score(statuses) < args.min_score else 0


if __name__ == "__main__":
    sys.exit(main())
