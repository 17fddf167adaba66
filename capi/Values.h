#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "vxfileio/results/ResultsContent.h"
#include "vxfileio/settings/Settings.h"

/// @file
/// The values of settings and results by paths such as "Tasks/Series/Recordings/3/Wells/11/Dose". Which values there
/// are follows from the forms of the documents.

namespace vxfileio::capi {

class CValueType;

/// A value, a list or an object within a document, and its type. Valid until the document changes its shape.
struct CNode {
    void* object = nullptr;  ///< Null stands for no value.
    const CValueType* type = nullptr;
};

using CNumber = std::variant<std::int64_t, std::uint64_t, double>;

/// What can be done with values of one type. Operations that a type doesn't have throw VX_ERROR_TYPE.
class CValueType {
 public:
    virtual ~CValueType() = default;

    /// Returns one of `vx_type`.
    virtual std::int32_t Kind() const noexcept = 0;

    /// @name Objects and lists
    /// @{
    virtual std::size_t Count(const void* object) const;
    /// Returns the name of a child. Requires: `index` is below the count.
    virtual std::string NameOf(const void* object, std::size_t index) const;
    virtual CNode Find(void* object, std::string_view name) const;
    virtual void Insert(void* object, std::string_view name) const;
    /// Requires: there is a child of this name.
    virtual void Remove(void* object, std::string_view name) const;
    /// Removes the entries from index `first` to before `last` of a list.
    virtual void RemoveRange(void* object, std::size_t first, std::size_t last) const;
    /// @}

    /// @name Single values
    /// @{
    virtual std::string Text(const void* object) const;
    virtual void SetText(void* object, const std::string& text) const;
    virtual CNumber Number(const void* object) const;
    virtual void SetNumber(void* object, const CNumber& number) const;
    /// @}
};

using results::CResultsContent;

/// @{
/// Returns a document as a node.
CNode NodeOf(settings::CSettings& settings);
CNode NodeOf(CResultsContent& results);
/// @}

/// Returns the value at a path, or throws VX_ERROR_NOT_FOUND.
CNode FindNode(CNode root, std::string_view path);

}  // namespace vxfileio::capi
