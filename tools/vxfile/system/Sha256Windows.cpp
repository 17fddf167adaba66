#include <windows.h>
// Needs the types of windows.h.
#include <bcrypt.h>

#include <algorithm>
#include <array>

#include "tools/vxfile/system/Hex.h"
#include "tools/vxfile/system/Sha256.h"
#include "verify/Failure.h"

namespace vxfile {

namespace {

void Require(NTSTATUS status) {
    if (status < 0) throw CFailure("Windows refuses to compute SHA-256; check its cryptographic services.");
}

}  // namespace

struct CSha256::CState {
    CState() = default;
    ~CState() {
        if (hash != nullptr) BCryptDestroyHash(hash);
        if (provider != nullptr) BCryptCloseAlgorithmProvider(provider, 0);
    }
    CState(const CState&) = delete;
    CState& operator=(const CState&) = delete;

    BCRYPT_ALG_HANDLE provider = nullptr;
    BCRYPT_HASH_HANDLE hash = nullptr;
};

CSha256::CSha256() : m_state(std::make_unique<CState>()) {
    Require(BCryptOpenAlgorithmProvider(&m_state->provider, BCRYPT_SHA256_ALGORITHM, nullptr, 0));
    Require(BCryptCreateHash(m_state->provider, &m_state->hash, nullptr, 0, nullptr, 0, 0));
}

CSha256::~CSha256() = default;

void CSha256::Add(std::span<const std::byte> bytes) {
    constexpr std::size_t kMost = std::size_t{1} << 30;
    while (!bytes.empty()) {
        const auto part = bytes.first(std::min(bytes.size(), kMost));
        // The system's function takes a non-const pointer, but only reads.
        auto* const data = reinterpret_cast<PUCHAR>(const_cast<std::byte*>(part.data()));
        Require(BCryptHashData(m_state->hash, data, static_cast<ULONG>(part.size()), 0));
        bytes = bytes.subspan(part.size());
    }
}

std::string CSha256::Finish() {
    std::array<unsigned char, 32> sum{};
    Require(BCryptFinishHash(m_state->hash, sum.data(), static_cast<ULONG>(sum.size()), 0));
    return HexOf(sum);
}

}  // namespace vxfile
