#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "vxfileio/base/Api.h"
#include "vxfileio/rawdata/RawDataHeaders.h"

/// @file
/// Whether a recording fits its header, for programs that plan runs.

/// One cell of a recording header, and what its value needs. Plain values.
struct CCellFit {
    std::string Key = {};           ///< Its key, such as "ADZeros".
    bool IsList = false;            ///< Whether it has one item per well.
    std::int64_t Room = 0;          ///< Bytes for the value.
    std::int64_t Needed = 0;        ///< Bytes of the value; of a list with the colons between its items.
    std::int64_t WellsThatFit = 0;  ///< How many of the recording's wells it can list, from the first on.

    /// Returns whether the value fits.
    bool Fits() const noexcept { return Needed <= Room; }
};

/// Whether a recording fits its header. Plain values.
struct VXFILEIO_API CRecordingFit {
    std::vector<CCellFit> Cells = {};  ///< The cells with values of the caller, in the order of the file.
    std::int64_t Wells = 0;            ///< How many wells the recording has.
    std::int64_t WellsThatFit = 0;     ///< How many of them fit all cells, from the first on.
    /// The number of wells of each recording, in order, if the wells are split into as few as possible. One entry if
    /// all fit; none if even a single well doesn't.
    std::vector<std::int64_t> Split = {};

    /// Returns whether all cells fit, so that `CIRawDataWriter::WriteRecordingHdr` finds room for the header.
    bool Fits() const noexcept;

    /// Returns a sentence about the cell that lets the fewest wells fit: "ADZeros has room for 189 bytes, but needs 323
    /// for 54 wells; 31 of these wells would fit." Empty if all fit.
    std::string Text() const;
};

/// Returns whether the values of a recording header fit its cells, before anything is recorded. `fileVersion` is that
/// of the file; 0 is the newest.
[[nodiscard]] VXFILEIO_API CRecordingFit CheckRecordingFit(const CRawDataRecordingHdr& header,
                                                           std::int32_t fileVersion = 0);
