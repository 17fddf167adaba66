#pragma once

#include <vxfileio/frame/VXFileIO.h>

/// @file
/// Headers as a caller fills them; `RawFileBytes.h` has their bytes on disk.

inline CRawDataFileHdr ExampleFileHdr() {
    CRawDataFileHdr header;
    header.HeaderID = "OVL Vexaprobe";
    header.FileType = "Raw";
    header.ProgramVersion = "1.0";
    header.FileVersion = 2;
    header.Guid = "0123";
    header.PlateID = "P1";
    header.CompoundID = 5;
    header.CompoundName = "Test";
    return header;
}

inline CRawDataRecordingHdr ExampleRecordingHdr(const std::string& task = "CompoundTest", std::int32_t recording = 1) {
    CRawDataRecordingHdr header;
    header.TaskName = task;
    header.Recording = recording;
    header.Dose = 1000;
    header.RecordingStartTime = 1000000;
    header.RecordingTime = 300;
    header.WellChannels = {{11, 32768, 0.0002, 100}, {12, 32768, 0.0002, 100}};
    return header;
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
