#pragma once
// Configuration: the start-up file Torvanex.cfg, the table of machines, the data directory
// tree, and the machine, material and turret files of the current machine.
//
// Every file these procedures expect and do not find ends the run with the file fault naming
// it; nothing here has a message of its own.
#include <cstdint>
#include <string>

#include "state/run_state.h"

namespace tvx {

// Reads Torvanex.cfg from Config.StartDir (empty: the current directory), normalises its five
// values, forms WorkDir, RevSubsDir and DriveRoot, loads Machine.lst into MachineList and
// calls PrepareDataTree.
void LoadStartupConfig(RunState& state);

// Sets FullInstall and ReverseInstall from the executables in WorkDir, loads Reverse.lst
// under ReverseInstall, keeps a first copy of the delivered data in Data\Default, creates
// Export.cfg when missing and the directories of the installed products.
void PrepareDataTree(RunState& state);

// Makes `number` the current machine: its row of MachineList, its paths, its files .msr,
// .mch, .prm, .cms, .stn and .trt, its directories, and at the end SaveStartupConfig.
void LoadMachine(RunState& state, int16_t number, const std::string& project);

// Settles the project name (dropped when it is not there, replaced by the first project
// directory of the machine when empty), rewrites Torvanex.cfg and forms the current project
// path.
void SaveStartupConfig(RunState& state, const std::string& project);

// ProjectDir + base + "\" + name + "\", or only the drive of a name that holds a ":".
std::string ProjectPath(const RunState& state, const std::string& base, const std::string& name);

// Empties the machine's texts, numbers, flags and tables before a load.
void ClearMachine(RunState& state);

// One value of a material file: a number, a text, or nothing (a field that is not present).
struct MaterialValue {
    enum Kinds { Empty, Number, Text };
    Kinds Kind = Empty;
    double NumberValue = 0;
    std::string TextValue;
};
// The value as a number: 0 for nothing, the leading number of a text.
double MaterialNumber(const MaterialValue& value);
// The value as a text: empty for nothing, the trimmed plain text of a number.
std::string MaterialValueText(const MaterialValue& value);

// Field `field` of the material `name` (Default.mtl when its file is missing), read from the
// file anew. Fields: 0 the name, 1 to 5, 11, 12, 13, 21, 22, 23, 31 as the machine's class
// has them; a field that the file does not hold for this class is empty.
MaterialValue ReadMaterialField(const RunState& state, const std::string& name, int field);

// Makes `name` the current material (rewriting it to "Default" when it is empty or its file
// is missing), reads its record and tool, settles the tool library, creates the library
// files that are missing and reads the tool defaults. Only in a full installation.
void LoadMaterial(RunState& state, std::string& name);

}  // namespace tvx
