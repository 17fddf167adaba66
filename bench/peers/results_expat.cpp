// A results file read with expat: handlers written for it, numbers by strtod and strtoll, into the tree of
// ResultsTree.h. usage: results_expat read FILE SCALE
#include <expat.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "../Measure.h"
#include "../ResultsTree.h"

namespace {

struct CParsing {
    CTree tree;
    CTree::CWell* well = nullptr;
    std::string text;
    std::string label;
    bool inWell = false;
    bool normalized = false;
};

constexpr const char* kFindings[] = {"FPfastMaxAmp",  "FPfastMaxAmpTimeStamp", "FPfastMinAmp",  "FPfastMinAmpTimeStamp",
                                     "FPfastSlopeX0", "FPfastSlopeY0",         "FPfastSlopeX1", "FPfastSlopeY1"};

bool Same(const char* a, const char* b) { return std::strcmp(a, b) == 0; }

void Start(void* data, const char* name, const char** attributes) {
    auto& p = *static_cast<CParsing*>(data);
    p.text.clear();
    const auto size = attributes[0] != nullptr ? std::strtoul(attributes[1], nullptr, 10) : 0;
    if (Same(name, "Recording")) p.tree.recordings.emplace_back();
    if (Same(name, "Well")) p.inWell = true;
    if (Same(name, "FPfastDetectionTimes")) p.well->times.reserve(size);
    if (Same(name, "Average")) p.well->average.reserve(size);
    if (Same(name, "Responses")) p.normalized = false;
    if (Same(name, "NormalizedResponses")) p.normalized = true;
}

void SplitSamples(const std::string& text, std::vector<double>& samples) {
    for (const char* at = text.c_str(); *at != '\0';) {
        char* end = nullptr;
        samples.push_back(std::strtod(at, &end));
        at = end + 1;
    }
}

int TypeOf(const std::string& label) {
    for (int type = 1; type < 4; ++type)
        if (label == kResponses[type]) return type;
    return 0;
}

void End(void* data, const char* name) {
    auto& p = *static_cast<CParsing*>(data);
    const std::string& text = p.text;
    if (Same(name, "Time")) {
        p.well->times.push_back(std::strtoll(text.c_str(), nullptr, 10));
    } else if (Same(name, "Ave")) {
        SplitSamples(text, p.well->average);
    } else if (Same(name, "WellID")) {
        p.well = &p.tree.recordings.back().wells[std::atoi(text.c_str())];
    } else if (Same(name, "WellLabel")) {
        p.well->label = text;
    } else if (Same(name, "Dose") && !p.inWell) {
        p.tree.recordings.back().dose = std::strtoull(text.c_str(), nullptr, 10);
    } else if (Same(name, "Label")) {
        p.label = text;
    } else if (Same(name, "Value")) {
        (p.normalized ? p.well->normalized : p.well->responses)[TypeOf(p.label)] = std::strtod(text.c_str(), nullptr);
    } else if (Same(name, "Well")) {
        p.inWell = false;
    } else {
        for (int i = 0; i < 8; ++i)
            if (Same(name, kFindings[i])) p.well->findings[i] = std::strtod(text.c_str(), nullptr);
    }
    p.text.clear();
}

void Text(void* data, const char* text, int size) {
    static_cast<CParsing*>(data)->text.append(text, static_cast<std::size_t>(size));
}

bool Parse(const char* path, CParsing& parsing) {
    std::FILE* const file = std::fopen(path, "rb");
    XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetUserData(parser, &parsing);
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

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    CParsing parsing;
    bool good = false;
    Measure([&] { good = Parse(argv[2], parsing); });
    return good && IsWhole(parsing.tree, std::atoi(argv[3])) ? 0 : 1;
}
