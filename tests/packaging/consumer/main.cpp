#include <vxfileio/frame/VXFileIO.h>

#include <algorithm>
#include <array>
#include <iostream>

// Uses what a caller links: the facades, a value class, the words of an enumeration, and an exception that is thrown in
// the library and caught here.

namespace {

constexpr std::array<std::uint16_t, 5> kSamples = {0, 1, 256, 65534, 65535};

void Write(CIRawDataWriter& writer) {
    const CRawDataFileHdr file = MakeFileHdr();
    CRawDataRecordingHdr recording;
    recording.TaskName = TaskToString(enTask::Series);
    recording.Recording = 1;
    recording.WellChannels = {{7, 32768, 0.5, 10}};
    writer.Open("consumer.vxd");
    writer.WriteFileHdr(file);
    writer.WriteRecordingHdr(recording);
    writer.WriteData(7, 0, 40, 10, kSamples.data());
    writer.Close();
}

bool ComesBack(CIRawDataReader& reader) {
    std::int32_t well = 0;
    std::int64_t from = 0;
    std::int64_t to = 0;
    std::uint32_t size = 0;
    std::uint16_t* samples = nullptr;
    reader.Open("consumer.vxd");
    const CIndexEntry& entry = *reader.GetIndex()->GetEntry(0);
    return reader.JumpToData(entry.TaskName, entry.Recording) && reader.ReadSegment(well, from, to, size, samples) &&
           well == 7 && to == 40 && std::equal(samples, samples + size, kSamples.begin(), kSamples.end());
}

bool FailureArrives(CIRawDataReader& reader) {
    try {
        reader.Open("no such file");
    } catch (const CExcVXReader& failure) {
        return failure.GetMsg() == "Cannot open file no such file";
    }
    return false;
}

}  // namespace

int main() {
    CVXFileIO io;
    Write(*io.GetRawDateWriter());
    const bool isGood = ComesBack(*io.GetRawDataReader()) && FailureArrives(*io.GetRawDataReader());
    std::cout << (isGood ? "the library works\n" : "the library failed\n");
    return isGood ? 0 : 1;
}
