#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Changes one thing in host/, journal/, simulator/ or capture/ at a time and asks whether the tests notice.

Works beside a finished build: a changed file is compiled as that build compiles it, and the test
programs are linked anew with the changed object before the library. Neither the tree nor the build is
touched. The programs that see a file are those whose link takes it out of the library; of their tests
those are played that enter the changed function. Tests that noticed a change of the same file come
first, those that take long come last. Ends with 1 when a
change survives that explained_TREE.txt does not explain, or when a line there is no longer in its file.
"""

import argparse
import collections
import concurrent.futures
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
import tempfile
import threading
import time

import explained
import mutate
import visits

ROOT = mutate.ROOT
HERE = os.path.dirname(os.path.abspath(__file__))
SLOW = 0.2  # seconds; a test that takes longer is played when the quick ones noticed nothing
LONG = 30  # seconds; a program whose quick tests take longer is left out where tests are left out

Tree = collections.namedtuple("Tree", "library programs")
TREES = {
    "host": Tree("host/libkorvane_host.a",
                 ("host/korvane_runtime_test", "host/korvane_host_test", "host/korvane_config_test",
                  "guard/korvane_guard_test", "faults/korvane_fault_test",
                  "host/korvane_stop_signal_test", "service/korvane_service_test",
                  "service/korvane_event_loop_test")),
    "simulator": Tree("simulator/libkorvane_simulator.a",
                      tuple("simulator/simulator_%s_test" % name for name in
                            ("slave", "drive", "cable", "fault", "fault_file", "register_map",
                             "framer", "text", "commands", "start_values", "station_list", "port"))
                      + ("faults/korvane_fault_test",)),
    "journal": Tree("journal/libkorvane_journal.a", ("journal/korvane_journal_test",)),
    "capture": Tree("capture/libkorvane_capture.a", ("host/korvane_host_test",)),
}
# Random runs play enough to notice what a quick test does not, not the usual number.
SHORT_RUNS = {"KORVANE_GUARD_STEPS": "20000", "KORVANE_PLAN_ROUNDS": "100"}


def limit():
    os.setsid()
    # A change may make a loop or a list endless.
    resource.setrlimit(resource.RLIMIT_AS, (4 << 30, 4 << 30))


def play(command, folder, seconds, **environment):
    """Whether the command ends well in time, and what it said."""
    with subprocess.Popen(command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          stdin=subprocess.DEVNULL, env=dict(os.environ, TMPDIR=folder, **SHORT_RUNS, **environment),
                          preexec_fn=limit) as run:
        try:
            output, _ = run.communicate(timeout=seconds)
        except subprocess.TimeoutExpired:
            os.killpg(run.pid, signal.SIGKILL)
            run.communicate()
            return False, "too long"
    told = output.decode(errors="replace")
    return run.returncode == 0, told + ("\nsignal %d" % -run.returncode if run.returncode < 0 else "")


class Program:
    """A test program of the build: how it is linked, which files of the library it sees, its tests."""

    def __init__(self, build, name, library):
        self.build = build
        self.name = os.path.basename(name)
        self.target = os.path.join("tests", name)
        self.library = library
        commands = subprocess.run(["ninja", "-t", "commands", self.target], cwd=build, check=True,
                                  stdout=subprocess.PIPE, text=True).stdout.split("\n")
        # Behind the link the list of tests is written; that is left out.
        parts = [part for line in commands for part in line.split(" && ")]
        self.words = shlex.split(next(part for part in parts if " -o %s " % self.target in part))
        self.quick, self.slow, self.seconds = [], [], {}
        self.visits = visits.Visits()
        self.sees = self.files_seen()

    def files_seen(self):
        """Names of the library's sources whose objects the linker takes."""
        with tempfile.TemporaryDirectory() as folder:
            words = self.link_words(os.path.join(folder, self.name), [])
            done = subprocess.run(words + ["-Wl,--trace,--trace"], cwd=self.build, check=True,
                                  stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        return set(re.findall(re.escape(os.path.basename(self.library)) + r"\W+([\w.]+)\.o\b",
                              done.stdout))

    def link_words(self, output, objects):
        words = list(self.words)
        words[words.index(self.target)] = output
        place = words.index(self.library)
        words[place:place] = objects
        return words

    def link(self, output, objects):
        words = self.link_words(output, objects) + ["-fuse-ld=mold"]
        done = subprocess.run(words, cwd=self.build, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False)
        if done.returncode != 0:
            sys.exit(done.stdout[-2000:] + "\nlinked.py: cannot link " + self.target)

    def learn_tests(self, objects, folder):
        """Plays all tests once with recording objects, and sorts them by how long they take."""
        recording = os.path.join(folder, self.name)
        self.link(recording, objects)
        passed, output = play([recording], folder, 1800, KORVANE_VISITS=recording + ".visits")
        if not passed:
            sys.exit(output[-3000:] + "\nlinked.py: fails without a change: " + self.target)
        for name, time_taken in re.findall(r"\[       OK \] ([\w./]+).*\((\d+) ms\)", output):
            self.seconds[name] = int(time_taken) / 1000
            (self.slow if self.seconds[name] > SLOW else self.quick).append(name)
        self.visits.read(recording, recording + ".visits")

    def time_of(self, tests):
        return sum(self.seconds[name] for name in tests)

    def portions(self, tests):
        """The tests in groups of about a second, so that an endless one is found soon."""
        portion = []
        for name in tests:
            if portion and self.time_of(portion) + self.seconds[name] > 1:
                yield portion
                portion = []
            portion.append(name)
        if portion:
            yield portion


class Judge:
    """Compiles a change and plays the tests that see it."""

    def __init__(self, programs, build, longest):
        self.programs = programs
        self.build = build
        self.longest = longest
        self.unchanged = {}
        self.headers = {}
        self.blocks = {}
        self.lock = threading.Lock()
        self.shelf = tempfile.TemporaryDirectory()
        self.killers = collections.defaultdict(collections.Counter)
        with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as stream:
            self.commands = {os.path.relpath(os.path.realpath(entry["file"]), ROOT):
                             shlex.split(entry["command"]) for entry in json.load(stream)}

    def run_compiler(self, path, options):
        """Compiles as the build compiles `path`, but for input and output."""
        words = list(self.commands[path])
        del words[words.index("-o"):words.index("-o") + 2]
        del words[words.index("-c"):words.index("-c") + 2]
        words += ["-g0", "-w", "-iquote", os.path.join(ROOT, os.path.dirname(path))] + options
        return subprocess.run(words, cwd=self.build, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, check=False).returncode == 0

    def header_of(self, path, text):
        """All that the file includes, compiled once: it is half of what a change takes to compile."""
        with self.lock:
            if path not in self.headers:
                header = os.path.join(self.shelf.name, "%d.h" % len(self.headers))
                with open(header, "w", encoding="utf-8") as stream:
                    stream.writelines(line + "\n" for line in text.split("\n") if line.startswith("#include"))
                if not self.run_compiler(path, ["-x", "c++-header", header, "-o", header + ".gch"]):
                    sys.exit("linked.py: cannot compile the headers of " + path)
                self.headers[path] = header
            return self.headers[path]

    def compile(self, path, text, folder):
        """The hash of the object made of `text` in place of the file; None where it is no C++."""
        source = os.path.join(folder, os.path.basename(path))
        with open(source, "w", encoding="utf-8") as stream:
            stream.write(text)
        if not self.run_compiler(path, ["-include", self.header_of(path, text), "-c", source, "-o",
                                        os.path.join(folder, "changed.o")]):
            return None
        with open(os.path.join(folder, "changed.o"), "rb") as stream:
            return hashlib.sha256(stream.read()).digest()

    def learn_tests(self, paths, folder):
        """Has each program play its tests once, with the files that are to be changed recording."""
        shutil.rmtree(folder, ignore_errors=True)
        os.makedirs(folder)
        recorder = os.path.join(folder, "recorder.o")
        first = next(iter(paths))
        if not self.run_compiler(first, ["-c", os.path.join(HERE, "visit_recorder.cpp"), "-o", recorder]):
            sys.exit("linked.py: cannot compile visit_recorder.cpp")

        def recording(path):
            output = os.path.join(folder, os.path.basename(path) + ".o")
            if not self.run_compiler(path, ["-g1", "-finstrument-functions",
                                            "-finstrument-functions-exclude-file-list=/usr/",
                                            "-c", os.path.join(ROOT, path), "-o", output]):
                sys.exit("linked.py: cannot compile " + path)
            return os.path.basename(path), output

        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            objects = dict(pool.map(recording, paths))
        for program in self.programs:
            program.learn_tests([recorder] + [objects[name] for name in objects if name in program.sees],
                                folder)

    def entered_by(self, program, mutant):
        """The tests of a program that enter the changed function; None where any may notice."""
        if mutant.file not in self.blocks:
            with open(os.path.join(ROOT, mutant.file), encoding="utf-8") as stream:
                self.blocks[mutant.file] = visits.Blocks(stream.read())
        span = self.blocks[mutant.file].of(mutant.line)
        return program.visits.of(mutant.file, span) if span else None

    def outcome(self, mutant, folder):
        """What became of a change and, if 'killed', the test that noticed."""
        with open(os.path.join(ROOT, mutant.file), encoding="utf-8") as stream:
            text = stream.read()
        if mutant.file not in self.unchanged:
            self.unchanged[mutant.file] = self.compile(mutant.file, text, folder)
        digest = self.compile(mutant.file, mutate.changed_text(text, mutant), folder)
        if digest is None:
            return "not compiled", ""
        if digest == self.unchanged[mutant.file]:
            return "same code", ""
        return self.outcome_of_tests(mutant, folder)

    def outcome_of_tests(self, mutant, folder):
        linked = {}
        for program, tests in self.rounds(mutant):
            changed = linked.get(program)
            if not changed:
                changed = linked[program] = os.path.join(folder, program.name)
                program.link(changed, [os.path.join(folder, "changed.o"), "-Wl,--strip-debug"])
            command = [changed, "--gtest_brief=1", "--gtest_fail_fast", "--gtest_filter=" + ":".join(tests)]
            passed, output = play(command, folder, 6 + 6 * program.time_of(tests))
            if passed:
                continue
            found = re.search(r"\[  FAILED  \] ([\w./]+)", output)
            test = found.group(1) if found else output.strip().split("\n")[-1][-60:]
            if found and play(command, folder, 60 + 6 * program.time_of(tests))[0]:  # the machine is busy
                print("failed once only: " + test, flush=True)
                continue
            if found:
                self.killers[mutant.file][program, test] += 1
            return "killed", program.name + " " + test
        return "survived", ""

    def rounds(self, mutant):
        """Programs and tests in the order in which they are played."""
        path = mutant.file
        seeing = [program for program in self.programs if os.path.basename(path) in program.sees]
        entered = {program: self.entered_by(program, mutant) for program in seeing}
        if any(entered.values()):
            seeing = [program for program in seeing if entered[program]]
        quick = {program: visits.chosen(program.quick, entered[program]) for program in seeing}
        seeing = [program for program in seeing
                  if not (self.longest and program.time_of(quick[program]) > LONG)]
        best = collections.defaultdict(list)
        for (program, test), _ in self.killers[path].most_common(12):
            if program in seeing and visits.chosen([test], entered[program]):
                best[program].append(test)
        yield from best.items()
        kills = {program: sum(count for (killer, _), count in self.killers[path].items()
                              if killer is program) for program in seeing}
        seeing.sort(key=lambda program: (-kills[program], program.time_of(quick[program])))
        for program in seeing:
            yield from ((program, portion) for portion in program.portions(quick[program]))
        slow = {program: [name for name in visits.chosen(program.slow, entered[program])
                          if not self.longest or program.seconds[name] <= self.longest]
                for program in seeing}
        seeing.sort(key=lambda program: program.time_of(slow[program]))
        for program in seeing:
            yield from ((program, portion) for portion in program.portions(slow[program]))


def sources(tree, patterns, seen):
    """Those that a test program sees, in the order of the patterns."""
    paths = sorted(name for name in mutate.tracked_files()
                   if name.startswith(tree + "/") and os.path.basename(name) in seen)
    if not patterns:
        return paths
    found = [name for pattern in patterns for name in paths if pattern in name]
    return list(dict.fromkeys(found))


def explanations(tree):
    """(file, line of code, change) -> reason."""
    reasons = {}
    with open(os.path.join(HERE, "explained_%s.txt" % tree), encoding="utf-8") as stream:
        for line in stream:
            cells = [cell.strip() for cell in line.split(" ## ")]
            if not line.startswith("#") and len(cells) == 4:
                reasons[tuple(cells[:3])] = cells[3]
    return reasons


def stale_lines(tree, reasons):
    """Explanations whose line no longer stands in its file."""
    paths = {os.path.basename(name): name for name in mutate.tracked_files()
             if name.startswith(tree + "/")}
    for file, text, change in reasons:
        with open(os.path.join(ROOT, paths.get(file, os.devnull)), encoding="utf-8") as stream:
            if text not in [line.strip() for line in stream]:
                yield "%s: %s: %s" % (file, text, change)


def play_all(mutants, judge, options, results_path):
    folders = queue.Queue()
    for job in range(options.jobs):
        folder = os.path.join(options.work, "job%d" % job)
        os.makedirs(folder, exist_ok=True)
        folders.put(folder)

    def work(mutant):
        folder = folders.get()
        started = time.monotonic()
        try:
            outcome, test = judge.outcome(mutant, folder)
        finally:
            folders.put(folder)
        return dict(mutant._asdict(), outcome=outcome, test=test,
                    seconds=round(time.monotonic() - started, 2))

    results = []
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool, \
            open(results_path, "a", encoding="utf-8") as stream:
        for number, result in enumerate(pool.map(work, mutants), 1):
            results.append(result)
            stream.write(json.dumps(result) + "\n")
            stream.flush()
            print("%d/%d %s %s %s (%.1f s)" % (
                number, len(mutants), result["outcome"], result["test"],
                mutate.described(mutate.mutant_of(result)), result["seconds"]), flush=True)
    return results


def print_summary(results, names, options):
    """True when each survivor is explained."""
    counts = collections.Counter(result["outcome"] for result in results)
    print("\n" + ", ".join("%d %s" % (count, name) for name, count in sorted(counts.items())))
    reasons = explanations(options.tree)
    survivors = [mutate.mutant_of(result) for result in results if result["outcome"] == "survived"]
    unknown = [mutant for mutant in survivors if names[mutant] not in reasons]
    for mutant in unknown:
        print("not explained: %s\n  %s" % (mutate.described(mutant), " ## ".join(names[mutant]) + " ## ?"))
    noticed = {names[mutate.mutant_of(result)] for result in results if result["outcome"] == "killed"}
    stale = [" ## ".join(key) for key in reasons if key in noticed]
    stale += stale_lines(options.tree, reasons)
    for text in stale:
        print("explained, but noticed or no longer there: " + text)
    return not unknown and not stale


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("--tree", choices=sorted(TREES), default="host")
    parser.add_argument("--files", nargs="+", metavar="TEXT", help="files whose path has one of these, in this order")
    parser.add_argument("--sample", type=int, metavar="N", help="N changes drawn at random")
    parser.add_argument("--seed", type=int, help="of the sample; drawn and printed when not given")
    parser.add_argument("--jobs", type=int, default=1, metavar="N", help="changes judged at once")
    parser.add_argument("--resume", action="store_true", help="keep the results of lines that did not change")
    parser.add_argument("--again", action="store_true", help="judge again what survived the last time, and that alone")
    parser.add_argument("--longest", type=float, metavar="SECONDS",
                        help="without the tests that take longer; judge what survives with --again")
    parser.add_argument("--quick", dest="longest", action="store_const", const=SLOW,
                        help="the same as --longest %g" % SLOW)
    parser.add_argument("--list", action="store_true", help="print the changes and stop")
    parser.add_argument("--build", default=os.path.join(ROOT, "build", "dev"),
                        help="a finished build with Ninja (default build/dev)")
    parser.add_argument("--work", default=os.path.join(ROOT, "build", "mutation"),
                        help="directory for objects and results (default build/mutation)")
    return parser.parse_args()


def chosen(mutants, options):
    if not options.sample or options.sample >= len(mutants):
        return mutants
    seed = options.seed if options.seed is not None else random.SystemRandom().randrange(1000000)
    print("%d of %d changes, seed %d" % (options.sample, len(mutants), seed), flush=True)
    # By a hash of each change: an edit of other lines does not draw other changes.
    ranked = sorted(mutants, key=lambda mutant: hashlib.sha256(
        repr((seed, mutate.key_of(mutant))).encode()).digest())
    return ranked[:options.sample]


def main():
    options = parse_arguments()
    options.build, options.work = os.path.abspath(options.build), os.path.abspath(options.work)
    tree = TREES[options.tree]
    os.makedirs(options.work, exist_ok=True)
    subprocess.run(["ninja", "-C", options.build] + ["tests/" + name for name in tree.programs],
                   check=True, stdout=subprocess.DEVNULL)
    programs = [Program(options.build, name, tree.library) for name in tree.programs]
    seen = set().union(*(program.sees for program in programs))
    paths = sources(options.tree, options.files, seen)
    every = [mutant for path in paths for mutant in mutate.mutants_of(ROOT, path)]
    names = explained.named(every)
    mutants = chosen(every, options)
    if options.list:
        print("\n".join(mutate.described(mutant) for mutant in mutants))
        return 0
    results_path = os.path.join(options.work, options.tree + ".jsonl")
    if options.again:
        survived = {mutate.key_of(mutate.mutant_of(result)) for result in mutate.read_results(results_path)
                    if result["outcome"] == "survived"}
        mutants = [mutant for mutant in every if mutate.key_of(mutant) in survived]
    wanted = {mutate.key_of(mutant): mutant for mutant in mutants}
    done = []
    for result in mutate.read_results(results_path) if options.resume else []:
        key = mutate.key_of(mutate.mutant_of(result))
        if key in wanted:
            done.append(dict(result, **wanted[key]._asdict()))
    with open(results_path, "w", encoding="utf-8") as stream:
        stream.writelines(json.dumps(result) + "\n" for result in done)
    known = {mutate.key_of(mutate.mutant_of(result)) for result in done}
    left = [mutant for mutant in mutants if mutate.key_of(mutant) not in known]
    needed = sorted({mutant.file for mutant in left})
    programs = [program for program in programs if program.sees & set(map(os.path.basename, needed))]
    judge = Judge(programs, options.build, options.longest)
    if needed:
        judge.learn_tests(needed, os.path.join(options.work, "visits"))
    done += play_all(left, judge, options, results_path) if left else []
    return 0 if print_summary(done, names, options) else 1


if __name__ == "__main__":
    sys.exit(main())
