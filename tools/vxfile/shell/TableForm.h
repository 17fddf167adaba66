#pragma once

#include <vector>

#include "tools/vxfile/report/Table.h"
#include "tools/vxfile/shell/Command.h"

namespace vxfile {

/// The form of a table and the place of its file, by the options of the commands that write tables.
class CTableForm {
 public:
    /// Returns the options. They point to members of this object. With `hasArrays`, one of them is for numpy.
    std::vector<COption> Options(bool hasArrays);

    ETableForm Form() const;
    CTarget& Target() { return m_target; }
    const CTarget& Target() const { return m_target; }

    /// Returns whether the columns are to be described instead.
    bool Describes() const { return m_describes; }

 private:
    CTarget m_target;
    bool m_csv = false;  ///< The default.
    bool m_tsv = false;
    bool m_jsonLines = false;
    bool m_npy = false;
    bool m_describes = false;
};

}  // namespace vxfile
