// Reads any element as one of the property sets, or as the record plate's long form, which the library never stores in
// a file. The first byte of the input selects the set, the second is the block size.
#include "fuzz/Fuzz.h"
#include "fuzz/Saved.h"
#include "vxfileio/frame/VXFileIO.h"

namespace {

template <class Property>
Property Loaded(const std::string& path, std::int32_t blockSize) {
    gd_xml_stream::CFileBuffer file;
    Require(file.Open(path, "r") == 0, "the document opens");
    CXmlFileArchive archive(&file, gd_xml_stream::kLoad, blockSize);
    Property property;
    property.Load(archive);
    return property;
}

/// Checks that a property set reads the same after it was written, and in blocks of any size. (Ignores the analyzer's
/// date, which is the time of writing. A NUL that ends the document is noticed only when its block is read, so how many
/// entries a list with a wrong `Size` may have depends on the size of the blocks.)
template <class Property>
void Check(const std::string& path, std::int32_t blockSize, bool hasNul) {
    auto property = Loaded<Property>(path, blockSize);
    auto other = Loaded<Property>(path, gd_xml_stream::kBlockSize);
    const Property copy = property;
    property = copy;
    const std::string once = Saved(path, property, blockSize);
    auto again = Loaded<Property>(path, blockSize);
    const std::string twice = Saved(path, again, blockSize);
    if constexpr (std::is_same_v<Property, CPropAnalyzer>) return;
    Require(once == twice, "it reads the same once written");
    Require(hasNul || once == Saved(path, other, gd_xml_stream::kBlockSize), "blocks of any size read the same");
}

constexpr void (*kChecks[])(const std::string&, std::int32_t, bool) = {
    Check<CPropRecordPlate>, Check<CPropControl>,      Check<CPropNotebook>,  Check<CPropRobot>,
    Check<CPropWashIn>,      Check<CPropQualityCheck>, Check<CPropRecording>, Check<CPropAnalyzer>,
    Check<CPropViability>,   Check<CPropResultsExport>};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = CFuzzFolder::Path("property.xml");
    CCalls input(Input(data, size));
    const auto check = kChecks[input.Byte() % std::size(kChecks)];
    const auto blockSize = static_cast<std::int32_t>(input.Byte());
    const Input document = input.Rest();
    WriteBytes(path, document);
    check(path, blockSize, std::ranges::find(document, 0) != document.end());
    return 0;
}
