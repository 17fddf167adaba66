#include <algorithm>
#include <chrono>
#include <iostream>
#include <limits>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "tools/vxfile/raw/GrowingFile.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/Command.h"
#include "tools/vxfile/shell/Idle.h"
#include "tools/vxfile/shell/PlateOptions.h"
#include "tools/vxfile/system/Interrupt.h"
#include "tools/vxfile/system/Output.h"
#include "tools/vxfile/system/Terminal.h"

namespace vxfile {

namespace {

constexpr CCommandText kWatchText = {
    .name = "watch",
    .purpose = "Follow a recording while it is being written",
    .details =
        "Shows how the latest recording grows: wells, segments, samples, size and rate. Prints one line per look; on a "
        "terminal the line is updated in place until the next recording begins. Waits for a file that doesn't exist "
        "yet, and follows a file that replaces it. Ends when the writer has closed the file. A killed writer never "
        "does: use --idle, or Ctrl-C.",
    .example = "vxfile watch run.vxd --idle 60",
    .statuses =
        "  0  the file is finished\n"
        "  1  nothing new was written for the time of --idle, or the file was closed and\n"
        "     is damaged\n"
        "  2  the file can't be watched",
};

using CClock = std::chrono::steady_clock;

class CWatchCommand : public CCommand {
 public:
    const CCommandText& Text() const override { return kWatchText; }

    std::vector<COption> Options() override {
        std::vector<COption> options = {
            {.names = "FILE", .target = &m_path, .text = "The raw data file that is being written", .isRequired = true},
            {.names = "--idle",
             .target = &m_idle,
             .text = "Give up after this many seconds without anything new",
             .value = "SECONDS",
             .wanted = "a number of seconds above 0",
             .least = std::numeric_limits<double>::min()},
            {.names = "--every",
             .target = &m_every,
             .text = "Seconds between looks, 0.01 to 3600 (default 1)",
             .value = "SECONDS",
             .wanted = "a number from 0.01 to 3600",
             .least = 0.01,
             .most = 3600},
        };
        return Together(std::move(options), m_plate.Options(false));
    }

    int Run() override {
        m_view = m_plate.ViewOf(m_path);
        std::ranges::for_each(m_view.doubts, Complain);
        CGrowingFile file(m_path, m_view.choice);
        m_onTerminal = IsOutputTerminal() && EnableColours();
        try {
            return Follow(file);
        } catch (const CInterruption&) {
            return End(file, "Interrupted", kInterrupted);
        }
    }

 private:
    int Follow(CGrowingFile& file) {
        auto lastLook = CClock::now();
        CIdle idle(m_idle, lastLook);
        if (!file.IsThere()) Complain(m_path + " doesn't exist yet; waiting for it.");
        for (std::int64_t lastPosition = 0;;) {
            const bool isNew = file.Look();
            const auto now = CClock::now();
            const std::chrono::duration<double> passed = now - lastLook;
            if (file.Replacements() != std::exchange(m_replacements, file.Replacements()))
                TellReplacement(lastPosition);
            if (isNew && file.Latest() != nullptr && m_view.choice.HasRecording(file.Latest()->header)) {
                const auto bytes = static_cast<double>(file.Position() - lastPosition);
                TellGrowth(file, lastPosition == 0 ? 0 : bytes / passed.count());
            }
            const auto state = file.State(isNew);
            if (state == CGrowingFile::EState::Finished) return End(file, "The file is finished", kSound);
            if (state == CGrowingFile::EState::Damaged) return End(file, kDamaged, kFindings);
            if (idle.IsOver(isNew, now)) return End(file, file.Recordings() == 0 ? kNothing : kNothingNew, kFindings);
            lastPosition = file.Position();
            lastLook = now;
            Wait();
        }
    }

    void TellReplacement(std::int64_t& lastPosition) {
        if (std::exchange(m_hasLine, false)) std::cout << '\n';
        std::cout << "Another file has taken this name; following it from its beginning.\n";
        m_toldRecordings = 0;
        lastPosition = 0;
    }

    /// Sleeps in short pieces, so that Ctrl-C doesn't have to wait.
    void Wait() const {
        const auto end = CClock::now() + std::chrono::duration<double>(m_every);
        while (CClock::now() < end) {
            CheckInterrupt();
            std::this_thread::sleep_for(std::min<std::chrono::duration<double>>(end - CClock::now(), kStep));
        }
    }

    static std::string Title(const CRunningRecording& recording) {
        return "Recording " + std::to_string(recording.index + 1) + " (" + Readable(recording.header.TaskName) + ' ' +
               std::to_string(recording.header.Recording) + ')';
    }

    /// Returns how many of the chosen wells have segments, and with labels, which ones have none if they are few.
    std::string WellsText(const CRunningRecording& recording) {
        std::size_t wells = 0;
        std::vector<std::int32_t> missing;
        for (const auto& channel : recording.header.WellChannels) {
            if (!m_view.choice.HasWell(channel.ID)) continue;
            ++wells;
            if (!recording.wells.contains(channel.ID)) missing.push_back(channel.ID);
        }
        std::string text = std::to_string(recording.wells.size()) + " of " + Counted(wells, "well");
        if (!m_view.labels.AreKnown() || missing.empty() || missing.size() > kMostMissing) return text;
        const std::string list = m_view.labels.List(missing);
        m_isLabeled = m_isLabeled || list != ListText(missing);
        return text + " (not yet " + list + ')';
    }

    /// One line, however much has come.
    void TellGrowth(const CGrowingFile& file, double bytesPerSecond) {
        const CRunningRecording& latest = *file.Latest();
        const std::size_t begun = file.Recordings() - std::exchange(m_toldRecordings, file.Recordings());
        std::string line = Title(latest) + (begun > 1 ? ", " + std::to_string(begun) + " new" : "") + ": file " +
                           SizeText(file.Position());
        if (bytesPerSecond > 0) line += ", " + SizeText(static_cast<std::int64_t>(bytesPerSecond)) + "/s";
        line += ", " + WellsText(latest) + ", " + Counted(latest.segments, "segment") + ", " +
                Counted(latest.samples, "sample");
        if (m_onTerminal) {
            if (m_hasLine && begun > 0) std::cout << '\n';  // what the one before came to stays
            std::cout << '\r' << Cut(line, static_cast<std::size_t>(TerminalWidth() - 1)) << "\033[K";
            m_hasLine = true;
        } else {
            std::cout << line << '\n';
        }
        FinishPrinting();
    }

    int End(const CGrowingFile& file, std::string_view why, int status) {
        if (m_hasLine) std::cout << '\n';
        std::cout << why << ": " << Counted(file.Recordings(), "recording") << ", " << SizeText(file.Position())
                  << ".\n";
        if (m_isLabeled) std::cout << SourceText(m_view) << '\n';
        return status;
    }

    static constexpr std::string_view kDamaged = "The file is closed, but damaged; run 'vxfile verify' to see where";
    static constexpr std::string_view kNothing = "No recording was written; the writer may be gone";
    static constexpr std::string_view kNothingNew =
        "Nothing new was written; the writer may be gone. Run 'vxfile recover' to save what is there";

    static constexpr std::size_t kMostMissing = 6;  ///< Wells without segments that a line lists.
    static constexpr auto kStep = std::chrono::milliseconds(50);

    std::string m_path;
    double m_idle = 0;
    double m_every = 1;
    CPlateOptions m_plate;
    CPlateView m_view;
    bool m_isLabeled = false;  ///< A line had labels.
    std::size_t m_toldRecordings = 0;
    std::size_t m_replacements = 0;
    bool m_onTerminal = false;
    bool m_hasLine = false;  ///< A line stands on the terminal that is to be written again.
};

}  // namespace

std::unique_ptr<CCommand> MakeWatchCommand() { return std::make_unique<CWatchCommand>(); }

}  // namespace vxfile
