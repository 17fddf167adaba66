#include "vxfileio/base/VXExceptions.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace vxfileio::base {

namespace {

/// Texts by code. No conversion uses the last five.
constexpr std::array<std::string_view, 16> kTexts = {
    "",
    "Vexaprobe exception! \nDose out of range.",
    "Vexaprobe exception! \nError in series definition.",
    "Vexaprobe exception! \nVolume out of range.",
    "Vexaprobe exception! \nError in volume string.",
    "Vexaprobe exception! \nVoltage out of range.",
    "Vexaprobe exception! \nError in voltage string.",
    "Vexaprobe exception! \nRate out of range.",
    "Vexaprobe exception! \nError in rate string.",
    "Vexaprobe exception! \nTime out of range.",
    "Vexaprobe exception! \nError in Time string.",
    "",
    "Vexaprobe exception! \nCompound series must consist of 2 - 11 doses",
    "Vexaprobe exception! \nCompound series has wrong order",
    "Vexaprobe exception! \nDifference between two successive doses is too small",
    "Vexaprobe exception! \nDifference between two successive doses is too large",
};

/// The highest code with its own text. Callers rely on 11 and above being unknown errors.
constexpr std::int32_t kLastConversionCode = 10;

constexpr std::string_view kUnknownError = "Vexaprobe: Unknown error occured";

std::string_view ConversionText(std::int32_t code) {
    if (code < 0 || code > kLastConversionCode) return kUnknownError;
    return kTexts[static_cast<std::size_t>(code)];
}

}  // namespace

CExcConversion::CExcConversion(std::int32_t conversionCode) {
    code = conversionCode;
    message = ConversionText(conversionCode);
}

}  // namespace vxfileio::base
