#include "capi/Values.h"

#include <array>
#include <charconv>
#include <map>
#include <memory>
#include <optional>
#include <tuple>
#include <type_traits>
#include <vector>

#include "capi/Border.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/results/forms/ResultsForm.h"
#include "vxfileio/settings/forms/SettingsForm.h"

namespace vxfileio::capi {

using namespace xmlarchive;

namespace {

[[noreturn]] void RefuseType() { throw CFailed{VX_ERROR_TYPE, "The value has another type."}; }

[[noreturn]] void RefuseValue(std::string_view text) {
    throw CFailed{VX_ERROR_VALUE, "The value can't be \"" + std::string(text) + "\"."};
}

// ---- Single values ----

/// The kinds of single values, as the interface numbers them.
constexpr std::int32_t KindOf(EXmlKind kind) {
    switch (kind) {
        case EXmlKind::Text:
            return VX_TYPE_TEXT;
        case EXmlKind::Word:
            return VX_TYPE_WORD;
        case EXmlKind::Character:
            return VX_TYPE_CHARACTER;
        case EXmlKind::Bool:
            return VX_TYPE_BOOL;
        case EXmlKind::Double:
            return VX_TYPE_DOUBLE;
        default:
            return VX_TYPE_INTEGER;
    }
}

template <class Value>
Value& As(void* object) {
    return *static_cast<Value*>(object);
}
template <class Value>
const Value& As(const void* object) {
    return *static_cast<const Value*>(object);
}

template <class Value>
concept CWhole = std::is_integral_v<Value> && !std::is_same_v<Value, bool> && !std::is_same_v<Value, char>;

/// Returns a whole number as a type, if it holds it.
template <CWhole Value>
Value ToWhole(const CNumber& number) {
    return std::visit(
        [](auto given) -> Value {
            if constexpr (std::is_integral_v<decltype(given)>) {
                if (std::in_range<Value>(given)) return static_cast<Value>(given);
                RefuseValue(std::to_string(given));
            }
            RefuseType();
        },
        number);
}

double ToDouble(const CNumber& number) {
    return std::visit([](auto given) { return static_cast<double>(given); }, number);
}

/// Returns the number that a text is, and nothing else.
template <class Value>
Value ParseWhole(const std::string& text) {
    Value value{};
    if (helpers::ReadNumber(text, value) != helpers::ENumberFault::None) RefuseValue(text);
    return value;
}

/// Returns the value of a word. Throws with all words if it is none.
template <class Word>
Word ParseWord(std::string_view text) {
    const Word word = base::ValueOf<Word>(text);
    if (base::WordOf(word) == text) return word;
    std::string words;
    for (const std::string_view each : base::kWords<Word>.words)
        words.append(words.empty() ? "" : ", ").append(each);
    throw CFailed{VX_ERROR_VALUE, "The value can't be \"" + std::string(text) + "\", only one of " + words + "."};
}

/// A number, bool, text, character or word.
template <class Value>
class CSingleType : public CValueType {
 public:
    std::int32_t Kind() const noexcept override { return KindOf(ElementOfValue<Value>("").kind); }

    std::string Text(const void* object) const override {
        const auto& value = As<Value>(object);
        if constexpr (std::is_same_v<Value, std::string>) {
            return value;
        } else if constexpr (std::is_enum_v<Value>) {
            return std::string(base::WordOf(value));
        } else if constexpr (std::is_same_v<Value, char>) {
            return value == '\0' ? std::string() : std::string(1, value);
        } else if constexpr (std::is_same_v<Value, double>) {
            std::array<char, 32> room{};
            return {room.data(), std::to_chars(room.data(), room.data() + room.size(), value).ptr};
        } else {
            return std::to_string(value);
        }
    }

    void SetText(void* object, const std::string& text) const override {
        auto& value = As<Value>(object);
        if constexpr (std::is_same_v<Value, std::string>) {
            value = text;
        } else if constexpr (std::is_enum_v<Value>) {
            value = ParseWord<Value>(text);
        } else if constexpr (std::is_same_v<Value, char>) {
            if (text.size() > 1) RefuseValue(text);
            value = text.empty() ? '\0' : text.front();
        } else if constexpr (std::is_same_v<Value, double>) {
            value = ParseWhole<double>(text);
        } else if constexpr (std::is_same_v<Value, std::uint64_t>) {
            value = ParseWhole<std::uint64_t>(text);
        } else {
            SetNumber(object, ParseWhole<std::int64_t>(text));
        }
    }

    CNumber Number(const void* object) const override {
        const auto& value = As<Value>(object);
        if constexpr (std::is_same_v<Value, double> || std::is_same_v<Value, std::uint64_t>) {
            return value;
        } else if constexpr (std::is_same_v<Value, std::string> || std::is_same_v<Value, char>) {
            RefuseType();
        } else {
            return static_cast<std::int64_t>(value);
        }
    }

    void SetNumber(void* object, const CNumber& number) const override {
        auto& value = As<Value>(object);
        if constexpr (CWhole<Value>) {
            value = ToWhole<Value>(number);
        } else if constexpr (std::is_same_v<Value, double>) {
            value = ToDouble(number);
        } else if constexpr (std::is_same_v<Value, bool>) {
            const auto given = ToWhole<std::int64_t>(number);
            if (given != 0 && given != 1) RefuseValue(std::to_string(given));
            value = given == 1;
        } else if constexpr (std::is_enum_v<Value>) {
            const auto given = ToWhole<std::int32_t>(number);
            if (given < 0 || std::cmp_greater_equal(given, base::kWords<Value>.words.size()))
                RefuseValue(std::to_string(given));
            value = static_cast<Value>(given);
        } else {
            RefuseType();
        }
    }
};

template <class Value>
inline constexpr bool kIsSingle =
    std::is_arithmetic_v<Value> || std::is_enum_v<Value> || std::is_same_v<Value, std::string>;

// ---- Forms ----

/// @{
/// Returns the type of the value of a field, and that of an entry of a list or map. `Form` is the form of objects that
/// have none of their own.
template <class Value, class Form>
const CValueType& TypeOfField();
template <class Entry, class Form>
const CValueType& TypeOfEntry();
/// @}

/// The form of an object: its own, or else that of the field that holds it.
template <class Object, class Fallback>
struct CFormOf {
    using CType = Fallback;
};
template <class Object, class Fallback>
requires requires { CXmlForm<Object>::kElement; }
struct CFormOf<Object, Fallback> {
    using CType = CXmlForm<Object>;
};

template <class Field>
struct CEntryFormOf {
    using CType = void;
};
template <class Field>
requires requires { typename Field::CEntryForm; }
struct CEntryFormOf<Field> {
    using CType = typename Field::CEntryForm;
};

/// Returns what a field stands for in an object. A level of the document that has no member of its own is the object.
template <class Field, class Object>
auto& ValueIn(const Field& field, Object& object) {
    if constexpr (requires { field.Value(object); }) {
        using CValue = std::remove_cvref_t<decltype(field.Value(object))>;
        return const_cast<CValue&>(field.Value(object));  // the object can be changed
    } else if constexpr (requires { object.*field.member; }) {
        return object.*field.member;
    } else {
        return object;
    }
}

/// Whether a field stands for a value, not for something that is only written.
template <class Field, class Object>
inline constexpr bool kIsValue = requires(const Field& field, Object& object) {
    field.Value(object);
}
|| requires { typename Field::CEntryForm; }
|| requires { &Field::member; };

/// Whether the value of a field is an object in the document, even if it is a map in memory.
template <class Field>
constexpr bool IsGroup() {
    if constexpr (std::is_default_constructible_v<Field>) return Field{}.Element().kind == EXmlKind::Object;
    return false;
}

template <class Object, class Form>
class CObjectType : public CValueType {
 public:
    std::int32_t Kind() const noexcept override { return VX_TYPE_OBJECT; }

    std::size_t Count(const void* /*object*/) const override {
        std::size_t count = 0;
        ForEachValue([&](const auto& /*field*/) { ++count; });
        return count;
    }
    std::string NameOf(const void* /*object*/, std::size_t index) const override {
        std::string name;
        ForEachValue([&](const auto& field) {
            if (index-- == 0) name = field.tag;
        });
        return name;
    }
    CNode Find(void* object, std::string_view name) const override {
        CNode found;
        ForEachValue([&](const auto& field) {
            if (field.tag == name) found = NodeIn(field, As<Object>(object));
        });
        return found;
    }

 private:
    template <class Visit>
    static void ForEachValue(Visit visit) {
        ForEachField(Form::kFields, [&](const auto& field) {
            if constexpr (kIsValue<std::remove_cvref_t<decltype(field)>, Object>) visit(field);
        });
    }
    template <class Field>
    static CNode NodeIn(const Field& field, Object& object) {
        auto& value = ValueIn(field, object);
        using CValue = std::remove_cvref_t<decltype(value)>;
        using CForm = typename CEntryFormOf<Field>::CType;
        if constexpr (IsGroup<Field>()) {
            static const CObjectType<CValue, typename CFormOf<CValue, CForm>::CType> kType;
            return {&value, &kType};
        } else {
            return {&value, &TypeOfField<CValue, CForm>()};
        }
    }
};

// ---- Lists ----

/// Returns the number that a name is; nothing if it is none.
std::optional<std::int32_t> NumberOf(std::string_view name) {
    std::int32_t number = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (error != std::errc() || end != name.data() + name.size()) return std::nullopt;
    return std::to_string(number) == name ? std::optional(number) : std::nullopt;
}

/// Entries that are found by their index.
template <class Entry, class Form>
class CListType : public CValueType {
 public:
    std::int32_t Kind() const noexcept override { return VX_TYPE_LIST; }
    std::size_t Count(const void* object) const override { return As<std::vector<Entry>>(object).size(); }
    std::string NameOf(const void* /*object*/, std::size_t index) const override { return std::to_string(index); }

    CNode Find(void* object, std::string_view name) const override {
        auto& entries = As<std::vector<Entry>>(object);
        const auto index = NumberOf(name);
        if (!index || *index < 0 || std::cmp_greater_equal(*index, entries.size())) return {};
        Entry& entry = entries[static_cast<std::size_t>(*index)];
        if constexpr (requires { entry.get(); }) {
            using CPointed = typename Entry::element_type;
            return {entry.get(), &TypeOfEntry<CPointed, Form>()};
        } else {
            return {&entry, &TypeOfEntry<Entry, Form>()};
        }
    }
    void Insert(void* object, std::string_view name) const override {
        auto& entries = As<std::vector<Entry>>(object);
        if (name != std::to_string(entries.size())) RefuseValue(name);
        if constexpr (requires { entries.back().get(); }) {
            entries.push_back(std::make_unique<typename Entry::element_type>());
        } else {
            entries.emplace_back();
        }
    }
    void Remove(void* object, std::string_view name) const override {
        auto& entries = As<std::vector<Entry>>(object);
        entries.erase(entries.begin() + *NumberOf(name));
    }
    void RemoveRange(void* object, std::size_t first, std::size_t last) const override {
        const auto begin = As<std::vector<Entry>>(object).begin();
        As<std::vector<Entry>>(object).erase(begin + static_cast<std::ptrdiff_t>(first),
                                             begin + static_cast<std::ptrdiff_t>(last));
    }
};

template <class Key>
std::string NameOfKey(const Key& key) {
    if constexpr (std::is_enum_v<Key>) {
        return std::string(base::WordOf(key));
    } else {
        return std::to_string(key);
    }
}

template <class Key>
std::optional<Key> KeyOf(std::string_view name) {
    if constexpr (std::is_enum_v<Key>) {
        const Key key = base::ValueOf<Key>(name);
        return base::WordOf(key) == name ? std::optional(key) : std::nullopt;
    } else {
        return NumberOf(name);
    }
}

/// Returns the key of a name. Throws if it is none.
template <class Key>
Key ParseKey(std::string_view name) {
    if constexpr (std::is_enum_v<Key>) {
        return ParseWord<Key>(name);
    } else {
        const auto number = NumberOf(name);
        if (!number) RefuseValue(name);
        return *number;
    }
}

/// Stores the key of an entry in the field that repeats it, if there is one.
template <class Word, class Field, class Entry>
void SetKeyText(const CKeyTextField<Word, Field>& field, Entry& entry, std::string_view key) {
    ValueIn(field, entry) = key;
}
template <class Field, class Entry>
void SetKeyText(const Field& /*field*/, Entry& /*entry*/, std::string_view /*key*/) {}

/// Entries that are found by the word or the number of their key.
template <class Key, class Entry, class Form>
class CMapType : public CValueType {
 public:
    using CMap = std::map<Key, Entry>;

    std::int32_t Kind() const noexcept override { return VX_TYPE_MAP; }
    std::size_t Count(const void* object) const override { return As<CMap>(object).size(); }
    std::string NameOf(const void* object, std::size_t index) const override {
        return NameOfKey(std::next(As<CMap>(object).begin(), static_cast<std::ptrdiff_t>(index))->first);
    }
    CNode Find(void* object, std::string_view name) const override {
        auto& entries = As<CMap>(object);
        const auto key = KeyOf<Key>(name);
        const auto entry = key ? entries.find(*key) : entries.end();
        if (entry == entries.end()) return {};
        return {&entry->second, &TypeOfEntry<Entry, Form>()};
    }
    void Insert(void* object, std::string_view name) const override {
        Entry& entry = As<CMap>(object)[ParseKey<Key>(name)];
        using CForm = typename CFormOf<Entry, Form>::CType;
        if constexpr (requires { CForm::kFields; })
            ForEachField(CForm::kFields, [&](const auto& field) { SetKeyText(field, entry, name); });
    }
    void Remove(void* object, std::string_view name) const override { As<CMap>(object).erase(*KeyOf<Key>(name)); }
};

/// The type of an object or a single value.
template <class Value, class Form>
struct CTypeOf {
    using CType = CObjectType<Value, typename CFormOf<Value, Form>::CType>;
};
template <class Value, class Form>
requires kIsSingle<Value>
struct CTypeOf<Value, Form> {
    using CType = CSingleType<Value>;
};

/// The type of what a field holds, which can also be a list or a map.
template <class Value, class Form>
struct CFieldTypeOf : CTypeOf<Value, Form> {};
template <class Entry, class Form>
struct CFieldTypeOf<std::vector<Entry>, Form> {
    using CType = CListType<Entry, Form>;
};
template <class Key, class Entry, class Form>
struct CFieldTypeOf<std::map<Key, Entry>, Form> {
    using CType = CMapType<Key, Entry, Form>;
};

template <class Value, class Form>
const CValueType& TypeOfField() {
    static const typename CFieldTypeOf<Value, Form>::CType kType;
    return kType;
}

template <class Entry, class Form>
const CValueType& TypeOfEntry() {
    static const typename CTypeOf<Entry, Form>::CType kType;
    return kType;
}

// ---- Documents ----

/// A member of a document.
template <class Object, class Member>
struct CRootField {
    std::string_view tag;
    Member Object::*member;

    constexpr CXmlElement Element() const noexcept { return {}; }
};
template <class Object, class Member>
CRootField(std::string_view, Member Object::*) -> CRootField<Object, Member>;

struct CSettingsRoot {
    static constexpr auto kFields = std::tuple_cat(std::tuple{settings::CSectionField{&settings::CSettings::Header}},
                                                   settings::CSettingsForm::kFields);
};

struct CResultsRoot {
    static constexpr auto kFields = std::tuple{
        CRootField{CXmlForm<CXmlFileHeader>::kElement, &CResultsContent::Header},
        CRootField{"Tasks", static_cast<std::map<enTask, CResultsTask> CResultsContent::*>(&CResults::Tasks)}};
};

}  // namespace

std::size_t CValueType::Count(const void* /*object*/) const { RefuseType(); }
std::string CValueType::NameOf(const void* /*object*/, std::size_t /*index*/) const { RefuseType(); }
CNode CValueType::Find(void* /*object*/, std::string_view /*name*/) const { return {}; }
void CValueType::Insert(void* /*object*/, std::string_view /*name*/) const { RefuseType(); }
void CValueType::Remove(void* /*object*/, std::string_view /*name*/) const { RefuseType(); }
void CValueType::RemoveRange(void* /*object*/, std::size_t /*first*/, std::size_t /*last*/) const { RefuseType(); }
std::string CValueType::Text(const void* /*object*/) const { RefuseType(); }
void CValueType::SetText(void* /*object*/, const std::string& /*text*/) const { RefuseType(); }
CNumber CValueType::Number(const void* /*object*/) const { RefuseType(); }
void CValueType::SetNumber(void* /*object*/, const CNumber& /*number*/) const { RefuseType(); }

CNode NodeOf(settings::CSettings& settings) {
    static const CObjectType<settings::CSettings, CSettingsRoot> kType;
    return {&settings, &kType};
}

CNode NodeOf(CResultsContent& results) {
    static const CObjectType<CResultsContent, CResultsRoot> kType;
    return {&results, &kType};
}

CNode FindNode(CNode root, std::string_view path) {
    std::string_view rest = path;
    while (!rest.empty()) {
        const std::size_t size = rest.find('/');
        root = root.type->Find(root.object, rest.substr(0, size));
        if (root.object == nullptr) {
            const std::string_view known = path.substr(0, path.size() - rest.size());
            throw CFailed{VX_ERROR_NOT_FOUND, "\"" + std::string(path) + "\" has nothing of the name \"" +
                                                  std::string(rest.substr(0, size)) + "\" after \"" +
                                                  std::string(known) + "\"."};
        }
        rest = size == std::string_view::npos ? std::string_view() : rest.substr(size + 1);
    }
    return root;
}

}  // namespace vxfileio::capi
