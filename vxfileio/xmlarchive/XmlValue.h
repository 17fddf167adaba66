#pragma once

#include <cstdint>
#include <string>

namespace gd_xml_stream {

/// The number of a type in an `XmlValue`.
enum class XmlType : std::uint16_t {
    Int32 = 3,
    Double = 5,
    ConstText = 8,  ///< A NUL-terminated text, such as the names of elements and attributes.
    Text = 9,       ///< The characters of a string.
    Bool = 11,
    UInt16 = 18,
    UInt32 = 19,
    Int64 = 20,
    UInt64 = 21,
};

/// A value to be stored or loaded by an archive: a type and its payload.
///
/// Text is not owned. When storing, it must be valid during the call; when loading, it belongs to the archive, ends
/// with a NUL and is valid until the archive's next string is read.
class XmlValue {
 public:
    /// @{
    /// Makes a value of the argument's type.
    XmlValue(std::int32_t value) noexcept : m_type(XmlType::Int32) { m_payload.int32 = value; }
    XmlValue(double value) noexcept : m_type(XmlType::Double) { m_payload.real = value; }
    XmlValue(const char* text) noexcept : m_type(XmlType::ConstText) { m_payload.text = text; }
    XmlValue(const std::string& text) noexcept : m_type(XmlType::Text) { m_payload.text = text.c_str(); }
    XmlValue(char value) = delete;  // a number or a text?
    template <class Object>
    XmlValue(const Object* value) = delete;  // or it would be a truth value
    XmlValue(bool value) noexcept : m_type(XmlType::Bool) { m_payload.boolean = value; }
    XmlValue(std::uint16_t value) noexcept : m_type(XmlType::UInt16) { m_payload.uint16 = value; }
    XmlValue(std::uint32_t value) noexcept : m_type(XmlType::UInt32) { m_payload.uint32 = value; }
    XmlValue(std::int64_t value) noexcept : m_type(XmlType::Int64) { m_payload.int64 = value; }
    XmlValue(std::uint64_t value) noexcept : m_type(XmlType::UInt64) { m_payload.uint64 = value; }
    /// @}

    /// Returns the type. Only the accessor of this type may be called.
    XmlType Type() const noexcept { return m_type; }

    std::int32_t AsInt32() const noexcept { return m_payload.int32; }     ///< The payload of `XmlType::Int32`.
    double AsDouble() const noexcept { return m_payload.real; }           ///< The payload of `XmlType::Double`.
    const char* AsText() const noexcept { return m_payload.text; }        ///< The payload of both types of text.
    bool AsBool() const noexcept { return m_payload.boolean; }            ///< The payload of `XmlType::Bool`.
    std::uint16_t AsUInt16() const noexcept { return m_payload.uint16; }  ///< The payload of `XmlType::UInt16`.
    std::uint32_t AsUInt32() const noexcept { return m_payload.uint32; }  ///< The payload of `XmlType::UInt32`.
    std::int64_t AsInt64() const noexcept { return m_payload.int64; }     ///< The payload of `XmlType::Int64`.
    std::uint64_t AsUInt64() const noexcept { return m_payload.uint64; }  ///< The payload of `XmlType::UInt64`.

 private:
    XmlType m_type;
    union {
        std::int32_t int32;
        double real;
        const char* text;
        bool boolean;
        std::uint16_t uint16;
        std::uint32_t uint32;
        std::int64_t int64;
        std::uint64_t uint64;
    } m_payload{};
};

}  // namespace gd_xml_stream
