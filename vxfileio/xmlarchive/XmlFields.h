#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "vxfileio/base/EnumerationWords.h"
#include "vxfileio/xmlarchive/XmlArchive.h"

/// @file
/// Lists of fields: how a class says once which elements it consists of, for saving and loading both.
///
/// A class `C` that goes into a document has a specialisation of `CXmlForm<C>` beside its `Save` and `Load`, with
/// - `kElement`, the tag of its element, and
/// - `kFields`, a tuple of fields in the order of the file.
///
/// A field is anything with a `tag`, a `Put(archive, object)` that writes what stands inside the field's element, and a
/// `Get(archive, object)` that reads it at the element's start event. Fields are found by their tags, in any order; an
/// element that no field knows passes by, and a field whose element is missing keeps what it held.
///
/// (Clang 14 deduces no aggregate's template arguments by itself, hence the guides.)

namespace vxfileio::xmlarchive {

/// The form of a class in a document; specialised beside the class's `Save` and `Load`.
template <class Object>
struct CXmlForm;

/// A number, truth value or string, as its type has it.
template <class Object, class Value>
struct CValueField {
    std::string_view tag;
    Value Object::*member;

    void Put(CXmlFileArchive& archive, const Object& object) const { archive.PutValue(object.*member); }
    void Get(CXmlFileArchive& archive, Object& object) const { archive.GetValue(object.*member); }
};
template <class Object, class Value>
CValueField(std::string_view, Value Object::*) -> CValueField<Object, Value>;

/// A string whose CDATA sections, which other programs write, are taken as they stand.
template <class Object>
struct CTextField {
    std::string_view tag;
    std::string Object::*member;

    void Put(CXmlFileArchive& archive, const Object& object) const { archive.PutValue(object.*member); }
    void Get(CXmlFileArchive& archive, Object& object) const { object.*member = archive.GetText(); }
};
template <class Object>
CTextField(std::string_view, std::string Object::*) -> CTextField<Object>;

/// An enumeration, as its word.
template <class Object, class Enumeration>
struct CWordField {
    std::string_view tag;
    Enumeration Object::*member;

    void Put(CXmlFileArchive& archive, const Object& object) const {
        archive.PutValue(std::string(base::WordOf(object.*member)));
    }
    void Get(CXmlFileArchive& archive, Object& object) const {
        std::string word;
        archive.GetValue(word);
        object.*member = base::ValueOf<Enumeration>(word);
    }
};
template <class Object, class Enumeration>
CWordField(std::string_view, Enumeration Object::*) -> CWordField<Object, Enumeration>;

/// One character, as a string. Read, it is the string's first byte, and NUL if there is none.
template <class Object>
struct CCharacterField {
    std::string_view tag;
    char Object::*member;

    void Put(CXmlFileArchive& archive, const Object& object) const { archive.PutValue(std::string(1, object.*member)); }
    void Get(CXmlFileArchive& archive, Object& object) const {
        std::string text;
        archive.GetValue(text);
        object.*member = text.empty() ? '\0' : text.front();
    }
};
template <class Object>
CCharacterField(std::string_view, char Object::*) -> CCharacterField<Object>;

/// Writes a list: its `Size`, then `saveEntry(entry)` for each.
template <class Entries, class SaveEntry>
void PutList(CXmlFileArchive& archive, const Entries& entries, SaveEntry saveEntry) {
    archive.PutAttribute(gd_xml_stream::kListSize, static_cast<std::int32_t>(entries.size()));
    for (const auto& entry : entries)
        saveEntry(entry);
}

/// Writes an element with a value.
inline void SaveValue(CXmlFileArchive& archive, std::string_view tag, const gd_xml_stream::XmlValue& value) {
    archive.OpenChild(tag).PutValue(value).CloseElement();
}

/// Whether the archive stands at the start of an element with this tag.
inline bool IsStartOf(const CXmlFileArchive& archive, std::string_view tag) {
    return !archive.IsEndTag() && archive.TagName() == tag;
}

/// Whether the current element has children, and so an end tag of its own.
inline bool HasChildren(const CXmlFileArchive& archive) {
    return (archive.ElementState() & gd_xml_stream::XmlState::kHasChildren) != 0;
}

/// A list of plain values, one element `entryTag` each. How it is read, the kinds of it say.
template <class Object, class Value>
struct CListField {
    std::string_view tag;
    std::string_view entryTag;
    std::vector<Value> Object::*member;

    constexpr CListField(std::string_view listTag, std::string_view valueTag, std::vector<Value> Object::*values)
        : tag(listTag), entryTag(valueTag), member(values) {}

    void Put(CXmlFileArchive& archive, const Object& object) const {
        PutList(archive, object.*member, [&](const Value& value) { SaveValue(archive, entryTag, value); });
    }
};

/// A list of plain values of which each event uses up one count. What isn't an entry adds none to the list.
template <class Object, class Value>
struct CValuesField : CListField<Object, Value> {
    using CListField<Object, Value>::CListField;

    void Get(CXmlFileArchive& archive, Object& object) const {
        auto& values = object.*(this->member);
        values.clear();
        for (std::size_t count = archive.GetListSize(); count > 0; --count) {
            archive.NextElement();
            if (!IsStartOf(archive, this->entryTag)) continue;
            Value value{};
            archive.GetValue(value);
            values.push_back(std::move(value));
        }
    }
};
template <class Object, class Value>
CValuesField(std::string_view, std::string_view, std::vector<Value> Object::*) -> CValuesField<Object, Value>;

/// A list of plain values that is as long as its `Size` says, in which each event stands for one entry. What isn't an
/// entry leaves its place at the default.
template <class Object, class Value>
struct CPlacedValuesField : CListField<Object, Value> {
    using CListField<Object, Value>::CListField;

    void Get(CXmlFileArchive& archive, Object& object) const {
        auto& values = object.*(this->member);
        values.assign(archive.GetListSize(), Value{});
        for (Value& value : values) {
            archive.NextElement();
            if (IsStartOf(archive, this->entryTag)) archive.GetValue(value);
        }
    }
};
template <class Object, class Value>
CPlacedValuesField(std::string_view, std::string_view, std::vector<Value> Object::*)
    -> CPlacedValuesField<Object, Value>;

/// A field of a part of the object, in the object's own element.
template <class Object, class Part, class Field>
struct CPartField {
    Part Object::*part;
    Field field;
    std::string_view tag = field.tag;

    void Put(CXmlFileArchive& archive, const Object& object) const { field.Put(archive, object.*part); }
    void Get(CXmlFileArchive& archive, Object& object) const { field.Get(archive, object.*part); }
};

/// Lifts fields of a part to the object that has the part.
template <class Object, class Part, class... Fields>
constexpr auto FieldsOfPart(Part Object::*part, const Fields&... fields) {
    return std::tuple{CPartField<Object, Part, Fields>{part, fields}...};
}

/// Writes what stands inside the element of an object.
template <class Object, class... Fields>
void PutFields(CXmlFileArchive& archive, const Object& object, const std::tuple<Fields...>& fields) {
    const auto save = [&](const auto& field) {
        archive.OpenChild(field.tag);
        field.Put(archive, object);
        archive.CloseElement();
    };
    std::apply([&](const auto&... field) { (save(field), ...); }, fields);
}

/// Reads the field whose start the archive stands at. Returns false if it is none of these.
template <class Object, class... Fields>
bool GetField(CXmlFileArchive& archive, Object& object, const std::tuple<Fields...>& fields) {
    if (archive.IsEndTag()) return false;
    const std::string_view tag = archive.TagName();
    const auto load = [&](const auto& field) {
        if (field.tag != tag) return false;
        field.Get(archive, object);
        return true;
    };
    return std::apply([&](const auto&... field) { return (load(field) || ...); }, fields);
}

/// Goes through the events up to the end tag of the current object, or the end of the document.
template <class Handle>
void ForEachEventUntil(CXmlFileArchive& archive, std::string_view endTag, Handle handle) {
    while (archive.NextElement() && !(archive.IsEndTag() && archive.TagName() == endTag))
        handle();
}

/// Writes the whole element of an object.
template <class Object>
void SaveElement(CXmlFileArchive& archive, const Object& object) {
    archive.OpenChild(CXmlForm<Object>::kElement);
    PutFields(archive, object, CXmlForm<Object>::kFields);
    archive.CloseElement();
}

/// Reads an object up to its end tag. The archive may stand ahead of its start tag or behind it.
template <class Object>
void LoadElement(CXmlFileArchive& archive, Object& object) {
    ForEachEventUntil(archive, CXmlForm<Object>::kElement,
                      [&] { GetField(archive, object, CXmlForm<Object>::kFields); });
}

// ---- Lists of objects -----------------------------------------------------------------------------------------------

/// Writes an object that stands in a list: as it does itself, or by its form.
template <class Entry>
void SaveEntry(CXmlFileArchive& archive, const Entry& entry) {
    if constexpr (requires { entry.Save(archive); }) {
        entry.Save(archive);
    } else {
        SaveElement(archive, entry);
    }
}

/// Reads such an object.
template <class Entry>
Entry LoadEntry(CXmlFileArchive& archive) {
    Entry entry{};
    if constexpr (requires { entry.Load(archive); }) {
        entry.Load(archive);
    } else {
        LoadElement(archive, entry);
    }
    return entry;
}

/// Reads a list of objects, as many as its `Size` says, and hands each on to `keep`.
template <class Entry, class KeepEntry>
void GetEntries(CXmlFileArchive& archive, KeepEntry keep) {
    for (std::size_t count = archive.GetListSize(); count > 0; --count)
        keep(LoadEntry<Entry>(archive));
}

/// A list of objects, which replaces the one before.
template <class Object, class Entry>
struct CObjectsField {
    std::string_view tag;
    std::vector<Entry> Object::*member;

    void Put(CXmlFileArchive& archive, const Object& object) const {
        PutList(archive, object.*member, [&](const Entry& entry) { SaveEntry(archive, entry); });
    }
    void Get(CXmlFileArchive& archive, Object& object) const {
        (object.*member).clear();
        GetEntries<Entry>(archive, [&](Entry entry) { (object.*member).push_back(std::move(entry)); });
    }
};
template <class Object, class Entry>
CObjectsField(std::string_view, std::vector<Entry> Object::*) -> CObjectsField<Object, Entry>;

/// A map of objects as a list, which replaces the one before. Keys aren't stored: each is that of a word that the
/// object holds. Of objects with one key, the last counts.
template <class Object, class Key, class Entry>
struct CKeyedObjectsField {
    std::string_view tag;
    std::map<Key, Entry> Object::*member;
    std::string Entry::*word;

    void Put(CXmlFileArchive& archive, const Object& object) const {
        PutList(archive, object.*member, [&](const auto& entry) { SaveEntry(archive, entry.second); });
    }
    void Get(CXmlFileArchive& archive, Object& object) const {
        (object.*member).clear();
        GetEntries<Entry>(archive, [&](Entry entry) {
            const Key key = base::ValueOf<Key>(entry.*word);
            (object.*member)[key] = std::move(entry);
        });
    }
};
template <class Object, class Key, class Entry>
CKeyedObjectsField(std::string_view, std::map<Key, Entry> Object::*, std::string Entry::*)
    -> CKeyedObjectsField<Object, Key, Entry>;

}  // namespace vxfileio::xmlarchive
