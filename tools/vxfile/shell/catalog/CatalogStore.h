#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "tools/vxfile/shell/catalog/CatalogEntry.h"

namespace vxfile {

/// A catalogue in a database. All changes of one object appear when it is committed, or not at all.
class CCatalogStore {
 public:
    CCatalogStore() = default;
    virtual ~CCatalogStore() = default;
    CCatalogStore(const CCatalogStore&) = delete;
    CCatalogStore& operator=(const CCatalogStore&) = delete;

    /// Marks a file as existing, by its `PathText`, as all paths here. Returns true if its row has the same stamp, so
    /// that it needn't be scanned. An unreadable file is never known: new rights don't change its stamp.
    [[nodiscard]] virtual bool IsKnown(const std::string& path, const CStamp& stamp) = 0;

    /// Keeps the rows of files below a folder that can't be read now.
    virtual void KeepBelow(const std::string& folder) = 0;

    /// Adds the rows of a file, or replaces them.
    virtual void Put(const CCatalogEntry& entry) = 0;

    /// Removes the rows below a folder of files that were neither marked nor put.
    virtual void RemoveOthersBelow(const std::string& folder) = 0;

    /// Returns the number of marked and put files in each state.
    [[nodiscard]] virtual std::map<std::string, std::uint64_t> States() = 0;

    virtual void Commit() = 0;
};

/// Opens or creates a database. All operations throw `CFailure` if the database refuses. This one also does if the file
/// is another kind of database or has a newer version, or if the program was built without SQLite.
[[nodiscard]] std::unique_ptr<CCatalogStore> OpenCatalogStore(const std::string& path);

}  // namespace vxfile
