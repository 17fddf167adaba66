#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "vxfileio/base/Api.h"
#include "vxfileio/rawdata/RawDataHeaders.h"

/// @file
/// Whether a writer takes the header of a recording, for programs that plan runs.

/// One cell of a recording header, and what its value needs. Plain values.
struct CCellFit {
    std::string Key = {};     ///< Its key, such as "ADZeros".
    bool IsList = false;      ///< Whether it has one item per well.
    std::int64_t Room = 0;    ///< Bytes for the value.
    std::int64_t Needed = 0;  ///< Bytes of the value; of a list with the colons between its items.
    /// How many of the recording's wells it can list, from the first on. If it isn't a list: all wells if its value
    /// fits, else none.
    std::int64_t WellsThatFit = 0;

    /// Returns whether the value fits.
    bool Fits() const noexcept { return Needed <= Room; }
};

/// Whether a recording fits its header. Plain values.
struct VXFILEIO_API CRecordingFit {
    std::vector<CCellFit> Cells = {};  ///< The cells with values of the caller, in the order of the file.
    std::int64_t Wells = 0;            ///< How many wells the recording has.
    std::int64_t WellsThatFit = 0;     ///< How many of them fit all cells, from the first on.
    /// The number of wells of each recording, in order, if the wells are split into as few as possible. One entry if
    /// all fit. Empty if no split helps: a single well doesn't fit, a value that isn't in a list is too long, or
    /// `Refusal` isn't empty.
    std::vector<std::int64_t> Split = {};
    /// The first value that a strict writer refuses however much room there is, such as an interval of 0 or units that
    /// aren't finite, in the writer's words. Empty if there is none.
    std::string Refusal = {};

    /// Returns whether all cells fit and no value is refused, so that `CIRawDataWriter::WriteRecordingHdr` takes the
    /// header, even if the writer is strict.
    bool Fits() const noexcept;

    /// Returns a sentence about the cell that lets the fewest wells fit: "ADZeros has room for 189 bytes, but needs 323
    /// for 54 wells; 31 of these wells would fit." `Refusal` if all cells fit.
    std::string Text() const;
};

/// Returns whether the values of a recording header fit its cells, and whether a strict writer takes them, before
/// anything is recorded. `fileVersion` is that of the file; 0 is the newest. Takes time linear in the number of wells.
[[nodiscard]] VXFILEIO_API CRecordingFit CheckRecordingFit(const CRawDataRecordingHdr& header,
                                                           std::int32_t fileVersion = 0);
