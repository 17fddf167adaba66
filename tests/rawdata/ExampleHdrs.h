#pragma once

#include <vxfileio/frame/VXFileIO.h>

/// @file
/// Headers as a caller fills them; `RawFileBytes.h` has their bytes on disk.

inline CRawDataFileHdr ExampleFileHdr() {
    return {.HeaderID = "OVL Vexaprobe",
            .FileType = "Raw",
            .ProgramVersion = "1.0",
            .FileVersion = 2,
            .Guid = "0123",
            .PlateID = "P1",
            .CompoundID = 5,
            .CompoundName = "Test"};
}

inline CRawDataRecordingHdr ExampleRecordingHdr(const std::string& task = "CompoundTest", std::int32_t recording = 1) {
    return {.TaskName = task,
            .Recording = recording,
            .Dose = 1000,
            .RecordingStartTime = 1000000,
            .RecordingTime = 300,
            .WellChannels = {{11, 32768, 0.0002, 100}, {12, 32768, 0.0002, 100}}};
}

/// Opens a file and writes both headers, so that data can follow.
inline void BeginExample(CIRawDataWriter& writer, const std::string& path) {
    writer.Open(path);
    writer.WriteFileHdr(ExampleFileHdr());
    writer.WriteRecordingHdr(ExampleRecordingHdr());
}

/// Calls the operation and returns the text of the `CExcVXReader` that it must throw with code -1.
template <class Operation>
std::string TextOfFailure(Operation operation) {
    try {
        operation();
    } catch (const CExcVXReader& failure) {
        return failure.GetCode() == -1 ? failure.GetMsg() : "code " + std::to_string(failure.GetCode());
    }
    return "no failure";
}
