#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Changes one thing in src/ at a time and asks whether the fast tests notice.

Works on copies of the tracked files under --work, never in the tree itself. A change that no test
notices survives: a test is missing, or the change makes no difference and is explained in
docs/testing.md.
"""

import argparse
import collections
import concurrent.futures
import json
import os
import queue
import random
import re
import resource
import shutil
import signal
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))

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

Mutant = collections.namedtuple("Mutant", "file line column old new kind")


def blank_out(text):
    """The text with comments, string and character literals replaced by '_' of equal length."""
    pattern = re.compile(r"//[^\n]*|/\*.*?\*/|\"(?:\\.|[^\"\\\n])*\"|'(?:\\.|[^'\\\n])'", re.S)
    return pattern.sub(lambda found: re.sub(r"[^\n]", "_", found.group()), text)


def mutants_of_line(path, number, line, plain):
    for pattern, new in OPERATORS:
        for found in re.finditer(pattern, plain):
            yield Mutant(path, number, found.start(), found.group(), new, "operator")
    for found in NUMBER.finditer(plain):
        value = int(found.group(1), 0)
        yield Mutant(path, number, found.start(), found.group(), str(value + 1) + found.group(2),
                     "constant")
        if value > 1:
            yield Mutant(path, number, found.start(), found.group(),
                         str(value - 1) + found.group(2), "constant")
    found = CONDITION.match(plain)
    if found and found.group(2).count("(") == found.group(2).count(")"):
        old = line[found.start(2):found.end(2)]
        for new in ("true", "false"):
            yield Mutant(path, number, found.start(2), old, new, "condition")
    if STATEMENT.match(plain) and not DECLARATION.search(plain):
        start = len(line) - len(line.lstrip())
        yield Mutant(path, number, start, line.strip(), ";", "statement")


def mutants_of(path):
    with open(os.path.join(ROOT, path), encoding="utf-8") as stream:
        text = stream.read()
    lines = text.split("\n")
    for number, (line, plain) in enumerate(zip(lines, blank_out(text).split("\n")), 1):
        if not plain.startswith("#") and "static_assert" not in plain:
            yield from mutants_of_line(path, number, line, plain)


def tracked_files():
    listed = subprocess.run(["git", "-c", "safe.directory=" + ROOT, "ls-files", "-z"], cwd=ROOT,
                            check=True, stdout=subprocess.PIPE).stdout
    return [name for name in listed.decode().split("\0") if name]


def all_mutants(patterns):
    paths = [name for name in tracked_files()
             if name.startswith("src/") and name.endswith((".h", ".cpp"))]
    if patterns:
        paths = [name for name in paths if any(pattern in name for pattern in patterns)]
    return [mutant for path in sorted(paths) for mutant in mutants_of(path)]


class Workshop:
    """A copy of the tree with a build directory, for one mutant after the other."""

    def __init__(self, directory):
        self.tree = os.path.join(directory, "tree")
        self.build = os.path.join(directory, "build")
        shutil.rmtree(self.tree, ignore_errors=True)
        for name in tracked_files():
            if os.path.isfile(os.path.join(ROOT, name)):
                os.makedirs(os.path.dirname(os.path.join(self.tree, name)), exist_ok=True)
                shutil.copy2(os.path.join(ROOT, name), os.path.join(self.tree, name))
        self.run(["cmake", "-G", "Ninja", "-S", self.tree, "-B", self.build,
                  "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O1",
                  "-DKORVANE_BUILD_TOOLS=OFF"], 300, must_pass=True)
        self.run(["ninja", "-C", self.build], 3600, must_pass=True)
        self.tests = list(self.find_tests())
        for test in self.tests:
            if not self.passes(test):
                sys.exit("mutate.py: fails without a change: " + test)

    def find_tests(self):
        for area in ("unit", "api", "property", "model"):
            folder = os.path.join(self.build, "tests", area)
            for name in sorted(os.listdir(folder) if os.path.isdir(folder) else []):
                path = os.path.join(folder, name)
                if name.endswith("_test") and name != "model_test" and os.access(path, os.X_OK):
                    yield path

    @staticmethod
    def limit():
        os.setsid()
        four_gigabytes = 4 << 30  # a change may make a loop or a list endless
        resource.setrlimit(resource.RLIMIT_AS, (four_gigabytes, four_gigabytes))

    def run(self, command, seconds, must_pass=False):
        environment = dict(os.environ, KORVANE_OPERATIONS="20000", RC_PARAMS="seed=1")
        with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              env=environment, preexec_fn=None if must_pass else self.limit) as run:
            try:
                output, _ = run.communicate(timeout=seconds)
            except subprocess.TimeoutExpired:
                os.killpg(run.pid, signal.SIGKILL)
                return False
        if must_pass and run.returncode != 0:
            sys.exit(output.decode(errors="replace")[-4000:])
        return run.returncode == 0

    def passes(self, test):
        return self.run([test, "--gtest_brief=1", "--gtest_fail_fast"], 120)

    def judge(self, mutant):
        """'survived', 'not compiled', or 'killed' with the test that noticed."""
        path = os.path.join(self.tree, mutant.file)
        with open(path, encoding="utf-8") as stream:
            original = stream.read()
        lines = original.split("\n")
        line = lines[mutant.line - 1]
        end = mutant.column + len(mutant.old)
        assert line[mutant.column:end] == mutant.old, "the tree changed; start afresh"
        lines[mutant.line - 1] = line[:mutant.column] + mutant.new + line[end:]
        with open(path, "w", encoding="utf-8") as stream:
            stream.write("\n".join(lines))
        try:
            if not self.run(["ninja", "-C", self.build], 600):
                return "not compiled", ""
            for test in self.tests:
                if not self.passes(test):
                    return "killed", os.path.basename(test)
            return "survived", ""
        finally:
            with open(path, "w", encoding="utf-8") as stream:
                stream.write(original)


def described(mutant):
    return "%s:%d: %s: %s -> %s" % (mutant.file, mutant.line, mutant.kind, mutant.old,
                                    mutant.new or "(nothing)")


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--files", nargs="+", metavar="TEXT", help="files whose path has one of these")
    parser.add_argument("--sample", type=int, metavar="N", help="N changes drawn at random")
    parser.add_argument("--seed", type=int, default=1, help="of the sample (default 1)")
    parser.add_argument("--jobs", type=int, default=1, metavar="N", help="copies of the tree at work")
    parser.add_argument("--resume", action="store_true", help="keep the results there are")
    parser.add_argument("--list", action="store_true", help="print the changes and stop")
    parser.add_argument("--work", default=os.path.join(ROOT, "build", "mutation"),
                        help="directory for copies and results (default build/mutation)")
    return parser.parse_args()


def read_results(path):
    if not os.path.exists(path):
        return []
    with open(path, encoding="utf-8") as stream:
        return [json.loads(line) for line in stream]


def run_all(mutants, options, results_path):
    workshops = queue.Queue()
    for job in range(min(options.jobs, max(1, len(mutants)))):
        workshops.put(Workshop(os.path.join(options.work, "job%d" % job)))

    def work(mutant):
        workshop = workshops.get()
        try:
            outcome, test = workshop.judge(mutant)
        finally:
            workshops.put(workshop)
        return dict(mutant._asdict(), outcome=outcome, test=test)

    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool, \
            open(results_path, "a", encoding="utf-8") as stream:
        for number, result in enumerate(pool.map(work, mutants), 1):
            stream.write(json.dumps(result) + "\n")
            stream.flush()
            mutant = Mutant(*(result[field] for field in Mutant._fields))
            print("%d/%d %s %s %s" % (number, len(mutants), result["outcome"], result["test"],
                                      described(mutant)), flush=True)


def main():
    options = parse_arguments()
    mutants = all_mutants(options.files)
    if options.sample and options.sample < len(mutants):
        mutants = sorted(random.Random(options.seed).sample(mutants, options.sample))
    if options.list:
        print("\n".join(described(mutant) for mutant in mutants))
        return 0
    os.makedirs(options.work, exist_ok=True)
    results_path = os.path.join(options.work, "results.jsonl")
    if not options.resume and os.path.exists(results_path):
        os.remove(results_path)
    done = {tuple(result[field] for field in Mutant._fields)
            for result in read_results(results_path)}
    run_all([mutant for mutant in mutants if tuple(mutant) not in done], options, results_path)
    results = read_results(results_path)
    counts = collections.Counter(result["outcome"] for result in results)
    print("\n" + ", ".join("%d %s" % (count, name) for name, count in sorted(counts.items())))
    for result in results:
        if result["outcome"] == "survived":
            print(described(Mutant(*(result[field] for field in Mutant._fields))))
    return 0


if __name__ == "__main__":
    sys.exit(main())
