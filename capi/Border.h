#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "capi/Handles.h"
#include "capi/Interface.h"

/// @file
/// What every function of the interface goes through: no exception passes, and texts, arrays and structs cross by the
/// rules that `vxfileio.h` states.

namespace vxfileio::capi {

/// Ends a call with a code, and a text for `vx_last_error`.
struct CFailed {
    int code;
    std::string text;
};

/// Returns what a code means. Throws VX_ERROR_NOT_FOUND if it is none.
std::string_view CodeText(int code);

/// Returns the code for the exception that is being handled, and stores its text in `error`. `refusal` is the code for
/// the library's own exceptions.
int CodeOfException(int refusal, std::string& error) noexcept;

/// Runs `body`, which throws to fail. Returns the code.
template <class Body>
int Guard(int refusal, std::string& error, Body body) noexcept {
    try {
        body();
        return VX_OK;
    } catch (...) {
        return CodeOfException(refusal, error);
    }
}

/// Returns what a handle stands for, which must be an `Object` that was opened.
template <class Object>
Object& ObjectOf(const CBorrowed& borrowed) {
    static_assert(std::is_final_v<Object>);
    CObject& any = borrowed.Object();
    if (typeid(any) != typeid(Object)) throw CFailed{VX_ERROR_KIND, "The handle is of another kind."};
    auto& object = static_cast<Object&>(any);  // much faster than a dynamic_cast
    if (!object.IsOpen()) throw CFailed{VX_ERROR_STATE, "It wasn't opened: " + object.error};
    return object;
}

/// Runs `body(object)` for a function of an `Object`, whose handle keeps the error.
template <class Object, class Body>
int With(const void* handle, Body body, int refusal = VX_ERROR_FILE) noexcept {
    const CBorrowed borrowed(handle);
    if (borrowed.Code() != VX_OK) return borrowed.Code();
    if (!borrowed.Object().IsOpen()) return VX_ERROR_STATE;  // the handle keeps why it wasn't opened
    return Guard(refusal, borrowed.Object().error, [&] { body(ObjectOf<Object>(borrowed)); });
}

/// Runs `body(object)` with another handle of a function. Throws if that isn't possible.
template <class Object, class Body>
void Use(const void* handle, Body body) {
    const CBorrowed borrowed(handle);
    if (const int code = borrowed.Code(); code != VX_OK)
        throw CFailed{code, "A handle among the arguments can't be used: " + std::string(CodeText(code)) + "."};
    body(ObjectOf<Object>(borrowed));
}

/// Makes a handle of an `Object` on which `body(object)` has run. If that fails, the handle has the error.
template <class Object, class Handle, class Body>
int Make(Handle** out, Body body) noexcept {
    if (out == nullptr) return VX_ERROR_ARGUMENT;
    *out = nullptr;
    std::unique_ptr<Object> object(new (std::nothrow) Object);
    if (!object) return VX_ERROR_MEMORY;
    const int code = Guard(VX_ERROR_FILE, object->error, [&] { body(*object); });
    *out = static_cast<Handle*>(MakeHandle(std::move(object)));
    return *out == nullptr ? VX_ERROR_MEMORY : code;
}

[[noreturn]] inline void RefuseArgument(const char* text) { throw CFailed{VX_ERROR_ARGUMENT, text}; }

/// Throws a `CFailed` with VX_ERROR_ARGUMENT unless the argument is right.
inline void Require(bool isRight, const char* text) {
    if (!isRight) RefuseArgument(text);
}

/// Returns a text that a caller passes.
inline std::string TakeText(const char* text, const char* name) {
    if (text == nullptr) throw CFailed{VX_ERROR_ARGUMENT, std::string(name) + " is NULL."};
    return text;
}

/// Returns `count` elements that a caller passes.
template <class Element>
std::span<const Element> TakeArray(const Element* elements, std::int64_t count) {
    Require(count >= 0, "The count is negative.");
    Require(elements != nullptr || count == 0, "The array is NULL.");
    constexpr std::int64_t kMostBytes = std::int64_t{1} << 46;  // no process has more
    Require(std::cmp_less_equal(count, kMostBytes / sizeof(Element)), "The count is too large.");
    return {elements, static_cast<std::size_t>(count)};
}

/// Returns an index that a caller passes. Throws unless it is below `count`.
inline std::size_t TakeIndex(std::int64_t index, std::size_t count) {
    Require(index >= 0 && static_cast<std::uint64_t>(index) < count, "The index is out of range.");
    return static_cast<std::size_t>(index);
}

/// Stores a single result.
template <class Value>
void Put(Value* out, Value value) {
    if (out == nullptr) RefuseArgument("The place for the result is NULL.");
    *out = value;
}

/// Stores what is needed. Returns whether the caller has a buffer. Throws if it is too small, after `cut(room)`.
template <class Cut>
bool HasRoom(const void* buffer, std::int64_t* size, std::size_t needed, Cut cut) {
    if (size == nullptr) RefuseArgument("The place for the size is NULL.");
    const std::int64_t room = *size;
    Require(buffer == nullptr || room >= 0, "The size of the buffer is negative.");
    *size = static_cast<std::int64_t>(needed);
    if (buffer == nullptr || std::cmp_greater_equal(room, needed)) return buffer != nullptr;
    cut(static_cast<std::size_t>(room));
    throw CFailed{VX_ERROR_SHORT_BUFFER, "The buffer is too small."};
}

/// Stores a text, cut to the caller's buffer.
inline void PutText(std::string_view text, char* buffer, std::int64_t* size) {
    const auto put = [&](std::size_t room) {
        if (room == 0) return;
        buffer[text.copy(buffer, room - 1)] = '\0';
    };
    if (HasRoom(buffer, size, text.size() + 1, put)) put(text.size() + 1);
}

/// Has `fill(elements)` store `needed` elements in the caller's array, if there is one.
template <class Element, class Fill>
void FillArray(Element* elements, std::int64_t* count, std::uint64_t needed, Fill fill) {
    const auto size = static_cast<std::size_t>(needed);
    if (HasRoom(elements, count, size, [](std::size_t) {})) fill(std::span<Element>(elements, size));
}

/// Stores an array.
template <class Range, class Element>
void PutArray(const Range& values, Element* elements, std::int64_t* count) {
    FillArray(elements, count, std::size(values), [&](std::span<Element> to) {
        std::transform(std::begin(values), std::end(values), to.begin(),
                       [](const auto& value) { return static_cast<Element>(value); });
    });
}

/// The rule for the size of a struct. Returns how many bytes the library and the caller both know.
std::size_t SharedSize(std::size_t known, std::int64_t size);
/// Throws unless all bytes are zero.
void RequireZeros(std::span<const unsigned char> bytes);

/// Returns how many bytes of the caller's struct the library knows. Throws if it is missing or has a wrong size.
template <class Struct>
std::size_t SharedSizeOf(const Struct* structure) {
    if (structure == nullptr) RefuseArgument("The struct is NULL.");
    return SharedSize(sizeof(Struct), structure->size);
}

/// Stores a struct that begins with its size, by the rule for sizes.
template <class Struct>
void PutStruct(const Struct& value, Struct* out) {
    const std::size_t shared = SharedSizeOf(out);
    const auto size = static_cast<std::size_t>(out->size);
    if (size == sizeof(Struct)) {
        *out = value;  // the usual case, much faster than the general one
    } else {
        auto* const bytes = reinterpret_cast<unsigned char*>(out);
        std::memcpy(bytes, &value, shared);
        std::fill(bytes + shared, bytes + size, static_cast<unsigned char>(0));
    }
    out->size = static_cast<std::int64_t>(size);
}

/// Returns a struct that a caller passes, by the rule for sizes.
template <class Struct>
Struct TakeStruct(const Struct* in) {
    const std::size_t shared = SharedSizeOf(in);
    const auto* const bytes = reinterpret_cast<const unsigned char*>(in);
    RequireZeros({bytes + shared, static_cast<std::size_t>(in->size) - shared});
    Struct value{};
    std::memcpy(&value, bytes, shared);
    return value;
}

}  // namespace vxfileio::capi
