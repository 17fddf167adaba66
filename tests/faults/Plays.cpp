#include "tests/faults/Plays.h"

#include <fstream>
#include <iterator>

#include "tests/rawdata/SegmentsOf.h"

namespace {

constexpr std::int64_t kSamples = 400;

std::vector<std::function<void()>> RawSteps(CVXFileIO& io, const std::string& path) {
    CIRawDataWriter& writer = *io.GetRawDateWriter();
    std::vector<std::function<void()>> steps;
    CRawDataFileHdr file;
    file.HeaderID = "OVL Vexaprobe";
    file.FileVersion = 2;
    steps.emplace_back([&writer, path] { writer.Open(path); });
    steps.emplace_back([&writer, file] { writer.WriteFileHdr(file); });
    for (std::int64_t segment = 0; segment < kSegments; ++segment) {
        if (segment % 3 == 0) {
            CRawDataRecordingHdr recording{.TaskName = "Series", .Recording = static_cast<std::int32_t>(segment / 3)};
            recording.WellChannels = {{7, 32768, 0.0002, 1}};
            steps.emplace_back([&writer, recording] { writer.WriteRecordingHdr(recording); });
        }
        steps.emplace_back([&writer, segment, samples = SamplesOf(segment)] {
            writer.WriteData(7, segment, segment + kSamples - 1, 1, samples.data());
        });
    }
    steps.emplace_back([&writer] { writer.UpdateFileHdr("CompoundTest", {"1000", "2000"}); });
    steps.emplace_back([&writer] { writer.Close(); });
    return steps;
}

std::vector<std::function<void()>> FlushedSteps(CVXFileIO& io, const std::string& path) {
    auto steps = RawSteps(io, path);
    CIRawDataWriter& writer = *io.GetRawDateWriter();
    for (const std::ptrdiff_t before : {7, 4, 2, 1})
        steps.insert(steps.begin() + before, [&writer] { static_cast<void>(writer.FlushToDisk()); });
    return steps;
}

/// Returns the numbers of the readable segments, each followed by a blank; "damaged" for one with wrong samples.
std::string ReadRaw(CVXFileIO& io, const std::string& path) {
    CIRawDataReader& reader = *io.GetRawDataReader();
    reader.Open(path);
    std::string content;
    for (std::int32_t recording = 0; recording < reader.GetIndex()->GetCount(); ++recording) {
        if (!reader.JumpToData("Series", recording)) continue;
        auto [well, from, to, size, samples] = CNextSegment();
        while (reader.ReadSegment(well, from, to, size, samples)) {
            const bool isWhole = SamplesOf(from) == std::vector<std::uint16_t>(samples, samples + size);
            content += isWhole ? std::to_string(from) + " " : "damaged ";
        }
    }
    return content;
}

CPropRecordPlate Plate() {
    CPropRecordPlate plate;
    plate.Data.Series = {1500, 1000000};
    for (const std::int32_t id : {4, 5, 9})
        plate.Data.AddWell(id, 0, 0, id, "a label that no short text holds " + std::to_string(id));
    plate.SetWellState(9, PlateWell::kActive);
    plate.SetWellState(4, PlateWell::kActive);
    return plate;
}

CPropAnalyzer Analyzer() {
    CPropAnalyzer analyzer;
    analyzer.InitTask(enTask::Series, 2, {4, 5, 9});
    return analyzer;
}

/// Returns results that are too large to be written in one piece.
CResults Results() {
    CResults results;
    results.SetFPAverage(4000, 10, 25);
    results.Init(1, enTask::Series, "Series", {1500, 1000000}, {4, 5, 9}, {"A1", "A2", "A3"});
    for (const std::int32_t id : {4, 5, 9}) {
        CResultsWell& well = *results.GetWellResults(enTask::Series, 1, id);
        well.AverageCount = 1;
        for (std::size_t i = 0; i < well.Average.size(); ++i)
            well.Average[i] = static_cast<double>(i) * 1.00001;
        well.FPfastDetectionTimes = {1, 2, 3};
        well.SetResults(enResponseType::QTInterval, enValueType::Plain, 0.5);
    }
    return results;
}

std::vector<std::function<void()>> SettingsSteps(CVXFileIO& io, const std::string& path) {
    CISettingsWriter& writer = *io.GetSettingsWriter();
    CXmlFileHeader header;
    header.Guid = "a text that is too long to be a short one";
    return {[&writer, header] { writer.SetXmlFileHeader(header); },
            [&writer, plate = Plate()] { writer.SetRecordPlateProperty(plate); },
            [&writer, analyzer = Analyzer()] { writer.SetAnalyzerProperty(analyzer); },
            [&writer, path] { writer.WriteFile(path); }};
}

std::string ReadSettings(CVXFileIO& io, const std::string& path) {
    CISettingsReader& reader = *io.GetSettingsReader();
    reader.ReadFile(path);
    std::string content = reader.GetXmlFileHeader()->Guid;
    for (const std::int32_t id : reader.GetRecordPlateProperty()->GetAllWellIDs())
        content += " " + std::to_string(id);
    return content;
}

std::vector<std::function<void()>> ResultsSteps(CVXFileIO& io, const std::string& path) {
    CIResultsWriter& writer = *io.GetResultsWriter();
    return {[&writer, path, results = Results()] { writer.WriteFile(path, results); }};
}

std::string ReadResults(CVXFileIO& io, const std::string& path) {
    io.GetResultsReader()->ReadFile(path);
    const CResults& results = *io.GetResultsReader()->GetResults();
    double sum = 0;
    for (const std::int32_t id : {4, 5, 9}) {
        const CResultsWell* const well = results.GetWellResults(enTask::Series, 1, id);
        for (const double sample : well == nullptr ? std::vector<double>() : well->Average)
            sum += sample;
    }
    return std::to_string(sum);
}

std::vector<std::function<void()>> ExportSteps(CVXFileIO& io, const std::string& path) {
    static const CResults results = Results();
    static const CPropAnalyzer analyzer = Analyzer();
    static const CPropRecordPlate plate = Plate();
    CIResultsExport& exporter = *io.GetResultsExport();
    exporter.SetResults(&results);
    exporter.SetPropertyAnalyzer(&analyzer);
    exporter.SetPropertyRecordPlate(&plate);
    return {[&exporter, path] { exporter.ExportExcel(path); }};
}

}  // namespace

const std::vector<CKind>& AllKinds() {
    static const std::vector<CKind> kinds = {
        {"raw", "run.vxd", false, RawSteps, [](CVXFileIO& io) { return io.GetRawDateWriter()->GetWriteError(); },
         ReadRaw},
        {"settings", "run.vxs", true, SettingsSteps,
         [](CVXFileIO& io) { return io.GetSettingsWriter()->GetWriteError(); }, ReadSettings},
        {"results", "run.vxr", true, ResultsSteps, [](CVXFileIO& io) { return io.GetResultsWriter()->GetWriteError(); },
         ReadResults},
        {"export", "run.xls", false, ExportSteps, [](CVXFileIO& io) { return io.GetResultsExport()->GetWriteError(); },
         nullptr},
    };
    return kinds;
}

const CKind& FlushedRaw() {
    static const CKind kind = [] {
        CKind flushed = AllKinds().front();
        flushed.name = "flushed";
        flushed.steps = FlushedSteps;
        return flushed;
    }();
    return kind;
}

std::vector<std::uint16_t> SamplesOf(std::int64_t number) {
    return std::vector<std::uint16_t>(kSamples, static_cast<std::uint16_t>(number + 1));
}

std::string BytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const std::size_t date = bytes.find("<AnalyzingDate>");
    const std::size_t end = bytes.find("</AnalyzingDateString>");
    return date == std::string::npos || end == std::string::npos ? bytes : bytes.substr(0, date) + bytes.substr(end);
}
