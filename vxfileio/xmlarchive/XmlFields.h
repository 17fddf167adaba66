#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "vxfileio/base/EnumerationWords.h"
#include "vxfileio/xmlarchive/XmlArchive.h"
#include "vxfileio/xmlarchive/XmlElement.h"
#include "vxfileio/xmlarchive/XmlFaults.h"

/// @file
/// Forms: lists of fields that state once which elements a class consists of. Saving, loading, the checks of
/// `vxfile verify` and the check of the tables in `docs` all follow from them.
///
/// A class `C` that goes into a document has a specialisation of `CXmlForm<C>` in a header in `forms/`, with
/// - `kElement`, the tag of its element,
/// - `kFields`, a tuple of fields in the order of the file,
/// - `kKey`, only if a map holds its objects by a key that the object doesn't hold itself: a `CKeyField`, and
/// - `kShortSize`, only if the element may end early, see `CXmlElement::shortSize`.
///
/// A field is anything with
/// - `tag`, the tag of its element,
/// - `Element()`, the description of its element,
/// - `Put(archive, object)`, which writes the content of its element, and
/// - `Get(archive, object)`, which reads the content once the archive has reached the start of its element.
///
/// A field that is a member of its class also has the type `CObject`, and `Value(object)`, which returns the member. A
/// field that holds objects has the type `CEntryForm`, the form of these.
///
/// Fields are found by their tags, in any order; a key is found as the first child alone. Elements that no field knows
/// are skipped. A field whose element is missing keeps its value.
///
/// (Clang 14 doesn't deduce the template arguments of aggregates, hence the deduction guides.)

namespace vxfileio::xmlarchive {

/// The form of a class in a document.
template <class Object>
struct CXmlForm;

// ---- Walking a form -------------------------------------------------------------------------------------------------

/// Calls `visit(field)` for each field, in the order of the file.
template <class... Fields, class Visit>
constexpr void ForEachField(const std::tuple<Fields...>& fields, Visit visit) {
    std::apply([&](const auto&... field) { (visit(field), ...); }, fields);
}

/// The descriptions of the children of a form's element.
template <class Form>
inline constexpr auto kChildrenOf = std::apply(
    [](const auto&... field) {
        if constexpr (requires { Form::kKey; }) {
            return std::array<CXmlElement, sizeof...(field) + 1>{Form::kKey.Element(), field.Element()...};
        } else {
            return std::array<CXmlElement, sizeof...(field)>{field.Element()...};
        }
    },
    Form::kFields);

template <class Form>
constexpr std::size_t ShortSizeOf() noexcept {
    if constexpr (requires { Form::kShortSize; }) return Form::kShortSize;
    return CXmlElement{}.shortSize;
}

/// The description of a form's element.
template <class Form>
inline constexpr CXmlElement kElementOf{
    .tag = Form::kElement, .kind = EXmlKind::Object, .children = kChildrenOf<Form>, .shortSize = ShortSizeOf<Form>()};

// ---- Single values --------------------------------------------------------------------------------------------------

/// Writes a text. Reports one with a NUL, since only what precedes it is written.
inline void PutText(CXmlFileArchive& archive, const std::string& text) {
    archive.PutValue(text);
    if (text.find('\0') != std::string::npos) archive.NoteCutText();
}

/// Writes one value: an enumeration as its word, a character as a text.
template <class Value>
void PutPlain(CXmlFileArchive& archive, const Value& value) {
    if constexpr (std::is_enum_v<Value>) {
        archive.PutValue(std::string(base::WordOf(value)));
    } else if constexpr (std::is_same_v<Value, char>) {
        archive.PutValue(std::string(1, value));
    } else if constexpr (std::is_same_v<Value, std::string>) {
        PutText(archive, value);
    } else {
        archive.PutValue(value);
    }
}

/// Reads one value. A character is the first byte of its text, or NUL if the text is empty. Reports a word that isn't
/// in its table, unless it `mayBeEmpty` and is, and a character that is followed by others.
template <class Value>
void GetPlain(CXmlFileArchive& archive, Value& value, [[maybe_unused]] bool mayBeEmpty = false) {
    using gd_xml_stream::XmlFault;
    if constexpr (std::is_enum_v<Value> || std::is_same_v<Value, char>) {
        std::string room;
        const std::string_view text = archive.GetText(room);
        if constexpr (std::is_enum_v<Value>) {
            constexpr auto& table = base::kWords<Value>;
            value = base::ValueOf<Value>(text);
            const bool isWord = value != table.unknownWord || base::WordOf(value) == text;
            if (!isWord && !(mayBeEmpty && text.empty())) archive.NoteText(XmlFault::UnknownWord, table.words);
        } else {
            value = text.empty() ? '\0' : text.front();
            if (text.size() > 1) archive.NoteText(XmlFault::LongText);
        }
    } else {
        archive.GetValue(value);
    }
}

/// Writes an element with one value.
template <class Value>
void SaveValue(CXmlFileArchive& archive, std::string_view tag, const Value& value) {
    archive.OpenChild(tag);
    PutPlain(archive, value);
    archive.CloseElement();
}

/// Returns whether the archive is at the start of an element with this tag.
inline bool IsStartOf(const CXmlFileArchive& archive, std::string_view tag) {
    return !archive.IsEndTag() && archive.TagName() == tag;
}

/// Returns whether the current element has children, and so an end tag.
inline bool HasChildren(const CXmlFileArchive& archive) {
    return (archive.ElementState() & gd_xml_stream::XmlState::kHasChildren) != 0;
}

/// Reads the children of the current element, a start tag, by `load()`. Reports an element without children, which has
/// no end tag to read up to.
template <class Load>
void LoadChildren(CXmlFileArchive& archive, Load load) {
    archive.NeedChildren();
    if (HasChildren(archive)) load();
}

/// Reads an entry with a key from its start tag on, by `load()` at its first child. Reports an entry without children.
template <class Load>
void LoadKeyed(CXmlFileArchive& archive, Load load) {
    LoadChildren(archive, [&] {
        archive.NextElement();
        if (!archive.IsEndTag()) load();  // it may have only a comment
    });
}

/// Returns the number of entries to read from the current list: its `Size`, or 0 if it has no children.
inline std::size_t EntriesOf(CXmlFileArchive& archive) {
    const std::size_t size = archive.GetListSize();
    return HasChildren(archive) ? size : 0;
}

/// Returns whether the current event is the start tag of an element with this tag and without content. No end tag
/// follows.
inline bool IsEmptyElement(CXmlFileArchive& archive, std::string_view tag) {
    return IsStartOf(archive, tag) && !HasChildren(archive) && archive.GetText().empty();
}

/// A number, bool, text, character or enumeration, depending on the member's type.
template <class Object, class Member>
struct CValueField {
    using CObject = Object;
    std::string_view tag;
    Member Object::*member;

    constexpr CXmlElement Element() const noexcept { return ElementOfValue<Member>(tag); }
    const Member& Value(const Object& object) const noexcept { return object.*member; }
    void Put(CXmlFileArchive& archive, const Object& object) const { PutPlain(archive, object.*member); }
    void Get(CXmlFileArchive& archive, Object& object) const { GetPlain(archive, object.*member); }
};
template <class Object, class Member>
CValueField(std::string_view, Member Object::*) -> CValueField<Object, Member>;

/// A text whose CDATA sections, which other programs write, are read undecoded.
template <class Object>
struct CTextField {
    using CObject = Object;
    std::string_view tag;
    std::string Object::*member;

    constexpr CXmlElement Element() const noexcept { return {.tag = tag, .isVerbatim = true}; }
    const std::string& Value(const Object& object) const noexcept { return object.*member; }
    void Put(CXmlFileArchive& archive, const Object& object) const { PutText(archive, object.*member); }
    void Get(CXmlFileArchive& archive, Object& object) const { object.*member = archive.GetText(); }
};
template <class Object>
CTextField(std::string_view, std::string Object::*) -> CTextField<Object>;

/// A text that should be a word, since it is the key of its object in a map. Reports one that isn't, unless it is
/// empty.
template <class Word, class Field>
struct CKeyTextField : Field {
    constexpr CXmlElement Element() const noexcept {
        CXmlElement element = Field::Element();
        element.words = base::kWords<Word>.words;
        element.mayBeEmpty = true;
        return element;
    }
    void Get(CXmlFileArchive& archive, typename Field::CObject& object) const {
        Field::Get(archive, object);
        const std::string& text = this->Value(object);
        const auto& words = base::kWords<Word>.words;
        if (!text.empty() && std::find(words.begin(), words.end(), text) == words.end())
            archive.NoteText(gd_xml_stream::XmlFault::UnknownWord, words);
    }
};

/// A field that files of earlier releases lack. Checks don't report its element as missing.
template <class Field>
struct CNewField : Field {
    constexpr explicit CNewField(const Field& field) : Field(field) {}

    constexpr CXmlElement Element() const noexcept {
        CXmlElement element = Field::Element();
        element.isNew = true;
        return element;
    }
};

/// The key of an object that a map holds: the object's first child, which is found by its place alone.
template <class Key>
struct CKeyField {
    std::string_view tag;
    Key missing{};            ///< The key of an object that has another first child.
    bool mayBeEmpty = false;  ///< A word may be missing.

    constexpr CXmlElement Element() const noexcept {
        CXmlElement element = ElementOfValue<Key>(tag);
        element.mayBeEmpty = mayBeEmpty;
        return element;
    }
    /// Reads the key from the current element. Reports one with another tag.
    Key Read(CXmlFileArchive& archive) const {
        Key key = missing;
        if (archive.TagName() == tag) {
            GetPlain(archive, key, mayBeEmpty);
        } else {
            archive.NoteMissingKey(tag);
        }
        return key;
    }
};

// ---- Lists of values ------------------------------------------------------------------------------------------------

/// Writes a list: its `Size`, then `saveEntry(entry)` for each.
template <class Entries, class SaveEntry>
void PutList(CXmlFileArchive& archive, const Entries& entries, SaveEntry saveEntry) {
    archive.PutAttribute(gd_xml_stream::kListSize, static_cast<std::int32_t>(entries.size()));
    for (const auto& entry : entries)
        saveEntry(entry);
}

/// A list of values with one element each. Derived classes differ in how they read it.
template <class Object, class Entry>
struct CListField {
    using CObject = Object;
    std::string_view tag;
    CXmlElement entry;
    std::vector<Entry> Object::*member;

    constexpr CListField(std::string_view listTag, std::string_view entryTag, std::vector<Entry> Object::*entries)
        : tag(listTag), entry(ElementOfValue<Entry>(entryTag)), member(entries) {}

    constexpr CXmlElement Element() const noexcept {
        return {.tag = tag, .kind = EXmlKind::List, .children = {&entry, 1}};
    }
    const std::vector<Entry>& Value(const Object& object) const noexcept { return object.*member; }
    void Put(CXmlFileArchive& archive, const Object& object) const {
        PutList(archive, object.*member, [&](const Entry& value) { SaveValue(archive, entry.tag, value); });
    }
};

/// A list of values in which each event uses up one entry of its `Size`. Unknown elements add nothing to the list.
template <class Object, class Entry>
struct CValuesField : CListField<Object, Entry> {
    using CListField<Object, Entry>::CListField;

    void Get(CXmlFileArchive& archive, Object& object) const {
        auto& values = object.*(this->member);
        values.clear();
        for (std::size_t count = EntriesOf(archive); count > 0; --count) {
            archive.NextElement();
            if (!IsStartOf(archive, this->entry.tag)) continue;
            Entry value{};
            archive.GetValue(value);
            values.push_back(std::move(value));
        }
    }
};
template <class Object, class Entry>
CValuesField(std::string_view, std::string_view, std::vector<Entry> Object::*) -> CValuesField<Object, Entry>;

/// A list of values that is as long as its `Size` says, in which each event is one entry. The entry of an unknown
/// element keeps the default.
template <class Object, class Entry>
struct CPlacedValuesField : CListField<Object, Entry> {
    using CListField<Object, Entry>::CListField;

    void Get(CXmlFileArchive& archive, Object& object) const {
        auto& values = object.*(this->member);
        values.assign(archive.GetListSize(), Entry{});
        if (!HasChildren(archive)) return;
        for (Entry& value : values) {
            archive.NextElement();
            if (IsStartOf(archive, this->entry.tag)) archive.GetValue(value);
        }
    }
};
template <class Object, class Entry>
CPlacedValuesField(std::string_view, std::string_view, std::vector<Entry> Object::*)
    -> CPlacedValuesField<Object, Entry>;

// ---- Fields of a part -----------------------------------------------------------------------------------------------

/// A field of a part of the object, in the object's own element.
template <class Object, class Part, class Field>
struct CPartField {
    using CObject = Object;
    Part Object::*part;
    Field field;
    std::string_view tag = field.tag;

    constexpr CXmlElement Element() const noexcept { return field.Element(); }
    const auto& Value(const Object& object) const noexcept { return field.Value(object.*part); }
    void Put(CXmlFileArchive& archive, const Object& object) const { field.Put(archive, object.*part); }
    void Get(CXmlFileArchive& archive, Object& object) const { field.Get(archive, object.*part); }
};

/// Lifts fields of a part to the object that has the part.
template <class Object, class Part, class... Fields>
constexpr auto FieldsOfPart(Part Object::*part, const Fields&... fields) {
    return std::tuple{CPartField<Object, Part, Fields>{part, fields}...};
}

// ---- Objects --------------------------------------------------------------------------------------------------------

/// Writes the content of a field from the first object that the field can write.
template <class Field, class Object, class... Others>
void PutContent(CXmlFileArchive& archive, const Field& field, const Object& object, const Others&... others) {
    if constexpr (requires { field.Put(archive, object); }) {
        field.Put(archive, object);
    } else {
        PutContent(archive, field, others...);
    }
}

/// Writes the elements of these fields. Each field takes the first object that it can write.
template <class... Fields, class... Objects>
void PutFields(CXmlFileArchive& archive, const std::tuple<Fields...>& fields, const Objects&... objects) {
    ForEachField(fields, [&](const auto& field) {
        archive.OpenChild(field.tag);
        PutContent(archive, field, objects...);
        archive.CloseElement();
    });
}

/// Reads the content of a field into the first object that the field can read.
template <class Field, class Object, class... Others>
void GetContent(CXmlFileArchive& archive, const Field& field, Object& object, Others&... others) {
    if constexpr (requires { field.Get(archive, object); }) {
        field.Get(archive, object);
    } else {
        GetContent(archive, field, others...);
    }
}

/// Reads the field whose start the archive is at. Each field takes the first object that it can read. Returns false if
/// the element is none of these fields.
template <class... Fields, class... Objects>
bool GetField(CXmlFileArchive& archive, const std::tuple<Fields...>& fields, Objects&... objects) {
    if (archive.IsEndTag()) return false;
    const std::string_view tag = archive.TagName();
    const auto load = [&](const auto& field) {
        if (field.tag != tag) return false;
        GetContent(archive, field, objects...);
        return true;
    };
    return std::apply([&](const auto&... field) { return (load(field) || ...); }, fields);
}

/// Processes the events up to the end tag of the current object, or to the end of the document.
template <class Handle>
void ForEachEventUntil(CXmlFileArchive& archive, std::string_view endTag, Handle handle) {
    while (archive.NextElement() && !(archive.IsEndTag() && archive.TagName() == endTag))
        handle();
}

/// Writes the element of a form.
template <class Form, class... Objects>
void SaveForm(CXmlFileArchive& archive, const Objects&... objects) {
    archive.OpenChild(Form::kElement);
    PutFields(archive, Form::kFields, objects...);
    archive.CloseElement();
}

/// Reads the fields of a form up to its end tag. The archive is after its start tag.
template <class Form, class... Objects>
void LoadFields(CXmlFileArchive& archive, Objects&... objects) {
    ForEachEventUntil(archive, Form::kElement, [&] { GetField(archive, Form::kFields, objects...); });
}

/// The same if the archive is before its start tag or at it. Reports an element without children, which ends at its
/// start tag. What precedes the start tag is read, too.
template <class Form, class... Objects>
void LoadForm(CXmlFileArchive& archive, Objects&... objects) {
    const auto load = [&] { LoadFields<Form>(archive, objects...); };
    if (IsStartOf(archive, Form::kElement) && HasChildren(archive)) return LoadChildren(archive, load);
    while (archive.NextElement() && !(archive.IsEndTag() && archive.TagName() == Form::kElement)) {
        if (IsStartOf(archive, Form::kElement)) return LoadChildren(archive, load);
        GetField(archive, Form::kFields, objects...);
    }
}

/// Writes the element of an object.
template <class Object>
void SaveElement(CXmlFileArchive& archive, const Object& object) {
    SaveForm<CXmlForm<Object>>(archive, object);
}

/// Reads an object as `LoadForm` does.
template <class Object>
void LoadElement(CXmlFileArchive& archive, Object& object) {
    LoadForm<CXmlForm<Object>>(archive, object);
}

/// Writes the element of an object in a map, with its key as the first child.
template <class Form, class Key, class Object>
void SaveKeyed(CXmlFileArchive& archive, const Key& key, const Object& object) {
    archive.OpenChild(Form::kElement);
    SaveValue(archive, Form::kKey.tag, key);
    PutFields(archive, Form::kFields, object);
    archive.CloseElement();
}

// ---- Lists of objects -----------------------------------------------------------------------------------------------

/// Writes an object in a list: by its own operation if it has one, otherwise by its form.
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

/// The maximum number of entries that are added if the document ends early: an entry can take a hundred times the
/// memory of its bytes in the document.
inline constexpr std::size_t kMostMissingEntries = 1000;

/// Reads a list of objects, as many as its `Size` says, and passes each to `keep`. If the document ends early, the
/// missing ones have default values.
template <class Entry, class KeepEntry>
void GetEntries(CXmlFileArchive& archive, KeepEntry keep) {
    std::size_t missing = 0;
    for (std::size_t count = EntriesOf(archive); count > 0 && missing < kMostMissingEntries; --count) {
        keep(LoadEntry<Entry>(archive));
        missing = archive.TagName().empty() ? missing + 1 : 0;
    }
}

/// Returns the description of a list of objects of this form.
template <class Form>
constexpr CXmlElement ElementOfList(std::string_view tag) noexcept {
    return {.tag = tag, .kind = EXmlKind::List, .children = {&kElementOf<Form>, 1}};
}

/// A list of objects, which replaces the former one.
template <class Object, class Entry>
struct CObjectsField {
    using CObject = Object;
    using CEntryForm = CXmlForm<Entry>;
    std::string_view tag;
    std::vector<Entry> Object::*member;

    constexpr CXmlElement Element() const noexcept { return ElementOfList<CEntryForm>(tag); }
    const std::vector<Entry>& Value(const Object& object) const noexcept { return object.*member; }
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

/// A map of objects as a list, which replaces the former map. Keys aren't stored: each follows from a word in the
/// object. If several objects have the same key, the last one wins.
template <class Object, class Key, class Entry>
struct CKeyedObjectsField {
    using CObject = Object;
    using CEntryForm = CXmlForm<Entry>;
    std::string_view tag;
    std::map<Key, Entry> Object::*member;
    std::string Entry::*word;

    constexpr CXmlElement Element() const noexcept { return ElementOfList<CEntryForm>(tag); }
    const std::map<Key, Entry>& Value(const Object& object) const noexcept { return object.*member; }
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
