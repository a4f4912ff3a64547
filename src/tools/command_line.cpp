#include "tools/command_line.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>

#include "common/fault.h"
#include "job/post_main.h"
#include "tools/demo_tool.h"
#include "tools/drawing_tool.h"
#include "tools/library_tool.h"
#include "tools/try_tool.h"

namespace tvx {

namespace {

// Prints how a run ended and gives its exit status.
int Finish(const RunEnd& end) {
    if (!end.Text.empty()) {
        std::fwrite(end.Text.data(), 1, end.Text.size(), stderr);
        std::fputc('\n', stderr);
    }
    return end.Status;
}

}  // namespace

int RunCommandLine(int argc, char** argv) {
    CLI::App app{"torvanex: batch NC post-processor for sheet-metal fabrication.\n"
                 "With no arguments it runs the job in the current directory."};
    app.require_subcommand(0, 1);

    auto* drawing = app.add_subcommand("drawing", "Read and write drawing files (.drw)");
    drawing->require_subcommand(1);
    std::string dumpFile;
    auto* dump = drawing->add_subcommand("dump", "Print a drawing as JSON");
    dump->add_option("file", dumpFile, "Drawing file")->required();
    std::string buildFile, buildOutput;
    auto* build = drawing->add_subcommand("build", "Write a drawing from its JSON form");
    build->add_option("file", buildFile, "JSON file")->required();
    build->add_option("-o,--output", buildOutput, "Drawing file to write")->required();
    std::string generateKind, generateRecords, generateOutput;
    auto* generate = drawing->add_subcommand("generate", "Write a large drawing for measuring a whole job");
    generate->add_option("--kind", generateKind, "punch (hits) or laser (outlines of lines and arcs)")
        ->required()
        ->check(CLI::IsMember({"punch", "laser"}));
    generate->add_option("--records", generateRecords, "Number of entity records after the header")->required();
    generate->add_option("-o,--output", generateOutput, "Drawing file to write")->required();

    std::string demoExample = "punch", demoDirectory;
    auto* demo = app.add_subcommand("demo", "Unpack an example installation, run its job and show the program");
    demo->add_option("--example", demoExample, "Example installation to run")->capture_default_str();
    demo->add_option("directory", demoDirectory, "Where to unpack it (default ./torvanex-demo)");

    std::string runDirectory;
    auto* run = app.add_subcommand("run", "Run the job of a directory (as torvanex started there)");
    run->add_option("directory", runDirectory, "Work directory holding Torvanex.cfg")->required();

    TryOptions tryOptions;
    bool tryRaw = false;
    auto* tryCommand = app.add_subcommand("try", "Write reserved words of a definition and show the program text");
    tryCommand->footer(TryHelp);
    tryCommand->add_option("stem", tryOptions.Stem, "Definition stem: STEM.pst, STEM.wrd, STEM.lyt")->required();
    tryCommand->add_option("items", tryOptions.Items, "Cells, flags and reserved words, left to right");
    tryCommand->add_flag("--raw", tryRaw, "Print the generated text before the format pass");
    tryCommand->add_option("--seq", tryOptions.SequenceFile, "Job sequence file (Program.seq) for layouts");

    auto* library = app.add_subcommand("library", "Look into a tooling library: folders, Tooling.lkp, angles");
    library->footer(LibraryHelp);
    library->require_subcommand(1);
    LibraryPathOptions pathOptions;
    auto* libraryPath = library->add_subcommand("path", "The size and library folders of a shape record");
    libraryPath->footer(LibraryPathHelp);
    libraryPath->add_option("entity", pathOptions.EntityFile, "JSON of one record (an object) or of a drawing (an array)")
        ->required();
    libraryPath->add_option("--work", pathOptions.WorkDir, "Directory holding Torvanex.cfg (default: the current one)");
    auto* materialOption = libraryPath->add_option(
        "--material", pathOptions.Material, "Folder name on a profile machine (default: the machine's loaded material)");
    auto* libraryOption = libraryPath->add_option(
        "--library", pathOptions.Library, "Folder name on other machines (default: the machine's library, else Full Library)");
    std::string listPlace;
    auto* libraryList = library->add_subcommand("list", "The entries of a Tooling.lkp as a run reads them");
    libraryList->footer(LibraryListHelp);
    libraryList->add_option("dir", listPlace, "Library folder, or its Tooling.lkp")->required();
    std::string fitsPlace, fitsNumber, fitsAngle;
    auto* libraryFits = library->add_subcommand("fits", "Whether a library tool fits at an angle");
    libraryFits->footer(LibraryFitsHelp);
    libraryFits->add_option("dir", fitsPlace, "Library folder, or its Tooling.lkp")->required();
    libraryFits->add_option("number", fitsNumber, "Tool number")->required();
    libraryFits->add_option("angle", fitsAngle, "Angle in degrees")->required();

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        // `library fits` tells bad arguments from a missing library by its status.
        if (libraryFits->parsed()) return app.exit(e) == 0 ? 0 : ExitAbort;
        return app.exit(e) == 0 ? 0 : ExitFault;
    }

    try {
        if (*dump) return DrawingDumpCommand(dumpFile, std::cout);
        if (*build) return DrawingBuildCommand(buildFile, buildOutput);
        if (*generate) return DrawingGenerateCommand(generateKind, generateRecords, generateOutput);
        if (*tryCommand) {
            tryOptions.FormatPass = !tryRaw;
            return TryCommand(tryOptions, std::cout, std::cerr);
        }
        if (*libraryPath) {
            pathOptions.MaterialGiven = materialOption->count() > 0;
            pathOptions.LibraryGiven = libraryOption->count() > 0;
            return LibraryPathCommand(pathOptions, std::cout, std::cerr);
        }
        if (*libraryList) return LibraryListCommand(listPlace, std::cout, std::cerr);
        if (*libraryFits) return LibraryFitsCommand(fitsPlace, fitsNumber, fitsAngle, std::cout, std::cerr);
        if (*run) return RunJob(runDirectory);
        if (*demo) return DemoCommand(demoExample, demoDirectory, std::cout);
        return RunJob("");
    } catch (const RunEnd& end) {
        return Finish(end);
    }
}

}  // namespace tvx
