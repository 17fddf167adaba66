#include <vxfileio/frame/VXFileIO.h>

#include <exception>
#include <iostream>
#include <limits>
#include <numeric>
#include <string>
#include <vector>

// Writes a few files to the given folder. Their content is fixed, so every build of the library must write the same
// bytes on any system.

namespace {

using Limits = std::numeric_limits<std::int64_t>;

CRawDataFileHdr FileHdr(const std::string& guid) {
    CRawDataFileHdr header;
    header.HeaderID = "OVL Vexaprobe Version 2";
    header.FileType = "Raw";
    header.ProgramVersion = "4.2.1";
    header.FileVersion = 2;
    header.Guid = guid;
    header.PlateID = "P-0007";
    header.CompoundID = std::numeric_limits<std::int32_t>::min();
    header.CompoundName = "Compound \"A\" <1 \xB5M>";
    return header;
}

CRawDataRecordingHdr RecordingHdr(const std::string& task, std::int32_t recording, std::int64_t dose) {
    CRawDataRecordingHdr header;
    header.TaskName = task;
    header.Recording = recording;
    header.Dose = dose;
    header.RecordingStartTime = std::numeric_limits<std::uint64_t>::max();
    header.RecordingTime = 5'000'000'000;
    return header;
}

/// A plate of few wells with every task, two segments per well.
void WritePlate(CIRawDataWriter& writer, const std::string& path) {
    std::vector<std::uint16_t> samples(1000);
    std::iota(samples.begin(), samples.end(), std::uint16_t{65000});  // wraps to 0 and continues
    writer.Open(path);
    writer.WriteFileHdr(FileHdr("plate"));
    std::int32_t recording = 1;
    for (const std::string task : {"PreQC", "CompoundTest", "Series", "PostQC"}) {
        CRawDataRecordingHdr header = RecordingHdr(task, recording, 1000 * recording);
        for (const std::int32_t well : {1, 2, 12})
            header.WellChannels.push_back({well, 32768 + well, 0.0002 / well, 100});
        writer.WriteRecordingHdr(header);
        for (const std::int64_t start : {0, 100'000})
            for (const auto& channel : header.WellChannels)
                writer.WriteData(channel.ID, start, start + 99'900, channel.Ticks, samples.data());
        writer.UpdateFileHdr(task, {"1000", std::to_string(recording)});
        ++recording;
    }
    writer.Close();
}

/// Numbers at the limits of their types, and fractions of every size.
void WriteExtremes(CIRawDataWriter& writer, const std::string& path) {
    const std::uint16_t sample = 0x1234;
    writer.Open(path);
    writer.WriteFileHdr(FileHdr("extremes"));
    writer.UpdateFileHdr("PostQC", {std::to_string(Limits::min()), std::to_string(Limits::max())});
    CRawDataRecordingHdr header = RecordingHdr("Series", std::numeric_limits<std::int32_t>::max(), Limits::min());
    for (const double units : {1.0 / 3, -1e300, 5e-324, 123456.5, 1e5, 0.00001, -0.0})
        header.WellChannels.push_back({-1, -32768, units, 2'147'483'647});
    writer.WriteRecordingHdr(header);
    writer.WriteData(std::numeric_limits<std::int32_t>::min(), Limits::max(), Limits::max(), 1, &sample);
    writer.WriteData(2'147'483'647, Limits::min(), Limits::min(), Limits::max(), &sample);
    writer.Close();
}

/// A recording without segments, and a file without recordings.
void WriteEmptyOnes(CIRawDataWriter& writer, const std::string& folder) {
    writer.Open(folder + "\\no_segments.vxd");
    writer.WriteFileHdr(FileHdr(""));
    writer.WriteRecordingHdr(RecordingHdr("", -1, 0));
    writer.Open(folder + "/no_recordings.vxd");
    writer.WriteFileHdr(FileHdr(""));
    writer.Close();
}

/// Results with numbers of every size. (Settings files contain the date of writing, so they can't be compared
/// completely.)
void WriteResults(CIResultsWriter& writer, const std::string& path) {
    CXmlFileHeader header;
    header.CompoundName = "Compound \"A\" <1 \xB5M> & more";
    header.RecordingDate = std::numeric_limits<std::uint64_t>::max();
    CResults results;
    results.SetFPAverage(3000, 100, 25);
    results.Init(1, enTask::Series, "Series", {1000, 1'000'000}, {1, -2, 12}, {"A1", "\xFF", ""});
    CResultsWell& well = *results.GetWellResults(enTask::Series, 1, 12);
    well.FPfastDetectionTimes = {Limits::min(), 0, Limits::max()};
    well.FPfastDetected = true;
    well.FPfastMaxAmp = 1.0 / 3;
    well.FPfastMinAmp = -5e-324;
    double value = 1e-310;
    for (double& sample : well.Average)
        sample = value *= -1.7;
    for (const double large : {1e37, 1e38, 1.7976931348623157e308, std::numeric_limits<double>::infinity()})
        results.SetCompoundResults(enTask::Series, 0, static_cast<enResponseType>(large > 1e300), large, -large, 1);
    writer.SetXmlFileHeader(header);
    writer.WriteFile(path, results);
}

void WriteAll(const std::string& folder) {
    CVXFileIO io;
    WriteResults(*io.GetResultsWriter(), folder + "\\results.vxr");
    CIRawDataWriter& writer = *io.GetRawDateWriter();
    WritePlate(writer, folder + "/plate.vxd");
    WriteExtremes(writer, folder + "\\extremes.vxd");
    WriteEmptyOnes(writer, folder);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: write_samples FOLDER\n";
        return 2;
    }
    try {
        WriteAll(argv[1]);
        return 0;
    } catch (const CExcVXReader& failure) {
        std::cerr << failure.GetMsg() << '\n';
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
    }
    return 1;
}
