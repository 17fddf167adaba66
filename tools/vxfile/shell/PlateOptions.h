#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tools/vxfile/document/DocumentHead.h"
#include "tools/vxfile/plate/PlateView.h"
#include "tools/vxfile/shell/Command.h"
#include "vxfileio/frame/VXFileIO.h"

namespace vxfile {

/// The options that choose tasks, doses and wells of a plate, and name its settings file. They are the same for every
/// command that reads raw data or results files.
class CPlateOptions {
 public:
    /// Returns the options, for a command to list them after its own. They point to members of this object. With
    /// `showsTimes`, one of them adds seconds to times.
    std::vector<COption> Options(bool showsTimes);

    /// Returns whether any of the options is given.
    bool AreGiven() const { return AreChoosing() || NameSettings(); }

    /// Returns whether they choose tasks, doses or wells.
    bool AreChoosing() const { return !m_tasks.empty() || !m_doses.empty() || !m_wells.empty(); }

    bool ChooseWells() const { return !m_wells.empty(); }
    bool ShowSeconds() const { return m_ticksPerSecond != 0; }

    /// Returns whether they name a settings file.
    bool NameSettings() const { return !m_settings.empty(); }

    /// Returns whether the command line has something that isn't in the raw data file: the settings, a dose with a
    /// unit, or a well that isn't an ID. The columns of tables depend only on this, never on files or their values.
    bool HasPlateWords() const;

    /// Returns what the options mean for a raw data file. Labels are those of the settings file that was named, or of
    /// the one in the folder of the file that has its Guid. Throws `CFailure` if the settings can't be read, or if a
    /// word means nothing.
    CPlateView ViewOf(const std::string& path) const;

    /// Does the same for a file with labels of its own, by well ID, which replace those of the settings. Stores the
    /// settings that were read in `settings`. Without a Guid of the file, looks for none beside it.
    CPlateView ViewOf(const CRunFile& file, const std::map<std::int32_t, std::string>& labels,
                      CISettingsReader& settings) const;

 private:
    std::vector<std::int64_t> Doses() const;
    void TakeWells(CPlateView& view) const;
    static void ReadLabels(CPlateView& view, const std::string& path, const CRunFile& file, CISettingsReader& settings);

    std::string m_settings;
    std::vector<std::string> m_tasks;
    std::vector<std::string> m_doses;
    std::vector<std::string> m_wells;
    double m_ticksPerSecond = 0;
};

/// Returns the Guid of a raw data file; empty if it can't be read.
std::string GuidOfRawData(const std::string& path);

/// Returns the option that adds seconds to times.
COption TicksPerSecondOption(double& ticksPerSecond);

/// Returns the sentence that says whose labels are used; empty without labels.
std::string SourceText(const CPlateView& view);

}  // namespace vxfile
