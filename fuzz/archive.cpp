// Reads a document event by event. The first byte of the input is the block size, which must not affect the result.
// What was read is written again and must read the same.
#include <vector>

#include "fuzz/Documents.h"

namespace {

using gd_xml_stream::XmlType;
using gd_xml_stream::XmlValue;

struct CEvent {
    std::string name;
    bool isEnd = false;
    bool hasChildren = false;
    std::string text;
    std::string value;
    std::size_t listSize = 0;
    std::string attribute;

    bool operator==(const CEvent&) const = default;
};

template <class Value>
void AddBytes(std::string& bytes, Value value) {
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

template <class... Values>
void AddValues(CXmlFileArchive& archive, std::string& bytes, Values... values) {
    (archive.GetValue(values), ...);
    (AddBytes(bytes, values), ...);
}

/// Returns everything that the archive reports about the current element.
CEvent EventOf(CXmlFileArchive& archive) {
    CEvent event{.name = std::string(archive.TagName()),
                 .isEnd = archive.IsEndTag(),
                 .hasChildren = (archive.ElementState() & gd_xml_stream::XmlState::kHasChildren) != 0,
                 .text = archive.GetText()};
    archive.GetValue(event.value);
    AddValues(archive, event.value, std::int32_t{-7}, std::int64_t{-7}, std::uint16_t{7}, std::uint32_t{7},
              std::uint64_t{7}, 0.5, false);
    std::vector<double> samples(4);
    archive.GetSamples(samples);
    for (const double sample : samples)
        AddBytes(event.value, sample);
    event.listSize = archive.GetListSize();
    event.attribute = archive.ListHasEntries() ? " " : "0";
    XmlValue size(std::int32_t{-7});
    if (archive.GetAttribute("Size", size) == 0) event.attribute += std::to_string(size.AsInt32());
    XmlValue text("");
    if (archive.GetAttribute("Name", text) == 0) event.attribute += text.AsText();
    return event;
}

/// Reading continues after a failure, but not for ever.
std::vector<CEvent> EventsOf(const std::string& path, std::int32_t blockSize) {
    std::vector<CEvent> events;
    ReadDocument(path, blockSize, [&](CXmlFileArchive& archive) {
        events.push_back({.name = std::to_string(archive.SkipProlog())});
        for (int failures = 0; failures < 3;) {
            if (archive.NextElement()) {
                events.push_back(EventOf(archive));
            } else {
                ++failures;
                Require(archive.TagName().empty() && archive.GetText().empty(), "no element after a failure");
                events.push_back({.text = std::to_string(static_cast<int>(archive.LastError()))});
            }
        }
    });
    return events;
}

/// How many entries a list with a wrong `Size` may have depends on how much can follow. A NUL that ends the document is
/// noticed only when its block is read.
void ForgetListSizes(std::vector<CEvent>& events) {
    for (CEvent& event : events)
        event.listSize = 0;
}

/// Returns whether a writer may use all these names; reading is less strict.
bool HasPlainNames(const std::vector<CEvent>& events) {
    constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-";
    return std::all_of(events.begin(), events.end(), [&](const CEvent& event) {
        return event.name.find_first_not_of(kLetters) == std::string::npos;
    });
}

/// Returns a document with the same elements and texts, up to the first failure or the end of the root.
std::string Written(const std::string& path, const std::vector<CEvent>& events, std::int32_t blockSize) {
    return WrittenDocument(path, blockSize, [&](CXmlFileArchive& archive) {
        int open = 0;
        for (std::size_t i = 1; i < events.size() && !events[i].name.empty(); ++i) {
            const bool opens = !events[i].isEnd;
            const bool closes = events[i].isEnd || !events[i].hasChildren;
            if (opens) archive.OpenChild(events[i].name).PutValue(events[i].text);
            if (closes) archive.CloseElement();
            open += (opens ? 1 : 0) - (closes ? 1 : 0);
            if (open == 0) return;
        }
        for (; open > 0; --open)
            archive.CloseElement();
    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string read = CFuzzFolder::Path("read.xml");
    static const std::string written = CFuzzFolder::Path("written.xml");
    CCalls input(Input(data, size));
    const auto blockSize = static_cast<std::int32_t>(input.Byte());
    const Input document = input.Rest();
    WriteBytes(read, document);
    auto events = EventsOf(read, blockSize);
    auto others = EventsOf(read, gd_xml_stream::kBlockSize);
    if (std::ranges::find(document, 0) != document.end()) {
        ForgetListSizes(events);
        ForgetListSizes(others);
    }
    Require(events == others, "blocks of any size read the same");
    // A root without children at the end of a document causes no event.
    const bool hasTree = events.size() > 2 && events[1].hasChildren && !events[2].isEnd && !events[2].name.empty();
    if (!hasTree || !HasPlainNames(events)) return 0;

    const std::string once = Written(written, events, blockSize);
    Require(once == Written(written, events, gd_xml_stream::kBlockSize), "blocks of any size write the same");
    const auto again = EventsOf(written, blockSize);
    Require(Written(written, again, blockSize) == once, "a document reads the same once written");
    return 0;
}
