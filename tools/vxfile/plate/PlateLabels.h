#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vxfile/plate/PlatePlace.h"
#include "vxfileio/settings/PropRecordPlate.h"

namespace vxfile {

/// Returns whether a word is a whole number, and so the ID of a well rather than its label.
bool IsWellID(std::string_view word);

/// The labels of wells, as a settings or results file has them. Without one, wells are known by their IDs alone.
class CPlateLabels {
 public:
    CPlateLabels() = default;
    /// `source` is the path of the settings file.
    CPlateLabels(const CPropRecordPlate& plate, std::string source);

    /// Keeps only the wells of another file, given by ID with their labels in UTF-8. A label that isn't empty replaces
    /// a known one. `source` is the path of that file.
    void Merge(const std::map<std::int32_t, std::string>& labels, const std::string& source);

    /// Returns whether there is a file with labels.
    bool AreKnown() const { return !m_source.empty(); }
    /// Returns the path of the settings file, or without one that of the merged file; empty if there is neither.
    const std::string& Source() const { return m_source; }

    /// Returns the label of a well, in UTF-8; empty if it has none. Valid as long as this object.
    std::string_view Of(std::int32_t well) const;

    /// Returns the length in bytes of the longest label.
    std::size_t Longest() const;

    /// Returns a text with the label after each well that it names as in "well 11", "wells 11, 12" or "wells: 11 - 14".
    std::string AddedTo(std::string_view text) const;

    /// Returns IDs as `ListText` does, with their labels, such as "11 (A1) - 14 (A4), 20 (B1)".
    std::string List(const std::vector<std::int32_t>& wells) const;

    /// Returns the IDs of the wells that a word means: the ID itself if it is a whole number, all wells with that very
    /// label, the well at a coordinate such as "b7" or "B07", or the wells of a rectangle such as "A1-B6", whose
    /// corners must exist. The coordinate of a well is its label if that has this form, or its row and column. Throws
    /// `CFailure`, with a list of the labels, if there is no such well.
    std::vector<std::int32_t> WellsOf(const std::string& word) const;

 private:
    struct CLabel {
        std::string text;
        CPlatePlace place;
    };

    std::vector<std::int32_t> Find(const std::string& word) const;
    std::vector<std::int32_t> FindRectangle(const std::string& word) const;
    std::string All() const;

    std::string m_source;
    std::string m_owner;                      ///< The path of the file whose wells these are.
    std::map<std::int32_t, CLabel> m_labels;  ///< By ID.
};

}  // namespace vxfile
