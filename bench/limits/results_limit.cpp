// A results file with nothing but the unavoidable: numbers formatted by std::to_chars into blocks of 64 KiB, and parsed
// by std::from_chars out of such blocks, at places that are known beforehand.
// usage: results_limit write|read FILE SCALE
#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "../Measure.h"
#include "../ResultsTree.h"

namespace {

char g_block[65536];
std::size_t g_at = 0, g_end = 0;
int g_file = -1;

constexpr std::string_view kHead =
    "<?xml version=\"1.0\" ?><Vexaprobe><Header><HeaderID>OVL "
    "Vexaprobe</HeaderID><CompoundName></CompoundName><VexaprobeMode>"
    "NotDefined</VexaprobeMode><FileType></FileType><ProgramVersion></ProgramVersion><FileVersion>0</"
    "FileVersion><RecordingDate>"
    "0</RecordingDate><RecordingDateString></RecordingDateString><FileName></FileName><Guid></Guid></"
    "Header><Results><Task>"
    "<TaskName>Series</TaskName><Recordings Size=\"";
constexpr std::string_view kFindings[] = {"FPfastMaxAmp",          "FPfastMaxAmpTimeStamp", "FPfastMinAmp",
                                          "FPfastMinAmpTimeStamp", "FPfastSlopeX0",         "FPfastSlopeY0",
                                          "FPfastSlopeX1",         "FPfastSlopeY1"};

void Flush() {
    if (write(g_file, g_block, g_at) != static_cast<ssize_t>(g_at)) std::exit(1);
    g_at = 0;
}

struct CWriting {
    void Text(std::string_view text) {
        if (g_at + text.size() > sizeof g_block) Flush();
        std::memcpy(g_block + g_at, text.data(), text.size());
        g_at += text.size();
    }
    void Number(auto& value, auto... form) {
        if (g_at + 64 > sizeof g_block) Flush();
        g_at = static_cast<std::size_t>(std::to_chars(g_block + g_at, g_block + sizeof g_block, value, form...).ptr -
                                        g_block);
    }
    void Sample(double& value) { Number(value, std::chars_format::general, 6); }
    void Real(double& value) {
        if (g_at + 64 > sizeof g_block) Flush();
        const std::size_t start = g_at;
        Number(value, std::chars_format::fixed);
        if (std::memchr(g_block + start, '.', g_at - start) == nullptr) Text(".");
    }
    void Label(std::string& label) { Text(label); }
};

struct CReading {
    void Fill() {
        if (g_end - g_at > 4096) return;
        std::memmove(g_block, g_block + g_at, g_end - g_at);
        g_end -= g_at;
        g_at = 0;
        const ssize_t got = read(g_file, g_block + g_end, sizeof g_block - g_end);
        g_end += got > 0 ? static_cast<std::size_t>(got) : 0;
    }
    void Text(std::string_view text) {
        Fill();
        g_at += text.size();
    }
    void Number(auto& value) {
        Fill();
        g_at = static_cast<std::size_t>(std::from_chars(g_block + g_at, g_block + g_end, value).ptr - g_block);
    }
    void Sample(double& value) { Number(value); }
    void Real(double& value) { Number(value); }
    void Label(std::string& label) {
        Fill();
        const char* const end = static_cast<const char*>(std::memchr(g_block + g_at, '<', g_end - g_at));
        label.assign(g_block + g_at, static_cast<std::size_t>(end - g_block) - g_at);
        g_at += label.size();
    }
};

template <class Way, class List>
void Size(Way& way, std::string_view ahead, List& list) {
    std::size_t size = list.size();
    way.Text(ahead);
    way.Number(size);
    way.Text("\">");
    if constexpr (requires { list.resize(size); }) list.resize(size);
}

template <class Way>
void Responses(Way& way, std::string_view ahead, std::map<int, double>& responses, std::string_view behind) {
    way.Text(ahead);
    for (int type = 1; type < 4; ++type) {
        way.Text("<Response><Label>");
        way.Text(kResponses[type]);
        way.Text("</Label><Value>");
        way.Real(responses[type]);
        way.Text("</Value></Response>");
    }
    way.Text(behind);
}

template <class Way>
void Well(Way& way, CTree::CRecording& recording, int id) {
    way.Text("<Well><WellID>");
    way.Number(id);
    CTree::CWell& well = recording.wells[id];
    way.Text("</WellID><WellLabel>");
    way.Label(well.label);
    way.Text("</WellLabel><Dose>");
    way.Number(recording.dose);
    Size(way, "</Dose><FPfastDetectionTimes Size=\"", well.times);
    for (std::int64_t& time : well.times) {
        way.Text("<Time>");
        way.Number(time);
        way.Text("</Time>");
    }
    Size(way,
         "</FPfastDetectionTimes><AverageCount>1</AverageCount><AveragePreFPfastTime>25</"
         "AveragePreFPfastTime><AverageTick>"
         "10</AverageTick><Average Size=\"",
         well.average);
    way.Text("<Ave>");
    for (double& sample : well.average) {
        way.Sample(sample);
        way.Text(";");
    }
    way.Text("</Ave></Average><FPfastDetected>1</FPfastDetected>");
    for (int i = 0; i < 8; ++i) {
        auto whole = static_cast<std::int64_t>(well.findings[i]);
        way.Text("<");
        way.Text(kFindings[i]);
        way.Text(">");
        i == 1 || i == 3 ? way.Number(whole) : way.Real(well.findings[i]);
        if (i == 1 || i == 3) well.findings[i] = static_cast<double>(whole);
        way.Text("</");
        way.Text(kFindings[i]);
        way.Text(">");
    }
    Responses(way, "<FPmaxType>PositivePeak</FPmaxType><Responses Size=\"3\">", well.responses, "</Responses>");
    Responses(way, "<NormalizedResponses Size=\"3\">", well.normalized, "</NormalizedResponses></Well>");
}

template <class Way>
void Go(Way way, CTree& tree) {
    Size(way, kHead, tree.recordings);
    for (CTree::CRecording& recording : tree.recordings) {
        way.Text("<Recording><Dose>");
        way.Number(recording.dose);
        way.Text("</Dose><NormalizedResponses Size=\"0\"/><Wells Size=\"54\">");
        for (int id = kFirstWell; id < kFirstWell + kWells; ++id)
            Well(way, recording, id);
        way.Text("</Wells></Recording>");
    }
    way.Text("</Recordings></Task></Results></Vexaprobe>");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const bool writing = argv[1][0] == 'w';
    const int scale = std::atoi(argv[3]);
    CTree tree = writing ? MakeTree(scale) : CTree();
    Measure([&] {
        g_file = writing ? open(argv[2], O_WRONLY | O_CREAT | O_TRUNC, 0666) : open(argv[2], O_RDONLY);
        writing ? Go(CWriting(), tree) : Go(CReading(), tree);
        if (writing) Flush();
        close(g_file);
    });
    return writing || IsWhole(tree, scale) ? 0 : 1;
}
