#pragma once

// Reads and writes results and settings files through a whole document in memory. A `Dom` wraps each library:
//
//   using Node                                   a handle that is false if there is no element
//   bool Load(const char* path), Save(path)      the document
//   Node AddRoot(name), Root(), Child(Node, name), Next(Node, name)
//   const char* Text(Node)                       never null
//   Node Add(Node, name), void SetText(Node, const char*), void SetSize(Node, size)
//
// Numbers use std::from_chars and std::to_chars, the fastest choice for callers of such a library.

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <span>
#include <string>

#include "../Measure.h"
#include "../ResultsTree.h"
#include "../SettingsTree.h"

template <class Value>
Value NumberOf(const char* text) {
    Value value = {};
    std::from_chars(text, text + std::strlen(text), value);
    return value;
}

template <class Dom>
class CXmlTrees {
    using Node = typename Dom::Node;

 public:
    bool Read(const char* path, CTree& tree) {
        if (!m_dom.Load(path)) return false;
        const Node list = Find(m_dom.Root(), {"Results", "Task", "Recordings"});
        ForEach(list, "Recording", [&](Node node) {
            CTree::CRecording& recording = tree.recordings.emplace_back();
            recording.dose = Get<std::uint64_t>(node, "Dose");
            ForEach(m_dom.Child(node, "Wells"), "Well", [&](Node well) { ReadWell(well, recording); });
        });
        return true;
    }

    bool Read(const char* path, CSettings& settings) {
        if (!m_dom.Load(path)) return false;
        const Node plate = Find(m_dom.Root(), {"Settings", "PropertyRecordPlate"});
        ForEach(m_dom.Child(plate, "Wells"), "Well", [&](Node well) {
            settings.wells.push_back({Get<int>(well, "WellID"), Get<int>(well, "ChID"),
                                      m_dom.Text(m_dom.Child(well, "Label")), Get<int>(well, "PlateColumn"),
                                      Get<int>(well, "PlateRow"), Get<int>(well, "State")});
        });
        ForEach(m_dom.Child(plate, "Series"), "Dose",
                [&](Node dose) { settings.doses.push_back(NumberOf<std::uint64_t>(m_dom.Text(dose))); });
        ForEach(Find(m_dom.Root(), {"Settings", "PropertyAnalyzer", "AnalyzeSettings", "Tasks"}), "Task",
                [&](Node task) { ReadMarks(task, settings.tasks.emplace_back()); });
        return true;
    }

    bool Write(const char* path, const CTree& tree) {
        const Node task = m_dom.Add(m_dom.Add(m_dom.AddRoot("Vexaprobe"), "Results"), "Task");
        Put(task, "TaskName", "Series");
        const Node list = AddList(task, "Recordings", tree.recordings);
        for (const CTree::CRecording& recording : tree.recordings) {
            const Node node = m_dom.Add(list, "Recording");
            PutNumber(node, "Dose", recording.dose);
            const Node wells = AddList(node, "Wells", recording.wells);
            for (const auto& [id, well] : recording.wells)
                AddWell(wells, recording.dose, id, well);
        }
        return m_dom.Save(path);
    }

    bool Write(const char* path, const CSettings& settings) {
        const Node sections = m_dom.Add(m_dom.AddRoot("Vexaprobe"), "Settings");
        AddPlate(m_dom.Add(sections, "PropertyRecordPlate"), settings);
        const Node marks = m_dom.Add(m_dom.Add(sections, "PropertyAnalyzer"), "AnalyzeSettings");
        const Node tasks = AddList(marks, "Tasks", settings.tasks);
        for (std::size_t i = 0; i < settings.tasks.size(); ++i) {
            const Node task = m_dom.Add(tasks, "Task");
            Put(task, "TaskName", kTasks[i].data());
            const Node recordings = AddList(task, "Recordings", settings.tasks[i]);
            for (int number = 0; const CSettings::CRecording& recording : settings.tasks[i])
                AddMarks(m_dom.Add(recordings, "Recording"), number++, recording);
        }
        return m_dom.Save(path);
    }

 private:
    Node Find(Node node, std::initializer_list<const char*> names) {
        for (const char* name : names)
            node = m_dom.Child(node, name);
        return node;
    }

    template <class Visit>
    void ForEach(Node parent, const char* name, Visit visit) {
        for (Node node = m_dom.Child(parent, name); node; node = m_dom.Next(node, name))
            visit(node);
    }

    template <class Value>
    Value Get(Node parent, const char* name) {
        return NumberOf<Value>(m_dom.Text(m_dom.Child(parent, name)));
    }

    void ReadWell(Node node, CTree::CRecording& recording) {
        CTree::CWell& well = recording.wells[Get<int>(node, "WellID")];
        well.label = m_dom.Text(m_dom.Child(node, "WellLabel"));
        ForEach(m_dom.Child(node, "FPfastDetectionTimes"), "Time",
                [&](Node time) { well.times.push_back(NumberOf<std::int64_t>(m_dom.Text(time))); });
        const char* at = m_dom.Text(Find(node, {"Average", "Ave"}));
        const char* const end = at + std::strlen(at);
        while (at < end)
            at = std::from_chars(at, end, well.average.emplace_back()).ptr + 1;
        for (int i = 0; i < 8; ++i)
            well.findings[i] = Get<double>(node, kFindings[i]);
        ReadResponses(m_dom.Child(node, "Responses"), well.responses);
        ReadResponses(m_dom.Child(node, "NormalizedResponses"), well.normalized);
    }

    void ReadResponses(Node list, std::map<int, double>& responses) {
        ForEach(list, "Response", [&](Node node) {
            const char* const label = m_dom.Text(m_dom.Child(node, "Label"));
            for (int type = 1; type < 4; ++type)
                if (std::strcmp(label, kResponses[type]) == 0) responses[type] = Get<double>(node, "Value");
        });
    }

    void ReadMarks(Node task, std::vector<CSettings::CRecording>& recordings) {
        ForEach(m_dom.Child(task, "Recordings"), "Recording", [&](Node recording) {
            CSettings::CRecording& wells = recordings.emplace_back();
            ForEach(m_dom.Child(recording, "Wells"), "Well", [&](Node well) {
                CSettings::CMarks& marks = wells[Get<int>(well, "WellID")];
                marks.analyze = Get<int>(well, "Analyze");
                const Node responses = m_dom.Child(well, "Responses");
                for (std::size_t i = 0; i < 3; ++i)
                    marks.marks[i] = MarkOf(m_dom.Text(m_dom.Child(responses, kMarkedResponses[i].data())));
            });
        });
    }

    void Put(Node parent, const char* name, const char* text) { m_dom.SetText(m_dom.Add(parent, name), text); }

    void PutNumber(Node parent, const char* name, auto value) {
        char text[400];
        *std::to_chars(text, text + sizeof text - 1, value).ptr = '\0';
        Put(parent, name, text);
    }

    Node AddList(Node parent, const char* name, const auto& list) {
        const Node node = m_dom.Add(parent, name);
        m_dom.SetSize(node, list.size());
        return node;
    }

    void AddWell(Node wells, std::uint64_t dose, int id, const CTree::CWell& well) {
        const Node node = m_dom.Add(wells, "Well");
        PutNumber(node, "WellID", id);
        Put(node, "WellLabel", well.label.c_str());
        PutNumber(node, "Dose", dose);
        const Node times = AddList(node, "FPfastDetectionTimes", well.times);
        for (const std::int64_t time : well.times)
            PutNumber(times, "Time", time);
        std::string samples(16 * well.average.size(), '\0');
        char* at = samples.data();
        for (const double sample : well.average) {
            at = std::to_chars(at, at + 15, sample, std::chars_format::general, 6).ptr;
            *at++ = ';';
        }
        Put(AddList(node, "Average", well.average), "Ave", samples.c_str());
        for (int i = 0; i < 8; ++i)
            PutNumber(node, kFindings[i], well.findings[i]);
        AddResponses(AddList(node, "Responses", well.responses), well.responses);
        AddResponses(AddList(node, "NormalizedResponses", well.normalized), well.normalized);
    }

    void AddResponses(Node list, const std::map<int, double>& responses) {
        for (const auto& [type, value] : responses) {
            const Node node = m_dom.Add(list, "Response");
            Put(node, "Label", kResponses[type]);
            PutNumber(node, "Value", value);
        }
    }

    void AddPlate(Node plate, const CSettings& settings) {
        const Node wells = AddList(plate, "Wells", settings.wells);
        for (const CSettings::CWell& well : settings.wells) {
            const Node node = m_dom.Add(wells, "Well");
            PutNumber(node, "WellID", well.id);
            PutNumber(node, "ChID", well.channel);
            Put(node, "Label", well.label.c_str());
            PutNumber(node, "PlateColumn", well.column);
            PutNumber(node, "PlateRow", well.row);
            PutNumber(node, "State", well.state);
        }
        const Node series = AddList(plate, "Series", settings.doses);
        for (const std::uint64_t dose : settings.doses)
            PutNumber(series, "Dose", dose);
    }

    void AddMarks(Node node, int number, const CSettings::CRecording& recording) {
        PutNumber(node, "Recording", number);
        const Node wells = AddList(node, "Wells", recording);
        for (const auto& [id, marks] : recording) {
            const Node well = m_dom.Add(wells, "Well");
            PutNumber(well, "WellID", id);
            PutNumber(well, "Analyze", marks.analyze);
            const Node responses = AddList(well, "Responses", std::span(kMarkedResponses));
            for (int i = 0; i < 3; ++i)
                Put(responses, kMarkedResponses[i].data(), kMarks[marks.marks[i]].data());
        }
    }

    Dom m_dom;
};

inline bool IsSame(const CTree& tree, int scale) { return IsWhole(tree, scale); }
inline bool IsSame(const CSettings& settings, int scale) { return settings == MakeSettings(scale); }

/// Reads or writes the given number of times, each time with a new `Trees`. Returns whether the data are correct.
template <class Trees, class Tree>
bool MeasureXml(const std::string& mode, char** argv, int times, const Tree& made) {
    const bool reads = mode.starts_with("read");
    bool good = true;
    Tree tree;
    Measure([&] {
        for (int i = 0; i < times; ++i) {
            if (reads) tree = Tree();
            good = good && (reads ? Trees().Read(argv[2], tree) : Trees().Write(FileOf(argv[2], i).c_str(), made));
        }
    });
    return good && (!reads || IsSame(tree, std::atoi(argv[3])));
}

/// usage: PROGRAM write-results|read-results|write-settings|read-settings FILE SCALE [TIMES]
template <class Trees>
int MainOfXmlPeer(int argc, char** argv) {
    if (argc < 4) return 2;
    const std::string mode = argv[1];
    const int scale = std::atoi(argv[3]), times = argc > 4 ? std::atoi(argv[4]) : 1;
    const bool good = mode.ends_with("settings") ? MeasureXml<Trees>(mode, argv, times, MakeSettings(scale))
                                                 : MeasureXml<Trees>(mode, argv, times, MakeTree(scale));
    return good ? 0 : 1;
}
