// The two passes that expand a drawing through the split dispatch, the associative tooling pass
// and the shape pass, and the measure of a part drawing's start, which runs the shape pass on a
// scratch copy.
//
// Both passes share one frame: the drawing is walked from record 1 to its RecordCount into
// PTemp.tmp, each record either copied (the output counter goes up by one and the record is put
// at that number) or handed to the split dispatch (which advances the counter by the records
// it makes). Then records 2 up to the counter are copied back over the drawing, PTemp.tmp is
// deleted and record 1 gets the new RecordCount. Record 1 is walked like any other, but it is
// never copied back: it keeps its form apart from the count.
//
// Up to the first record that a pass splits or changes, the drawing it would write is the
// drawing it reads, record for record at the same numbers. So the working file is made only
// when that record comes, and it is then given the records before it as the drawing holds them;
// only the records from that one on are copied back. A walk that changes nothing makes no
// working file and copies nothing back: it writes the count into record 1, and a partial last
// record as the copy back would have written it, whole with zeros behind its bytes.
#include <string>

#include "common/numtext.h"
#include "common/paths.h"
#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "expansion/passes.h"
#include "splitting/split_dispatch.h"
#include "splitting/split_output.h"
#include "state/run_state.h"
#include "ui/progress.h"

namespace tvx {
namespace {

// What a pass does with one record of the drawing it walks.
enum class PassChoice { Copy, Split };

// A pass's choice for record `number` of the open source drawing. A choice may change the
// record in hand (and write it back to the source), as the shape pass does with a rectangle's
// corner code.
using PassChooser = PassChoice (*)(const RunState& state, DrawingFile& source, int32_t number, DrawRecord& record);

// A pass: which records it needs to see at all, by their EntityCode and the letter of ToolA (a
// record it passes over is copied as its bytes stand, without being decoded), and its choice for
// a record it sees.
struct PassRule {
    bool (*Sees)(int16_t code, char letter);
    PassChooser Choose;
};

// The name of a file without its directory ('\' and '/' both separate).
std::string FileNameOf(const std::string& path) {
    const auto slash = path.find_last_of("\\/");
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// The working file of a walk, made when the walk first writes a record that differs from the
// drawing's own.
struct PassOutput {
    std::string Path;
    DrawingFile File;
    bool Made = false;
    // The first record of the drawing that the walk did not give back as it stood.
    int32_t FirstChanged = 0;
};

// Makes the working file for a walk at record `number`, whose records before it are the
// drawing's own: they are written into it as the drawing holds them.
void StartPassOutput(PassOutput& output, DrawingFile& source, int32_t number) {
    MakeWorkingFile(output.File, output.Path);
    // Nothing else reads the working file while the walk fills it: the records the walk and the
    // split dispatch put there are written in batches.
    output.File.WriteBehind = true;
    CopyRecordBytes(source, output.File, 1, number - 1);
    output.Made = true;
    output.FirstChanged = number;
}

// The records a pass reads at once.
constexpr size_t PassBatchRecords = 256;

// The frame of the two passes. The walk covers the records from 1 up to RecordCount that the
// file holds: a RecordCount beyond the last record on disk ends the walk at that record, so
// that a damaged count neither walks records of zeros without end nor invents them; the count
// written back is then the number of records the walk made.
void RewriteByPass(RunState& state, const std::string& drawing, const std::string& caption, const PassRule& rule,
                   CruciformCensus* census = nullptr) {
    DrawingFile source;
    OpenDrawing(source, drawing);
    const int32_t count = ReadRecordCount(source);
    PassOutput output;
    output.Path = state.Job.WorkDir + std::string(PassTempName);
    ShowProgress(caption);
    // The bar runs over the records and four steps more, in whole percent, truncated.
    const double steps = static_cast<double>(count) + 4;
    const int32_t onDisk = RecordsOnDisk(source);
    const int32_t last = count < onDisk ? count : onDisk;
    const std::string name = FileNameOf(drawing);
    int32_t counter = 0;
    // The records are read a batch at a time: a choice writes only the record in hand back to
    // the source, never one ahead of it.
    std::vector<RecordBytes> batch(std::min<size_t>(PassBatchRecords, static_cast<size_t>(last > 0 ? last : 0)));
    size_t batchGot = 0;
    int32_t batchFirst = 1;
    const RecordBytes* lastBytes = nullptr;
    size_t held = RecordLength;  // the bytes the file held of the record in hand
    DrawRecord record;
    for (int32_t n = 1; n <= last; ++n) {
        const size_t at = static_cast<size_t>(n - batchFirst);
        if (n == 1 || at == batch.size()) {
            batchFirst = n;
            const size_t wanted = std::min<size_t>(batch.size(), static_cast<size_t>(last - n) + 1);
            batchGot = ReadRecordRun(source, n, batch.data(), wanted);
        }
        const size_t index = static_cast<size_t>(n - batchFirst);
        RecordBytes& bytes = batch[index];
        lastBytes = &bytes;
        held = HeldOfRun(batchGot, index);
        if (census && !census->Candidates && IsCruciformCandidate(EntityCodeOf(bytes), ToolLetterOf(bytes)))
            census->Candidates = true;
        bool split = false;
        bool changed = false;
        if (rule.Sees(EntityCodeOf(bytes), ToolLetterOf(bytes))) {
            DecodeRecord(std::string_view(reinterpret_cast<const char*>(bytes.data()), RecordLength), record);
            split = rule.Choose(state, source, n, record) == PassChoice::Split;
            if (!split) {
                // A record that the choice changed is copied as it now stands.
                const RecordBytes now = EncodeRecord(record);
                changed = now != bytes;
                bytes = now;
            }
        }
        if ((split || changed) && !output.Made) StartPassOutput(output, source, n);
        if (split) {
            SplitOutput out = FileOutput(state.Machine, output.File, counter, MainPathChoices, {});
            out.PlaceNumber = n;
            out.PlaceFile = &name;
            out.Library = PassesForLibrary(state);
            SplitRecord(out, record);
        } else {
            ++counter;
            if (output.Made) WriteRecordBytes(output.File, counter, bytes);
        }
        SetProgress(static_cast<int>(static_cast<double>(n) / steps * 100));
    }
    if (output.Made) {
        RewriteFromTemp(source, output.File, counter, output.FirstChanged);
        CloseDrawing(output.File);
        DeleteFile(output.Path);
    } else {
        // Every record went back to its own number. The copy back would have written a partial
        // last record whole; a stale working file of an earlier walk goes, as the making of one
        // would have removed it.
        if (held < RecordLength && last >= 2 && lastBytes) WriteRecordBytes(source, last, *lastBytes);
        WriteRecordCount(source, counter);
        DeleteIfExists(output.Path);
    }
    CloseDrawing(source);
    state.Job.WorkingCount = counter;
    if (census) census->Taken = !output.Made;
}

bool IsLibraryLetter(const DrawRecord& record) { return LetterIs(record.ToolA, 'U'); }

// A library tool: every custom or box shape (171 to 175), and any entity below the multipart
// codes whose tool is a library tool.
bool IsLibraryTooled(const DrawRecord& record) {
    const int16_t c = record.EntityCode;
    return (c >= 171 && c <= 175) || (c < 500 && IsLibraryLetter(record));
}

PassChoice AssociativeToolingChoice(const RunState&, DrawingFile&, int32_t, DrawRecord& record) {
    return IsLibraryTooled(record) ? PassChoice::Split : PassChoice::Copy;
}

// The records IsLibraryTooled can be true of.
bool MayBeLibraryTooled(int16_t code, char letter) { return (code >= 171 && code <= 175) || (code < 500 && letter == 'U'); }

// A rectangle's corner code (Count[3]) tells which corner its centre was given for; the
// rectangle is brought to the finished form -1 once, so that a rectangle walked again is not
// mirrored again. Codes other than -1 and 0 to 4 stand for no corner and are left as they are.
// Gives true when the record changed.
bool NormaliseCorner(const MachineState& machine, DrawRecord& record) {
    switch (record.Count[3]) {
        case 0:
        case 1: break;
        case 2: record.Point[4].Y = ToSingle(-static_cast<double>(record.Point[4].Y)); break;
        case 3: record.Point[4].X = ToSingle(-static_cast<double>(record.Point[4].X)); break;
        case 4:
            record.Point[4].Y = ToSingle(-static_cast<double>(record.Point[4].Y));
            record.Point[4].X = ToSingle(-static_cast<double>(record.Point[4].X));
            break;
        default: return false;  // -1, the finished form, and codes of no corner
    }
    record.Count[3] = -1;
    BindRecord(machine, record);
    return true;
}

PassChoice ShapeChoice(const RunState& state, DrawingFile& source, int32_t number, DrawRecord& record) {
    const int16_t c = record.EntityCode;
    if (c == 120 || c == 130) {
        if (IsLibraryLetter(record)) return PassChoice::Split;
        const bool leads = record.LeadIn.LeadKind != 0 || record.LeadOut.LeadKind != 0;
        return LetterIs(record.ToolA, 'P') && leads ? PassChoice::Split : PassChoice::Copy;
    }
    if (c >= 151 && c <= 155) return PassChoice::Split;
    if (c == 156) {
        // The normalised rectangle is kept in the source at its own number before it is split.
        if (NormaliseCorner(state.Machine, record)) WriteRecord(source, number, record);
        return PassChoice::Split;
    }
    return IsLibraryTooled(record) ? PassChoice::Split : PassChoice::Copy;
}

// The records ShapeChoice can split or change: profiles of a library tool or of a profiling
// head, the shapes, and library tools.
bool ShapePassSees(int16_t code, char letter) {
    if (code == 120 || code == 130) return letter == 'U' || letter == 'P';
    return (code >= 151 && code <= 156) || MayBeLibraryTooled(code, letter);
}

// The position of a record that can tell where a part starts: gives false for a record that
// cannot (a stop 321 tells it only with its Count[2]).
bool StartPosition(const DrawRecord& record, SinglePoint& position) {
    switch (record.EntityCode) {
        case 110: position = record.Point[3]; return true;
        case 120:
        case 130:
        case 521:
        case 522: position = record.Point[5]; return true;
        case 151:
        case 152:
        case 153:
        case 154:
        case 155:
        case 156:
        case 171:
        case 175:
        case 210:
        case 350: position = record.Point[4]; return true;
        case 220:
        case 225:
        case 230: position = record.Point[1]; return true;
        case 321:
            if (record.Count[2] == 0) return false;
            position = record.Point[4];
            return true;
        default: return false;
    }
}

}  // namespace

void AssociativeToolingPass(RunState& state, const std::string& drawing) {
    RewriteByPass(state, drawing, "Processing Associative Tooling", PassRule{MayBeLibraryTooled, AssociativeToolingChoice});
}

void AssociativeToolingPass(RunState& state, const std::string& drawing, CruciformCensus& census) {
    census = CruciformCensus{};
    RewriteByPass(state, drawing, "Processing Associative Tooling", PassRule{MayBeLibraryTooled, AssociativeToolingChoice},
                  &census);
}

void ShapePass(RunState& state, const std::string& drawing) {
    RewriteByPass(state, drawing, "Processing Shapes", PassRule{ShapePassSees, ShapeChoice});
}

void MeasurePart(RunState& state, const std::string& drawing, double& x, double& y) {
    x = 0;
    y = 0;
    if (!FileExists(drawing)) return;
    const std::string scratch = state.Job.WorkDir + "WormTemp.drw";
    DeleteIfExists(scratch);
    CopyFileTo(drawing, scratch);
    // Three times over: a shape that a split turns into a shape is split further on the next
    // run.
    for (int run = 0; run < 3; ++run) ShapePass(state, scratch);
    DrawingFile file;
    OpenDrawing(file, scratch);
    const int32_t count = ReadRecordCount(file);
    const int32_t onDisk = RecordsOnDisk(file);
    const int32_t last = count < onDisk ? count : onDisk;
    DrawRecord record;
    for (int32_t n = 2; n <= last; ++n) {
        ReadRecord(file, n, record);
        SinglePoint start;
        if (StartPosition(record, start)) {
            x = start.X;
            y = start.Y;
            break;
        }
    }
    CloseDrawing(file);
}

}  // namespace tvx
