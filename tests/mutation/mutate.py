#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Changes one thing in src/ and wire/ at a time and asks whether the fast tests notice.

Works on copies of the tracked files under --work, never in the tree itself. There the driver is one
shared library that the tests load and link, so that a change costs a compilation, a link and the
tests up to the first that fails. A change that no test notices survives: a test is missing, or the
change makes no difference and has a row in docs/testing.md. Ends with 1 when one has none, or when a
row is of a change that is noticed or no longer there.
"""

import argparse
import collections
import concurrent.futures
import filecmp
import hashlib
import json
import os
import queue
import random
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import threading
import time

import explained

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
EXPLANATIONS = os.path.join(ROOT, "docs", "testing.md")

# Kind, pattern, replacement. Blanks around the binary operators keep templates, pointers, references
# and signs apart from them; clang-format sees to the blanks.
OPERATORS = [
    (r"(?<= )==(?= )", "!="),
    (r"(?<= )!=(?= )", "=="),
    (r"(?<= )<(?= )", "<="),
    (r"(?<= )<=(?= )", "<"),
    (r"(?<= )>(?= )", ">="),
    (r"(?<= )>=(?= )", ">"),
    (r"(?<= )&&(?= )", "||"),
    (r"(?<= )\|\|(?= )", "&&"),
    (r"(?<= )\+(?= )", "-"),
    (r"(?<= )-(?= )", "+"),
    (r"(?<= )\*(?= )", "/"),
    (r"(?<= )/(?= )", "*"),
    (r"(?<= )%(?= )", "/"),
    (r"(?<= )&(?= )", "|"),
    (r"(?<= )\|(?= )", "&"),
    (r"(?<= )\^(?= )", "|"),
    (r"(?<= )<<(?= )", ">>"),
    (r"(?<= )>>(?= )", "<<"),
    (r"(?<= )\+=(?= )", "-="),
    (r"(?<= )-=(?= )", "+="),
    (r"\+\+", "--"),
    (r"--(?=\w)", "++"),
    (r"(?<=[ (])!(?=[\w(])", ""),
    (r"\btrue\b", "false"),
    (r"\bfalse\b", "true"),
]
NUMBER = re.compile(r"(?<![\w.])(0x[0-9A-Fa-f]+|\d+)(U?)(?![\w.])")
CONDITION = re.compile(r"^(\s*(?:\} else )?if \()(.*)(\)\s*(?:\{|return.*;|continue;)?\s*)$")
STATEMENT = re.compile(r"^\s*(?:\+\+|--|\*?[\w.:>\[\]()-]+(?:\(.*\)| [-+*/|&^]?= .*));$")
DECLARATION = re.compile(r"^\s*(?:const|constexpr|static|using|return|extern|static_assert|template|"
                         r"friend|struct|class|enum|inline|void|int|bool|unsigned|QString|quint\w+|"
                         r"qint\w+|std::|#)\b|\)\s*(?:const)?;?\s*=\s*(?:delete|default);$")

# `text` and `number` (the how-manieth such line of the file) find a line again after an edit of others.
Mutant = collections.namedtuple("Mutant", "file line column old new kind text number")

# Replaces src/CMakeLists.txt in the copies.
BUILD_OF_SOURCES = """\
file(GLOB_RECURSE sources CONFIGURE_DEPENDS "*.cpp" "../wire/*.cpp")
add_library(korvane_dx4 SHARED ${sources})
target_include_directories(korvane_dx4 PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}" "${PROJECT_SOURCE_DIR}")
target_link_libraries(korvane_dx4 PUBLIC korvane::driver_api)
target_compile_options(korvane_dx4 PRIVATE -fno-builtin-memcpy)
# Unique symbols would keep the library from being unloaded.
target_compile_options(korvane_dx4 PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
target_link_options(korvane_dx4 PRIVATE -Wl,-Bsymbolic)
target_precompile_headers(korvane_dx4 PRIVATE <algorithm> <memory> <vector> <driver_api.h>)
set_target_properties(korvane_dx4 PROPERTIES
  CXX_VISIBILITY_PRESET default
  LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
add_library(korvane_dx4_core INTERFACE)
target_link_libraries(korvane_dx4_core INTERFACE korvane_dx4)
"""


def blank_out(text):
    """The text with comments, string and character literals replaced by '_' of equal length."""
    pattern = re.compile(r"//[^\n]*|/\*.*?\*/|\"(?:\\.|[^\"\\\n])*\"|'(?:\\.|[^'\\\n])'", re.S)
    return pattern.sub(lambda found: re.sub(r"[^\n]", "_", found.group()), text)


def number_of(text):
    is_octal = len(text) > 1 and text.startswith("0") and text.isdigit()
    return int(text, 8) if is_octal else int(text, 0)


def changed_text(text, mutant):
    """The text of the file with the change."""
    lines = text.split("\n")
    line = lines[mutant.line - 1]
    end = mutant.column + len(mutant.old)
    assert line[mutant.column:end] == mutant.old, "the file changed meanwhile; start afresh"
    lines[mutant.line - 1] = line[:mutant.column] + mutant.new + line[end:]
    return "\n".join(lines)


def mutants_of_line(place, line, plain):
    def mutant(column, old, new, kind):
        return Mutant(*place[:2], column, old, new, kind, *place[2:])

    for pattern, new in OPERATORS:
        for found in re.finditer(pattern, plain):
            yield mutant(found.start(), found.group(), new, "operator")
    for found in NUMBER.finditer(plain):
        value = number_of(found.group(1))
        yield mutant(found.start(), found.group(), str(value + 1) + found.group(2), "constant")
        if value > 1:
            yield mutant(found.start(), found.group(), str(value - 1) + found.group(2), "constant")
    found = CONDITION.match(plain)
    if found and found.group(2).count("(") == found.group(2).count(")"):
        old = line[found.start(2):found.end(2)]
        for new in ("true", "false"):
            yield mutant(found.start(2), old, new, "condition")
    if STATEMENT.match(plain) and not DECLARATION.search(plain):
        start = len(line) - len(line.lstrip())
        yield mutant(start, line.strip(), ";", "statement")


def mutants_of(tree, path):
    with open(os.path.join(tree, path), encoding="utf-8") as stream:
        text = stream.read()
    seen = collections.Counter()
    for number, (line, plain) in enumerate(zip(text.split("\n"), blank_out(text).split("\n")), 1):
        seen[line] += 1
        if not plain.startswith("#") and "static_assert" not in plain:
            yield from mutants_of_line((path, number, line.strip(), seen[line]), line, plain)


def tracked_files():
    listed = subprocess.run(["git", "-c", "safe.directory=" + ROOT, "ls-files", "-z"], cwd=ROOT,
                            check=True, stdout=subprocess.PIPE).stdout
    return [name for name in listed.decode().split("\0") if name]


def sources(patterns):
    paths = [name for name in tracked_files()
             if name.startswith(("src/", "wire/")) and name.endswith((".h", ".cpp"))]
    if not patterns:
        return sorted(paths)
    # In the order of the patterns.
    found = [name for pattern in patterns for name in sorted(paths) if pattern in name]
    return list(dict.fromkeys(found))


def copy_tree(target):
    """Copies the tracked files. Sources always get a new time: what was built of them may be a mutant."""
    names = {name for name in tracked_files() if os.path.isfile(os.path.join(ROOT, name))}
    for folder, _, files in os.walk(target):
        for file in files:
            if os.path.relpath(os.path.join(folder, file), target) not in names:
                os.remove(os.path.join(folder, file))
    for name in names - {"src/CMakeLists.txt"}:
        source, copy = os.path.join(ROOT, name), os.path.join(target, name)
        os.makedirs(os.path.dirname(copy), exist_ok=True)
        is_old = os.path.exists(copy) and filecmp.cmp(source, copy, shallow=False)
        if not is_old or name.startswith(("src/", "wire/")):
            shutil.copyfile(source, copy)
            shutil.copymode(source, copy)
    with open(os.path.join(target, "src", "CMakeLists.txt"), "w", encoding="utf-8") as stream:
        stream.write(BUILD_OF_SOURCES)


def hash_of(path):
    with open(path, "rb") as stream:
        return hashlib.sha256(stream.read()).digest()


class TestOrder:
    """Which test program to try first: those that noticed most in this file, then the quickest."""

    def __init__(self):
        self.lock = threading.Lock()
        self.kills = collections.defaultdict(collections.Counter)
        self.seconds = {}

    def sorted(self, tests, file):
        with self.lock:
            here, all_kills = self.kills[file], self.kills[""]

            def rank(test):
                name = os.path.basename(test)
                return (-here[name], -all_kills[name] / (self.seconds[name] + 0.1))
            return sorted(tests, key=rank)

    def note(self, test, file):
        with self.lock:
            for key in (file, ""):
                self.kills[key][os.path.basename(test)] += 1


class Workshop:
    """A copy of the tree with a build directory, for one mutant after the other."""

    def __init__(self, tree, build, order):
        self.tree = tree
        self.build = build
        self.order = order
        launcher = shutil.which("ccache")
        self.run(["cmake", "-G", "Ninja", "-S", self.tree, "-B", self.build,
                  "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -g0",
                  "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON", "-DKORVANE_BUILD_TOOLS=OFF",
                  "-DCMAKE_CXX_COMPILER_LAUNCHER=" + (launcher or "")], 300, must_pass=True)
        self.run(["ninja", "-C", self.build, "-j2"], 7200, must_pass=True)
        self.hashes = self.object_hashes()
        self.tests = list(self.find_tests())
        for test in self.tests:
            started = time.monotonic()
            if not self.passes(test):
                sys.exit(self.output[-2000:] + "\nmutate.py: fails without a change: " + test)
            self.order.seconds[os.path.basename(test)] = time.monotonic() - started

    def find_tests(self):
        for area in ("unit", "api", "property", "model"):
            folder = os.path.join(self.build, "tests", area)
            for name in sorted(os.listdir(folder) if os.path.isdir(folder) else []):
                path = os.path.join(folder, name)
                if name.endswith("_test") and name != "model_test" and os.access(path, os.X_OK):
                    yield path

    def object_hashes(self):
        folder = os.path.join(self.build, "src", "CMakeFiles", "korvane_dx4.dir")
        return {os.path.join(path, name): hash_of(os.path.join(path, name))
                for path, _, names in os.walk(folder) for name in names if name.endswith(".o")}

    @staticmethod
    def limit():
        os.setsid()
        # A change may make a loop or a list endless.
        resource.setrlimit(resource.RLIMIT_AS, (4 << 30, 4 << 30))
        resource.setrlimit(resource.RLIMIT_CPU, (15, 15))

    def run(self, command, seconds, must_pass=False):
        environment = dict(os.environ, KORVANE_OPERATIONS="20000", RC_PARAMS="seed=1")
        with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              env=environment, preexec_fn=None if must_pass else self.limit) as run:
            try:
                output, _ = run.communicate(timeout=seconds)
            except subprocess.TimeoutExpired:
                os.killpg(run.pid, signal.SIGKILL)
                self.output = "too long"
                return False
        self.output = output.decode(errors="replace")
        if must_pass and run.returncode != 0:
            sys.exit(self.output[-4000:])
        return run.returncode == 0

    def passes(self, test):
        usual = self.order.seconds.get(os.path.basename(test), 60)
        return self.run([test, "--gtest_brief=1", "--gtest_fail_fast"], 10 + 20 * usual)

    def first_failure(self):
        found = re.search(r"\[  FAILED  \] (\S+\.\S+)", self.output)
        return found.group(1) if found else self.output.strip().split("\n")[-1][-60:]

    def judge(self, mutant):
        """The outcome and, if 'killed', the test that noticed."""
        path = os.path.join(self.tree, mutant.file)
        with open(path, encoding="utf-8") as stream:
            original = stream.read()
        self.write(path, changed_text(original, mutant))
        self.are_tests_changed = False
        try:
            return self.outcome_of(mutant)
        finally:
            self.write(path, original)
            if self.are_tests_changed:
                self.run(["ninja", "-C", self.build], 3600, must_pass=True)

    @staticmethod
    def write(path, text):
        with open(path, "w", encoding="utf-8") as stream:
            stream.write(text)

    def outcome_of(self, mutant):
        if not self.run(["ninja", "-C", self.build, "korvane_dx4"], 600):
            return "not compiled", ""
        changed = [name for name, digest in self.object_hashes().items()
                   if self.hashes[name] != digest]
        if not changed:
            return "same code", ""
        if self.is_noticed(mutant, self.tests):
            return "killed", self.noticed_by
        if mutant.file.endswith(".h"):
            # Tests that include the header have a copy of what is inline.
            self.are_tests_changed = True
            if not self.run(["ninja", "-C", self.build], 3600):
                return "not compiled", "a test"
            tests = [test for test in self.tests if "/api/" not in test]
            if self.is_noticed(mutant, tests):
                return "killed", self.noticed_by
        return ("same code", "optimised") if self.is_same_optimised(mutant, changed) \
            else ("survived", "")

    def is_noticed(self, mutant, tests):
        for test in self.order.sorted(tests, mutant.file):
            if not self.passes(test):
                self.order.note(test, mutant.file)
                self.noticed_by = os.path.basename(test) + " " + self.first_failure()
                return True
        return False

    def is_same_optimised(self, mutant, objects):
        """Whether an optimising compiler makes the same of both."""
        path = os.path.join(self.tree, mutant.file)
        with open(path, encoding="utf-8") as stream:
            changed = stream.read()
        after = self.optimised(objects)
        lines = changed.split("\n")
        line = lines[mutant.line - 1]
        behind = mutant.column + len(mutant.new)
        lines[mutant.line - 1] = line[:mutant.column] + mutant.old + line[behind:]
        self.write(path, "\n".join(lines))
        before = self.optimised(objects)
        return None not in after and before == after

    def optimised(self, objects):
        with open(os.path.join(self.build, "compile_commands.json"), encoding="utf-8") as stream:
            commands = json.load(stream)
        result = os.path.join(self.build, "optimised.o")
        hashes = []
        for name in objects:
            wanted = os.path.relpath(name, self.build)
            words = next(shlex.split(entry["command"]) for entry in commands
                         if " -o %s " % wanted in entry["command"])
            words[words.index(wanted)] = result
            # Without the precompiled header, which was made with other options.
            words = ["-O2" if word == "-O0" else word for word in words if word != "-Winvalid-pch"]
            hashes.append(hash_of(result) if self.run_in_build(words) else None)
        return hashes

    def run_in_build(self, words):
        return subprocess.run(words, cwd=self.build, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, check=False).returncode == 0


def described(mutant):
    return "%s:%d: %s: %s -> %s" % (mutant.file, mutant.line, mutant.kind, mutant.old,
                                    mutant.new or "(nothing)")


def key_of(mutant):
    """The same before and after an edit of other lines."""
    return (mutant.file, mutant.text, mutant.number, mutant.column, mutant.old, mutant.new)


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--files", nargs="+", metavar="TEXT", help="files whose path has one of these, in this order")
    parser.add_argument("--sample", type=int, metavar="N", help="N changes drawn at random")
    parser.add_argument("--seed", type=int, default=1, help="of the sample (default 1)")
    parser.add_argument("--jobs", type=int, default=1, metavar="N", help="copies of the tree at work")
    parser.add_argument("--resume", action="store_true", help="keep the results of lines that did not change")
    parser.add_argument("--list", action="store_true", help="print the changes and stop")
    parser.add_argument("--tables", action="store_true",
                        help="print the survivors as the tables of docs/testing.md, with what is known of them")
    parser.add_argument("--work", default=os.path.join(ROOT, "build", "mutation"),
                        help="directory for copies and results (default build/mutation)")
    return parser.parse_args()


def read_results(path):
    if not os.path.exists(path):
        return []
    with open(path, encoding="utf-8") as stream:
        return [json.loads(line) for line in stream]


def mutant_of(result):
    return Mutant(*(result[field] for field in Mutant._fields))


def make_workshops(options, number):
    order = TestOrder()
    workshops = queue.Queue()
    for job in range(number):
        tree = os.path.join(options.work, "tree%d" % job)
        if job > 0:
            shutil.rmtree(tree, ignore_errors=True)
            shutil.copytree(os.path.join(options.work, "tree0"), tree, symlinks=True)
        workshops.put(Workshop(tree, os.path.join(options.work, "build%d" % job), order))
    return workshops


def run_all(mutants, options, results_path):
    jobs = min(options.jobs, len(mutants))
    workshops = make_workshops(options, jobs)

    def work(mutant):
        workshop = workshops.get()
        started = time.monotonic()
        try:
            outcome, test = workshop.judge(mutant)
        finally:
            workshops.put(workshop)
        return dict(mutant._asdict(), outcome=outcome, test=test,
                    seconds=round(time.monotonic() - started, 2))

    with concurrent.futures.ThreadPoolExecutor(jobs) as pool, \
            open(results_path, "a", encoding="utf-8") as stream:
        for number, result in enumerate(pool.map(work, mutants), 1):
            stream.write(json.dumps(result) + "\n")
            stream.flush()
            print("%d/%d %s %s %s" % (number, len(mutants), result["outcome"], result["test"],
                                      described(mutant_of(result))), flush=True)


def print_summary(results, keys, options):
    """True when each survivor is explained, and nothing else is."""
    counts = collections.Counter(result["outcome"] for result in results)
    print("\n" + ", ".join("%d %s" % (count, name) for name, count in sorted(counts.items())))
    reasons = explained.read(EXPLANATIONS)
    judged = {mutant_of(result): result["outcome"] for result in results}
    survivors = [mutant for mutant in sorted(judged) if judged[mutant] == "survived"]
    if options.tables:
        print(explained.tables([keys[mutant] for mutant in survivors], reasons))
    unknown = [mutant for mutant in survivors if keys[mutant] not in reasons]
    for mutant in unknown:
        print("not explained: " + described(mutant))
    files = {os.path.basename(path) for path in sources(options.files)}
    alive = {keys[mutant] for mutant in survivors}
    alive |= {key for mutant, key in keys.items() if mutant not in judged}
    stale = [key for key in reasons
             if key not in alive and (key[0] in files or not options.files)]
    for key in stale:
        print("explained, but noticed or no longer there: %s: %s: %s" % key)
    return not unknown and not stale


def main():
    options = parse_arguments()
    tree = os.path.join(options.work, "tree0")
    os.makedirs(options.work, exist_ok=True)
    copy_tree(tree)
    mutants = [mutant for path in sources(options.files) for mutant in mutants_of(tree, path)]
    keys = explained.named(mutants)
    if options.sample and options.sample < len(mutants):
        chosen = random.Random(options.seed).sample(range(len(mutants)), options.sample)
        mutants = [mutants[index] for index in sorted(chosen)]
    if options.list:
        print("\n".join(described(mutant) for mutant in mutants))
        return 0
    results_path = os.path.join(options.work, "results.jsonl")
    wanted = {key_of(mutant): mutant for mutant in mutants}
    done = [result for result in read_results(results_path)
            if options.resume and key_of(mutant_of(result)) in wanted]
    for result in done:
        result["line"] = wanted[key_of(mutant_of(result))].line
    with open(results_path, "w", encoding="utf-8") as stream:
        stream.writelines(json.dumps(result) + "\n" for result in done)
    known = {key_of(mutant_of(result)) for result in done}
    left = [mutant for mutant in mutants if key_of(mutant) not in known]
    if left:
        run_all(left, options, results_path)
    return 0 if print_summary(read_results(results_path), keys, options) else 1


if __name__ == "__main__":
    sys.exit(main())
