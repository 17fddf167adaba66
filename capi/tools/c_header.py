"""Reads the header of the C interface."""
import dataclasses
import re

SCALARS = {"int32_t", "int64_t", "uint16_t", "uint64_t", "double", "char"}
_NUMBERS = {"INT64_MIN": -2**63, "INT64_MAX": 2**63 - 1}


@dataclasses.dataclass
class Header:
    """Types are without spaces, such as "constchar*". The type of a callback is a list of its parameters."""
    functions: list  # (name, [(type, parameter)])
    structs: list  # (name, [(type, member)])
    handles: set
    constants: list  # (name, number)


def _declared(text):
    """Returns type and name of a parameter or member."""
    callback = re.fullmatch(r"int ?\(VX_CALL\* (\w+)\)\((.*)\)", " ".join(text.split()))
    if callback:
        return _all_declared(callback[2], ","), callback[1]
    kind, name = re.fullmatch(r"(.*?)(\w+)", " ".join(text.split())).groups()
    return kind.replace(" ", ""), name


def _all_declared(text, separator):
    return [_declared(part) for part in text.split(separator) if part.strip()]


def read_header(text):
    text = re.sub(r"/\*.*?\*/", "", text, flags=re.S)
    functions = re.findall(r"int VX_CALL (vx_\w+)\((.*?)\);", text, flags=re.S)
    structs = re.findall(r"typedef struct (vx_\w+) \{(.*?)\} \1;", text, flags=re.S)
    constants = re.findall(r"\b(VX_\w+) = (\d+)", text)
    constants += re.findall(r"^#define (VX_\w+) \(?(-?\d+|INT64_M\w+)\)?$", text, flags=re.M)
    return Header([(name, _all_declared(parameters, ",")) for name, parameters in functions],
                  [(name, _all_declared(members, ";")) for name, members in structs],
                  set(re.findall(r"typedef struct (vx_\w+) \1;", text)),
                  [(name, _NUMBERS[value] if value in _NUMBERS else int(value)) for name, value in constants])
