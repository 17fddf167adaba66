#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vxfileio/base/Api.h"
#include "vxfileio/xmlarchive/FileBuffer.h"
#include "vxfileio/xmlarchive/XmlState.h"
#include "vxfileio/xmlarchive/XmlValue.h"

namespace gd_xml_stream {

class XmlReader;
class XmlWriter;
enum class XmlFault : std::uint8_t;

/// The mode flags of an archive.
inline constexpr std::uint32_t kLoad = 0x2;
inline constexpr std::uint32_t kStore = 0x4;

/// The size of the blocks in which the library's own files pass through their archives.
inline constexpr std::int32_t kBlockSize = 4096;

/// An archive of one kind of file. There is one for `CFileBuffer` only.
template <class File>
class CXMLArchive;

/// Writes an XML document tag by tag, or reads one event by event; it never builds a tree.
///
/// One archive serves one document in one direction. It needs external synchronization. Only allocations throw, and no
/// failure is reported: a damaged document is read as far as possible. Memory holds one block, the names of the open
/// elements and the longest element.
///
/// *Storing*: `WriteDeclaration`, `OpenChild` for the root, nested elements, `CloseElement` for the root, then
/// `FlushBuffer`. The document is one line without line ends. Text is bytes in any code page; bytes from 0x80 up are
/// written as decimal references to the byte itself.
///
/// *Loading*: `SkipProlog`, then `NextElement` until it returns false. An element with text alone, or empty, is one
/// event; an element with children is one event for its start and one for its end, of the same name. Callers
/// skip events that they don't know.
template <>
class VXFILEIO_API CXMLArchive<CFileBuffer> {
 public:
    /// Stores `file`, which must be open and must outlive the archive. `mode` is `kStore` or `kLoad`. The file is
    /// written and read in blocks of `blockSize` bytes, at least 1. `buffer`, unless null, must have `blockSize` bytes
    /// and must outlive the archive; it is used for storing only. The caller owns both.
    CXMLArchive(CFileBuffer* file, std::uint32_t mode, std::int32_t blockSize, unsigned char* buffer = nullptr);

    /// When storing, flushes what has been put, unless `Detach` was called.
    virtual ~CXMLArchive();
    CXMLArchive(const CXMLArchive&) = delete;
    CXMLArchive& operator=(const CXMLArchive&) = delete;

    /// Storing: passes everything so far to the operating system. Loading: does nothing; blocks are read when needed.
    virtual void FlushBuffer();

    /// Does nothing: what is put goes straight into the block.
    virtual void FlushPending();

    /// Loading: moves to the next event. Returns false at the end of the document or at a syntax error. There is then
    /// no current element: its name is empty and it has no value. After a syntax error the next call continues.
    virtual bool NextElement();

    /// Forgets the file: nothing more is written or read.
    void Detach();

    // ---- Storing ----------------------------------------------------------------------------------------------------

    /// Writes the document head, `<?xml attributes ?>`.
    CXMLArchive& WriteDeclaration(std::string_view attributes);

    /// Begins a child of the current element, or the root. The name is written as it is.
    CXMLArchive& OpenChild(std::string_view name);

    /// Adds an attribute to the element that was just opened.
    CXMLArchive& PutAttribute(std::string_view name, const XmlValue& value);

    /// Writes the text of the current element; one value per element.
    CXMLArchive& PutValue(const XmlValue& value);

    /// Writes the text of the current element: numbers in general form with six significant digits, each followed
    /// by a semicolon.
    CXMLArchive& PutSamples(const std::vector<double>& samples);

    /// Ends the current element. Does nothing if none is open.
    CXMLArchive& CloseElement();

    /// Reports that the text of the current element has a NUL, for the text of `CutTexts`.
    void NoteCutText();

    /// Returns a sentence about the texts that were cut at a NUL, or an empty text if there are none.
    std::string CutTexts() const;

    // ---- Loading ----------------------------------------------------------------------------------------------------

    /// Moves to the root element, past declaration, comments and the like. Returns 0, or 0x80004005 if text precedes
    /// the first tag; the caller may continue reading all the same.
    std::int32_t SkipProlog();

    /// Returns the name of the current element, empty without one. It is valid until the next `NextElement`.
    std::string_view TagName() const noexcept;

    /// Returns whether the current event is the end of an element with children.
    bool IsEndTag() const noexcept;

    /// @{
    /// Reads the text of the current element, or the first attribute that `GetAttribute` hasn't passed. Doesn't move,
    /// so a value can be read again. A number is read up to the first byte that doesn't belong to it: without digits it
    /// is 0, beyond the range of its type the nearest value (for 16 bits, the low bits of 32). An element without text
    /// leaves the number unchanged. Only the number 1 is true. A string is decoded, and is empty without text.
    void GetValue(std::int32_t& value);
    void GetValue(bool& value);
    void GetValue(std::int64_t& value);
    void GetValue(std::uint64_t& value);
    void GetValue(double& value);
    void GetValue(std::uint16_t& value);
    void GetValue(std::uint32_t& value);
    void GetValue(std::string& value);
    /// @}

    /// Returns the same as the string that `GetValue` reads, without copying a text that has no references; `room` is
    /// for the others. Valid until the next event or change of `room`.
    std::string_view GetText(std::string& room) const;

    /// Returns the text of the current element: decoded, or unchanged if it has a CDATA section.
    std::string GetText() const;

    /// Reads an attribute into `value`, in the type of `value`; the next value is searched for after it. Returns 0, or
    /// 0x80004005 and leaves `value` unchanged if the attribute is absent. Text is valid until the next string is read.
    std::int32_t GetAttribute(std::string_view name, XmlValue& value);

    /// Reads the attribute `Size` of a list and returns the number of entries to make room for, at least 0. All lists
    /// of the document together never get more entries than the file has bytes. A list that claims more entries than
    /// can follow takes no room from later lists.
    std::size_t GetListSize();

    /// Returns whether the `Size` of a list is above 0. A list without entries is self-closed and has no end tag.
    bool ListHasEntries();

    /// Reads the text of the current element into `samples`: numbers, each followed by a semicolon. Changes as many
    /// entries as there are semicolons, and ignores numbers beyond the end of `samples`.
    void GetSamples(std::vector<double>& samples);

    /// Reports the current element, a start tag, if it turns out to have no children.
    void NeedChildren();

    /// Reports that the text of the current element isn't a value of its kind, for the text of `Finish`. `words` are
    /// those that it could be.
    void NoteText(XmlFault kind, std::span<const std::string_view> words = {});

    /// Reports that the current element is in place of the key with this tag, if there is an element.
    void NoteMissingKey(std::string_view key);

    /// Counts the children of the current element as entries of a list that has no `Size`, for the text of `Finish`.
    void CountEntries();

    /// Moves past the end of the root. Returns sentences that describe what was wrong with the document, or an empty
    /// text if nothing was: another kind of file; no section with the tag `section`, which must be the last that was
    /// read; and the first of each kind of fault, with its path and offset.
    std::string Finish(std::string_view section);

    // ---- Both -------------------------------------------------------------------------------------------------------

    /// Returns the state of the current element: bits of `XmlState`.
    std::uint32_t ElementState() const noexcept;

    /// Loading: returns the cause of the last failure of `NextElement`. Never cleared.
    XmlError LastError() const noexcept;

 private:
    std::unique_ptr<XmlWriter> m_writer;  ///< Has no file when loading, and then drops what is put.
    std::unique_ptr<XmlReader> m_reader;  ///< Has no file when storing, and then finds nothing.
    bool m_stores;
};

}  // namespace gd_xml_stream

/// The archive of settings and results files, in which every class that they hold saves and loads itself.
using CXmlFileArchive = gd_xml_stream::CXMLArchive<gd_xml_stream::CFileBuffer>;
