// Reads any bytes as a settings file, completely. What was read is written again and must read the same.
#include "fuzz/Fuzz.h"
#include "tests/support/SettingsCopy.h"
#include "vxfileio/base/VXExceptions.h"
#include "vxfileio/frame/VXFileIO.h"

using vxfileio::base::CExcConversion;

namespace {

/// Calls all query functions of the plate.
void WalkPlate(const CPropRecordPlate& plate, const CPropAnalyzer& analyzer) {
    for (const std::int32_t well : plate.GetAllWellIDs()) {
        Require(plate.FindWell(well) != nullptr, "each well is found");
        plate.GetWellLabel(well);
        for (std::int32_t recording = -1; recording < 3; ++recording) {
            const auto mark = analyzer.GetResponseMark(enTask::Series, recording, well, enResponseType::QTInterval);
            const bool known = analyzer.IsWellAnalyzed(enTask::Series, recording, well);
            Require(recording >= 0 || (!known && mark == enAnalysisMark::Undefined), "no marks below the first");
        }
    }
    const auto compounds = plate.GetCompoundIDs();
    Require(compounds.size() == 1, "a settings file has one compound");
    Require(plate.GetActiveCompoundWellIDs(compounds.front()).size() <= plate.Data.Wells.size(), "its active wells");
}

/// Writes copies of what was read, with a fixed date of writing. Returns nothing if a dose of an old file has no text.
std::string Copied(const std::string& from, const std::string& to) try {
    CISettingsReader reader;
    reader.ReadFile(from);
    Require(reader.GetReadError().size() < kMostReadError, "the message has an end");
    if (!reader.GetRecordPlateProperty()->GetCompoundIDs().empty())
        WalkPlate(*reader.GetRecordPlateProperty(), *reader.GetAnalyzerProperty());
    CISettingsWriter writer;
    CopySettings(reader, writer);
    writer.WriteFile(to);
    std::string document = ReadBytes(to);
    const std::size_t date = document.rfind("<AnalyzingDate>");
    const std::string_view behind = "</AnalyzingDateString>";
    const std::size_t end = document.find(behind, date);
    Require(end != std::string::npos, "the date of writing is there");
    return document.erase(date, end + behind.size() - date);
} catch (const CExcConversion&) {
    return {};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string read = CFuzzFolder::Path("read.vxs");
    static const std::string first = CFuzzFolder::Path("first.vxs");
    static const std::string second = CFuzzFolder::Path("second.vxs");
    WriteBytes(read, Input(data, size));
    const std::string once = Copied(read, first);
    if (once.empty()) return 0;
    // Wells that don't belong to the compound get marks once more, but no records.
    const std::string twice = Copied(first, second);
    if (twice != once) Require(Copied(second, first) == twice, "settings read the same once written");
    return 0;
}
