#pragma once
// `torvanex library`: for the people who keep a tooling library. Where a shape's folders lie,
// what a Tooling.lkp holds as a lookup reads it, and whether a tool fits at an angle.
#include <ostream>
#include <string>

namespace tvx {

// `torvanex library path ENTITY.json [--work DIR] [--material NAME] [--library NAME]`.
struct LibraryPathOptions {
    std::string EntityFile;   // one record (an object) or a drawing (an array) in JSON form
    std::string WorkDir;      // holds Torvanex.cfg; empty: the current directory
    std::string Material;     // used when MaterialGiven
    std::string Library;      // used when LibraryGiven
    bool MaterialGiven = false;
    bool LibraryGiven = false;
};

// For each record that has a size folder: the folder, the angle it takes and the library
// folder under it, made as a run makes them. 0 done, 1 no record with a size folder, 2 a fault
// (a missing Torvanex.cfg, a bad JSON file, a folder that cannot be made).
int LibraryPathCommand(const LibraryPathOptions& options, std::ostream& out, std::ostream& err);

// `torvanex library list DIR`: the entries of DIR's Tooling.lkp (or of DIR, a Tooling.lkp), as
// the lookup reads them. 0 done, 1 the file is broken, 2 no such file (it is never made).
int LibraryListCommand(const std::string& place, std::ostream& out, std::ostream& err);

// `torvanex library fits DIR NUMBER ANGLE`: the entry of the tool and whether it fits at the
// angle ("fits" or "does not fit" on the last line). 0 either way, 1 bad arguments, 2 no such
// folder or Tooling.lkp.
int LibraryFitsCommand(const std::string& place, const std::string& number, const std::string& angle,
                       std::ostream& out, std::ostream& err);

// The help texts of the subcommands.
extern const char* const LibraryHelp;
extern const char* const LibraryPathHelp;
extern const char* const LibraryListHelp;
extern const char* const LibraryFitsHelp;

}  // namespace tvx
