#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vxfileio/xmlarchive/FileBuffer.h"
#include "vxfileio/xmlarchive/XmlNameStack.h"
#include "vxfileio/xmlarchive/XmlValue.h"

namespace gd_xml_stream {

/// The storing half of an archive: writes into a block, and each full block to the file.
class XmlWriter {
 public:
    /// Neither `file`, which may be null, nor `buffer` is owned. Without a buffer of `blockSize` bytes it makes its
    /// own.
    XmlWriter(CFileBuffer* file, std::size_t blockSize, unsigned char* buffer);

    /// Passes everything so far to the operating system.
    void Flush();
    /// Forgets the file.
    void Detach();

    void WriteDeclaration(std::string_view attributes);
    void OpenChild(std::string_view name);
    void PutAttribute(std::string_view name, const XmlValue& value);
    void PutValue(const XmlValue& value);
    void PutSamples(const std::vector<double>& samples);
    void CloseElement();

    /// Notes that a NUL ended the text of the current element.
    void NoteCutText();
    /// Returns a sentence about the first of these texts, with its path, and the number of others; empty without them.
    std::string CutTexts() const;

    /// State bits of the current element.
    std::uint32_t State() const { return m_state; }

 private:
    /// Appends text to the block, which usually has room for it.
    void Append(std::string_view text) {
        if (text.size() >= m_block.size() - m_used) return AppendOverBlocks(text);
        m_used += text.copy(m_block.data() + m_used, text.size());
    }
    void AppendOverBlocks(std::string_view text);
    void AppendValue(const XmlValue& value);
    void BeginText();
    void WriteBlock();

    CFileBuffer* m_file;
    std::unique_ptr<char[]> m_own;  ///< The block, unless the caller gave one.
    std::span<char> m_block;        ///< Empty without a file.
    std::size_t m_used = 0;         ///< Bytes in the block.
    XmlNameStack m_open;
    std::vector<std::uint32_t> m_outerStates;  ///< The states of the enclosing elements, innermost last.
    std::uint32_t m_state = 0;
    std::string m_firstCut;  ///< The path of the first element whose text a NUL ended,
    std::size_t m_cuts = 0;  ///< and the number of all.
};

}  // namespace gd_xml_stream
