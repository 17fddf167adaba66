#!/usr/bin/env python3
"""Divides sources into groups that can be compiled as one, because no two define the same private name.

    source_groups.py <LINES

Most of the time that a compiler takes goes into the standard library's headers and templates. A generated source that
includes a whole group does this once. Each line names a target and its sources, and each line of the output the target
again, the number of a group, and its sources. "|" separates all of these. A source remains alone if it defines a macro
or includes a header of Windows. One with `using enum` at the top level, which changes what follows, is the last of its
group.
"""

import re
import sys

LARGEST_GROUP = 20
# A name that is defined at the beginning of a line, which is where clang-format puts what namespaces hold.
DEFINITION = re.compile(r"^(?=[a-zA-Z])(?!using|namespace|return|static_assert|TEST|INSTANTIATE_TEST|#)[^\n=;{}]*?\b(\w+)(?: final)?(?:<[^\n;{}]*>)?\s*(?:[({=;\[]|:(?!:))",
                        re.MULTILINE)
ALONE = re.compile(r"^#define |^#include <windows\.h>", re.MULTILINE)
LAST = re.compile(r"^using enum ", re.MULTILINE)


def private_names(text):
    """Returns the names that a source keeps to itself, and perhaps a few that it doesn't. Constants count even if they
    are local, because such a one would shadow another source's."""
    parts = re.findall(r"^namespace \{\n(.*?)^\}  // namespace", text, re.MULTILINE | re.DOTALL)
    aliases = re.findall(r"^using (\w+) =", text, re.MULTILINE)
    constants = re.findall(r"\b(k[A-Z]\w*)(?:\[\w*\])?(?: =|\{)", text)
    return set(DEFINITION.findall("\n".join(parts))) | set(aliases) | set(constants)


def groups_of(sources, largest=LARGEST_GROUP):
    """Divides sources into lists of about the same length, in which no private name occurs twice."""
    texts = {}
    for source in sources:
        with open(source, encoding="utf-8") as file:
            texts[source] = file.read()
    alone = [source for source in sources if ALONE.search(texts[source])]
    others = [source for source in sources if source not in alone]
    # All that are full have the same length, so that none takes much longer than the others.
    most = -(-len(others) // max(1, -(-len(others) // largest)))
    groups = []  # (sources, names)
    for source in sorted(others, key=lambda source: bool(LAST.search(texts[source]))):
        last = set(LAST.findall(texts[source]))
        names = private_names(texts[source]) | last
        for members, taken in groups:
            if (last or len(members) < most) and not names & taken:
                members.append(source)
                taken |= names
                break
        else:
            groups.append(([source], names))
    return [members for members, _ in groups] + [[source] for source in alone]


if __name__ == "__main__":
    for line in sys.stdin:
        target, *sources = line.strip().split("|")
        for number, group in enumerate(groups_of(sources)):
            print("|".join([target, str(number), *group]))
