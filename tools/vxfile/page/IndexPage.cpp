#include "tools/vxfile/page/IndexPage.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "tools/vxfile/page/Assets.h"
#include "tools/vxfile/page/Colours.h"
#include "tools/vxfile/page/Html.h"
#include "tools/vxfile/page/Numbers.h"
#include "tools/vxfile/page/Policy.h"
#include "tools/vxfile/report/Text.h"

namespace vxfile::page {

namespace {

/// The texts of an entry, by the names that they have in the data of the index.
constexpr std::pair<const char*, std::string CIndexedPlate::*> kTexts[] = {
    {"page", &CIndexedPlate::page},       {"inputs", &CIndexedPlate::inputs},
    {"results", &CIndexedPlate::results}, {"compound", &CIndexedPlate::compound},
    {"plate", &CIndexedPlate::plate},     {"recorded", &CIndexedPlate::recorded},
    {"wells", &CIndexedPlate::wells},     {"measure", &CIndexedPlate::measure},
    {"mean", &CIndexedPlate::mean},       {"state", &CIndexedPlate::state},
};

/// The columns that can be sorted. The first has the link.
constexpr std::pair<const char*, std::string CIndexedPlate::*> kColumns[] = {
    {"Results", &CIndexedPlate::results},   {"Compound", &CIndexedPlate::compound}, {"Plate", &CIndexedPlate::plate},
    {"Recorded", &CIndexedPlate::recorded}, {"Wells", &CIndexedPlate::wells},       {"Mean", &CIndexedPlate::mean},
    {"State", &CIndexedPlate::state},
};

CJson JsonOf(const CIndexedPlate& entry) {
    CJson json = CJson::object();
    for (const auto& [name, text] : kTexts)
        json[name] = entry.*text;
    json["sound"] = entry.isSound;
    json["colours"] = entry.colours;
    return json;
}

CIndexedPlate EntryOf(const CJson& json) {
    CIndexedPlate entry;
    for (const auto& [name, text] : kTexts)
        entry.*text = json.at(name).get<std::string>();
    entry.isSound = json.at("sound").get<bool>();
    entry.colours = json.at("colours").get<std::vector<std::vector<int>>>();
    return entry;
}

void WriteMap(CHtml& html, const CIndexedPlate& entry) {
    html.Element("table", {{"class", "mini"}, {"aria-hidden", "true"}}, [&] {
        for (const std::vector<int>& row : entry.colours) {
            html.Element("tr", {}, [&] {
                for (const int colour : row)
                    html.Element("td", {{colour < 0 ? "" : "class", "c" + std::to_string(colour)}}, "");
            });
        }
    });
    html.Element("span", {{"class", "quiet small"}}, entry.measure);
}

void WriteEntry(CHtml& html, const CIndexedPlate& entry) {
    html.Element("tr", {}, [&] {
        html.Element("td", {}, [&] { WriteMap(html, entry); });
        html.Element("th", {{"scope", "row"}}, [&] {
            if (entry.page.empty()) {
                html.Text(entry.results);
            } else {
                html.Element("a", {{"href", AddressOf(entry.page)}}, entry.results);
            }
        });
        for (const auto& [head, text] : std::span(kColumns).subspan(1)) {
            const bool isState = text == &CIndexedPlate::state;
            html.Element("td", {{isState ? "class" : "", entry.isSound ? "sound" : "unsound"}}, entry.*text);
        }
    });
}

void WriteHeads(CHtml& html) {
    html.Element("tr", {}, [&] {
        html.Element("th", {{"scope", "col"}}, "Map");
        for (const auto& column : kColumns) {
            html.Element("th", {{"scope", "col"}, {"aria-sort", "none"}}, [&] {
                html.Element("button", {{"type", "button"}}, column.first);
            });
        }
    });
}

void WriteIndex(CHtml& html, const std::vector<CIndexedPlate>& entries) {
    html.Element("header", {}, [&] {
        html.Element("h1", {}, "Plates");
        html.Element("p", {{"class", "quiet"}, {"id", "count"}, {"aria-live", "polite"}},
                     Counted(entries.size(), "plate"));
    });
    html.Element("section", {{"class", "card"}, {"aria-label", "Plates"}}, [&] {
        html.Element("p", {{"class", "charts"}}, [&] {
            html.Element("label", {}, [&] {
                html.Text("Search ");
                html.Void("input", {{"id", "search"}, {"type", "search"}});
            });
        });
        html.Element("div", {{"class", "wide"}}, [&] {
            html.Element("table", {{"class", "index"}, {"id", "plates"}}, [&] {
                html.Element("thead", {}, [&] { WriteHeads(html); });
                html.Element("tbody", {}, [&] {
                    for (const CIndexedPlate& entry : entries)
                        WriteEntry(html, entry);
                });
            });
        });
    });
}

void WriteIndexHead(CHtml& html) {
    html.Element("head", {}, [&] {
        WritePolicy(html, PolicyNameOf(kIndexScript));
        html.Element("title", {}, "Plates");
        html.Embed("style", kPageStyle.text);
        html.Embed("style", ColourRules());
        html.Embed("script", kIndexScript.text);
    });
}

/// Returns the measure that an index shows; null without any.
const CMeasure* ShownMeasure(const CPlateValues& values) {
    for (const bool isNormalized : {true, false}) {
        for (const CMeasure& measure : values.measures) {
            if (measure.response == "QT-Interval" && measure.isNormalized == isNormalized) return &measure;
        }
    }
    return values.measures.empty() ? nullptr : &values.measures.front();
}

std::string FactOf(const CPlateValues& values, std::string_view name) {
    const auto found = std::ranges::find(values.facts, name, &std::pair<std::string, std::string>::first);
    return found == values.facts.end() ? "" : found->second;
}

}  // namespace

CIndexedPlate IndexedPlateOf(const CPlateValues& values) {
    CIndexedPlate entry;
    entry.compound = values.compound;
    entry.plate = values.plate;
    entry.recorded = FactOf(values, "Recorded");
    entry.wells = std::to_string(values.wells.size());
    const CMeasure* measure = ShownMeasure(values);
    if (measure == nullptr) return entry;
    const auto greatest = std::ranges::max_element(values.recordings, {}, &CRecordingLine::dose);
    const auto line = static_cast<std::size_t>(greatest - values.recordings.begin());
    entry.measure = measure->Name() + ", " + greatest->name;
    if (const auto& mean = measure->means[line]) entry.mean = RoundedText(mean->mean, DecimalsFor(measure->greatest));
    entry.colours.assign(values.rowLabels.size(), std::vector<int>(values.columnLabels.size(), -1));
    for (std::size_t i = 0; i < values.wells.size(); ++i) {
        const CWellPlace& well = values.wells[i];
        const CWellValue& value = measure->values[line][i];
        if (well.row && value.Counts())
            entry.colours[*well.row][well.column] =
                static_cast<int>(ColourNumber(*value.value, measure->least, measure->greatest));
    }
    return entry;
}

std::string IndexPage(const std::vector<CIndexedPlate>& entries) {
    CJson data = CJson::array();
    for (const CIndexedPlate& entry : entries)
        data.push_back(JsonOf(entry));
    CHtml html;
    html.Element("html", {{"lang", "en"}}, [&] {
        WriteIndexHead(html);
        html.Element("body", {}, [&] {
            html.Element("main", {}, [&] { WriteIndex(html, entries); });
            html.Data("entries", data);
        });
    });
    return html.Bytes();
}

std::vector<CIndexedPlate> EntriesOf(const std::string& index) {
    constexpr std::string_view kBegin = "id=\"entries\">";
    const std::size_t begin = index.find(kBegin);
    if (begin == std::string::npos) return {};
    const std::size_t end = index.find('<', begin + kBegin.size());
    const CJson json = CJson::parse(index.substr(begin + kBegin.size(), end - begin - kBegin.size()), nullptr, false);
    std::vector<CIndexedPlate> entries;
    if (!json.is_array()) return entries;
    try {
        for (const CJson& entry : json)
            entries.push_back(EntryOf(entry));
    } catch (const CJson::exception&) {
        entries.clear();  // an index of another version: all pages are made again
    }
    return entries;
}

}  // namespace vxfile::page
