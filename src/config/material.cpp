// Materials (.mtl), the tool library that a material names, and the tool defaults (.dft).
#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "common/numeric.h"
#include "common/numtext.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "config/config.h"
#include "config/config_files.h"
#include "drawing/record.h"

namespace tvx {
namespace {

constexpr int MaterialFieldCount = 32;  // fields 0 to 31
constexpr const char* FullLibrary = "Full Library";

MaterialValue NumberValue(double number) {
    MaterialValue value;
    value.Kind = MaterialValue::Number;
    value.NumberValue = number;
    return value;
}

MaterialValue TextValue(std::string text) {
    MaterialValue value;
    value.Kind = MaterialValue::Text;
    value.TextValue = std::move(text);
    return value;
}

bool MaterialFileExists(const MachineState& machine, const std::string& name) {
    return !name.empty() && FileExists(machine.MaterialDir + name + ".mtl");
}

// The whole record of a material file as the machine's class has it. Line 1 is a title for
// people; the rest follow one another, each present line only for the classes that hold it.
std::array<MaterialValue, MaterialFieldCount> ReadMaterialFile(const MachineState& machine,
                                                               const std::string& name,
                                                               const std::string& path) {
    std::array<MaterialValue, MaterialFieldCount> fields{};
    const bool tool = machine.IsToolMachine;
    const bool combo = machine.IsComboMachine;
    const bool profile = machine.IsProfileMachine;
    TextInput in;
    OpenTextInput(in, path);
    auto number = [&]() { return NumberValue(ToSingle(LeadingNumber(ReadLabelValue(in)))); };
    auto integer = [&](const char* field) { return NumberValue(TextToInteger16(ReadLabelValue(in), field, in)); };

    fields[0] = TextValue(name);
    (void)ReadLine(in);
    fields[1] = integer("field 1");
    fields[2] = number();
    fields[3] = number();
    fields[4] = number();
    fields[5] = TextValue(ReadLabelValue(in));
    if (combo || tool) fields[11] = TextValue(ReadLabelValue(in));
    if (tool) fields[12] = number();
    else if (combo) fields[12] = NumberValue(1000);
    if (combo || tool) fields[13] = number();
    if (profile) {
        fields[21] = number();
        fields[22] = number();
    } else if (combo) {
        fields[21] = NumberValue(0);
        fields[22] = NumberValue(0);
    }
    if (profile || combo) fields[23] = integer("field 23");
    if (tool && profile) fields[31] = TextValue(ReadLabelValue(in));
    CloseText(in);
    return fields;
}

void MakeLibraryStems(RunState& state) {
    auto& machine = state.Machine;
    const std::string& data = state.Config.DataDir;
    machine.ToolsStem = data + "Tools\\" + machine.MachineDirName + "\\" + machine.ToolLibrary + ".";
    machine.TurretsStem = data + "Turrets\\" + machine.MachineDirName + "\\" + machine.ToolLibrary + ".";
}

// The library that the material names when its lookup file is there; else "Full Library";
// else the first lookup file of the machine's tools; else "Full Library" all the same.
void SettleToolLibrary(RunState& state) {
    auto& machine = state.Machine;
    const std::string tools = state.Config.DataDir + "Tools\\" + machine.MachineDirName + "\\";
    auto present = [&](const std::string& library) {
        return !library.empty() && FileExists(tools + library + ".lkp");
    };
    if (present(machine.ToolLibrary)) return;
    machine.ToolLibrary = FullLibrary;
    if (present(machine.ToolLibrary)) return;
    const std::vector<std::string> lookups = ListFiles(tools, "*.lkp");
    if (!lookups.empty()) machine.ToolLibrary = StripExtension(lookups.front());
    if (machine.ToolLibrary.empty()) machine.ToolLibrary = FullLibrary;
}

// The library files a new library starts with: empty lookup tables and a turret file "0"
// with one empty row for each station.
void CreateLibraryFiles(const MachineState& machine) {
    if (!FileExists(machine.ToolsStem + "lkp")) WriteAllLines(machine.ToolsStem + "lkp", {"******"});
    if (!FileExists(machine.TurretsStem + "lkp")) WriteAllLines(machine.TurretsStem + "lkp", {"******"});
    if (!FileExists(machine.TurretsStem + "0")) {
        std::vector<std::string> lines;
        for (int station = 1; station <= machine.StationCount; ++station)
            lines.push_back(IntegerText(static_cast<int16_t>(station)) + ", , , 0, 0, 0, 0, , 0");
        lines.push_back("******");
        WriteAllLines(machine.TurretsStem + "0", lines);
    }
}

// .dft: four records of 49 bytes. A record that the file does not hold, in full or in part,
// reads as zeros, as with every random-access file.
void LoadToolDefaults(MachineState& machine) {
    for (auto& record : machine.ToolDefaults) record.fill(0);
    const std::string path = machine.ToolsStem + "dft";
    if (!FileExists(path)) return;
    const std::string bytes = ReadAllBytes(path);
    constexpr size_t width = std::tuple_size_v<ToolDefaultRecord>;
    for (size_t record = 1; record <= 4; ++record) {
        const size_t start = (record - 1) * width;
        for (size_t i = 0; i < width && start + i < bytes.size(); ++i)
            machine.ToolDefaults[record][i] = static_cast<unsigned char>(bytes[start + i]);
    }
}

}  // namespace

double MaterialNumber(const MaterialValue& value) {
    switch (value.Kind) {
        case MaterialValue::Number: return value.NumberValue;
        case MaterialValue::Text: return LeadingNumber(value.TextValue);
        default: return 0;
    }
}

std::string MaterialValueText(const MaterialValue& value) {
    switch (value.Kind) {
        case MaterialValue::Number: return Trim(PlainText(value.NumberValue));
        case MaterialValue::Text: return value.TextValue;
        default: return {};
    }
}

MaterialValue ReadMaterialField(const RunState& state, const std::string& name, int field) {
    const auto& machine = state.Machine;
    std::string material = Trim(name);
    if (!MaterialFileExists(machine, material)) material = "Default";
    if (!MaterialFileExists(machine, material)) return {};
    if (field < 0 || field >= MaterialFieldCount) return {};
    return ReadMaterialFile(machine, material, machine.MaterialDir + material + ".mtl")[static_cast<size_t>(field)];
}

void LoadMaterial(RunState& state, std::string& name) {
    if (!state.Config.FullInstall) return;
    auto& machine = state.Machine;

    std::string material = Trim(name);
    if (!MaterialFileExists(machine, material)) material = "Default";
    name = material;

    MaterialRecord record;
    record.Name = material;
    auto number = [&](int field) { return MaterialNumber(ReadMaterialField(state, material, field)); };
    auto text = [&](int field) { return MaterialValueText(ReadMaterialField(state, material, field)); };
    record.Field1 = ToInteger16(number(1), "material field 1");
    record.Field2 = ToSingle(number(2));
    record.Field3 = ToSingle(number(3));
    record.Field4 = ToSingle(number(4));
    record.Field5 = text(5);
    record.Field11 = text(11);
    record.Field12 = ToSingle(number(12));
    record.Field13 = ToSingle(number(13));
    record.Field21 = ToSingle(number(21));
    record.Field22 = ToSingle(number(22));
    record.Field23 = ToInteger16(number(23), "material field 23");
    ParseToolString(text(31), record.Tool);

    // The material's tool stands only when it is a punch (not the profiling letter) of a work
    // type of 10 or more whose width and length are both at least 0.05.
    const std::string letter = record.Tool.Letter.Trimmed();
    if (letter.empty() || letter == "P" || record.Tool.WorkType < 10 ||
        static_cast<double>(record.Tool.Size[1]) < 0.05 || static_cast<double>(record.Tool.Size[2]) < 0.05)
        ClearTool(record.Tool);
    machine.Material = record;

    machine.MaterialField13 = record.Field13;
    machine.ToolLibrary = Trim(record.Field11);

    if (!machine.IsToolMachine) {
        MakeLibraryStems(state);
        return;
    }
    SettleToolLibrary(state);
    MakeLibraryStems(state);
    CreateLibraryFiles(machine);
    LoadToolDefaults(machine);
}

}  // namespace tvx
