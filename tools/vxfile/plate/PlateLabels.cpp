#include "tools/vxfile/plate/PlateLabels.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <tuple>
#include <utility>

#include "tools/vxfile/report/Text.h"
#include "verify/Failure.h"

namespace vxfile {

namespace {

/// Takes a well ID off the front of a text; nothing if there is none.
std::optional<std::int32_t> TakeID(std::string_view& text) {
    std::int32_t id = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), id);
    if (error != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return id;
}

/// Takes the first of these prefixes that a text has off its front, and returns it; empty if it has none.
std::string_view TakeOne(std::string_view& text, std::initializer_list<std::string_view> prefixes) {
    for (const auto prefix : prefixes) {
        if (!text.starts_with(prefix)) continue;
        text.remove_prefix(prefix.size());
        return prefix;
    }
    return {};
}

std::string Raised(std::string text) {
    for (char& c : text)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return text;
}

}  // namespace

bool IsWellID(std::string_view word) { return TakeID(word) && word.empty(); }

CPlateLabels::CPlateLabels(const CPropRecordPlate& plate, std::string source)
    : m_source(std::move(source)), m_owner(m_source) {
    for (const auto& well : plate.Data.Wells) {
        if (!well) continue;
        CPlatePlace place = PlaceOf(well->Label);
        if (!place.IsKnown()) place = {well->PlateRow, well->PlateColumn};
        m_labels.try_emplace(well->WellID, CLabel{Utf8(well->Label), place});
    }
}

void CPlateLabels::Merge(const std::map<std::int32_t, std::string>& labels, const std::string& source) {
    if (!AreKnown()) m_source = source;
    m_owner = source;
    std::erase_if(m_labels, [&](const auto& label) { return !labels.contains(label.first); });
    for (const auto& [well, text] : labels) {
        CLabel& label = m_labels[well];
        if (text.empty()) continue;
        label.text = text;
        if (PlaceOf(text).IsKnown()) label.place = PlaceOf(text);
    }
}

std::string_view CPlateLabels::Of(std::int32_t well) const {
    const auto found = m_labels.find(well);
    return found == m_labels.end() ? std::string_view() : found->second.text;
}

std::size_t CPlateLabels::Longest() const {
    std::size_t longest = 0;
    for (const auto& [id, label] : m_labels)
        longest = std::max(longest, label.text.size());
    return longest;
}

std::string CPlateLabels::AddedTo(std::string_view text) const {
    if (!AreKnown()) return std::string(text);
    std::string added;
    while (!text.empty()) {
        std::string_view between = TakeOne(text, {"well ", "wells ", "wells: "});
        if (between.empty()) {
            added += text.front();
            text.remove_prefix(1);
        }
        const bool isList = between != "well ";
        while (!between.empty()) {
            added += between;
            const std::string_view number = text;
            const auto id = TakeID(text);
            if (!id) break;
            added += number.substr(0, number.size() - text.size());
            if (!Of(*id).empty()) added.append(" (").append(Readable(Of(*id))).append(")");
            between = isList ? TakeOne(text, {", ", " - "}) : std::string_view();
        }
    }
    return added;
}

std::string CPlateLabels::List(const std::vector<std::int32_t>& wells) const {
    constexpr std::string_view kBefore = "wells ";
    return AddedTo(std::string(kBefore) + ListText(wells)).substr(kBefore.size());
}

std::vector<std::int32_t> CPlateLabels::WellsOf(const std::string& word) const {
    std::string_view rest = word;
    const auto id = TakeID(rest);
    if (id && rest.empty()) return {*id};
    if (!AreKnown())
        throw CFailure("'" + word +
                       "' isn't the ID of a well, which is a whole number, and no settings file next to the file has "
                       "its Guid; name one with --settings.");
    std::vector<std::int32_t> wells = Find(word);
    if (wells.empty()) wells = FindRectangle(word);
    if (wells.empty()) throw CFailure(m_owner + " has no well " + Quoted(word) + "; its wells: " + All() + '.');
    return wells;
}

/// Returns the wells with this label, or else those at this coordinate.
std::vector<std::int32_t> CPlateLabels::Find(const std::string& word) const {
    const CPlatePlace place = PlaceOf(Raised(word));
    std::vector<std::int32_t> exact;
    std::vector<std::int32_t> there;
    for (const auto& [id, label] : m_labels) {
        if (label.text == word && !word.empty()) exact.push_back(id);
        if (place.IsKnown() && label.place == place) there.push_back(id);
    }
    return exact.empty() ? there : exact;
}

/// Returns the wells in the rectangle between two of them, row by row; none if a corner isn't a well.
std::vector<std::int32_t> CPlateLabels::FindRectangle(const std::string& word) const {
    const auto hyphen = word.find('-');
    if (hyphen == std::string::npos) return {};
    const auto first = Find(word.substr(0, hyphen));
    const auto last = Find(word.substr(hyphen + 1));
    if (first.empty() || last.empty()) return {};
    const CPlatePlace& one = m_labels.at(first.front()).place;
    const CPlatePlace& other = m_labels.at(last.front()).place;
    const auto [top, bottom] = std::minmax(one.row, other.row);
    const auto [left, right] = std::minmax(one.column, other.column);
    std::vector<std::tuple<std::int64_t, std::int64_t, std::int32_t>> found;
    for (const auto& [id, label] : m_labels) {
        const CPlatePlace& at = label.place;
        if (at.row >= top && at.row <= bottom && at.column >= left && at.column <= right)
            found.emplace_back(at.row, at.column, id);
    }
    std::ranges::sort(found);
    std::vector<std::int32_t> wells(found.size());
    std::ranges::transform(found, wells.begin(), [](const auto& well) { return std::get<2>(well); });
    return wells;
}

/// Returns a list of the labels, and of the IDs of wells that have none.
std::string CPlateLabels::All() const {
    return ListOf(m_labels, [](const auto& well) {
        return well.second.text.empty() ? std::to_string(well.first) : Readable(well.second.text);
    });
}

}  // namespace vxfile
