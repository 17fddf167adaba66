"""Plants faults behind guards, so that one build has all of them and an environment variable turns one on.

A function with faults gets a copy of its body for each of them. What isn't in a function, such as a table, can't have a
guard; neither can functions that only compile without one, such as those of a concept.
"""

import collections
import re

PLANTED = "PLANTED_FAULT"  # variable with the number of the fault that is on
REACHED = "REACHED_FAULTS"  # variable with the path of a file; its byte N becomes 1 if the guard of fault N is reached
SIZE = 1 << 12  # of that file, and one more than the largest number

# Every source includes it first.
HEADER = """\
#pragma once
#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>

inline int PlantedFault() {
    static const int number = [] {
        const char* const text = std::getenv("%s");
        return text == nullptr ? 0 : std::atoi(text);
    }();
    return number;
}

inline char* ReachedFaults() {
    static char* const reached = []() -> char* {
        const char* const path = std::getenv("%s");
        if (path == nullptr) return nullptr;
        void* const bytes = mmap(nullptr, %d, PROT_READ | PROT_WRITE, MAP_SHARED, open(path, O_RDWR | O_CLOEXEC), 0);
        return bytes == MAP_FAILED ? nullptr : static_cast<char*>(bytes);
    }();
    return reached;
}

/// Constant expressions have no faults.
constexpr bool IsPlanted(int number) {
    if (__builtin_is_constant_evaluated()) return false;
    if (char* const reached = ReachedFaults()) reached[number] = 1;
    return PlantedFault() == number;
}
""" % (PLANTED, REACHED, SIZE)

NOT_CODE = re.compile(r"""//[^\n]*|/\*.*?\*/|^#[^\n]*|R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|'(?:\\.{1,3}|[^'\\\n])'""",
                      re.DOTALL | re.MULTILINE)
NOT_A_FUNCTION = re.compile(r"(inline )?namespace\b|(template\s*<.*>\s*)?(class|struct|enum|union)\b|extern\b", re.DOTALL)


def blocks(code):
    """Returns where the blocks in braces begin and end, outer ones first."""
    found, open_ones = [], []
    for match in re.finditer("[{}]", code):
        if match.group() == "{":
            open_ones.append(match.start())
        else:
            found.append((open_ones.pop(), match.end()))
    return sorted(found)


def body_around(code, begin, end):
    """Returns where the body of the function around a part of a source begins and ends, or None."""
    for first, last in blocks(code):
        if first >= begin or last <= end:
            continue
        head = code[1 + max(code.rfind(mark, 0, first) for mark in ";{}"):first].strip()
        if not NOT_A_FUNCTION.match(head):
            is_body = code[first - 1] in " \n" and not re.search(r"[=,(\[]$|\breturn$", head)
            return (first, last) if is_body else None
    return None


def plant(text, faults):
    """Returns a source with those of its faults, by number, that can have a guard. Also returns the lines of each changed
    function with its faults: (first, last, numbers)."""
    code = NOT_CODE.sub(lambda match: re.sub(r"[^\n]", " ", match.group()), text)
    bodies = collections.defaultdict(dict)
    for number, fault in faults.items():
        old = "\n".join(fault.old)
        begin = text.index(old)
        body = body_around(code, begin, begin + len(old))
        if body:
            bodies[body][number] = text[body[0]:begin] + "\n".join(fault.new) + text[begin + len(old):body[1]]
    planted, done, functions = "", 0, []
    for (begin, end), variants in sorted(bodies.items()):
        planted += text[done:begin] + "{ "
        first = planted.count("\n") + 1
        for number, variant in variants.items():
            planted += "if (IsPlanted(%d)) %s else " % (number, variant)
        planted += text[begin:end] + " }"
        functions.append((first, planted.count("\n") + 1, list(variants)))
        done = end
    return planted + text[done:], functions
