#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iomanip>
#include <iostream>
#include <limits>
#include <numeric>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vxfile/report/Json.h"
#include "tools/vxfile/report/Style.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/Command.h"
#include "tools/vxfile/shell/FileKind.h"
#include "verify/Failure.h"
#include "vxfileio/frame/VXFileIO.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/xmlarchive/ReadAndReport.h"

using vxfileio::helpers::CNumberText;
using vxfileio::helpers::ParseDouble;

namespace vxfile {

namespace {

constexpr CCommandText kPlanText = {
    .name = "plan",
    .purpose = "Check whether a planned recording fits its header",
    .details =
        "The header of a recording lists ID, interval, units and zero of each well in cells of fixed widths. Takes the "
        "wells, interval, units and zero of a settings file, or those of the options, which win. Shows each cell with "
        "its room and what it needs; if one is too small, how many wells would fit and what would help. Names a value "
        "that a strict writer refuses.",
    .example = "vxfile plan --wells 54 --ad-zero 32768 --units 0.0003 --tick 100",
    .statuses =
        "  0  the recording fits\n"
        "  1  it doesn't fit, or a strict writer refuses a value\n"
        "  2  a value is missing or impossible, or the settings file can't be read",
};

constexpr std::int64_t kMostWells = 100'000;

/// Values that weren't given.
constexpr std::int64_t kNoNumber = std::numeric_limits<std::int64_t>::min();

std::string Text(double number) { return std::string(CNumberText::General(number).View()); }

/// Returns the number rounded to this many significant digits.
double Rounded(double number, int digits) {
    std::ostringstream text;
    text << std::setprecision(digits) << number;
    return ParseDouble(text.str());
}

/// Returns the nearest units whose text has at most this many characters, if rounding can help.
std::optional<double> CoarserUnits(double units, std::int64_t characters) {
    for (int digits = 5; digits > 0; --digits) {
        const double rounded = Rounded(units, digits);
        if (std::cmp_less_equal(Text(rounded).size(), characters)) return rounded;
    }
    return std::nullopt;
}

/// Returns the maximum length of a list's items if it has one for each well.
std::int64_t CharactersPerWell(const CCellFit& cell, std::int64_t wells) { return (cell.Room + 1) / wells - 1; }

/// Returns the advice to choose an interval whose text has at most this many characters.
std::string LongestInterval(std::int64_t characters) {
    return "a sample interval of at most " + std::string(static_cast<std::size_t>(characters), '9');
}

/// Returns the nearest units with a text that is short enough, and a warning about the change; empty if there are none.
std::string UnitsFor(double units, std::int64_t characters) {
    const auto coarser = CoarserUnits(units, characters);
    if (!coarser) return {};
    const double off = (*coarser / units - 1) * 100;
    return "units of " + Text(*coarser) + " instead of " + Text(units) +
           " (a warning: they make all values in physical units " + Text(Rounded(std::abs(off), 2)) +
           (off < 0 ? " % smaller)" : " % larger)");
}

/// Returns what would make the value of a cell fit, other than fewer wells; empty if nothing would. IDs and zeros can't
/// be changed.
std::string ChangeFor(const CCellFit& cell, const CRecordingFit& fit, double units) {
    const std::int64_t characters = cell.IsList ? CharactersPerWell(cell, fit.Wells) : 0;
    if (characters < 1) return {};
    if (cell.Key == "Ticks") return LongestInterval(characters);
    if (cell.Key == "UnitsPerADs") return UnitsFor(units, characters);
    return {};
}

/// Returns a change for each cell that is too small; empty if one of them has none.
std::string Changes(const CRecordingFit& fit, double units) {
    std::string changes;
    for (const auto& cell : fit.Cells) {
        if (cell.Fits()) continue;
        const std::string change = ChangeFor(cell, fit, units);
        if (change.empty()) return {};
        changes += (changes.empty() ? "" : ", ") + change;
    }
    return changes;
}

/// Returns the number of wells in each part as text, for any number of parts.
std::string PartsText(const std::vector<std::int64_t>& parts) {
    constexpr std::size_t kMostNamed = 6;
    if (parts.size() > kMostNamed) return "up to " + std::to_string(*std::ranges::max_element(parts));
    std::string text;
    for (const std::int64_t part : parts)
        text += (text.empty() ? "" : " + ") + std::to_string(part);
    return text;
}

/// Returns the ways to make a recording fit, a sentence each. There is none for a refused value.
std::vector<std::string> AdviceFor(const CRecordingFit& fit, double units) {
    if (!fit.Refusal.empty()) return {};
    std::vector<std::string> advice;
    if (fit.Split.size() > 1)
        advice.push_back("Split it into " + std::to_string(fit.Split.size()) + " recordings, of " +
                         PartsText(fit.Split) + " wells.");
    const std::string changes = Changes(fit, units);
    if (!changes.empty()) advice.push_back("Use " + changes + '.');
    return advice;
}

CJson ToJson(const CRecordingFit& fit, const std::vector<std::string>& advice) {
    CJson cells = CJson::array();
    for (const auto& cell : fit.Cells)
        cells.push_back({{"key", cell.Key},
                         {"room", cell.Room},
                         {"needed", cell.Needed},
                         {"wellsThatFit", cell.WellsThatFit},
                         {"fits", cell.Fits()}});
    return {{"fits", fit.Fits()}, {"wells", fit.Wells},     {"wellsThatFit", fit.WellsThatFit}, {"split", fit.Split},
            {"advice", advice},   {"refusal", fit.Refusal}, {"cells", std::move(cells)}};
}

void Print(const CRecordingFit& fit, const std::vector<std::string>& advice) {
    const std::string wells = Counted(static_cast<std::uint64_t>(fit.Wells), "well");
    const bool hasRoom = std::ranges::all_of(fit.Cells, &CCellFit::Fits);
    std::cout << "A recording of " << wells << (hasRoom ? Green(" fits") : Red(" doesn't fit")) << " its header"
              << (fit.Refusal.empty() ? "" : Red(", but a value is refused"))
              << ".\n\n  cell                 room  needed  wells that fit\n";
    for (const auto& cell : fit.Cells) {
        std::cout << "  " << std::left << std::setw(18) << cell.Key << std::right << std::setw(7) << cell.Room
                  << std::setw(8) << cell.Needed << std::setw(16) << cell.WellsThatFit
                  << (cell.Fits() ? "" : "  too small") << '\n';
    }
    if (!hasRoom) std::cout << '\n' << fit.Text() << '\n';
    if (!fit.Refusal.empty()) std::cout << '\n' << fit.Refusal << '\n';
    if (!advice.empty()) std::cout << "What would help" << (advice.size() > 1 ? ", one or the other:\n" : ":\n");
    for (const auto& text : advice)
        std::cout << "  " << text << '\n';
}

class CPlanCommand : public CCommand {
 public:
    const CCommandText& Text() const override { return kPlanText; }

    std::vector<COption> Options() override {
        return {
            {.names = "SETTINGS", .target = &m_settings, .text = "A settings file with the record plate"},
            {.names = "--wells",
             .target = &m_wells,
             .text = "The number of wells, with the IDs from 1 on",
             .wanted = "a whole number of wells"},
            {.names = "--ad-zero",
             .target = &m_adZero,
             .text = "The AD value that means zero",
             .wanted = "a whole number"},
            {.names = "--units", .target = &m_units, .text = "Physical units per AD step", .wanted = "a finite number"},
            {.names = "--tick",
             .target = &m_tick,
             .text = "The sample interval, above 0",
             .wanted = "a whole number above 0"},
            {.names = "--json", .target = &m_json, .text = "Print a JSON document for programs"},
        };
    }

    int Run() override {
        return m_json ? RunForJson(kPlanText.name, File(), [&] { return Check(); }) : Check();
    }

 private:
    int Check() {
        const CRecordingFit fit = CheckRecordingFit(Header());
        const auto advice = AdviceFor(fit, m_units);
        if (m_json) {
            CJson json = File();
            json.update(ToJson(fit, advice));
            PrintJson(kPlanText.name, CJson::array({std::move(json)}));
        } else {
            Print(fit, advice);
        }
        return fit.Fits() ? kSound : kFindings;
    }

    CJson File() const { return {{"path", m_settings.empty() ? CJson() : CJson(Utf8(m_settings))}}; }

    /// Returns the header of a recording as `examples/plate_run` would write it.
    CRawDataRecordingHdr Header() {
        std::vector<std::int32_t> ids;
        if (!m_settings.empty()) ids = TakeSettings();
        if (m_wells != kNoNumber) ids = NumberedWells();
        if (ids.empty()) throw CFailure("There are no wells; name a settings file that has some, or use --wells.");
        if (m_adZero == kNoNumber) throw CFailure("The AD zero is missing; use --ad-zero.");
        if (std::isnan(m_units) && m_settings.empty())
            throw CFailure("The units per AD step are missing; use --units.");
        if (m_tick == kNoNumber) throw CFailure("The sample interval is missing; use --tick.");
        if (!std::in_range<std::int32_t>(m_adZero)) throw CFailure("--ad-zero takes a number of 32 bits.");
        CRawDataRecordingHdr header{.TaskName = TaskToString(enTask::CompoundTest), .Recording = 1};
        for (const std::int32_t id : ids)
            header.WellChannels.push_back({id, static_cast<std::int32_t>(m_adZero), m_units, m_tick});
        return header;
    }

    std::vector<std::int32_t> NumberedWells() const {
        if (m_wells < 1 || m_wells > kMostWells)
            throw CFailure("--wells takes a number from 1 to " + std::to_string(kMostWells) + '.');
        std::vector<std::int32_t> ids(static_cast<std::size_t>(m_wells));
        std::iota(ids.begin(), ids.end(), 1);
        return ids;
    }

    /// Takes values without an option from the settings. Returns the wells of their plate.
    std::vector<std::int32_t> TakeSettings() {
        RequireKind(EFileKind::Settings, m_settings);
        CISettingsReader reader;
        const std::string damage = vxfileio::xmlarchive::ReadAndReport(reader, m_settings);
        if (!damage.empty()) throw CFailure(m_settings + ": " + damage + " Give the values as options instead.");
        const CPropRecording& recording = *reader.GetRecordingProperty();
        if (m_adZero == kNoNumber) m_adZero = recording.ADZero;
        if (std::isnan(m_units)) m_units = recording.VoltPerADStep;
        if (m_tick == kNoNumber) m_tick = recording.Tick;
        return reader.GetRecordPlateProperty()->GetAllWellIDs();
    }

    std::string m_settings;
    std::int64_t m_wells = kNoNumber;
    std::int64_t m_adZero = kNoNumber;
    double m_units = std::numeric_limits<double>::quiet_NaN();
    std::int64_t m_tick = kNoNumber;
    bool m_json = false;
};

}  // namespace

std::unique_ptr<CCommand> MakePlanCommand() { return std::make_unique<CPlanCommand>(); }

}  // namespace vxfile
