#pragma once

#include <string>
#include <variant>

#include "capi/Border.h"
#include "capi/Values.h"

namespace vxfileio::capi {

/// A settings or results document in memory.
class CDocument final : public CObject {
 public:
    bool IsOpen() const noexcept override { return m_isOpen; }
    /// Makes a fresh document. Throws unless `kind` is one of `vx_document_kind`.
    void Begin(std::int32_t kind);
    void Read(const std::string& path);
    void Save(const std::string& path, std::int32_t compound) const;

    const std::string& Faults() const noexcept { return m_faults; }
    CNode Find(std::string_view path);

    /// @{
    /// Returns the content. Throws VX_ERROR_KIND if the document is of the other kind.
    settings::CSettings& Settings();
    CResultsContent& Results();
    /// @}

 private:
    std::variant<settings::CSettings, CResultsContent> m_content;
    std::string m_faults;
    bool m_isOpen = false;
};

}  // namespace vxfileio::capi
