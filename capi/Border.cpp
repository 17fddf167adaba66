#include "capi/Border.h"

#include <array>
#include <exception>
#include <stdexcept>

#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/base/VXExceptions.h"
#include "vxfileio/helpers/File.h"
#include "vxfileio/helpers/PrintableText.h"

namespace vxfileio::capi {

namespace {

constexpr std::int64_t kMostStruct = 4096;

/// Runs when the library is loaded.
[[maybe_unused]] const bool kPathsAreUtf8 = (helpers::TakePathsAsUtf8(), true);

/// Returns the code and the text of the exception that is being handled.
CFailed FailureOfException(int refusal) {
    try {
        throw;
    } catch (CFailed& failed) {
        return std::move(failed);
    } catch (const CExcVXReader& refused) {
        return {refusal, refused.GetMsg()};
    } catch (const base::CVXExceptions& value) {
        return {VX_ERROR_VALUE, value.message};
    } catch (const std::bad_alloc&) {
        return {VX_ERROR_MEMORY, "Out of memory."};
    } catch (const std::length_error&) {
        return {VX_ERROR_MEMORY, "Out of memory."};
    } catch (const std::exception& other) {
        return {VX_ERROR_INTERNAL, other.what()};
    } catch (...) {
        return {VX_ERROR_INTERNAL, "An unknown exception."};
    }
}

constexpr std::array<std::pair<int, std::string_view>, 19> kCodeTexts = {{
    {VX_OK, "Success"},
    {VX_ERROR_ARGUMENT, "An argument is NULL, negative, out of range or unknown"},
    {VX_ERROR_HANDLE, "The handle is NULL, closed, or was never one"},
    {VX_ERROR_KIND, "The handle is of another kind"},
    {VX_ERROR_BUSY, "Another call is using the handle"},
    {VX_ERROR_STATE, "Not possible now"},
    {VX_ERROR_STRUCT, "A struct has a wrong size, or members that this version doesn't know"},
    {VX_ERROR_SHORT_BUFFER, "The buffer is too small"},
    {VX_ERROR_NOT_FOUND, "There is nothing of this name, number or path"},
    {VX_ERROR_TYPE, "The value has another type"},
    {VX_ERROR_VALUE, "The value doesn't fit"},
    {VX_ERROR_REFUSED, "The writer refuses a value or the order of calls"},
    {VX_ERROR_FILE, "The file can't be opened or read, or is damaged"},
    {VX_ERROR_WRITE, "The system refused a write, or readers can't use a value as it was written"},
    {VX_DAMAGED, "The file was read as far as possible, but isn't as it should be"},
    {VX_CANCELLED, "A callback ended the work"},
    {VX_END, "There is nothing more"},
    {VX_ERROR_MEMORY, "Out of memory"},
    {VX_ERROR_INTERNAL, "A defect of the library"},
}};

/// Runs `body` for a function that has no handle to keep an error.
template <class Body>
int GuardAlone(Body body) noexcept {
    std::string ignored;
    return Guard(VX_ERROR_INTERNAL, ignored, body);
}

}  // namespace

std::string_view CodeText(int code) {
    const auto* const found =
        std::find_if(kCodeTexts.begin(), kCodeTexts.end(), [&](const auto& row) { return row.first == code; });
    if (found == kCodeTexts.end()) throw CFailed{VX_ERROR_NOT_FOUND, {}};
    return found->second;
}

int CodeOfException(int refusal, std::string& error) noexcept {
    try {
        CFailed failed = FailureOfException(refusal);
        error = std::move(failed.text);
        return failed.code;
    } catch (...) {
        error.clear();  // there is no memory for a text
        return VX_ERROR_MEMORY;
    }
}

std::size_t SharedSize(std::size_t known, std::int64_t size) {
    // Every struct is that of version 1 so far, so there is no shorter one.
    if (std::cmp_less(size, known) || size > kMostStruct)
        throw CFailed{VX_ERROR_STRUCT, "The size of the struct is wrong; set it to sizeof of the struct."};
    return known;
}

void RequireZeros(std::span<const unsigned char> bytes) {
    if (std::any_of(bytes.begin(), bytes.end(), [](unsigned char byte) { return byte != 0; }))
        throw CFailed{VX_ERROR_STRUCT, "The struct has members that this version of the library doesn't know."};
}

}  // namespace vxfileio::capi

using namespace vxfileio::capi;

int VX_CALL vx_close(void* handle) {
    if (handle == nullptr) return VX_OK;
    CBorrowed borrowed(handle);
    if (borrowed.Code() != VX_OK) return borrowed.Code();
    bool isComplete = true;
    const int code = GuardAlone([&] { isComplete = !borrowed.Object().IsOpen() || borrowed.Object().Finish(); });
    borrowed.Destroy();
    return code == VX_OK && !isComplete ? VX_ERROR_WRITE : code;
}

int VX_CALL vx_last_error(const void* handle, char* buffer, int64_t* size) {
    const CBorrowed borrowed(handle);
    if (borrowed.Code() != VX_OK) return borrowed.Code();
    return GuardAlone([&] { PutText(borrowed.Object().error, buffer, size); });
}

int VX_CALL vx_code_text(int32_t code, char* buffer, int64_t* size) {
    return GuardAlone([&] { PutText(CodeText(code), buffer, size); });
}

int VX_CALL vx_get_version(int32_t* version) {
    return GuardAlone([&] { Put(version, std::int32_t{VX_VERSION}); });
}

int VX_CALL vx_to_utf8(const char* bytes, int64_t length, char* buffer, int64_t* size) {
    return GuardAlone([&] {
        const auto text = TakeArray(bytes, length);
        PutText(vxfileio::helpers::Utf8({text.data(), text.size()}), buffer, size);
    });
}
