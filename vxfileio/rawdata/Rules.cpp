#include "vxfileio/rawdata/Rules.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <variant>

#include "vxfileio/helpers/File.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/helpers/PrintableText.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/CellFault.h"
#include "vxfileio/rawdata/HeaderCodec.h"
#include "vxfileio/rawdata/SegmentTimes.h"

using namespace vxfileio::helpers;

namespace vxfileio::rawdata {

namespace {

using CBreaches = std::vector<CBreach>;

// ---- One cell -------------------------------------------------------------------------------------------------------

static_assert(static_cast<int>(ERule::NoSeparator) == static_cast<int>(ECellFault::Separator));

/// A fault in words.
struct CWords {
    std::string expected;
    std::string meaning;
};

CWords WordsFor(const CCellFault& fault, const auto& cell) {
    const std::string key(cell.key);
    switch (fault.kind) {
        case ECellFault::NoLineEnd:
            return {"CR LF as the last two bytes", "The cell has lost its end; readers ignore it."};
        case ECellFault::NoPadding:
            return {"at least one NUL byte before the line end", "Readers see one item too many."};
        case ECellFault::Padding:
            return {"nothing but NUL bytes up to the line end", "Readers ignore what follows a NUL."};
        case ECellFault::NoMark:
            return {"a text that begins " + Quoted(kFileTypeText), "No reader accepts the file."};
        case ECellFault::NoKey:
            return {"the key " + Quoted(key), "Readers find cells by their offset and take the value anyway."};
        case ECellFault::NotFixed:
            return {Quoted(cell.traits.standBy->empty() ? key : key + '=' + std::string(*cell.traits.standBy)),
                    "No writer puts anything else there; readers ignore it."};
        case ECellFault::LoneSign:
            return {"the key alone if there is no value", "Some readers see an item where there is none."};
        case ECellFault::NoNumber:
            return {"a number after " + Quoted(key + '='), "Readers read it as 0."};
        case ECellFault::OtherNumber:
            return {"the number as it is written, " + Quoted(fault.taken), "Readers read it as " + fault.taken + "."};
        case ECellFault::Separator:
            return {"a text without '=', ':' and line ends", "Readers take only " + Quoted(fault.taken) + "."};
    }
    return {};
}

/// Returns whether a fault is after the text of a cell, so that all of the cell has to be shown.
bool IsAfterText(ECellFault kind) {
    return kind == ECellFault::NoLineEnd || kind == ECellFault::NoPadding || kind == ECellFault::Padding;
}

std::optional<CBreach> BreachOfControls(const auto& cell, std::string_view text) {
    if (!HasControls(std::string(text))) return std::nullopt;
    const bool hasNul = text.find('\0') != std::string_view::npos;
    return CBreach{ERule::NoControls,
                   cell.key,
                   cell.offset,
                   Quoted(text),
                   "a text without control characters",
                   hasNul ? "Readers take only what precedes the first NUL."
                          : "Readers take it as it is, but it doesn't suit file names, tables and terminals."};
}

std::optional<CBreach> BreachOfCell(const auto& cell, std::string_view bytes) {
    const std::string_view text = CellText(bytes);
    if (const auto fault = FaultOf(cell, bytes)) {
        auto [expected, meaning] = WordsFor(*fault, cell);
        return CBreach{static_cast<ERule>(fault->kind),
                       cell.key,
                       cell.offset,
                       Quoted(IsAfterText(fault->kind) ? bytes : text),
                       std::move(expected),
                       std::move(meaning)};
    }
    return BreachOfControls(cell, text);
}

/// Judges a text that is to be written to a cell.
std::optional<CBreach> BreachOfText(const auto& cell, std::string_view text) {
    if (const auto fault = FaultOfText(cell.key, text)) {
        auto [expected, meaning] = WordsFor(*fault, cell);
        return CBreach{static_cast<ERule>(fault->kind),
                       cell.key,
                       cell.offset,
                       Quoted(text),
                       std::move(expected),
                       std::move(meaning)};
    }
    return BreachOfControls(cell, text);
}

template <class Header>
CBreaches BreachesOfTexts(const auto& cells, const Header& header) {
    CBreaches breaches;
    for (const auto& cell : cells) {
        const std::string* text = nullptr;
        if (const auto* const member = std::get_if<std::string Header::*>(&cell.member)) text = &(header.**member);
        if constexpr (std::is_same_v<Header, CRawDataFileHdr>) {
            if (const auto* const bare = std::get_if<CBareText<Header>>(&cell.member)) text = &(header.*bare->text);
        }
        if (text == nullptr || cell.traits.standBy) continue;
        if (auto breach = BreachOfText(cell, *text)) breaches.push_back(*std::move(breach));
    }
    return breaches;
}

CBreaches BreachesOfCells(const auto& cells, std::string_view bytes) {
    CBreaches breaches;
    for (const auto& cell : cells) {
        if (bytes.size() < cell.End()) {
            breaches.push_back({ERule::WholeHeader, cell.key, cell.offset, "the end of the file",
                                "the rest of the header", "The file was cut; readers use 0 for what is missing."});
            break;
        }
        if (auto breach = BreachOfCell(cell, CellIn(cell, bytes))) breaches.push_back(*std::move(breach));
    }
    return breaches;
}

// ---- Lists against their counts -------------------------------------------------------------------------------------

std::size_t CountItems(std::string_view cell) {
    std::size_t count = 0;
    for (CCellItems items(cell); items.Next();)
        ++count;
    return count;
}

/// A cell that says how many channels there are: the count by its number, a list by its items.
struct CCountingCell {
    std::string_view key;
    std::size_t offset;  ///< In the header.
    std::int64_t channels;
};

/// The count and then the lists that go with it.
using CCountingCells = std::vector<CCountingCell>;

CCountingCells CountingCells(CChannels channels, const CLayout& layout, std::string_view bytes) {
    CCountingCells cells;
    for (const auto& cell : layout.recording.cells) {
        const std::string_view cellBytes = CellIn(cell, bytes);
        const auto* const count = std::get_if<CChannelCount>(&cell.member);
        const auto* const list = std::get_if<CChannelList>(&cell.member);
        if (count != nullptr && count->channels == channels)
            cells.push_back({cell.key, cell.offset, ParseInt64(CellValue(cellBytes))});
        if (list != nullptr && list->channels == channels)
            cells.push_back({cell.key, cell.offset, static_cast<std::int64_t>(CountItems(cellBytes))});
    }
    return cells;
}

/// Returns the number that most of the cells have; that of the count, unless more agree on another one.
std::int64_t MostCounted(const CCountingCells& cells) {
    const auto votes = [&](std::int64_t number) { return std::ranges::count(cells, number, &CCountingCell::channels); };
    std::int64_t most = cells.front().channels;
    for (const auto& cell : cells) {
        if (votes(cell.channels) > votes(most)) most = cell.channels;
    }
    return most;
}

/// Readers go by the count.
const char* MeaningOfList(const CCountingCell& list, const CCountingCell& count) {
    if (list.channels == count.channels) return "Readers take as many as the count says.";
    return list.channels < count.channels ? "The remaining channels keep their defaults."
                                          : "Readers ignore the remaining items.";
}

/// One damaged cell is one breach, whether it is the count or a list.
void JudgeNumbers(const CCountingCells& cells, CBreaches& breaches) {
    const std::int64_t channels = MostCounted(cells);
    const auto add = [&](const CCountingCell& cell, std::string found, const char* expected, const char* meaning) {
        breaches.push_back(
            {ERule::ListLength, cell.key, cell.offset, std::move(found), std::to_string(channels) + expected, meaning});
    };
    const CCountingCell& count = cells.front();
    if (count.channels != channels)
        add(count, std::to_string(count.channels), ", the number of items in the lists after it",
            count.channels < channels ? "Readers don't see the last channels."
                                      : "Readers see channels that aren't there.");
    for (const auto& list : std::span(cells).subspan(1)) {
        if (list.channels != channels)
            add(list, Counted(static_cast<std::uint64_t>(list.channels), "item"), ", one for each channel",
                MeaningOfList(list, count));
    }
}

/// The wells of a recording by its lists.
struct CListedWells {
    std::vector<CRawDataChannelInfo> wells;  ///< As many as the list of their IDs has.
    std::size_t intervals = 0;               ///< The number of those that have a sample interval.
};

/// Whatever the count says.
CListedWells ListedWells(const CCountingCells& cells, const CLayout& layout, std::string bytes) {
    constexpr std::size_t kIDs = 1;
    constexpr std::size_t kTicks = 2;
    const std::int64_t count = std::min(MostCounted(cells), cells[kIDs].channels);
    const CRecordingCell& cell = layout.recording["NumberOfWells"];
    EncodeCell(cell.key, count, std::span(bytes).subspan(cell.offset, cell.width));
    CRawDataRecordingHdr header;
    if (!DecodeChannels(layout, bytes, header)) return {};
    return {std::move(header.WellChannels), static_cast<std::size_t>(cells[kTicks].channels)};
}

/// Judges the wells of a recording. Only the first `intervals` of them have a sample interval.
void JudgeWells(const std::vector<CRawDataChannelInfo>& wells, std::size_t intervals, const CLayout& layout,
                CBreaches& breaches) {
    constexpr std::int64_t kMostTicks = std::numeric_limits<std::int32_t>::max();
    std::unordered_set<std::int32_t> ids;
    std::size_t index = 0;
    for (const auto& well : wells) {
        const std::string ofWell = " for well " + std::to_string(well.ID);
        const auto add = [&](ERule rule, std::string_view key, std::string found, const char* expected,
                             const char* meaning) {
            breaches.push_back({rule, key, layout.recording[key].offset, std::move(found), expected, meaning});
        };
        if (!ids.insert(well.ID).second)
            add(ERule::WellOnce, "WellIDs", "a list with well " + std::to_string(well.ID) + " twice", "each well once",
                "It is unclear which channel a segment of this well belongs to.");
        if (index++ < intervals && (well.Ticks <= 0 || well.Ticks > kMostTicks))
            add(ERule::Interval, "Ticks", std::to_string(well.Ticks) + ofWell, "a sample interval from 1 to 2147483647",
                "The times of its samples are unknown.");
        if (!std::isfinite(well.UnitsPerAD))
            add(ERule::FiniteUnits, "UnitsPerADs", std::string(CNumberText::General(well.UnitsPerAD).View()) + ofWell,
                "a finite number", "Its samples have no values in physical units.");
    }
}

/// Returns what readers would make of a list value that isn't the text of the number `taken`.
std::string MeaningOfValue(std::string_view value, const std::string& taken) {
    if (value.empty()) return "Readers would skip it.";
    if (value.find('\0') != std::string_view::npos) return "Readers would take only what precedes the first NUL.";
    if (value.find_first_of(kSeparators) != std::string_view::npos)
        return "Readers would split it into several values.";
    return "Readers would read it as " + taken + ".";
}

}  // namespace

std::string TextOf(const CBreach& breach) {
    return std::string(breach.key.empty() ? "HeaderID" : breach.key) + " is " + breach.found + ", expected " +
           breach.expected + ". " + breach.meaning + " (Rule " + std::string(RowOf(breach.rule).id) + ')';
}

CBreaches BreachesOfFileHdr(const CLayout& layout, std::string_view bytes) {
    return BreachesOfCells(layout.file.cells, bytes);
}

CBreaches BreachesOfRecordingHdr(const CLayout& layout, std::string_view bytes,
                                 std::vector<CRawDataChannelInfo>* wells) {
    CBreaches breaches = BreachesOfCells(layout.recording.cells, bytes);
    if (bytes.size() < layout.recording.size) return breaches;
    const auto cells = CountingCells(&CRawDataRecordingHdr::WellChannels, layout, bytes);
    JudgeNumbers(cells, breaches);
    JudgeNumbers(CountingCells(&CRawDataRecordingHdr::AuxChannels, layout, bytes), breaches);
    CListedWells listed = ListedWells(cells, layout, std::string(bytes));
    JudgeWells(listed.wells, listed.intervals, layout, breaches);
    if (wells != nullptr) *wells = std::move(listed.wells);
    return breaches;
}

CBreaches BreachesOfSegmentHdr(const CLayout& layout, std::string_view bytes) {
    return BreachesOfCells(layout.segment.cells, bytes);
}

CBreaches BreachesOfValues(const CLayout& layout, const CRawDataFileHdr& header) {
    return BreachesOfTexts(layout.file.cells, header);
}

CBreaches BreachesOfValues(const CLayout& layout, const CRawDataRecordingHdr& header) {
    CBreaches breaches = BreachesOfTexts(layout.recording.cells, header);
    JudgeWells(header.WellChannels, header.WellChannels.size(), layout, breaches);
    return breaches;
}

std::optional<CBreach> BreachOfVersion(std::int32_t version) {
    if (version >= kOldestWrittenVersion) return std::nullopt;
    return CBreach{.rule = ERule::Version,
                   .key = "FileVersion",
                   .found = std::to_string(version),
                   .expected = std::to_string(kOldestWrittenVersion) + " or more",
                   .meaning = "Readers won't find the wells."};
}

std::optional<CBreach> BreachOfList(const char* list, std::string_view taskName,
                                    const std::vector<std::string>& values) {
    if (list == nullptr)
        return CBreach{.rule = ERule::Task,
                       .key = "taskName",
                       .found = Quoted(taskName),
                       .expected = "PreQC, CompoundTest or PostQC",
                       .meaning = "The file header has no list of another task, so nothing would be written."};
    for (const std::string& value : values) {
        if (const auto fault = FaultOfListItem(value))
            return CBreach{.rule = ERule::WholeNumbers,
                           .key = list,
                           .found = Quoted(value),
                           .expected = "the decimal text of a whole number of 64 bits",
                           .meaning = MeaningOfValue(value, fault->taken)};
    }
    return std::nullopt;
}

// ---- Segments -------------------------------------------------------------------------------------------------------

CSegmentRules::CSegmentRules(const std::vector<CRawDataChannelInfo>& wells) {
    m_wells.reserve(wells.size());
    for (const auto& well : wells)
        m_wells.push_back({well.ID, well.Ticks});
    std::ranges::stable_sort(m_wells, {}, &CWell::id);
    const auto isSame = [](const CWell& a, const CWell& b) { return a.id == b.id; };
    m_wells.erase(std::unique(m_wells.begin(), m_wells.end(), isSame), m_wells.end());
}

const CSegmentRules::CWell* CSegmentRules::Find(std::int32_t id) const noexcept {
    const auto well = std::ranges::lower_bound(m_wells, id, {}, &CWell::id);
    return well == m_wells.end() || well->id != id ? nullptr : &*well;
}

std::optional<CBreach> CSegmentRules::BreachOf(const CLayout& layout, const CSegmentHdr& segment) const {
    const auto breach = [&](ERule rule, std::string_view key, std::int64_t found, std::string expected,
                            const char* meaning) {
        return CBreach{rule, key, layout.segment[key].offset, std::to_string(found), std::move(expected), meaning};
    };
    const auto& [id, next, from, to, size] = segment;
    const CWell* const well = Find(id);
    if (well == nullptr)
        return breach(ERule::WellListed, "ID", id, "a well that the recording lists",
                      "Interval and units of its samples are unknown.");
    if (to < from)
        return breach(ERule::TimeOrder, "TimeTo", to, "at least TimeFrom, " + std::to_string(from),
                      "The segment ends before it begins.");
    if (!SpanOf(from, to))
        return breach(ERule::TimeSpan, "TimeTo", to, "at most 2^63 - 1 after TimeFrom, " + std::to_string(from),
                      "No segment is as long as that.");
    const auto samples = SampleCount(from, to, well->tick);
    if (samples && *samples != static_cast<std::uint64_t>(size))
        return breach(ERule::Size, "Size", size,
                      std::to_string(*samples) + ", one for each interval from TimeFrom to TimeTo",
                      "Size, a time or the interval is damaged; readers go by Size.");
    if (well->end && from <= *well->end)
        return breach(ERule::NoOverlap, "TimeFrom", from,
                      "more than " + std::to_string(*well->end) + ", where the previous segment of well " +
                          std::to_string(id) + " ends",
                      "The times of these segments overlap or go backwards; readers return both.");
    return std::nullopt;
}

std::optional<CBreach> CSegmentRules::BreachOfTick(std::int32_t id, std::int64_t tick) const {
    const CWell* const well = Find(id);
    if (well == nullptr || well->tick == tick) return std::nullopt;
    return CBreach{.rule = ERule::Tick,
                   .key = "tick",
                   .found = std::to_string(tick),
                   .expected = std::to_string(well->tick) + ", the interval of well " + std::to_string(id) +
                               " in the recording header",
                   .meaning = "The file holds no other, so readers would work out other times."};
}

void CSegmentRules::Note(const CSegmentHdr& segment) noexcept {
    if (const CWell* const well = Find(segment.ID))
        m_wells[static_cast<std::size_t>(well - m_wells.data())].end = segment.TimeTo;
}

}  // namespace vxfileio::rawdata
