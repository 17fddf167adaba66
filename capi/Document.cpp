#include "capi/Document.h"

#include <vector>

#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/results/ResultsFile.h"
#include "vxfileio/settings/SettingsFile.h"
#include "vxfileio/xmlarchive/ReadAndReport.h"

namespace vxfileio::capi {

namespace {

/// Throws VX_ERROR_ARGUMENT unless the plate has this compound.
void RequireCompound(const CPropRecordPlate& plate, std::int32_t compound) {
    try {
        plate.RequireCompound(compound);
    } catch (const CExcVXReader& refused) {
        throw CFailed{VX_ERROR_ARGUMENT, refused.GetMsg()};
    }
}

}  // namespace

void CDocument::Begin(std::int32_t kind) {
    Require(kind == VX_SETTINGS || kind == VX_RESULTS, "The kind is unknown.");
    if (kind == VX_SETTINGS) {
        m_content.emplace<settings::CSettings>().Header.FileVersion = settings::kFirstVersionWithMarks;
    } else {
        m_content.emplace<CResultsContent>();
    }
    m_isOpen = true;
}

void CDocument::Read(const std::string& path) {
    m_isOpen = false;
    if (auto* const results = std::get_if<CResultsContent>(&m_content)) {
        results::CResultsReader reader;
        m_faults = xmlarchive::ReadAndReport(reader, path);
        static_cast<CResults&>(*results) = *reader.GetResults();
        results->Header = *reader.GetXmlFileHeader();
    } else {
        settings::CSettingsReader reader;
        m_faults = xmlarchive::ReadAndReport(reader, path);
        m_content = reader.Get();
    }
    m_isOpen = true;
    if (!m_faults.empty()) throw CFailed{VX_DAMAGED, m_faults};
}

void CDocument::Save(const std::string& path, std::int32_t compound) const {
    std::string writeError;
    if (const auto* const results = std::get_if<CResultsContent>(&m_content)) {
        Require(compound == CPropRecordPlate::kFirstCompound, "Results have no choice of compounds; pass -1.");
        results::CResultsWriter writer;
        writer.SetXmlFileHeader(results->Header);
        writer.WriteFile(path, *results);
        writeError = writer.GetWriteError();
    } else {
        const auto& content = std::get<settings::CSettings>(m_content);
        RequireCompound(content.RecordPlate, compound);
        settings::CSettingsWriter writer;
        writer.Content() = content;
        writer.SetXmlFileHeader(writer.Content().Header);
        writer.WriteFile(path, compound);
        writeError = writer.GetWriteError();
    }
    if (!writeError.empty()) throw CFailed{VX_ERROR_WRITE, writeError};
}

CNode CDocument::Find(std::string_view path) {
    return FindNode(std::visit([](auto& content) { return NodeOf(content); }, m_content), path);
}

settings::CSettings& CDocument::Settings() {
    auto* const settings = std::get_if<settings::CSettings>(&m_content);
    if (settings == nullptr) throw CFailed{VX_ERROR_KIND, "The document holds results, not settings."};
    return *settings;
}

CResultsContent& CDocument::Results() {
    auto* const results = std::get_if<CResultsContent>(&m_content);
    if (results == nullptr) throw CFailed{VX_ERROR_KIND, "The document holds settings, not results."};
    return *results;
}

namespace {

/// Runs `body`, whose failures get the path in front.
template <class Body>
void AtPath(const std::string& path, Body body) {
    try {
        body();
    } catch (CFailed& failed) {
        failed.text.insert(0, "\"" + path + "\": ");
        throw;
    }
}

/// Runs `body(node)` with the value at a path.
template <class Body>
int WithValue(vx_document* document, const char* path, Body body) noexcept {
    return With<CDocument>(document, [&](CDocument& object) {
        const std::string name = TakeText(path, "The path");
        const CNode node = object.Find(name);
        AtPath(name, [&] { body(node); });
    });
}

/// Runs `body(parent, name)` with the parent of the value at a path, and the value's name.
template <class Body>
int WithParent(vx_document* document, const char* path, Body body) noexcept {
    return With<CDocument>(document, [&](CDocument& object) {
        const std::string whole = TakeText(path, "The path");
        const std::size_t last = whole.rfind('/');
        const bool isDeep = last != std::string::npos;
        const CNode parent = object.Find(isDeep ? whole.substr(0, last) : "");
        AtPath(whole, [&] { body(parent, isDeep ? whole.substr(last + 1) : whole); });
    });
}

/// Returns a number as the type that the caller asked for. Throws if it doesn't fit.
template <class Number>
Number Fitting(const CNumber& number) {
    return std::visit(
        [](auto value) -> Number {
            if constexpr (std::is_same_v<Number, double>) {
                return static_cast<double>(value);
            } else if constexpr (std::is_same_v<decltype(value), double>) {
                throw CFailed{VX_ERROR_TYPE, "The value isn't a whole number."};
            } else {
                if (!std::in_range<Number>(value)) throw CFailed{VX_ERROR_VALUE, "The value is above 2^63 - 1."};
                return static_cast<Number>(value);
            }
        },
        number);
}

/// Returns the entries of a list of numbers.
template <class Number>
std::vector<Number> NumbersIn(const CNode& list) {
    if (list.type->Kind() != VX_TYPE_LIST) throw CFailed{VX_ERROR_TYPE, "The value isn't a list of numbers."};
    std::vector<Number> numbers(list.type->Count(list.object));
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const CNode entry = list.type->Find(list.object, std::to_string(i));
        numbers[i] = Fitting<Number>(entry.type->Number(entry.object));
    }
    return numbers;
}

/// Replaces the entries of a list of numbers.
template <class Number>
void SetNumbers(const CNode& list, std::span<const Number> numbers) {
    if (list.type->Kind() != VX_TYPE_LIST) throw CFailed{VX_ERROR_TYPE, "The value isn't a list of numbers."};
    const std::size_t before = list.type->Count(list.object);
    const CNode first = list.type->Find(list.object, "0");
    if (first.object != nullptr) static_cast<void>(first.type->Number(first.object));  // throws if it isn't a number
    try {
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            const std::string name = std::to_string(before + i);
            list.type->Insert(list.object, name);
            const CNode entry = list.type->Find(list.object, name);
            entry.type->SetNumber(entry.object, numbers[i]);
        }
    } catch (...) {
        list.type->RemoveRange(list.object, before, list.type->Count(list.object));
        throw;
    }
    list.type->RemoveRange(list.object, 0, before);
}

}  // namespace

}  // namespace vxfileio::capi

using namespace vxfileio::capi;

int VX_CALL vx_document_create(vx_document** out, int32_t kind) {
    return Make<CDocument>(out, [&](CDocument& document) { document.Begin(kind); });
}

int VX_CALL vx_document_open(vx_document** out, int32_t kind, const char* path) {
    return Make<CDocument>(out, [&](CDocument& document) {
        const std::string name = TakeText(path, "The path");
        document.Begin(kind);
        document.Read(name);
    });
}

int VX_CALL vx_document_get_faults(vx_document* document, char* buffer, int64_t* size) {
    return With<CDocument>(document, [&](CDocument& object) { PutText(object.Faults(), buffer, size); });
}

int VX_CALL vx_document_save(vx_document* document, const char* path, int32_t compound) {
    return With<CDocument>(document, [&](CDocument& object) { object.Save(TakeText(path, "The path"), compound); });
}

int VX_CALL vx_document_get_type(vx_document* document, const char* path, int32_t* type) {
    return WithValue(document, path, [&](const CNode& node) { Put(type, node.type->Kind()); });
}

int VX_CALL vx_document_get_count(vx_document* document, const char* path, int64_t* count) {
    return WithValue(document, path,
                     [&](const CNode& node) { Put(count, static_cast<std::int64_t>(node.type->Count(node.object))); });
}

int VX_CALL vx_document_get_name(vx_document* document, const char* path, int64_t index, char* buffer, int64_t* size) {
    return WithValue(document, path, [&](const CNode& node) {
        PutText(node.type->NameOf(node.object, TakeIndex(index, node.type->Count(node.object))), buffer, size);
    });
}

int VX_CALL vx_document_get_text(vx_document* document, const char* path, char* buffer, int64_t* size) {
    return WithValue(document, path, [&](const CNode& node) { PutText(node.type->Text(node.object), buffer, size); });
}

int VX_CALL vx_document_set_text(vx_document* document, const char* path, const char* text) {
    return WithValue(document, path,
                     [&](const CNode& node) { node.type->SetText(node.object, TakeText(text, "The text")); });
}

int VX_CALL vx_document_get_int64(vx_document* document, const char* path, int64_t* value) {
    return WithValue(document, path,
                     [&](const CNode& node) { Put(value, Fitting<std::int64_t>(node.type->Number(node.object))); });
}

int VX_CALL vx_document_set_int64(vx_document* document, const char* path, int64_t value) {
    return WithValue(document, path, [&](const CNode& node) { node.type->SetNumber(node.object, value); });
}

int VX_CALL vx_document_get_double(vx_document* document, const char* path, double* value) {
    return WithValue(document, path,
                     [&](const CNode& node) { Put(value, Fitting<double>(node.type->Number(node.object))); });
}

int VX_CALL vx_document_set_double(vx_document* document, const char* path, double value) {
    return WithValue(document, path, [&](const CNode& node) { node.type->SetNumber(node.object, value); });
}

int VX_CALL vx_document_get_int64s(vx_document* document, const char* path, int64_t* values, int64_t* count) {
    return WithValue(document, path,
                     [&](const CNode& node) { PutArray(NumbersIn<std::int64_t>(node), values, count); });
}

int VX_CALL vx_document_set_int64s(vx_document* document, const char* path, const int64_t* values, int64_t count) {
    return WithValue(document, path, [&](const CNode& node) { SetNumbers(node, TakeArray(values, count)); });
}

int VX_CALL vx_document_get_doubles(vx_document* document, const char* path, double* values, int64_t* count) {
    return WithValue(document, path, [&](const CNode& node) { PutArray(NumbersIn<double>(node), values, count); });
}

int VX_CALL vx_document_set_doubles(vx_document* document, const char* path, const double* values, int64_t count) {
    return WithValue(document, path, [&](const CNode& node) { SetNumbers(node, TakeArray(values, count)); });
}

int VX_CALL vx_document_insert(vx_document* document, const char* path) {
    return WithParent(document, path, [&](const CNode& parent, const std::string& name) {
        if (parent.type->Find(parent.object, name).object == nullptr) parent.type->Insert(parent.object, name);
    });
}

int VX_CALL vx_document_remove(vx_document* document, const char* path) {
    return WithParent(document, path, [&](const CNode& parent, const std::string& name) {
        if (parent.type->Find(parent.object, name).object == nullptr)
            throw CFailed{VX_ERROR_NOT_FOUND, "There is nothing to remove."};
        parent.type->Remove(parent.object, name);
    });
}
