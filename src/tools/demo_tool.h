#pragma once
#include <ostream>
#include <string>

namespace tvx {

// `torvanex demo [--example NAME] [DIR]`: unpacks an example installation into DIR, runs its
// job there and shows where the program and the report are, with the program's first lines.
int DemoCommand(const std::string& example, const std::string& directory, std::ostream& out);
// Writes the files of an example installation into a directory, "@DIR@" in them replaced by
// the directory, and builds its drawing.json into work/Progmain.drw. Any other drawing of the
// installation (the tool drawings of its tooling library) is kept in JSON as "NAME.drw.json"
// and written as the drawing "NAME.drw" in the same folder, without the JSON. False when there
// is no example of that name.
bool UnpackExample(const std::string& example, const std::string& directory);
// The names of the example installations built in.
std::string ExampleNames();

}  // namespace tvx
