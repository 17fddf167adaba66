/// The road of one plate run, from the instrument's samples to a file and back; also a first tour of the library.
///
/// Read it in this order: this file, PlatePlan.h (what is recorded), Record.cpp (writing), Replay.cpp (reading).
/// Signal.h stands for the instrument. Progress.h and Report.h are for people.

#include <vxfileio/frame/VXFileIO.h>

#include <charconv>
#include <cstring>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>

#include "PlatePlan.h"
#include "Record.h"
#include "Replay.h"
#include "Report.h"
#include "Signal.h"

namespace {

struct CArguments {
    std::string folder;
    std::int64_t minutes = 1;
    std::string signal = SIGNAL_FILE;
};

/// Returns false if the arguments aren't what this program takes.
bool Take(int argc, char** argv, CArguments& arguments) {
    if (argc < 2 || argc > 4) return false;
    arguments.folder = argv[1];
    if (argc > 3) arguments.signal = argv[3];
    if (argc < 3) return true;
    const char* end = argv[2] + std::strlen(argv[2]);
    const auto [rest, error] = std::from_chars(argv[2], end, arguments.minutes);
    return error == std::errc() && rest == end && arguments.minutes >= 1 && arguments.minutes <= 10'000;
}

void RunPlate(const CArguments& arguments) {
    const CPlatePlan plan = MakePlatePlan(arguments.minutes);
    const CSignal signal(arguments.signal);
    std::filesystem::create_directories(arguments.folder);
    const std::string path = (std::filesystem::path(arguments.folder) / "plate.vxd").string();
    PrintPlan(std::cout, plan);

    CVXFileIO io;  // owns the writer and the reader
    const double secondsWriting = RecordPlate(*io.GetRawDateWriter(), plan, signal, path);
    const CReplay replay = ReplayPlate(*io.GetRawDataReader(), plan, signal, path);
    PrintTasks(std::cout, replay);
    PrintSpeed(std::cout, replay, secondsWriting);

    const CWell& well = plan.wells[plan.wells.size() / 2];
    PrintWell(std::cout, well, ReplayWell(*io.GetRawDataReader(), plan, signal, well));
    PrintFile(std::cout, path);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        CArguments arguments;
        if (!Take(argc, argv, arguments)) {
            std::cerr << "usage: plate_run FOLDER [MINUTES [SIGNAL]]\n"
                         "  FOLDER   where the files go\n"
                         "  MINUTES  length of each recording, 1 to 10000 (default 1)\n"
                         "  SIGNAL   recorded signal that the wells play (default " SIGNAL_FILE ")\n";
            return 2;
        }
        RunPlate(arguments);
        return 0;
    } catch (const CExcVXReader& failure) {  // what the library throws; it derives from nothing
        std::cerr << "plate_run: " << failure.GetMsg() << '\n';
    } catch (const std::exception& failure) {
        std::cerr << "plate_run: " << failure.what() << '\n';
    }
    return 1;
}
