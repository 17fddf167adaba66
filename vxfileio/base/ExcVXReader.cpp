#include "vxfileio/base/ExcVXReader.h"

#include <utility>

namespace {

constexpr std::int32_t kCodeWithoutNumber = -1;

}  // namespace

CExcVXReader::CExcVXReader(std::int32_t code, std::string message) : m_code(code), m_message(std::move(message)) {}

CExcVXReader::CExcVXReader(std::string message) : CExcVXReader(kCodeWithoutNumber, std::move(message)) {}

std::int32_t CExcVXReader::GetCode() const { return m_code; }

std::string CExcVXReader::GetMsg() const { return m_message; }
