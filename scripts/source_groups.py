#!/usr/bin/env python3
"""Divides sources into groups that can be compiled as one, because no two define the same private name.

    source_groups.py <LINES

Most of the time that a compiler takes goes into the standard library's headers and templates. A generated source that
includes a whole group does this once. Each line names a target and its sources. Each line of the output has the target
again, the number of a group, and its sources. "|" separates all of these. A source remains alone if it changes what
follows: defines a macro, includes a header of Windows, or has `using enum` at the top level.
"""

import re
import sys

LARGEST_GROUP = 20
# A name that is defined at the beginning of a line, which is where clang-format puts what namespaces hold.
DEFINITION = re.compile(r"^(?=[a-zA-Z])(?!using|namespace|return|TEST|INSTANTIATE_TEST|#)[^\n=;{}]*?\b(\w+)(?:<[^\n;{}]*>)?\s*(?:[({=;\[]|:(?!:))",
                        re.MULTILINE)
ALONE = re.compile(r"^#define |^#include <windows\.h>|^using enum ", re.MULTILINE)


def private_names(text):
    """Returns the names that a source keeps to itself, and perhaps a few that it doesn't. Constants count even if they
    are local, because such a one would shadow another source's."""
    parts = re.findall(r"^namespace \{\n(.*?)^\}  // namespace", text, re.MULTILINE | re.DOTALL)
    aliases = re.findall(r"^using (\w+) =", text, re.MULTILINE)
    constants = re.findall(r"\b(k[A-Z]\w*)(?:\[\w*\])?(?: =|\{)", text)
    return set(DEFINITION.findall("\n".join(parts))) | set(aliases) | set(constants)


def groups_of(sources):
    """Divides sources into lists in which no private name occurs twice."""
    alone, groups = [], []  # groups: (sources, names)
    for source in sources:
        with open(source, encoding="utf-8") as file:
            text = file.read()
        names = private_names(text)
        if ALONE.search(text):
            alone.append([source])
            continue
        for members, taken in groups:
            if len(members) < LARGEST_GROUP and not names & taken:
                members.append(source)
                taken |= names
                break
        else:
            groups.append(([source], names))
    return [members for members, _ in groups] + alone


if __name__ == "__main__":
    for line in sys.stdin:
        target, *sources = line.strip().split("|")
        for number, group in enumerate(groups_of(sources)):
            print("|".join([target, str(number), *group]))
