# SPDX-License-Identifier: MIT
"""Which tests enter the function that a line belongs to: the others cannot notice its change."""

import collections
import os
import re
import subprocess


class Blocks:
    """The functions and classes of a source, by what stands at the beginning of its lines."""

    def __init__(self, text):
        self.spans = []
        lines = text.split("\n")
        head, begun = None, None
        for number, line in enumerate(lines, 1):
            if begun is not None:
                if line.startswith("}"):
                    # What a constant expression calls is entered by the compiler alone.
                    if not any("constexpr" in part for part in lines[head - 1:begun]):
                        self.spans.append((head, number))
                    head, begun = None, None
            elif line == "{" or re.match(r"(class|struct) [^;]*\{$", line):
                head, begun = head or number, number
            elif not line.strip() or line.endswith(";"):
                head = None
            elif not line.startswith((" ", "#", "/")):
                head = head if head else number

    def of(self, line):
        """First and last line of the one that a line is in, or None."""
        return next((span for span in self.spans if span[0] <= line <= span[1]), None)


class Visits:
    """What the tests of one program entered."""

    def __init__(self):
        self.tests = collections.defaultdict(set)  # (name of the file, line) -> tests; "*" is all

    def read(self, program, path):
        """Takes what visit_recorder.cpp wrote while `program` ran."""
        entered = collections.defaultdict(set)
        with open(path, encoding="utf-8") as stream:
            for line in stream:
                test, *offsets = line.split()
                for offset in offsets:
                    entered[offset].add(test)
        offsets = sorted(entered)
        # Of an executable that may lie anywhere an offset is an address; of one that may not it is
        # counted from where it lies.
        base = 0
        for line in subprocess.run(["readelf", "-lW", program], check=True, stdout=subprocess.PIPE,
                                   text=True).stdout.split("\n"):
            if line.split()[:2] == ["LOAD", "0x000000"]:
                base = int(line.split()[2], 16)
        told = subprocess.run(["addr2line", "-e", program], check=True, stdout=subprocess.PIPE, text=True,
                              input="\n".join("%x" % (int(offset, 16) + base) for offset in offsets))
        for offset, place in zip(offsets, told.stdout.split("\n")):
            found = re.match(r"(.*):(\d+)", place)
            if found:
                self.tests[os.path.basename(found.group(1)), int(found.group(2))] |= entered[offset]

    def of(self, path, span):
        """Names of the tests that enter a function between two lines; None where none is known to."""
        name = os.path.basename(path)
        found = set()
        for (file, line), tests in self.tests.items():
            if file == name and span[0] <= line <= span[1]:
                found |= tests
        return found or None


def chosen(tests, entered):
    """Those of `tests` that are among the entered ones, in their order."""
    if entered is None or "*" in entered:
        return tests
    return [name for name in tests if name in entered or name.rsplit(".", 1)[0] + ".*" in entered]
