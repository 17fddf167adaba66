#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

/// @file
/// Handles: numbers in the guise of pointers, which are looked up and never followed. So a closed handle, one of
/// another kind and a random pointer are recognized.

namespace vxfileio::capi {

/// What every handle stands for.
class CObject {
 public:
    CObject() = default;
    virtual ~CObject() = default;
    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;

    /// Returns whether the call that made it has worked.
    virtual bool IsOpen() const noexcept = 0;

    /// Finishes an open object, which is destroyed next. Returns false if something that should be on the disk isn't.
    virtual bool Finish() { return true; }

    std::string error;  ///< The text of the last failed call.
};

struct CSlot;

/// Makes a handle for an object. Null if there is no memory; the object is destroyed then.
void* MakeHandle(std::unique_ptr<CObject> object) noexcept;

/// The object of a handle, for one call. No other call gets it meanwhile.
class CBorrowed {
 public:
    explicit CBorrowed(const void* handle) noexcept;
    ~CBorrowed();
    CBorrowed(const CBorrowed&) = delete;
    CBorrowed& operator=(const CBorrowed&) = delete;

    /// VX_OK, VX_ERROR_HANDLE or VX_ERROR_BUSY.
    int Code() const noexcept { return m_code; }
    /// Returns the object. Requires: `Code` is VX_OK.
    CObject& Object() const noexcept;
    /// Destroys the object and its handle. Requires: `Code` is VX_OK.
    void Destroy() noexcept;

 private:
    CSlot* m_slot = nullptr;
    std::uintptr_t m_handle = 0;
    int m_code = 0;
};

}  // namespace vxfileio::capi
