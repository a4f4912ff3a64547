#include "tools/library_tool.h"

#include <map>
#include <memory>
#include <string_view>
#include <vector>

#include "common/fault.h"
#include "common/numeric.h"
#include "common/numtext.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "drawing/drawfile.h"
#include "drawing/drawjson.h"
#include "job/job_start.h"
#include "state/run_state.h"
#include "tooling/library.h"

namespace tvx {

const char* const LibraryHelp =
    "For the people who keep a tooling library: where a shape's folders lie, what a\n"
    "Tooling.lkp holds as a run reads it, and whether a tool fits at an angle.";

const char* const LibraryPathHelp =
    "Prints, for the record of ENTITY.json (one record as an object, in the JSON form of\n"
    "`torvanex drawing dump`) or for every record of a drawing (an array) that has a size\n"
    "folder: the size folder, the angle that the folder takes, and the library folder under\n"
    "it. The folders, Tooling.lkp and 0.drw are made as a run makes them.\n"
    "The machine is loaded from Torvanex.cfg of --work DIR (default: the current directory)\n"
    "as a run loads it: Torvanex.cfg is rewritten and the machine's missing directories are\n"
    "made, as in a run.\n"
    "--material names the library folder on a profile machine; default: the material the\n"
    "machine loads at the start of a run (its Default material; \"Default\" when none is read).\n"
    "--library names it on any other machine; default: the tool library the run settles for\n"
    "the machine, \"Full Library\" when there is none.\n"
    "Exit status: 0 done, 1 no record with a size folder, 2 a fault (a missing Torvanex.cfg or\n"
    "machine file, a JSON file that cannot be read, a folder that cannot be made).";

const char* const LibraryListHelp =
    "Prints the entries of DIR's Tooling.lkp (DIR may also be the Tooling.lkp itself) as a run\n"
    "reads them: sorted by their file, one a line with number, name, angle, step and file,\n"
    "and, for a number listed more than once, which entry a run takes (the last of them).\n"
    "A missing Tooling.lkp is not made. Exit status: 0 done, 1 the file is broken (a run\n"
    "treats it as empty), 2 no Tooling.lkp there.";

const char* const LibraryFitsHelp =
    "Prints the entry of tool NUMBER in DIR's Tooling.lkp (DIR may also be the Tooling.lkp\n"
    "itself), or that the default entry (angle 0, step 0.5) is taken, and on the last line\n"
    "\"fits\" or \"does not fit\": whether the tool fits at ANGLE. ANGLE is compared as given,\n"
    "as a single; a run asks at angles from 0 to below 360. A missing Tooling.lkp is not\n"
    "made. Exit status: 0 either way, 1 bad arguments, 2 no such folder or Tooling.lkp.";

namespace {

// The text of a single of an entry, in free form.
std::string SingleText(float value) { return NumberText(value, -1); }

// A text in quotes, as the list writes it.
std::string Quoted(const std::string& text) { return "\"" + text + "\""; }

// One entry on one line: number, name, angle, step, file.
std::string EntryLine(const ToolingEntry& entry) {
    return "number " + IntegerText(entry.ToolNumber) + ": " + Quoted(entry.ToolName) + ", angle " +
           SingleText(entry.ToolAngle) + ", step " + SingleText(entry.AngleStep) + ", file " + Quoted(entry.ToolFile);
}

// The Tooling.lkp of a place given on the command line: the place itself when it is a file,
// else the Tooling.lkp in it. Empty, with the words to say, when there is none.
std::string FindLookupFile(const std::string& place, std::string& missing) {
    if (FileExists(place)) return place;
    if (!DirectoryExists(place)) {
        missing = "No folder " + place;
        return {};
    }
    // Joined with the separator the place is written with; '\' and '/' are both separators.
    std::string file = place;
    if (file.empty() || (file.back() != '/' && file.back() != '\\'))
        file += place.find('\\') != std::string::npos ? '\\' : '/';
    file += "Tooling.lkp";
    if (!FileExists(file)) {
        missing = "No Tooling.lkp in " + place;
        return {};
    }
    return file;
}

// True when the whole text (blanks at either end aside) is one number: a sign, digits with a
// point, an exponent of E or D.
bool IsNumberText(std::string_view text) {
    const std::string t = Trim(text);
    size_t i = 0;
    if (i < t.size() && (t[i] == '+' || t[i] == '-')) ++i;
    size_t digits = 0;
    while (i < t.size() && t[i] >= '0' && t[i] <= '9') ++i, ++digits;
    if (i < t.size() && t[i] == '.') {
        ++i;
        while (i < t.size() && t[i] >= '0' && t[i] <= '9') ++i, ++digits;
    }
    if (digits == 0) return false;
    if (i < t.size() && (t[i] == 'E' || t[i] == 'e' || t[i] == 'D' || t[i] == 'd')) {
        ++i;
        if (i < t.size() && (t[i] == '+' || t[i] == '-')) ++i;
        size_t exponent = 0;
        while (i < t.size() && t[i] >= '0' && t[i] <= '9') ++i, ++exponent;
        if (exponent == 0) return false;
    }
    return i == t.size();
}

// The records of a JSON file: one object or an array of them.
std::vector<DrawRecord> ReadJsonRecords(const std::string& path, bool& single) {
    std::string text = ReadAllBytes(path);
    const size_t first = text.find_first_not_of(" \t\r\n");
    single = first != std::string::npos && text[first] == '{';
    if (single) text = "[" + text + "]";
    return DecodeRecords(DrawingFromJson(text, path));
}

}  // namespace

int LibraryPathCommand(const LibraryPathOptions& options, std::ostream& out, std::ostream& err) {
    bool single = false;
    const std::vector<DrawRecord> records = ReadJsonRecords(options.EntityFile, single);

    auto state = std::make_unique<RunState>();
    state->Config.StartDir = options.WorkDir;
    state->Job.CurrentDir = options.WorkDir.empty() ? std::string() : WithSeparator(options.WorkDir);
    LoadRunMachine(*state);
    const MachineState& machine = state->Machine;
    const std::string material = options.MaterialGiven ? options.Material : machine.Material.Name;
    const std::string library = options.LibraryGiven ? options.Library : machine.ToolLibrary;

    int shown = 0;
    for (size_t i = 0; i < records.size(); ++i) {
        const DrawRecord& record = records[i];
        const ShapeFolderInfo info = ShapeFolder(machine, record);
        if (info.Folder.empty()) continue;
        int mode = LibraryFolderMode;
        const std::string libraryFolder = ShapePath(machine, record, mode, material, library);
        const std::string name = single ? std::string("the record") : "record " + LongText(static_cast<int32_t>(i + 1));
        out << name << " (code " << IntegerText(record.EntityCode) << ")\n"
            << "  size folder:    " << info.Folder << "\n"
            << "  angle:          " << SingleText(ToSingle(info.Angle)) << "\n"
            << "  library folder: " << libraryFolder << "\n";
        ++shown;
    }
    if (shown == 0) {
        err << (single ? "The record of " : "No record of ") << options.EntityFile
            << (single ? " has no size folder" : " has a size folder")
            << ": only codes 151 to 156, 171 and 175 have one.\n";
        return ExitAbort;
    }
    return ExitClean;
}

int LibraryListCommand(const std::string& place, std::ostream& out, std::ostream& err) {
    std::string missing;
    const std::string file = FindLookupFile(place, missing);
    if (file.empty()) {
        err << "No Tooling.lkp in " << place << "\n";
        return ExitFault;
    }
    const ToolingList list = ReadToolingList(file);
    if (list.Broken) {
        err << file << " is broken: " << list.Reason << "\n"
            << "A run treats it as an empty list: every tool number gives the default entry (angle 0, step 0.5).\n";
        return ExitAbort;
    }
    if (list.Entries.empty()) {
        out << file << " has no entries: every tool number gives the default entry (angle 0, step 0.5).\n";
        return ExitClean;
    }
    out << file << ": " << LongText(static_cast<int32_t>(list.Entries.size()))
        << (list.Entries.size() == 1 ? " entry" : " entries") << ", sorted by file as a run reads them\n";
    std::map<int, std::vector<size_t>> byNumber;
    for (size_t i = 0; i < list.Entries.size(); ++i) {
        out << EntryLine(list.Entries[i]) << "\n";
        byNumber[list.Entries[i].ToolNumber].push_back(i);
    }
    for (const auto& [number, rows] : byNumber) {
        if (rows.size() < 2) continue;
        const ToolingEntry& winner = list.Entries[rows.back()];
        out << "Number " << LongText(number) << " is listed " << LongText(static_cast<int32_t>(rows.size()))
            << " times: a run takes the last of them, " << Quoted(winner.ToolName) << " with file "
            << Quoted(winner.ToolFile) << ".\n";
    }
    return ExitClean;
}

int LibraryFitsCommand(const std::string& place, const std::string& number, const std::string& angle,
                       std::ostream& out, std::ostream& err) {
    if (!IsNumberText(number)) {
        err << "The tool number \"" << number << "\" is not a number.\n";
        return ExitAbort;
    }
    if (!IsNumberText(angle)) {
        err << "The angle \"" << angle << "\" is not a number.\n";
        return ExitAbort;
    }
    double numberValue = 0, angleValue = 0;
    try {
        numberValue = LeadingNumber(number);
        angleValue = LeadingNumber(angle);
    } catch (const RunEnd&) {
        err << "A number of the arguments is too large.\n";
        return ExitAbort;
    }
    int32_t toolNumber = 0;
    if (!RoundsIntoInt32(numberValue, toolNumber) || toolNumber < -32768 || toolNumber > 32767) {
        err << "The tool number " << Trim(number) << " is beyond 16 bits.\n";
        return ExitAbort;
    }
    float wanted = 0;
    try {
        wanted = ToSingle(angleValue);
    } catch (const RunEnd&) {
        err << "The angle " << Trim(angle) << " is too large for a single.\n";
        return ExitAbort;
    }

    std::string missing;
    const std::string file = FindLookupFile(place, missing);
    if (file.empty()) {
        err << missing << "\n";
        return ExitFault;
    }
    const ToolingList list = ReadToolingList(file);
    if (list.Broken)
        out << file << " is broken (" << list.Reason << "): a run treats it as empty.\n";
    const ToolingEntry entry = LookupToolEntry(file, toolNumber);
    bool found = false;
    for (const ToolingEntry& e : list.Entries) found = found || e.ToolNumber == toolNumber;
    if (found) out << "Tool " << LongText(toolNumber) << ": " << EntryLine(entry) << "\n";
    else
        out << "Tool " << LongText(toolNumber) << " is not listed: the default entry is taken (angle "
            << SingleText(entry.ToolAngle) << ", step " << SingleText(entry.AngleStep) << ").\n";
    out << "At the angle " << SingleText(wanted) << ":\n"
        << (ToolFitsAngle(wanted, entry.ToolAngle, entry.AngleStep) ? "fits" : "does not fit") << "\n";
    return ExitClean;
}

}  // namespace tvx
