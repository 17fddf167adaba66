#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <type_traits>

#include "vxfileio/results/forms/ResultsForm.h"
#include "vxfileio/settings/forms/SettingsForm.h"

/// @file
/// Prints a line for each element of settings and results files that the forms know, for `check_forms.py`: path, type,
/// default, the tag of the entries of a list of values, and the words of an enumeration, separated by tabs.

namespace {

using namespace vxfileio::xmlarchive;

const std::map<EXmlKind, std::string> kKindNames = {
    {EXmlKind::Text, "text"},     {EXmlKind::Word, "word"},     {EXmlKind::Character, "character"},
    {EXmlKind::Bool, "bool"},     {EXmlKind::Int32, "int32"},   {EXmlKind::Int64, "int64"},
    {EXmlKind::UInt16, "uint16"}, {EXmlKind::UInt32, "uint32"}, {EXmlKind::UInt64, "uint64"},
    {EXmlKind::Double, "double"}, {EXmlKind::Object, "object"}, {EXmlKind::Samples, "samples"},
};

std::string TypeOf(const CXmlElement& element) {
    if (element.kind != EXmlKind::List) return kKindNames.at(element.kind);
    const CXmlElement& entry = element.children.front();
    if (entry.kind == EXmlKind::Samples) return "samples";
    return "list of " + (entry.kind == EXmlKind::Object ? std::string(entry.tag) : kKindNames.at(entry.kind));
}

/// Returns the text of a default; empty for those that only prose can state.
template <class Value>
std::string DefaultOf(const Value& value) {
    std::ostringstream text;
    if constexpr (std::is_enum_v<Value>) {
        text << '`' << vxfileio::base::WordOf(value) << '`';
    } else if constexpr (std::is_same_v<Value, std::string> || std::is_same_v<Value, char>) {
        const std::string bytes = std::string() + value;
        text << (bytes.empty() ? "empty" : bytes == " " ? "blank" : '`' + bytes + '`');
    } else if constexpr (std::is_arithmetic_v<Value>) {
        text << value;
    } else if (value.empty()) {
        text << "empty";
    } else if constexpr (std::is_arithmetic_v<typename Value::value_type>) {
        for (const auto& entry : value)
            text << (text.tellp() == 0 ? "" : ", ") << entry;
    }
    return text.str();
}

void PrintRow(const std::string& path, const CXmlElement& element, const std::string& defaultText) {
    std::cout << path << '/' << element.tag << '\t' << TypeOf(element) << '\t' << defaultText << '\t';
    if (element.kind == EXmlKind::List && element.children.front().kind != EXmlKind::Object)
        std::cout << element.children.front().tag;
    std::cout << '\t';
    const CXmlElement& valued = element.kind == EXmlKind::List ? element.children.front() : element;
    for (const auto word : valued.words) {
        if (valued.kind == EXmlKind::Word)
            std::cout << (word == valued.words.front() ? "" : ", ") << '`' << word << '`';
    }
    std::cout << '\n';
}

template <class Form>
void PrintForm(const std::string& outer);

/// Prints the form of the objects in a field.
template <class Field>
void PrintEntries(const std::string& path, const Field& field) {
    const bool isList = field.Element().kind == EXmlKind::List;
    PrintForm<typename Field::CEntryForm>(isList ? path + '/' + std::string(field.tag) : path);
}

template <class Form>
void PrintForm(const std::string& outer) {
    const std::string path = outer + '/' + std::string(Form::kElement);
    if constexpr (requires { Form::kKey; }) PrintRow(path, Form::kKey.Element(), DefaultOf(Form::kKey.missing));
    ForEachField(Form::kFields, [&](const auto& field) {
        using CField = std::remove_cvref_t<decltype(field)>;
        std::string defaultText;
        if constexpr (requires { typename CField::CObject; }) {
            defaultText = DefaultOf(field.Value(typename CField::CObject{}));
        }
        PrintRow(path, field.Element(), defaultText);
        if constexpr (requires { typename CField::CEntryForm; }) PrintEntries(path, field);
    });
}

}  // namespace

int main() {
    PrintForm<CXmlForm<CXmlFileHeader>>("");
    PrintForm<vxfileio::settings::CSettingsForm>("");
    PrintForm<CXmlForm<CResultsTask>>('/' + std::string(vxfileio::results::kResultsElement));
    return 0;
}
