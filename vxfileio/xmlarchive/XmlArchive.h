#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
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

/// The mode flags of an archive.
inline constexpr std::uint32_t kLoad = 0x2;
inline constexpr std::uint32_t kStore = 0x4;

/// The size of the blocks in which the library's own files pass through their archives.
inline constexpr std::int32_t kBlockSize = 4096;

/// Writes an XML document tag by tag, or reads one event by event; it never builds a tree.
///
/// One archive serves one document in one direction, on one thread. Nothing throws but an allocation, and no failure is
/// reported: a damaged document reads as far as it goes. Memory is the block, the names of the open elements and the
/// longest element.
///
/// *Storing*: `WriteDeclaration`, `OpenChild` for the root, nested elements, `CloseElement` for the root, then
/// `FlushBuffer`. The document is one line without line ends. Text is narrow bytes in whatever code page; bytes from
/// 0x80 up are written as decimal references to the byte itself.
///
/// *Loading*: `SkipProlog`, then `NextElement` until it returns false. An element with text alone, or empty, is one
/// event; an element with children is one event for its start and one for its end, of the same name. Whatever the
/// caller doesn't know passes by.
///
/// `CFileBuffer` is the one file that the library has it for.
template <class File>
class CXMLArchive {
 public:
    /// `file` is open, isn't owned and outlives the archive. `mode` is `kStore` or `kLoad`; blocks of `blockSize`
    /// bytes, at least one, go to and come from the file. `buffer`, unless null, has `blockSize` bytes and is used for
    /// storing; it isn't owned and outlives the archive.
    CXMLArchive(File* file, std::uint32_t mode, std::int32_t blockSize, unsigned char* buffer = nullptr);

    /// Storing, it flushes what has been put, unless `Detach` came before.
    virtual ~CXMLArchive();
    CXMLArchive(const CXMLArchive&) = delete;
    CXMLArchive& operator=(const CXMLArchive&) = delete;

    /// Storing: hands everything so far to the system. Loading it does nothing: blocks are read as they are needed.
    virtual void FlushBuffer();

    /// Storing: moves into the block what has been put. It is put there at once, so nothing is left to do.
    virtual void FlushPending();

    /// Loading: goes on to the next event. Returns false at the end of the document, or where it makes no sense; then
    /// there is no current element: no name matches and no value is read. After the latter the next call goes on.
    virtual bool NextElement();

    /// Forgets the file: nothing more is written, and nothing is read.
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

    /// Writes the text of the current element: numbers in general form with six significant digits, a semicolon behind
    /// each.
    CXMLArchive& PutSamples(const std::vector<double>& samples);

    /// Ends the current element. With none open it does nothing.
    CXMLArchive& CloseElement();

    // ---- Loading ----------------------------------------------------------------------------------------------------

    /// Goes to the root element, past declaration, comments and the like. Returns 0, or 0x80004005 if text stands ahead
    /// of the first tag; reading may go on regardless.
    std::int32_t SkipProlog();

    /// The name of the current element; empty without one. It lives until the next `NextElement`.
    std::string_view TagName() const;

    /// Whether the current event is the end of an element with children.
    bool IsEndTag() const;

    /// @{
    /// Reads the text of the current element, or the first attribute that `GetAttribute` hasn't passed. None moves
    /// on, so a value can be read again. A number is read as far as its text makes sense: no digits make 0, a value
    /// beyond the type the nearest that it holds (beyond 16 bits, the low ones of 32). An element without text leaves
    /// the number as it was. True is the number 1 alone. A string has its references decoded, and is empty without
    /// text.
    void GetValue(std::int32_t& value);
    void GetValue(bool& value);
    void GetValue(std::int64_t& value);
    void GetValue(std::uint64_t& value);
    void GetValue(double& value);
    void GetValue(std::uint16_t& value);
    void GetValue(std::uint32_t& value);
    void GetValue(std::string& value);
    /// @}

    /// The text of the current element; with a CDATA section in it as it stands, else with its references decoded.
    std::string GetText() const;

    /// Reads an attribute into `value`, in the type that `value` has; then the next value is sought behind it. Returns
    /// 0, or 0x80004005 and an unchanged `value` if the attribute is absent. Text lives until the next string is read.
    std::int32_t GetAttribute(std::string_view name, XmlValue& value);

    /// Reads the attribute `Size` of a list, and returns how many entries to make room for: never less than none, and
    /// never so many that all lists of the document together had more entries than the file has bytes, whatever they
    /// claim. A list that claims more than can follow takes no room from lists behind it.
    std::size_t GetListSize();

    /// Whether a list says that it has entries. One that says it hasn't is self-closed and has no end tag.
    bool ListHasEntries();

    /// Reads the text of the current element as numbers, each up to its semicolon, into the entries of `samples`. It
    /// changes as many entries as there are semicolons, and ignores what it has no entry for.
    void GetSamples(std::vector<double>& samples);

    // ---- Both -------------------------------------------------------------------------------------------------------

    /// The state of the current element: bits of `XmlState`.
    std::uint32_t ElementState() const;

    /// Loading: why the last `NextElement` that failed did so. Never cleared.
    XmlError LastError() const;

 private:
    std::unique_ptr<XmlWriter> m_writer;  ///< Without a file when loading: what is put goes nowhere.
    std::unique_ptr<XmlReader> m_reader;  ///< Without a file when storing: there is nothing to read.
    bool m_stores;
};

extern template class VXFILEIO_API CXMLArchive<CFileBuffer>;

}  // namespace gd_xml_stream

/// The archive of settings and results files, in which every class that they hold saves and loads itself.
using CXmlFileArchive = gd_xml_stream::CXMLArchive<gd_xml_stream::CFileBuffer>;
