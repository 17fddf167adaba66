#include <openssl/evp.h>

#include <array>

#include "tools/vxfile/system/Hex.h"
#include "tools/vxfile/system/Sha256.h"
#include "verify/Failure.h"

namespace vxfile {

namespace {

void Require(bool isDone) {
    if (!isDone) throw CFailure("libcrypto refuses to compute SHA-256; check its configuration.");
}

}  // namespace

struct CSha256::CState {
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context{EVP_MD_CTX_new(), &EVP_MD_CTX_free};
};

CSha256::CSha256() : m_state(std::make_unique<CState>()) {
    Require(m_state->context && EVP_DigestInit_ex(m_state->context.get(), EVP_sha256(), nullptr) == 1);
}

CSha256::~CSha256() = default;

void CSha256::Add(std::span<const std::byte> bytes) {
    Require(EVP_DigestUpdate(m_state->context.get(), bytes.data(), bytes.size()) == 1);
}

std::string CSha256::Finish() {
    std::array<unsigned char, 32> sum{};
    Require(EVP_DigestFinal_ex(m_state->context.get(), sum.data(), nullptr) == 1);
    return HexOf(sum);
}

}  // namespace vxfile
