#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "vxfileio/base/Api.h"
#include "vxfileio/rawdata/RawDataHeaders.h"

namespace vxfileio::rawdata {
class CRawDataWriter;
}

/// Writes a raw data file (`.vxd`) while the recording runs.
///
/// Call in this order: `Open` or `OpenNew`, `WriteFileHdr`, then for each recording `WriteRecordingHdr` and any number
/// of `WriteData`, finally `Close`. `UpdateFileHdr` may be called at any time between `WriteFileHdr` and `Close`.
///
/// *What holds on disk.* Each segment is with the operating system before `WriteData` returns. Data is appended
/// in full before a position points to it, so whenever the process dies, every position in the file points to something
/// whole. A reader can reach the last recording once the next one was begun or the file was closed. If the machine
/// dies, only what was there at the last `FlushToDisk` that returned true is safe.
///
/// *What is reported.* A file that can't be created, and a caller's mistake (calls out of order, a value that doesn't
/// fit its cell, arguments that can't be a segment): `CExcVXReader` with code -1, thrown before anything is written,
/// so that the file is unchanged and the writer stays usable. A write that the system refuses (a full disk) doesn't
/// throw: that segment is left out, the file stays valid, and the next call tries again. `GetWriteError` reports it.
///
/// One thread at a time.
class VXFILEIO_API CIRawDataWriter {
 public:
    CIRawDataWriter();
    /// Finishes the file as `Close` does.
    ~CIRawDataWriter();

    CIRawDataWriter(const CIRawDataWriter&) = delete;
    CIRawDataWriter& operator=(const CIRawDataWriter&) = delete;

    /// Creates the file, or empties an existing one. A file still open is finished first, as `Close` would.
    /// Throws `CExcVXReader` ("Cannot open file " and the path) if it can't be created.
    void Open(const std::string& path);

    /// Does the same, but only where no file exists: a program that is started again can't wipe an earlier recording.
    /// If there is one, or a link, throws `CExcVXReader` ("Cannot open file ", the path and ", because it exists") and
    /// leaves it as it is. `GetWriteError` then says so, too, until the next `Open`.
    void OpenNew(const std::string& path);

    /// Writes the file header, of 1190 bytes in version 2. Of the header's own fields, `FPosFirstRecordingHdr`, the
    /// three lists, `CheckSum` and `Reserved` aren't used: the file begins without recordings and with empty lists.
    /// Readers rely on a `HeaderID` that begins "OVL Vexaprobe" and a `FileVersion` of 2 or more; `MakeFileHdr` sets
    /// both.
    void WriteFileHdr(const CRawDataFileHdr& header);

    /// Finishes the recording before, and begins a new one with a header of 2460 bytes in version 2. The header's file
    /// positions and `AuxChannels` aren't used. The four lists of the well channels must fit their cells.
    void WriteRecordingHdr(const CRawDataRecordingHdr& header);

    /// Appends one segment: the samples of one well from `timeFrom` to `timeTo`, both inclusive.
    ///
    /// `tick` is the sample interval, above 0, and all three are in the instrument's time unit. Exactly
    /// (timeTo - timeFrom) / tick + 1 samples, at most 2^32 - 1, are read from `samples`, which is not kept.
    /// Costs two system calls, three or four where a page boundary is within the position that is rewritten; no
    /// allocation, and copies no sample.
    void WriteData(std::int32_t wellID, std::int64_t timeFrom, std::int64_t timeTo, std::int64_t tick,
                   const std::uint16_t* samples);

    /// Replaces one list of the file header: that of the task "PreQC", "CompoundTest" or "PostQC", by `values`, each
    /// the decimal text of a 64-bit whole number. Any other task name has no effect.
    void UpdateFileHdr(const std::string& taskName, const std::vector<std::string>& values);

    /// Turns strictness on or off, at any time; a new writer isn't strict. A strict writer refuses everything that
    /// `vxfile verify` would report, before anything is written, with a `CExcVXReader` that names the value, what would
    /// be right, and why. The one exception are pages of zeros: samples may have any value. A strict writer refuses
    ///
    /// - a `HeaderID` that doesn't begin "OVL Vexaprobe", a `FileVersion` below 2,
    /// - texts with control characters (NUL, CR and LF among them), and texts other than `HeaderID` with `=` or `:`,
    /// - units that aren't finite, an interval outside 1 to 2^31 - 1, a well that is listed twice,
    /// - a segment of a well that the recording doesn't list, with another `tick` than its `Ticks`, or one that doesn't
    ///   begin after the end of the well's segment before,
    /// - `UpdateFileHdr` for a task without a list, or with a value that isn't a whole number of 64 bits.
    ///
    /// If a value doesn't fit its cell, the text also has the room, what is needed and how many wells or values would
    /// fit, as with `CheckRecordingFit`. Strictness costs no system call.
    void SetStrict(bool isStrict);

    /// Waits until the disk has everything written since `Open`, the name of the file included. Writes refused headers
    /// and cells first. Takes as long as the disk needs, typically some milliseconds, often more.
    ///
    /// Returns true if everything written so far would survive a power cut. The samples are on the disk then, but
    /// readers may not find all of them: after a power cut, run `vxfile recover`. It isn't needed after `Close`, which
    /// flushes the finished file as well, once `FlushToDisk` was called.
    ///
    /// Returns false otherwise, and `GetWriteError` says why. It can be called again, but it stays false for this file
    /// once the system failed to flush samples, which it may have dropped, and once a segment is missing in the file or
    /// a recording was dropped because its header was refused until the next one began. Without an open file it returns
    /// false, and `GetWriteError` doesn't change.
    ///
    /// The folder of the file must be readable. A folder that was created for the file isn't flushed into its parent.
    ///
    /// What the system reports is what counts: a disk that confirms what it only holds in its own memory can't be
    /// noticed.
    [[nodiscard]] bool FlushToDisk() noexcept;

    /// Finishes the last recording and closes the file, after flushing it if `FlushToDisk` was called since `Open`.
    /// Without an open file it does nothing.
    void Close() noexcept;

    /// Returns an empty text while everything written since `Open` is with the operating system, else what it refused
    /// first in words: "No space left on device, writing 40300 bytes at 123456 of run.vxd". If segments are
    /// missing in the file, "; segments missing: " and their number follow. Headers and cells that are refused are
    /// written as soon as there is room; the failure stays in the text. A failed flush is such a failure: "Input/output
    /// error, flushing run.vxd". After `Close` the text is about the closed file, including a failure to close it.
    ///
    /// Also reports values that are written as given although readers can't use them, one sentence each: a `HeaderID`
    /// that doesn't begin "OVL Vexaprobe", a `FileVersion` below 2, and each key with a text that readers get cut,
    /// because it has a NUL, CR, LF, `=` or `:`.
    [[nodiscard]] std::string GetWriteError() const;

 private:
    std::unique_ptr<vxfileio::rawdata::CRawDataWriter> m_writer;
};
