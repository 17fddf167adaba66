#pragma once

#include <pybind11/pybind11.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "vxfileio/base/EnumerationWords.h"

/// @file
/// Values of the library as Python objects, and back.
///
/// Texts are `str` with bytes that aren't UTF-8 as surrogate escapes, characters `str` of Latin-1, enumerations members
/// of a `vxfileio.Word`. Lists become tuples and maps read-only mappings, so that nobody appends to a copy. Objects in
/// them refer into the owner and keep it alive; see `Assign` for what happens when the owner drops them.

namespace vxfileio::python {

namespace py = pybind11;

/// Returns a text as `str`. Bytes that aren't UTF-8 become surrogate escapes.
py::object TextToPython(std::string_view text);

/// Returns the bytes of a `str`. Throws `TypeError` for anything else.
std::string TextFromPython(py::handle value);

/// Returns a character as `str`, NUL as an empty one.
py::object CharToPython(char value);

/// Returns the character of a `str` of Latin-1 with at most one character. Throws `TypeError` or `ValueError`.
char CharFromPython(py::handle value);

/// Returns the Python class of an enumeration, which `MakeWords` has made.
template <class Enumeration>
py::handle& WordsClass() {
    static py::handle words;
    return words;
}

/// Makes the Python class of an enumeration from its table of words, and adds it to the module.
template <class Enumeration>
void MakeWords(py::module_& module, const char* name) {
    py::list words;
    for (const std::string_view word : base::kWords<Enumeration>.words)
        words.append(TextToPython(word));
    py::object made = py::module_::import("vxfileio._words").attr("make")(name, words);
    module.attr(name) = made;
    WordsClass<Enumeration>() = made.release();
}

/// Throws `TypeError` with the type that was expected and the value.
[[noreturn]] void ThrowWrongType(const char* expected, py::handle value);

/// Throws `ValueError` with the range of the type and the value.
[[noreturn]] void ThrowOutOfRange(const std::string& least, const std::string& greatest, py::handle value);

// ---- Which types hand out objects that refer into them --------------------------------------------------------------

template <class T>
inline constexpr bool kIsLeaf = std::is_arithmetic_v<T> || std::is_enum_v<T> || std::is_same_v<T, std::string>;

template <class T>
struct CContainer {
    static constexpr bool kIsList = false;
    static constexpr bool kIsMap = false;
    static constexpr bool kIsPointer = false;
};
template <class T>
struct CContainer<std::vector<T>> : CContainer<void> {
    static constexpr bool kIsList = true;
};
template <class T, std::size_t N>
struct CContainer<std::array<T, N>> : CContainer<void> {
    static constexpr bool kIsList = true;
};
template <class K, class T>
struct CContainer<std::map<K, T>> : CContainer<void> {
    static constexpr bool kIsMap = true;
};
template <class T>
struct CContainer<std::unique_ptr<T>> : CContainer<void> {
    static constexpr bool kIsPointer = true;
};

/// Returns whether Python has an object that refers to this value or into it.
template <class T>
bool IsHandedOut(const T& value) {
    using C = CContainer<T>;
    if constexpr (kIsLeaf<T>) {
        return false;
    } else if constexpr (C::kIsList) {
        if constexpr (kIsLeaf<typename T::value_type>) return false;
        return std::ranges::any_of(value, [](const auto& entry) { return IsHandedOut(entry); });
    } else if constexpr (C::kIsMap) {
        return std::ranges::any_of(value, [](const auto& entry) { return IsHandedOut(entry.second); });
    } else if constexpr (C::kIsPointer) {
        return value && IsHandedOut(*value);
    } else {
        return py::detail::get_internals().registered_instances.contains(&value);
    }
}

// ---- To Python ------------------------------------------------------------------------------------------------------

/// Returns a value as a Python object. Objects of classes refer to it and keep `owner` alive.
template <class T>
py::object ToPython(T& value, py::handle owner) {
    using V = std::remove_const_t<T>;
    using C = CContainer<V>;
    if constexpr (std::is_same_v<V, std::string>) {
        return TextToPython(value);
    } else if constexpr (std::is_same_v<V, char>) {
        return CharToPython(value);
    } else if constexpr (std::is_enum_v<V>) {
        py::object word = TextToPython(base::WordOf(value));
        const auto number = static_cast<std::size_t>(static_cast<std::underlying_type_t<V>>(value));
        return number < base::kWords<V>.words.size() ? WordsClass<V>()(word) : word;
    } else if constexpr (std::is_arithmetic_v<V>) {
        return py::cast(value);
    } else if constexpr (C::kIsList) {
        py::tuple entries(value.size());
        std::size_t i = 0;
        for (auto& entry : value)
            entries[i++] = ToPython(entry, owner);
        return entries;
    } else if constexpr (C::kIsMap) {
        py::dict entries;
        for (auto& [key, entry] : value)
            entries[ToPython(key, owner)] = ToPython(entry, owner);
        return py::reinterpret_steal<py::object>(PyDictProxy_New(entries.ptr()));
    } else if constexpr (C::kIsPointer) {
        return value ? ToPython(*value, owner) : py::none();
    } else {
        return py::cast(&value, py::return_value_policy::reference_internal, owner);
    }
}

// ---- From Python ----------------------------------------------------------------------------------------------------

template <class T>
T NumberFromPython(py::handle value) {
    py::detail::make_caster<T> caster;
    if (caster.load(value, true)) return py::detail::cast_op<T>(caster);
    PyErr_Clear();
    if constexpr (std::is_integral_v<T>) {
        if (PyIndex_Check(value.ptr()) != 0)
            ThrowOutOfRange(std::to_string(std::numeric_limits<T>::min()),
                            std::to_string(std::numeric_limits<T>::max()), value);
        ThrowWrongType("a whole number", value);
    }
    ThrowWrongType("a number", value);
}

bool BoolFromPython(py::handle value);

template <class Enumeration>
Enumeration WordFromPython(py::handle value) {
    const std::string word = TextFromPython(value);
    const auto found = base::ValueOf<Enumeration>(word);
    if (base::WordOf(found) != word) WordsClass<Enumeration>()(value);  // raises ValueError
    return found;
}

/// Returns the value of a Python object. Throws `TypeError` or `ValueError` if it isn't one of this type.
template <class T>
T FromPython(py::handle value) {
    using C = CContainer<T>;
    if constexpr (std::is_same_v<T, std::string>) {
        return TextFromPython(value);
    } else if constexpr (std::is_same_v<T, char>) {
        return CharFromPython(value);
    } else if constexpr (std::is_same_v<T, bool>) {
        return BoolFromPython(value);
    } else if constexpr (std::is_enum_v<T>) {
        return WordFromPython<T>(value);
    } else if constexpr (std::is_arithmetic_v<T>) {
        return NumberFromPython<T>(value);
    } else if constexpr (C::kIsMap) {
        if (!py::hasattr(value, "items")) ThrowWrongType("a mapping", value);
        T entries;
        for (const py::handle item : value.attr("items")()) {
            const auto pair = py::reinterpret_borrow<py::tuple>(item);
            entries[FromPython<typename T::key_type>(pair[0])] = FromPython<typename T::mapped_type>(pair[1]);
        }
        return entries;
    } else if constexpr (C::kIsPointer) {
        using Entry = typename T::element_type;
        return value.is_none() ? nullptr : std::make_unique<Entry>(FromPython<Entry>(value));
    } else if constexpr (C::kIsList && requires(T list) { list.push_back({}); }) {
        if (PyUnicode_Check(value.ptr()) != 0 || !py::hasattr(value, "__iter__")) ThrowWrongType("a list", value);
        T entries;
        for (const py::handle entry : py::iter(value))
            entries.push_back(FromPython<typename T::value_type>(entry));
        return entries;
    } else if constexpr (C::kIsList) {
        if (!py::hasattr(value, "__iter__")) ThrowWrongType("a list", value);
        const auto given = py::reinterpret_steal<py::tuple>(PySequence_Tuple(value.ptr()));
        if (!given) throw py::error_already_set();
        T entries{};
        if (given.size() != entries.size())
            throw py::value_error("expected " + std::to_string(entries.size()) + " numbers");
        for (std::size_t i = 0; i < entries.size(); ++i)
            entries[i] = FromPython<typename T::value_type>(given[i]);
        return entries;
    } else {
        py::detail::make_caster<T> caster;
        if (!caster.load(value, true) || value.is_none())
            ThrowWrongType(py::type::of<T>().attr("__name__").template cast<std::string>().c_str(), value);
        return py::detail::cast_op<const T&>(caster);
    }
}

/// Sets a member of the object that `self` refers to.
///
/// Python may hold objects that refer into the old value. They keep `self` alive, so the old value is kept as long as
/// `self`: they stay valid, and are no longer part of the object.
template <class T>
void Assign(py::handle self, T& member, py::handle value) {
    T fresh = FromPython<T>(value);
    if (IsHandedOut(member)) {
        auto old = std::make_unique<std::shared_ptr<void>>(std::make_shared<T>(std::move(member)));
        const py::capsule keeper(old.get(), [](void* kept) { delete static_cast<std::shared_ptr<void>*>(kept); });
        static_cast<void>(old.release());
        py::detail::keep_alive_impl(self, keeper);
    }
    member = std::move(fresh);
}

}  // namespace vxfileio::python
