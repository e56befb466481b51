# SPDX-License-Identifier: MIT
"""The survivors that docs/testing.md explains, as rows of its tables.

Each file of src/ has a heading "### `name`" behind TITLE, and below it one row per line of code:

    | `the line` | `==` to `!=`; always `true`; left out | why it makes no difference |

A change that fits several places of its line, or of equal lines, says which one: "`0` to `1` (2 of 3)".
"""

import collections
import os
import re

TITLE = "## Changes that no test notices"


def change_of(mutant):
    if mutant.kind == "statement":
        return "left out"
    if mutant.kind == "condition":
        return "always `%s`" % mutant.new
    return "`%s` to `%s`" % (mutant.old, mutant.new) if mutant.new else "`%s` left out" % mutant.old


def named(mutants):
    """Key (file, line of code, change) of each mutant. Needs all mutants of the files."""
    places = collections.defaultdict(list)
    for mutant in mutants:
        places[os.path.basename(mutant.file), mutant.text, change_of(mutant)].append(mutant)
    names = {}
    for (file, text, change), alike in places.items():
        alike.sort(key=lambda mutant: (mutant.line, mutant.column))
        for number, mutant in enumerate(alike, 1):
            which = " (%d of %d)" % (number, len(alike)) if len(alike) > 1 else ""
            names[mutant] = (file, text, change + which)
    return names


def read(path):
    """Key -> reason, of every row."""
    with open(path, encoding="utf-8") as stream:
        section = stream.read().partition(TITLE + "\n")[2]
    section = re.split(r"^## ", section, flags=re.M)[0]
    reasons = {}
    file = ""
    for line in section.split("\n"):
        heading = re.match(r"### `(.+)`$", line)
        row = re.match(r"\| `(.*)` \| (.*) \| (.*) \|$", line)
        if heading:
            file = heading.group(1)
        elif row:
            text, changes, reason = (cell.replace("\\|", "|") for cell in row.groups())
            for change in changes.split("; "):
                reasons[file, text, change] = reason
    return reasons


def tables(keys, reasons):
    """The rows of the keys, in their order; what has no reason yet carries a question mark."""
    files = collections.defaultdict(lambda: collections.defaultdict(list))
    for file, text, change in keys:
        files[file][text, reasons.get((file, text, change), "?")].append(change)
    lines = []
    for file, rows in files.items():
        lines += ["", "### `%s`" % file, "", "| line | change | why |", "|---|---|---|"]
        for (text, reason), changes in rows.items():
            cells = ("`%s`" % text, "; ".join(changes), reason)
            lines.append("| %s |" % " | ".join(cell.replace("|", "\\|") for cell in cells))
    return "\n".join(lines[1:])
