// Reads any element as one of the property sets, or as the record plate's long form, which the library never stores in
// a file. The first byte of the input selects the set, the second is the block size.
#include "fuzz/Documents.h"

namespace {

template <class Property>
std::string Saved(const std::string& path, Property& property, std::int32_t blockSize) {
    return WrittenDocument(path, blockSize, [&](CXmlFileArchive& archive) {
        if constexpr (requires { property.Save(archive, false); }) {
            property.Save(archive, false);
        } else {
            property.Save(archive);
        }
    });
}

/// Checks that a property set reads the same after it was written. (Ignores the analyzer's date, which is the time of
/// writing.)
template <class Property>
void Check(const std::string& path, std::int32_t blockSize) {
    Property property;
    ReadDocument(path, blockSize, [&](CXmlFileArchive& archive) { property.Load(archive); });
    const Property copy = property;
    property = copy;
    const std::string once = Saved(path, property, blockSize);
    Property again;
    ReadDocument(path, blockSize, [&](CXmlFileArchive& archive) { again.Load(archive); });
    const std::string twice = Saved(path, again, blockSize);
    if constexpr (!std::is_same_v<Property, CPropAnalyzer>) Require(once == twice, "it reads the same once written");
}

constexpr void (*kChecks[])(const std::string&, std::int32_t) = {
    Check<CPropRecordPlate>, Check<CPropControl>,      Check<CPropNotebook>,  Check<CPropRobot>,
    Check<CPropWashIn>,      Check<CPropQualityCheck>, Check<CPropRecording>, Check<CPropAnalyzer>,
    Check<CPropViability>,   Check<CPropResultsExport>};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = CFuzzFolder::Path("property.xml");
    CCalls input(Input(data, size));
    const auto check = kChecks[input.Byte() % std::size(kChecks)];
    const auto blockSize = static_cast<std::int32_t>(input.Byte());
    WriteBytes(path, input.Rest());
    check(path, blockSize);
    return 0;
}
