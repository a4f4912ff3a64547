#pragma once
// A small installation in a temporary directory for the configuration tests: the start
// directory with Torvanex.cfg, a program directory with Machine.lst, a data directory and a
// projects directory. Every text file is written with CR LF line ends, paths inside the files
// with '\' as the system writes them.
#include <string>
#include <vector>

#include "common/numtext.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "state/run_state.h"
#include "test_support.h"

namespace tvx {

struct Installation {
    TempDir Root;
    std::string Start;    // holds Torvanex.cfg
    std::string Program;  // ProgramDir as written in Torvanex.cfg, without the trailing '\'
    std::string Data;
    std::string Projects;

    Installation() {
        Start = Root.Path + "\\Start";
        Program = Root.Path + "\\Program";
        Data = Root.Path + "\\Data";
        Projects = Root.Path + "\\Projects";
        MakeDirectory(Start);
        MakeDirectory(Program);
        MakeDirectory(Data + "\\Data");
        MakeDirectory(Projects);
    }

    static void Write(const std::string& path, const std::vector<std::string>& lines) { WriteAllLines(path, lines); }

    void Config(const std::string& machine, const std::string& project) const {
        Write(Start + "\\Torvanex.cfg", {Program, Data, Projects, machine, project, "******"});
    }
    void MachineList(const std::vector<std::string>& lines) const { Write(Program + "\\Machine.lst", lines); }
    void Executables(bool drw, bool prg, bool rvs) const {
        if (drw) Write(Program + "\\Torvadrw.exe", {"x"});
        if (prg) Write(Program + "\\Torvaprg.exe", {"x"});
        if (rvs) Write(Program + "\\Torvarvs.exe", {"x"});
    }
    void FullInstall() const { Executables(true, true, false); }

    // A file of the machine `stem` in Data\Data.
    void MachineFile(const std::string& stem, const std::string& extension,
                     const std::vector<std::string>& lines) const {
        Write(Data + "\\Data\\" + stem + "." + extension, lines);
    }
    // The .mch lines of a machine of the given kind with `stations` stations: lengths 5 to 23
    // are the line number, no pairs.
    static std::vector<std::string> MchLines(const std::string& kind, const std::string& stations) {
        std::vector<std::string> lines{"Machine: test", "Kind: " + kind, "Stations: " + stations, "Sense: 1"};
        for (int line = 5; line <= 23; ++line) {
            if (line == 14) lines.push_back("Flag: NO");
            else if (line == 21) lines.push_back("Pairs: 0");
            else lines.push_back("Length " + LongText(line) + ": " + LongText(line));
        }
        return lines;
    }
    // All files of a machine: metric, the kind given, a turret of two stations and one tool.
    void Machine(const std::string& stem, const std::string& kind, const std::string& stations = "2") const {
        MachineFile(stem, "msr", {"Units: METRIC"});
        MachineFile(stem, "mch", MchLines(kind, stations));
        MachineFile(stem, "prm", {"Parameters: YES"});
        MachineFile(stem, "cms", {"Control: FANUC"});
        MachineFile(stem, "stn", {"1,\"T1\",0,0,0,1", "2,\"T2\",0,0,0,1", "******"});
        MachineFile(stem, "trt", {"101,10,1,\"A\",\"1\"", "******"});
    }
    void Material(const std::string& dirName, const std::string& name, const std::vector<std::string>& lines) const {
        MakeDirectory(Data + "\\Material\\" + dirName);
        Write(Data + "\\Material\\" + dirName + "\\" + name + ".mtl", lines);
    }

    RunState State() const {
        RunState state;
        state.Config.StartDir = Start;
        return state;
    }
    std::string ConfigBytes() const { return ReadAllBytes(Start + "\\Torvanex.cfg"); }
};

}  // namespace tvx
