// Reads results and settings files with expat in blocks of 64 KiB, with handlers written for them.
#include <expat.h>

#include <cstdio>
#include <iterator>

#include "XmlTrees.h"

namespace {

bool Same(const char* a, const char* b) { return std::strcmp(a, b) == 0; }

/// Returns the index of a name in a list, or -1.
int PlaceOf(const char* name, const auto& names) {
    for (int i = 0; i < static_cast<int>(std::size(names)); ++i)
        if (name == std::string_view(names[i])) return i;
    return -1;
}

struct CResultsHandler {
    CTree& tree;
    CTree::CWell* well = nullptr;
    std::string label = {};
    bool inWell = false, normalized = false;

    void Start(const char* name, std::size_t size) {
        if (Same(name, "Recording")) tree.recordings.emplace_back();
        if (Same(name, "Well")) inWell = true;
        if (Same(name, "FPfastDetectionTimes")) well->times.reserve(size);
        if (Same(name, "Average")) well->average.reserve(size);
        if (Same(name, "Responses")) normalized = false;
        if (Same(name, "NormalizedResponses")) normalized = true;
    }

    void End(const char* name, const std::string& text) {
        if (Same(name, "Time")) {
            well->times.push_back(NumberOf<std::int64_t>(text.c_str()));
        } else if (Same(name, "Ave")) {
            const char* const end = text.c_str() + text.size();
            for (const char* at = text.c_str(); at < end;)
                at = std::from_chars(at, end, well->average.emplace_back()).ptr + 1;
        } else if (Same(name, "WellID")) {
            well = &tree.recordings.back().wells[NumberOf<int>(text.c_str())];
        } else if (Same(name, "WellLabel")) {
            well->label = text;
        } else if (Same(name, "Dose") && !inWell) {
            tree.recordings.back().dose = NumberOf<std::uint64_t>(text.c_str());
        } else if (Same(name, "Label")) {
            label = text;
        } else if (Same(name, "Value")) {
            (normalized ? well->normalized : well->responses)[PlaceOf(label.c_str(), kResponses)] =
                NumberOf<double>(text.c_str());
        } else if (Same(name, "Well")) {
            inWell = false;
        } else if (const int finding = PlaceOf(name, kFindings); finding >= 0) {
            well->findings[finding] = NumberOf<double>(text.c_str());
        }
    }
};

struct CSettingsHandler {
    CSettings& settings;
    CSettings::CMarks* marks = nullptr;

    void Start(const char* name, std::size_t size) {
        if (Same(name, "Task")) settings.tasks.emplace_back();
        if (settings.tasks.empty() && Same(name, "Well")) settings.wells.emplace_back();
        if (!settings.tasks.empty() && Same(name, "Recordings")) settings.tasks.back().reserve(size);
        // A recording contains a number with the same tag, and the list of its wells.
        if (!settings.tasks.empty() && Same(name, "Wells")) settings.tasks.back().emplace_back();
    }

    void End(const char* name, const std::string& text) {
        const char* const value = text.c_str();
        if (!settings.tasks.empty()) {
            if (Same(name, "WellID")) marks = &settings.tasks.back().back()[NumberOf<int>(value)];
            if (Same(name, "Analyze")) marks->analyze = NumberOf<int>(value);
            if (const int response = PlaceOf(name, kMarkedResponses); response >= 0)
                marks->marks[response] = MarkOf(text);
            return;
        }
        if (Same(name, "Dose")) settings.doses.push_back(NumberOf<std::uint64_t>(value));
        if (settings.wells.empty()) return;
        CSettings::CWell& well = settings.wells.back();
        if (Same(name, "WellID")) well.id = NumberOf<int>(value);
        if (Same(name, "ChID")) well.channel = NumberOf<int>(value);
        if (Same(name, "Label")) well.label = text;
        if (Same(name, "PlateColumn")) well.column = NumberOf<int>(value);
        if (Same(name, "PlateRow")) well.row = NumberOf<int>(value);
        if (Same(name, "State")) well.state = NumberOf<int>(value);
    }
};

template <class Handler>
struct CParsing {
    Handler handler;
    std::string text = {};

    static void Start(void* self, const char* name, const char** attributes) {
        static_cast<CParsing*>(self)->handler.Start(
            name, attributes[0] != nullptr ? NumberOf<std::size_t>(attributes[1]) : 0);
        static_cast<CParsing*>(self)->text.clear();
    }
    static void End(void* self, const char* name) {
        static_cast<CParsing*>(self)->handler.End(name, static_cast<CParsing*>(self)->text);
        static_cast<CParsing*>(self)->text.clear();
    }
    static void Text(void* self, const char* text, int size) {
        static_cast<CParsing*>(self)->text.append(text, static_cast<std::size_t>(size));
    }

    bool Parse(const char* path) {
        std::FILE* const file = std::fopen(path, "rb");
        XML_Parser parser = XML_ParserCreate(nullptr);
        XML_SetUserData(parser, this);
        XML_SetElementHandler(parser, Start, End);
        XML_SetCharacterDataHandler(parser, Text);
        bool good = file != nullptr;
        for (bool last = false; good && !last;) {
            void* const block = XML_GetBuffer(parser, 65536);
            const std::size_t size = std::fread(block, 1, 65536, file);
            last = size < 65536;
            good = XML_ParseBuffer(parser, static_cast<int>(size), last) == XML_STATUS_OK;
        }
        XML_ParserFree(parser);
        if (file != nullptr) std::fclose(file);
        return good;
    }
};

struct CTrees {
    static bool Read(const char* path, CTree& tree) { return CParsing<CResultsHandler>{{tree}}.Parse(path); }
    static bool Read(const char* path, CSettings& settings) {
        return CParsing<CSettingsHandler>{{settings}}.Parse(path);
    }
    /// expat only reads.
    static bool Write(const char*, const auto&) { return false; }
};

}  // namespace

int main(int argc, char** argv) { return MainOfXmlPeer<CTrees>(argc, argv); }
