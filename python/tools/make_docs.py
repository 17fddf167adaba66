#!/usr/bin/python3
"""Writes a module with the comments on classes and members in the public headers, for `help` in Python.

    make_docs.py SOURCE_FOLDER OUTPUT

SOURCE_FOLDER is the folder `vxfileio` of the library. The module has one mapping, from "Class" and "Class.Member" to
comments. Classes have their Python names: those in C++ without the leading `C`.
"""

import pathlib
import pprint
import re
import sys

HEADERS = ("rawdata/RawDataHeaders.h", "settings/*.h", "results/*.h")
CLASS = re.compile(r"^((?:///[^\n]*\n)*)(?:class|struct) (?:VXFILEIO_API )?C?([A-Z]\w+)([^;{]*)\{(.*?)^\};", re.MULTILINE | re.DOTALL)
MEMBER = re.compile(r"^    (?!static|using|friend|return)(?:const )?[\w:<>, ]+ ([A-Za-z]\w*)(?: = \{$|(?: =[^;]*|\{[^;]*)?;)")
COMMENT = re.compile(r"///<? ?(.*)")


def members_of(body):
    """Returns the members of a class as pairs of name and comment lines, which are above the member or after it."""
    members, above, current = [], [], None
    for line in body.splitlines():
        member = MEMBER.match(line)
        comment = COMMENT.search(line)
        if member:
            current = [member[1], above + [comment[1]] if comment else above]
            above = []
            members.append(current)
        elif comment and line.lstrip().startswith("///<") and current:
            current[1].append(comment[1])
        elif comment and line.lstrip().startswith("///"):
            above.append(comment[1])
            current = None
        else:
            above, current = [], None
    return members


def main(source, output):
    docs, bases = {}, {}
    for header in sorted(path for pattern in HEADERS for path in pathlib.Path(source).glob(pattern)):
        for above, name, heritage, body in CLASS.findall(header.read_text(encoding="utf-8")):
            docs[name] = " ".join(COMMENT.findall(above))
            bases[name] = re.findall(r"\bC?([A-Z]\w+)", heritage)
            for member, comment in members_of(body.split("private:")[0]):
                if comment:
                    docs[f"{name}.{member}"] = " ".join(comment)
    for name, others in bases.items():
        inherited = [key for key in docs if key.split(".")[0] in others and "." in key]
        docs |= {f"{name}.{key.split('.')[1]}": docs[key] for key in inherited}
    docs = {name: re.sub(r"`C(?=[A-Z])", "`", text) for name, text in docs.items() if text}
    text = f'"""What each attribute means, from the headers of the library. Generated."""\n\nDOCS = {pprint.pformat(docs, width=120)}\n'
    pathlib.Path(output).write_text(text, encoding="utf-8")


main(*sys.argv[1:])
