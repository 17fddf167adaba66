#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <span>
#include <string>

#include "tools/vxfile/report/Table.h"
#include "tools/vxfile/shell/catalog/CatalogEntry.h"

namespace vxfile {

/// The columns with the files of a run: its recording, settings and results.
std::span<const CColumn> RunColumns();

/// The files of each run, paired by Guid.
class CCatalogRuns {
 public:
    /// Adds a file, which must outlive this. A file without a Guid, or of another kind, belongs to no run.
    void Add(const CCatalogEntry& entry);

    /// Returns the cells of `RunColumns` for a file: the paths of its run. Of several files of one kind, one with
    /// its name in its folder comes first, then one in its folder, then any; of these the one that was added first.
    CCells CellsOf(const CCatalogEntry& entry) const;

    std::size_t Count() const { return m_byGuid.size(); }
    /// Returns the number of runs that have a file of each of the three kinds.
    std::size_t Whole() const;

 private:
    /// The paths of a run by kind, in the order of the columns; null if it has no such file.
    using CRun = std::array<const std::string*, 3>;
    using CRuns = std::map<std::string, CRun>;

    CRuns m_byGuid;
    CRuns m_byFolder;  ///< By Guid and folder.
    CRuns m_byName;    ///< By Guid, folder and name without extension.
};

}  // namespace vxfile
