#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "vxfileio/base/Api.h"
#include "vxfileio/base/Enumerations.h"
#include "vxfileio/settings/VXProperty.h"

/// The position of each well of a layout, built by `CPropRecordPlate::BuildPlateMap`. Index both tables by row, then by
/// column.
struct PlateMap {
    std::vector<std::vector<std::int32_t>> ChIDs;  ///< Channels.
    std::vector<std::vector<std::string>> Labels;  ///< Labels, such as "A1".
    std::vector<std::string> RowLabels;            ///< One per row.
    std::vector<std::string> ColumnLabels;         ///< One per column.
};

/// One well of a plate.
struct PlateWell {
    static constexpr std::int32_t kActive = 0;  ///< A state: the well counts.
    static constexpr std::int32_t kInactive =
        1;                                   ///< A state: it doesn't count, and neither does it in unlisted states.
    static constexpr std::int32_t kNew = 2;  ///< A state: it counts; the export writes a workbook of its own for it.

    std::int32_t WellID = 0;       ///< The key by which a well is known everywhere.
    std::string Label = {};        ///< For people, such as "A1".
    std::int32_t ChID = 0;         ///< Its channel.
    std::int32_t PlateColumn = 0;  ///< Its column on the plate.
    std::int32_t PlateRow = 0;     ///< Its row on the plate.
    std::int32_t State = kActive;  ///< Whether it counts.
};

/// One compound and the wells that it is in.
struct PlateCompound {
    std::string Label = {};                ///< Its name.
    std::vector<std::int32_t> Wells = {};  ///< The IDs of its wells.
    std::int32_t CompoundID = 0;           ///< Its key.
    char StockPlateID = ' ';               ///< The stock plate that it is taken from.
    std::int32_t StockPlateRow = 0;        ///< Its row there.
};

/// The compounds and wells that a plate owns. Null pointers are skipped everywhere. Copies are deep.
struct VXFILEIO_API PlateRecords {
    PlateRecords() = default;
    /// @{
    /// Copies are deep.
    PlateRecords(const PlateRecords& other);
    PlateRecords(PlateRecords&&) = default;
    PlateRecords& operator=(const PlateRecords& other);
    PlateRecords& operator=(PlateRecords&&) = default;
    /// @}
    ~PlateRecords() = default;

    std::vector<std::unique_ptr<PlateCompound>> Compounds;  ///< In the order of the plate's list.
    std::vector<std::unique_ptr<PlateWell>> Wells;          ///< In plate order.
};

/// The plate of a run. Doses are picomolar; the unit of volumes is the caller's choice.
struct VXFILEIO_API PlateData : PlateRecords {
    char PlateID = ' ';                                ///< The plate's identifier.
    enPlateLayout Layout = enPlateLayout::NotDefined;  ///< Its layout; call `BuildPlateMap` after a change.
    enPipetMode PipetMode = enPipetMode::NotDefined;   ///< How it is pipetted.
    std::vector<std::uint64_t> Series;                 ///< The doses of the compound series, one per recording.
    std::uint32_t StdVolume = 0;                       ///< Usual volume.
    std::uint32_t MaxVolume = 0;                       ///< Greatest volume.
    std::uint32_t MixVolume = 0;                       ///< Volume for mixing.
    std::uint32_t MinWellsPerCompound = 0;             ///< Least number of wells.
    std::int32_t PlateRows = 0;                        ///< Rows, as the caller sets them.
    std::int32_t PlateColumns = 0;                     ///< Columns, as the caller sets them.

    /// Appends a well with these values, in the state `PlateWell::kNew`.
    void AddWell(std::int32_t wellID, std::int32_t row, std::int32_t column, std::int32_t channel,
                 const std::string& label);
    /// Removes all wells.
    void ClearWells();
    /// Removes all compounds, and makes room for `count` of them, each null.
    void ResetCompounds(std::size_t count);
};

/// The record plate: its layout, its wells, its compounds and the series of their doses. A value with deep copies.
///
/// It has two forms in a document. The long form holds all compounds; the short form one compound and its wells, and
/// is used in settings files.
class VXFILEIO_API CPropRecordPlate : public CVXProperty {
 public:
    PlateMap Map;    ///< Where the wells of the layout sit; filled by `BuildPlateMap` and by loading.
    PlateData Data;  ///< All that a document holds.

    /// Writes the long form, the element `PropertyRecordPlate`.
    void Save(CXmlFileArchive& archive) override;

    /// Reads the long form, up to the end tag of `PropertyRecordPlate`, and builds the plate map of its layout. A well
    /// that was stored as inactive comes back active.
    void Load(CXmlFileArchive& archive) override;

    /// An index that means the first compound.
    static constexpr std::int32_t kFirstCompound = -1;

    /// Writes the short form of the compound at `index` in the list. With `kFirstCompound` it is the first compound; a
    /// plate without any writes a default one. A compound's well that has no record is written as a default well with
    /// that ID. Throws `CExcVXReader`, before anything is written, for any other index without a compound.
    void SaveShort(CXmlFileArchive& archive, std::int32_t index = kFirstCompound) const;

    /// Reads the short form, up to the end tag of `PropertyRecordPlate`. Its compound and wells always replace
    /// the former ones; wells keep their stored states.
    void LoadShort(CXmlFileArchive& archive);

    /// Throws what `SaveShort` would throw for this index.
    void RequireCompound(std::int32_t index) const;

    /// Fills the plate map for a layout. For one without a map it does nothing. "16x6" has the map of "8x12".
    void BuildPlateMap(enPlateLayout layout);

    /// Returns the IDs of all wells, in plate order.
    std::vector<std::int32_t> GetAllWellIDs() const;
    /// Returns the IDs of the wells that are active, in plate order.
    std::vector<std::int32_t> GetActiveWellIDs() const;
    /// Returns the IDs of all compounds, in list order.
    std::vector<std::int32_t> GetCompoundIDs() const;
    /// Returns the IDs of a compound's wells; none if no compound has this ID.
    std::vector<std::int32_t> GetCompoundWellIDs(std::int32_t compoundID) const;
    /// Returns those of them that are active; a well without a record counts as such.
    std::vector<std::int32_t> GetActiveCompoundWellIDs(std::int32_t compoundID) const;

    /// Returns the first compound with this ID, or null. It lives as long as the plate keeps it.
    PlateCompound* FindCompound(std::int32_t compoundID);
    const PlateCompound* FindCompound(std::int32_t compoundID) const;  ///< The same for a constant plate.
    /// Returns the first well with this ID, or null. It lives as long as the plate keeps it.
    PlateWell* FindWell(std::int32_t wellID);
    const PlateWell* FindWell(std::int32_t wellID) const;  ///< The same for a constant plate.

    /// Returns the state of the first well with this ID; `PlateWell::kActive` if there is none.
    std::int32_t GetWellState(std::int32_t wellID) const;
    /// Sets the state of the first well with this ID, if there is one.
    void SetWellState(std::int32_t wellID, std::int32_t state);
    /// Returns the label of the first well with this ID; empty if there is none.
    std::string GetWellLabel(std::int32_t wellID) const;

    /// Returns the texts of the series' doses; see `DoseToText`, which may throw.
    std::vector<std::string> GetSeriesLabels() const;
};

/// Returns a dose of picomolar with its unit, such as "999pM", "10nM" or "1\xB5M" (the byte of Latin-1). A remainder is
/// dropped from 10000 on. Throws from one molar on, for which there is no unit, unless the dose is below ten molar and
/// no whole number of them; the exception is the library's own, and callers catch it with all others.
VXFILEIO_API std::string DoseToText(std::uint64_t dose);
