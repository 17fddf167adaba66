"""Adds to all record classes of the binding: `repr`, comparison, pickling and `to_dict`."""

from __future__ import annotations

from types import MappingProxyType
from typing import Any, Iterable

from ._docs import DOCS
from ._text import printable, table


def plain(value: Any) -> Any:
    """Returns a value with its mappings as `dict`, so that it can be pickled and assigned."""
    if isinstance(value, MappingProxyType):
        return {key: plain(entry) for key, entry in value.items()}
    if isinstance(value, tuple):
        return tuple(map(plain, value))
    return value


def fields_of(record: Any) -> dict[str, Any]:
    """Returns the attributes of a record by their names."""
    return {name: plain(getattr(record, name)) for name in record._fields}


def to_dict(self: Any) -> dict[str, Any]:
    """Returns the attributes by their names, with nested records as `dict`, too."""
    def deep(value: Any) -> Any:
        if hasattr(value, "_fields"):
            return to_dict(value)
        if isinstance(value, dict):
            return {key: deep(entry) for key, entry in value.items()}
        return tuple(map(deep, value)) if isinstance(value, tuple) else value

    return {name: deep(value) for name, value in fields_of(self).items()}


def rebuild(made: type, fields: dict[str, Any], more: dict[str, Any]) -> Any:
    """Makes a record with these attributes, and with those that its Python subclass adds."""
    record = made(**fields)
    if more:
        record.__dict__.update(more)
    return record


def brief(value: Any) -> str:
    """Returns a short text for a value. For long containers, only the number of entries."""
    if isinstance(value, (tuple, MappingProxyType)) and len(value) > 4:
        return f"<{len(value)} entries>"
    if isinstance(value, MappingProxyType):
        return repr(dict(value))
    return repr(value)


def _repr(self: Any) -> str:
    shown = ", ".join(f"{name}={brief(getattr(self, name))}" for name in self._fields)
    return printable(f"{type(self).__name__}({shown})")


def _repr_html(self: Any) -> str:
    rows = [(name, brief(getattr(self, name))) for name in self._fields]
    return table(type(self).__name__, ("attribute", "value"), rows, most_rows=len(rows))


def _reduce(self: Any) -> tuple:
    return rebuild, (type(self), fields_of(self), getattr(self, "__dict__", {}))


def _equal(self: Any, other: Any) -> Any:
    if not isinstance(other, type(self)) and not isinstance(self, type(other)):
        return NotImplemented
    return all(plain(getattr(self, name)) == plain(getattr(other, name)) for name in self._fields)


def adopt(classes: Iterable[type]) -> None:
    """Adds the common methods to record classes of the binding, and docstrings from the C++ headers."""
    common = {"__repr__": _repr, "_repr_html_": _repr_html, "__reduce__": _reduce, "__eq__": _equal, "__hash__": None,
              "to_dict": to_dict}
    for made in classes:
        for name, function in common.items():
            setattr(made, name, function)
        own = made.__name__.removesuffix("Content")
        made.__doc__ = DOCS.get(own, made.__doc__)
        for name in made._fields:  # type: ignore[attr-defined]
            attribute = made.__dict__[name]
            meaning = DOCS.get(f"{own}.{name}") or DOCS.get(attribute.__doc__, "")
            text = f"{attribute.__doc__}: {meaning}" if meaning else attribute.__doc__
            setattr(made, name, property(attribute.fget, attribute.fset, None, text))
