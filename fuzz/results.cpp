// Reads any bytes as a results file, completely. What was read is exported, and written again and must read the same.
#include "fuzz/Fuzz.h"
#include "vxfileio/base/VXExceptions.h"
#include "vxfileio/frame/VXFileIO.h"

using vxfileio::base::CExcConversion;

namespace {

/// Calls all query functions of the results.
void Walk(const CResults& results) {
    for (const enTask task : results.GetTasks()) {
        const std::int32_t recordings = results.GetRecordingCount(task);
        Require(results.GetRecording(task, recordings) == nullptr, "no recording after the last");
        for (std::int32_t recording = 0; recording < recordings; ++recording) {
            for (const std::int32_t id : results.GetWellIDs(task, recording)) {
                const CResultsWell* const well = results.GetWellResults(task, recording, id);
                Require(well != nullptr, "each well is found");
                Require(well->GetAveVoltage(well->GetAveSamples()) == 0.0, "nothing after the average");
                for (const auto& [type, response] : well->Responses)
                    Require(well->ResultsExist(type, enValueType::Plain), "each response is found");
            }
        }
    }
}

/// Exports the results of a plate that has some of their wells.
void Export(const CResults& results) try {
    static const std::string path = CFuzzFolder::Path("run.xls");
    CPropRecordPlate plate;
    for (const enTask task : results.GetTasks()) {
        for (const std::int32_t id : results.GetWellIDs(task, 0))
            if (plate.Data.Wells.size() < 3) plate.Data.AddWell(id, 0, 0, id, "A1");
        for (std::int32_t i = 0; i < results.GetRecordingCount(task); ++i)
            plate.Data.Series.push_back(results.GetRecording(task, i)->Dose);
    }
    const CPropAnalyzer analyzer;
    CIResultsExport exporter;
    exporter.SetResults(&results);
    exporter.SetPropertyAnalyzer(&analyzer);
    exporter.SetPropertyRecordPlate(&plate);
    exporter.ExportExcel(path);
} catch (const CExcConversion& dose) {
    Require(dose.code == CExcConversion::kDoseOutOfRange, "nothing but doses can't be converted");
}

std::string Copied(const std::string& from, const std::string& to) {
    CIResultsReader reader;
    reader.ReadFile(from);
    Require(reader.GetReadError().size() < kMostReadError, "the message has an end");
    Walk(*reader.GetResults());
    Export(*reader.GetResults());
    CIResultsWriter writer;
    writer.SetXmlFileHeader(*reader.GetXmlFileHeader());
    writer.WriteFile(to, *reader.GetResults());
    return ReadBytes(to);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string read = CFuzzFolder::Path("read.vxr");
    static const std::string first = CFuzzFolder::Path("first.vxr");
    static const std::string second = CFuzzFolder::Path("second.vxr");
    WriteBytes(read, Input(data, size));
    const std::string once = Copied(read, first);
    Require(Copied(first, second) == once, "results read the same once written");
    return 0;
}
