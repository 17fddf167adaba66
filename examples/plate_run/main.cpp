/// A complete plate run: its settings, recordings and results, each written to a file and read back. It is also a tour
/// of the library.
///
/// Read it in this order: this file, PlatePlan.h (what is recorded), Settings.cpp and SettingsFile.cpp (how the run is
/// set up), Record.cpp (writing samples), Replay.cpp (reading samples), Analyze.cpp (analysing them), ResultsFile.cpp
/// and Workbooks.cpp. Signal.h simulates the instrument. Progress.h and Report.h print to the terminal.

#include <vxfileio/frame/VXFileIO.h>

#include <charconv>
#include <cstring>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "Analyze.h"
#include "PlatePlan.h"
#include "Record.h"
#include "Replay.h"
#include "Report.h"
#include "ResultsFile.h"
#include "Settings.h"
#include "SettingsFile.h"
#include "Signal.h"
#include "Workbooks.h"

namespace {

struct CArguments {
    std::string folder;
    std::int64_t minutes = 1;
    std::string signal = SIGNAL_FILE;
};

/// Parses the command line. Returns false if it is invalid.
bool Take(int argc, char** argv, CArguments& arguments) {
    if (argc < 2 || argc > 4) return false;
    arguments.folder = argv[1];
    if (argc > 3) arguments.signal = argv[3];
    if (argc < 3) return true;
    const char* end = argv[2] + std::strlen(argv[2]);
    const auto [rest, error] = std::from_chars(argv[2], end, arguments.minutes);
    return error == std::errc() && rest == end && arguments.minutes >= 1 && arguments.minutes <= 10'000;
}

/// The paths of the run's files.
struct CPlateFiles {
    std::string settings;
    std::string samples;
    std::string results;
    std::string workbook;
};

/// Returns the paths of the files in `folder`, and creates it if needed.
CPlateFiles FilesIn(const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    const auto plate = [&](std::string_view extension) { return (folder / "plate").string().append(extension); };
    return {plate(vxfileio::kSettingsExtension), plate(vxfileio::kRawDataExtension), plate(vxfileio::kResultsExtension),
            plate(".xls")};
}

void RunPlate(const CArguments& arguments) {
    const CPlatePlan plan = MakePlatePlan(arguments.minutes);
    const CSignal signal(arguments.signal);
    const CPlateFiles files = FilesIn(arguments.folder);
    CVXFileIO io;  // owns the writers and the readers
    PrintPlan(std::cout, plan);

    const CRunSettings settings = MakeSettings(plan, std::filesystem::path(arguments.signal).filename().string());
    WriteSettings(*io.GetSettingsWriter(), settings, files.settings);
    CheckSettings(*io.GetSettingsReader(), settings, files.settings);

    const double secondsWriting = RecordPlate(*io.GetRawDateWriter(), plan, signal, files.samples);
    const CReplay replay = ReplayPlate(*io.GetRawDataReader(), plan, signal, files.samples);
    PrintTasks(std::cout, replay);
    PrintSpeed(std::cout, replay, secondsWriting);
    const CWell& well = plan.wells[plan.wells.size() / 2];
    PrintWell(std::cout, well, ReplayWell(*io.GetRawDataReader(), plan, signal, well));

    // The two files contain everything that the analysis needs.
    const CResults results = AnalyzeSeries(*io.GetRawDataReader(), *io.GetSettingsReader());
    const CXmlFileHeader header = MakeXmlFileHeader(plan, "plate.vxr");
    WriteResults(*io.GetResultsWriter(), header, results, files.results);
    CheckResults(*io.GetResultsReader(), header, results, files.results);
    PrintSeries(std::cout, plan, *io.GetResultsReader()->GetResults());

    const std::vector<std::string> workbooks = ExportWorkbooks(*io.GetResultsExport(), *io.GetSettingsReader(),
                                                               *io.GetResultsReader()->GetResults(), files.workbook);
    for (const std::string& path : {files.settings, files.samples, files.results})
        PrintFile(std::cout, path);
    for (const std::string& path : workbooks)
        PrintFile(std::cout, path);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        CArguments arguments;
        if (!Take(argc, argv, arguments)) {
            std::cerr << "usage: plate_run FOLDER [MINUTES [SIGNAL]]\n"
                         "  FOLDER   output folder\n"
                         "  MINUTES  length of each recording, 1 to 10000 (default 1)\n"
                         "  SIGNAL   recorded signal that the wells play (default " SIGNAL_FILE ")\n";
            return 2;
        }
        RunPlate(arguments);
        return 0;
    } catch (const CExcVXReader& failure) {  // thrown by the library; not derived from std::exception
        std::cerr << "plate_run: " << failure.GetMsg() << '\n';
    } catch (const std::exception& failure) {
        std::cerr << "plate_run: " << failure.what() << '\n';
    }
    return 1;
}
