// The start-up file, the tables of machines and reverse subroutines, the data directory tree,
// and the settling of the current project.
#include <string>
#include <vector>

#include "common/numeric.h"
#include "common/numtext.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "config/config.h"
#include "config/config_files.h"

namespace tvx {
namespace {

// Machine.lst: number, maker, directory name, model, note, one machine a row, up to
// "******", an empty first item, a number below 1 or the end of the file.
void LoadMachineList(RunState& state) {
    auto& list = state.Config.MachineList;
    list.assign(1, MachineRow{});
    TextInput in;
    OpenTextInput(in, state.Job.WorkDir + "Machine.lst");
    while (!ListAtEnd(in)) {
        const std::string first = ReadItem(in);
        if (IsListEnd(first)) break;
        MachineRow row;
        row.Number = ToInteger32(LeadingNumber(first), FieldOf("MachineNumber", in).c_str());
        if (row.Number < 1) break;
        row.MachineMaker = ReadItem(in);
        row.MachineDirName = ReadItem(in);
        row.MachineModel = ReadItem(in);
        row.MachineNote = ReadItem(in);
        list.push_back(row);
    }
    CloseText(in);
    list[0].Number = static_cast<int32_t>(list.size() - 1);
}

// Reverse.lst: a number and two texts a row, with the same ends as Machine.lst.
void LoadReverseList(RunState& state) {
    auto& list = state.Config.ReverseList;
    list.assign(1, ReverseRow{});
    TextInput in;
    OpenTextInput(in, state.Job.WorkDir + "Reverse.lst");
    while (!ListAtEnd(in)) {
        const std::string first = ReadItem(in);
        if (IsListEnd(first)) break;
        ReverseRow row;
        row.Number = ToInteger32(LeadingNumber(first), FieldOf("number", in).c_str());
        if (row.Number < 1) break;
        row.FirstText = ReadItem(in);
        row.SecondText = ReadItem(in);
        list.push_back(row);
    }
    CloseText(in);
    list[0].Number = static_cast<int32_t>(list.size() - 1);
}

// The first start keeps a copy of the delivered data files in Data\Default; later starts
// leave that copy alone.
void SeedDefaultData(const RunState& state) {
    const std::string data = state.Config.DataDir + "Data\\";
    const std::string defaults = data + "Default";
    if (DirectoryExists(defaults)) return;
    MakeDirectory(defaults);
    for (const auto& name : ListFiles(data, "*")) CopyFileTo(data + name, defaults + "\\" + name);
}

bool IsNoProject(const std::string& name) {
    const std::string upper = Upper(name);
    return upper.empty() || upper == "EXSUBS" || upper == "." || upper == "..";
}

}  // namespace

void LoadStartupConfig(RunState& state) {
    auto& config = state.Config;
    TextInput in;
    OpenTextInput(in, StartFile(config.StartDir, "Torvanex.cfg"));
    config.ProgramDir = WithSeparator(Trim(ReadLine(in)));
    config.DataDir = WithSeparator(Trim(ReadLine(in)));
    config.ProjectDir = WithSeparator(Trim(ReadLine(in)));
    config.MachineNumber = TextToInteger16(Trim(ReadLine(in)), "MachineNumber", in);
    if (config.MachineNumber < 1) config.MachineNumber = 1;
    config.ProjectName = Trim(ReadLine(in));
    // No absolute paths for the project: it lies under the machine's folder.
    if (Holds(config.ProjectName, ":")) config.ProjectName.clear();
    CloseText(in);

    state.Job.WorkDir = config.ProgramDir;
    config.RevSubsDir = config.DataDir + "RevSubs\\";
    config.DriveRoot = Trim(state.Job.WorkDir.substr(0, 3));
    LoadMachineList(state);
    PrepareDataTree(state);
}

void PrepareDataTree(RunState& state) {
    auto& config = state.Config;
    const std::string& work = state.Job.WorkDir;
    config.FullInstall = FileExists(work + "Torvadrw.exe") && FileExists(work + "Torvaprg.exe");
    config.ReverseInstall = config.FullInstall && FileExists(work + "Torvarvs.exe");

    if (config.ReverseInstall) LoadReverseList(state);
    else config.ReverseList.assign(1, ReverseRow{});

    SeedDefaultData(state);

    if (!FileExists(work + "Export.cfg")) WriteAllLines(work + "Export.cfg", {"0", "prg"});

    if (config.FullInstall) {
        MakeDirectory(config.DataDir + "Blocks");
        MakeDirectory(config.DataDir + "Material");
        if (config.ReverseInstall) MakeDirectory(config.DataDir + "RevSubs");
    }
}

void SaveStartupConfig(RunState& state, const std::string& project) {
    auto& config = state.Config;
    const std::string folder = config.ProjectDir + state.Machine.MachineDirName;
    std::string name = Trim(project);
    if (Holds(name, ":")) {
        if (!DriveReady(name)) name.clear();
    } else if (!name.empty() && !DirectoryExists(folder + "\\" + name)) {
        name.clear();
    }
    if (IsNoProject(name)) {
        for (const auto& directory : ListDirectories(folder, "*")) {
            if (IsNoProject(directory)) continue;
            name = directory;
            break;
        }
    }
    config.ProjectName = name;

    std::string text;
    for (const std::string& line : {config.ProgramDir, config.DataDir, config.ProjectDir,
                                    IntegerText(config.MachineNumber), config.ProjectName,
                                    std::string("******")})
        text += line + "\r\n";
    WriteFileAtomically(StartFile(config.StartDir, "Torvanex.cfg"), text);

    config.CurrentProjectPath = ProjectPath(state, state.Machine.MachineDirName, config.ProjectName);
}

std::string ProjectPath(const RunState& state, const std::string& base, const std::string& name) {
    const std::string b = Trim(base);
    const std::string n = Trim(name);
    if (Holds(n, ":")) return n.substr(0, 2) + "\\";
    return state.Config.ProjectDir + b + "\\" + n + "\\";
}

}  // namespace tvx
