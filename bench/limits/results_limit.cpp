// Writes or reads a results file, handling only the unavoidable digits. usage: results_limit write|read FILE SCALE
#include "../Measure.h"
#include "../ResultsTree.h"
#include "Blocks.h"

namespace {

constexpr std::string_view kHead =
    "<?xml version=\"1.0\" ?><Vexaprobe><Header><HeaderID>OVL Vexaprobe</HeaderID><CompoundName></CompoundName>"
    "<VexaprobeMode>NotDefined</VexaprobeMode><FileType></FileType><ProgramVersion></ProgramVersion>"
    "<FileVersion>0</FileVersion><RecordingDate>0</RecordingDate><RecordingDateString></RecordingDateString>"
    "<FileName></FileName><Guid></Guid></Header><Results><Task><TaskName>Series</TaskName><Recordings Size=\"";
constexpr std::string_view kBehindTimes =
    "</FPfastDetectionTimes><AverageCount>1</AverageCount><AveragePreFPfastTime>25</AveragePreFPfastTime>"
    "<AverageTick>10</AverageTick><Average Size=\"";

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
void Finding(Way& way, int i, double& finding) {
    auto whole = static_cast<std::int64_t>(finding);
    way.Text("<");
    way.Text(kFindings[i]);
    way.Text(">");
    IsWholeFinding(i) ? way.Number(whole) : way.Real(finding);
    if (IsWholeFinding(i)) finding = static_cast<double>(whole);
    way.Text("</");
    way.Text(kFindings[i]);
    way.Text(">");
}

template <class Way>
void Well(Way& way, CTree::CRecording& recording, int id) {
    CTree::CWell& well = recording.wells[id];
    way.Text("<Well><WellID>");
    way.Number(id);
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
    Size(way, kBehindTimes, well.average);
    way.Text("<Ave>");
    for (double& sample : well.average) {
        way.Sample(sample);
        way.Text(";");
    }
    way.Text("</Ave></Average><FPfastDetected>1</FPfastDetected>");
    for (int i = 0; i < 8; ++i)
        Finding(way, i, well.findings[i]);
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
    const bool writes = argv[1][0] == 'w';
    const int scale = std::atoi(argv[3]);
    CTree tree = writes ? MakeTree(scale) : CTree();
    Measure([&] { writes ? Go(CWriting(argv[2]), tree) : Go(CReading(argv[2]), tree); });
    return writes || IsWhole(tree, scale) ? 0 : 1;
}
