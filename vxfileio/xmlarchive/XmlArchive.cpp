#include "vxfileio/xmlarchive/XmlArchive.h"

#include <algorithm>

#include "vxfileio/xmlarchive/XmlReader.h"
#include "vxfileio/xmlarchive/XmlWriter.h"

namespace gd_xml_stream {

namespace {

/// What a failed operation returns where it returns anything: the system's general failure code.
constexpr std::int32_t kDone = 0;
constexpr auto kFailed = static_cast<std::int32_t>(0x80004005U);

template <class Value>
void Read(const XmlReader& reader, Value& value) {
    if (const auto text = reader.Value()) ParseValue(*text, value);
}

}  // namespace

template <class File>
CXMLArchive<File>::CXMLArchive(File* file, std::uint32_t mode, std::int32_t blockSize, unsigned char* buffer)
    : m_stores((mode & kStore) != 0) {
    const auto size = static_cast<std::size_t>(std::max(blockSize, std::int32_t{1}));
    m_writer = std::make_unique<XmlWriter>(m_stores ? file : nullptr, size, buffer);
    m_reader = std::make_unique<XmlReader>(m_stores ? nullptr : file, size);
}

template <class File>
CXMLArchive<File>::~CXMLArchive() {
    m_writer->Flush();
}

template <class File>
void CXMLArchive<File>::FlushBuffer() {
    m_writer->Flush();
}

template <class File>
void CXMLArchive<File>::FlushPending() {}

template <class File>
bool CXMLArchive<File>::NextElement() {
    return m_reader->Next();
}

template <class File>
void CXMLArchive<File>::Detach() {
    m_writer->Detach();
    m_reader = std::make_unique<XmlReader>(nullptr, 1);
}

template <class File>
CXMLArchive<File>& CXMLArchive<File>::WriteDeclaration(std::string_view attributes) {
    m_writer->WriteDeclaration(attributes);
    return *this;
}

template <class File>
CXMLArchive<File>& CXMLArchive<File>::OpenChild(std::string_view name) {
    m_writer->OpenChild(name);
    return *this;
}

template <class File>
CXMLArchive<File>& CXMLArchive<File>::PutAttribute(std::string_view name, const XmlValue& value) {
    m_writer->PutAttribute(name, value);
    return *this;
}

template <class File>
CXMLArchive<File>& CXMLArchive<File>::PutValue(const XmlValue& value) {
    m_writer->PutValue(value);
    return *this;
}

template <class File>
CXMLArchive<File>& CXMLArchive<File>::PutSamples(const std::vector<double>& samples) {
    m_writer->PutSamples(samples);
    return *this;
}

template <class File>
CXMLArchive<File>& CXMLArchive<File>::CloseElement() {
    m_writer->CloseElement();
    return *this;
}

template <class File>
std::int32_t CXMLArchive<File>::SkipProlog() {
    return m_reader->SkipProlog() ? kDone : kFailed;
}

template <class File>
std::string_view CXMLArchive<File>::TagName() const noexcept {
    return m_reader->Name();
}

template <class File>
bool CXMLArchive<File>::IsEndTag() const noexcept {
    return (m_reader->Scanner().State() & XmlState::kEndTag) != 0;
}

template <class File>
void CXMLArchive<File>::GetValue(std::int32_t& value) {
    Read(*m_reader, value);
}

template <class File>
void CXMLArchive<File>::GetValue(bool& value) {
    Read(*m_reader, value);
}

template <class File>
void CXMLArchive<File>::GetValue(std::int64_t& value) {
    Read(*m_reader, value);
}

template <class File>
void CXMLArchive<File>::GetValue(std::uint64_t& value) {
    Read(*m_reader, value);
}

template <class File>
void CXMLArchive<File>::GetValue(double& value) {
    Read(*m_reader, value);
}

template <class File>
void CXMLArchive<File>::GetValue(std::uint16_t& value) {
    Read(*m_reader, value);
}

template <class File>
void CXMLArchive<File>::GetValue(std::uint32_t& value) {
    Read(*m_reader, value);
}

template <class File>
void CXMLArchive<File>::GetValue(std::string& value) {
    m_reader->ReadText(value);
}

template <class File>
std::string CXMLArchive<File>::GetText() const {
    return m_reader->ElementText();
}

template <class File>
std::int32_t CXMLArchive<File>::GetAttribute(std::string_view name, XmlValue& value) {
    return m_reader->ReadAttribute(name, value) ? kDone : kFailed;
}

template <class File>
std::size_t CXMLArchive<File>::GetListSize() {
    return m_reader->ReadListSize();
}

template <class File>
bool CXMLArchive<File>::ListHasEntries() {
    return m_reader->ReadListClaim() > 0;
}

template <class File>
void CXMLArchive<File>::GetSamples(std::vector<double>& samples) {
    m_reader->ReadSamples(samples);
}

template <class File>
std::uint32_t CXMLArchive<File>::ElementState() const noexcept {
    return m_stores ? m_writer->State() : m_reader->Scanner().State();
}

template <class File>
XmlError CXMLArchive<File>::LastError() const noexcept {
    return m_reader->Scanner().LastError();
}

template class CXMLArchive<CFileBuffer>;

}  // namespace gd_xml_stream
