"""The enumerations. Their members are the words in the files."""

import enum
from typing import Sequence


class Word(enum.StrEnum):
    """A word of an enumeration. Compares, hashes and prints like a `str`."""

    __hash__ = str.__hash__

    @property
    def number(self) -> int:
        """The value of the enumerator in C++."""
        return list(type(self)).index(self)


def identifier(word: str) -> str:
    """Returns the name of a member: `NaAmplitude` for "Na-Amplitude", `L8x12` for "8x12"."""
    name = word.replace("-", "")
    return "L" + name if name[0].isdigit() else name


def make(name: str, words: Sequence[str]) -> type[Word]:
    """Makes an enumeration of these words."""
    members = [(identifier(word), word) for word in words]
    made: type[Word] = Word(name, members, module="vxfileio")  # type: ignore[assignment,call-arg]
    made.__doc__ = f"The words of {name}: {', '.join(words)}."
    return made
