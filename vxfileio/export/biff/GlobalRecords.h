#pragma once

#include <cstdint>
#include <deque>
#include <string_view>
#include <variant>
#include <vector>

#include "vxfileio/export/biff/CountedString.h"

/// @file
/// The records before the sheets, which apply to the whole workbook. `BOF` and `YEOF` also enclose every sheet.

namespace YExcel {

/// A reserved field, always 0.
template <class Number>
inline constexpr Number kReserved = 0;

/// The beginning of the globals or of a sheet.
struct BOF {
    static constexpr std::uint16_t kCode = 0x0809;
    static constexpr std::uint16_t kGlobals = 5;
    static constexpr std::uint16_t kSheet = 0x10;

    std::uint16_t version = 0x0600;
    std::uint16_t type = kGlobals;
    std::uint16_t build = 6560;
    std::uint16_t year = 1997;
    std::uint32_t fileHistory = 0x0000C0C9;
    std::uint32_t lowestVersion = 0x00000306;

    static constexpr void Fields(auto& self, auto& body) {
        body(self.version, self.type, self.build, self.year, self.fileHistory, self.lowestVersion);
    }
};

/// The end of the globals or of a sheet.
struct YEOF {
    static constexpr std::uint16_t kCode = 0x000A;

    static constexpr void Fields(auto& /*self*/, auto& /*body*/) {}
};

/// The workbook's window. Lengths are in twentieths of a point, the width of the tab bar in thousandths.
struct Window1 {
    static constexpr std::uint16_t kCode = 0x003D;

    std::uint16_t horizontalPosition = 120;
    std::uint16_t verticalPosition = 120;
    std::uint16_t width = 15135;
    std::uint16_t height = 9300;
    std::uint16_t options = 0x0038;
    std::uint16_t activeSheet = 0;
    std::uint16_t firstTab = 0;
    std::uint16_t selectedSheets = 1;
    std::uint16_t tabBarRatio = 600;

    static constexpr void Fields(auto& self, auto& body) {
        body(self.horizontalPosition, self.verticalPosition, self.width, self.height, self.options);
        body(self.activeSheet, self.firstTab, self.selectedSheets, self.tabBarRatio);
    }
};

/// A font. Its height is in twentieths of a point.
struct Font {
    static constexpr std::uint16_t kCode = 0x0031;

    std::uint16_t height = 200;
    std::uint16_t options = 0;
    std::uint16_t colourIndex = 0x7FFF;
    std::uint16_t weight = 400;
    std::uint16_t escapement = 0;
    std::uint8_t underline = 0;
    std::uint8_t family = 0;
    std::uint8_t characterSet = 0;
    SmallString name = SmallString(std::u16string_view(u"Arial"));

    static constexpr void Fields(auto& self, auto& body) {
        body(self.height, self.options, self.colourIndex, self.weight, self.escapement);
        body(self.underline, self.family, self.characterSet, kReserved<std::uint8_t>, self.name);
    }
};

/// A cell format.
struct XF {
    static constexpr std::uint16_t kCode = 0x00E0;

    std::uint16_t font = 0;
    std::uint16_t format = 0;
    std::uint16_t protectionAndType = 0xFFF5;
    std::uint8_t alignment = 0x20;
    std::uint8_t rotation = 0;
    std::uint8_t textProperties = 0;
    std::uint8_t usedAttributes = 0;
    std::uint32_t borders = 0;
    std::uint32_t colours = 0;
    std::uint16_t fillColours = 0x20C0;

    static constexpr void Fields(auto& self, auto& body) {
        body(self.font, self.format, self.protectionAndType, self.alignment, self.rotation, self.textProperties,
             self.usedAttributes);
        body(self.borders, self.colours, self.fillColours);
    }
};

/// A named style: a built-in one, or one with its own name.
struct Style {
    static constexpr std::uint16_t kCode = 0x0293;
    static constexpr std::uint16_t kBuiltIn = 0x8000;

    std::uint16_t xfAndFlag = kBuiltIn;
    std::uint8_t identifier = 0;  ///< Identifier and level of a built-in style.
    std::uint8_t level = 0xFF;
    SstString name = SstString();  ///< The name of any other style.

    static constexpr void Fields(auto& self, auto& body) {
        body(self.xfAndFlag);
        if ((self.xfAndFlag & kBuiltIn) != 0) {
            body(self.identifier, self.level);
        } else {
            body(self.name);
        }
    }
};

/// The name of a sheet and the stream offset of its `BOF`.
struct BoundSheet {
    static constexpr std::uint16_t kCode = 0x0085;

    std::uint32_t position = 0;
    std::uint8_t visibility = 0;
    std::uint8_t type = 0;
    SmallString name = SmallString();

    static constexpr void Fields(auto& self, auto& body) { body(self.position, self.visibility, self.type, self.name); }
};

/// All texts of the workbook, each once. `total` is the number of cells with a text. Adding strings doesn't move the
/// existing ones.
struct SharedStringTable {
    static constexpr std::uint16_t kCode = 0x00FC;

    std::uint32_t total = 0;
    std::deque<SstString> strings = {};

    static constexpr void Fields(auto& self, auto& body) {
        body(self.total);
        body.template Counted<std::uint32_t>(self.strings);
    }
};

/// The stream offset of every n-th shared string. It is optional; saved workbooks have none.
struct ExtSST {
    static constexpr std::uint16_t kCode = 0x00FF;

    struct Bucket {
        std::uint32_t position = 0;  ///< Stream offset of its first string.
        std::uint16_t offset = 0;    ///< The same, from the beginning of the record.

        static constexpr void Fields(auto& self, auto& body) {
            body(self.position, self.offset, kReserved<std::uint16_t>);
        }
    };

    std::uint16_t stringsPerBucket = 8;
    std::vector<Bucket> buckets = {};

    static constexpr void Fields(auto& self, auto& body) { body(self.stringsPerBucket, self.buckets); }
};

}  // namespace YExcel
