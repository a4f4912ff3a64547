#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "common/fault.h"
#include "common/textfile.h"
#include "drawing/drawfile.h"
#include "drawing/drawjson.h"
#include "drawing/record.h"
#include "test_support.h"

using namespace tvx;

namespace {

std::string Bytes(const DrawRecord& r) {
    const RecordBytes b = EncodeRecord(r);
    return std::string(reinterpret_cast<const char*>(b.data()), b.size());
}

std::string RandomBytes(size_t count) {
    const auto bytes = *rc::gen::container<std::vector<char>>(count, rc::gen::arbitrary<char>());
    return std::string(bytes.begin(), bytes.end());
}

// A single of any bits: small patterns (zeros, subnormals) as often as any others.
float RandomSingle() {
    return std::bit_cast<float>(
        *rc::gen::oneOf(rc::gen::arbitrary<uint32_t>(), rc::gen::inRange<uint32_t>(0, 0xFFFFFFFFu)));
}

template <size_t Width>
void RandomText(FixedText<Width>& text) {
    const std::string bytes = RandomBytes(Width);
    for (size_t i = 0; i < Width; ++i) text.Bytes[i] = bytes[i];
}

void RandomTool(ToolSpec& t) {
    t.Present = *rc::gen::arbitrary<int16_t>();
    RandomText(t.Letter);
    RandomText(t.ToolName);
    for (int i = 1; i <= 4; ++i) t.Size[i] = RandomSingle();
    t.ToolNumber = *rc::gen::arbitrary<int16_t>();
    t.WorkType = *rc::gen::arbitrary<int16_t>();
    t.ToolStep = RandomSingle();
    t.ToolAngle = RandomSingle();
    t.StageIndex = *rc::gen::arbitrary<int32_t>();
}

void RandomLead(LeadSpec& l) {
    l.LeadKind = *rc::gen::arbitrary<int16_t>();
    l.LeadLength = RandomSingle();
    l.LeadAngle = RandomSingle();
    l.LeadSpare = *rc::gen::arbitrary<int16_t>();
}

DrawRecord RandomRecord() {
    DrawRecord r;
    r.EntityCode = *rc::gen::arbitrary<int16_t>();
    RandomText(r.EntityName);
    RandomText(r.EntityText);
    r.SpareWord = *rc::gen::arbitrary<int16_t>();
    r.RecordCount = *rc::gen::arbitrary<int32_t>();
    r.CarryWord1 = *rc::gen::arbitrary<int16_t>();
    r.CarryWord2 = *rc::gen::arbitrary<int16_t>();
    for (int i = 1; i <= 6; ++i) r.Point[i] = SinglePoint{RandomSingle(), RandomSingle()};
    for (int i = 1; i <= 20; ++i) r.Value[i] = RandomSingle();
    for (int i = 1; i <= 8; ++i) r.Count[i] = *rc::gen::arbitrary<int16_t>();
    for (int i = 1; i <= 2; ++i)
        for (auto& b : r.Spare[i]) b = *rc::gen::arbitrary<unsigned char>();
    r.Side = *rc::gen::arbitrary<int16_t>();
    r.FollowFlag = *rc::gen::arbitrary<int16_t>();
    for (int i = 1; i <= 2; ++i) {
        r.Extent[i] = SinglePoint{RandomSingle(), RandomSingle()};
        r.Margin[i] = SinglePoint{RandomSingle(), RandomSingle()};
    }
    RandomTool(r.ToolA);
    RandomTool(r.ToolB);
    RandomLead(r.LeadIn);
    RandomLead(r.LeadOut);
    r.After.ActionCode = *rc::gen::arbitrary<int16_t>();
    r.After.ActionValue = RandomSingle();
    return r;
}

uint32_t Bits(float v) { return std::bit_cast<uint32_t>(v); }

}  // namespace

RC_GTEST_PROP(DrawingProperties, DecodeThenEncodeGivesTheSame518Bytes, ()) {
    const std::string bytes = RandomBytes(RecordLength);
    RC_ASSERT(Bytes(DecodeRecord(bytes)) == bytes);
}

RC_GTEST_PROP(DrawingProperties, ARandomRecordReadsBackFieldByField, ()) {
    const DrawRecord r = RandomRecord();
    const DrawRecord back = DecodeRecord(Bytes(r));
    RC_ASSERT(Bytes(back) == Bytes(r));
    RC_ASSERT(back.EntityCode == r.EntityCode);
    RC_ASSERT(back.EntityText.Text() == r.EntityText.Text());
    RC_ASSERT(back.RecordCount == r.RecordCount);
    for (int i = 1; i <= 20; ++i) RC_ASSERT(Bits(back.Value[i]) == Bits(r.Value[i]));
    for (int i = 1; i <= 6; ++i) RC_ASSERT(Bits(back.Point[i].Y) == Bits(r.Point[i].Y));
    RC_ASSERT(back.Spare[2] == r.Spare[2]);
    RC_ASSERT(back.ToolB.ToolName.Text() == r.ToolB.ToolName.Text());
    RC_ASSERT(back.ToolB.StageIndex == r.ToolB.StageIndex);
    RC_ASSERT(back.LeadOut.LeadSpare == r.LeadOut.LeadSpare);
    RC_ASSERT(Bits(back.After.ActionValue) == Bits(r.After.ActionValue));
}

RC_GTEST_PROP(DrawingProperties, CopyRecordGivesTheSameBytes, ()) {
    const DrawRecord r = RandomRecord();
    DrawRecord copy = RandomRecord();
    CopyRecord(r, copy);
    RC_ASSERT(Bytes(copy) == Bytes(r));
}

RC_GTEST_PROP(DrawingProperties, SwapLeadsTwiceGivesTheSameBytes, ()) {
    DrawRecord r = RandomRecord();
    const std::string before = Bytes(r);
    SwapLeads(r);
    const std::string swapped = Bytes(r);
    RC_ASSERT(swapped.substr(488, 12) == before.substr(500, 12));
    RC_ASSERT(swapped.substr(500, 12) == before.substr(488, 12));
    RC_ASSERT(swapped.substr(0, 488) == before.substr(0, 488));
    SwapLeads(r);
    RC_ASSERT(Bytes(r) == before);
}

RC_GTEST_PROP(DrawingProperties, AnyDrawingDumpsAndBuildsBackToTheSameBytes, ()) {
    const auto count = *rc::gen::inRange<size_t>(0, 4);
    const std::string bytes = RandomBytes(count * RecordLength);
    RC_ASSERT(DrawingFromJson(DrawingToJson(bytes, "a.drw"), "a.json") == bytes);
}

RC_GTEST_PROP(DrawingProperties, ARandomRecordDumpsAndBuildsBack, ()) {
    const std::string bytes = Bytes(RandomRecord()) + Bytes(RandomRecord());
    RC_ASSERT(DrawingFromJson(DrawingToJson(bytes, "a.drw"), "a.json") == bytes);
}

RC_GTEST_PROP(DrawingProperties, ShortestSingleTextReadsBackToTheSameBits, ()) {
    const float v = RandomSingle();
    const std::string text = ShortestSingleText(v);
    if (!std::isfinite(v)) {
        RC_ASSERT(text.size() == 10u);
        RC_ASSERT(text.substr(0, 2) == "0x");
        const DrawRecord r = DecodeRecord(DrawingFromJson("[{\"Value\": [\"" + text + "\"]}]", "a.json"));
        RC_ASSERT(Bits(r.Value[1]) == Bits(v));
        return;
    }
    // At most nine significant digits.
    size_t digits = 0;
    bool leading = true;
    for (const char c : text) {
        if (c == 'e') break;
        if (c < '0' || c > '9') continue;
        if (c != '0') leading = false;
        if (!leading) ++digits;
    }
    RC_ASSERT(digits <= 9u);
    const DrawRecord r = DecodeRecord(DrawingFromJson("[{\"Value\": [" + text + "]}]", "a.json"));
    RC_ASSERT(Bits(r.Value[1]) == Bits(v));
}

RC_GTEST_PROP(DrawingProperties, DamagedAndTruncatedFilesReadAsTheirBytesAndZeros, ()) {
    const auto size = *rc::gen::inRange<size_t>(0, 4 * RecordLength);
    const std::string bytes = RandomBytes(size);
    TempDir dir;
    WriteFileAtomically(dir.Path + "/d.drw", bytes);
    DrawingFile f;
    OpenDrawing(f, dir.Path + "/d.drw");
    const int32_t onDisk = RecordsOnDisk(f);
    RC_ASSERT(static_cast<size_t>(onDisk) == (size + RecordLength - 1) / RecordLength);
    for (int32_t n = 1; n <= onDisk + 2; ++n) {
        const size_t start = static_cast<size_t>(n - 1) * RecordLength;
        std::string expected = start < size ? bytes.substr(start, RecordLength) : std::string();
        expected.resize(RecordLength, '\0');
        RC_ASSERT(Bytes(ReadRecord(f, n)) == expected);
    }
    // A walk never goes beyond the records on disk, whatever record 1 says.
    int32_t visits = 0;
    const int32_t walked = WalkDrawing(f, [&](int32_t, DrawRecord&) { ++visits; });
    RC_ASSERT(walked == visits);
    RC_ASSERT(visits <= onDisk);
    // The dump takes a whole number of records only.
    if (size % RecordLength == 0) {
        RC_ASSERT(DrawingFromJson(DrawingToJson(bytes, "d.drw"), "d.json") == bytes);
    } else {
        bool faulted = false;
        try {
            DrawingToJson(bytes, "d.drw");
        } catch (const RunEnd& e) {
            faulted = e.Status == ExitFault;
        }
        RC_ASSERT(faulted);
    }
}

TEST(DrawingProperties, ShortestSingleTextReadsBackAcrossAllExponents) {
    // Bit patterns spread over every exponent and sign, stepped by a prime.
    for (uint64_t bits = 0; bits <= 0xFFFFFFFFu; bits += 20011) {
        const float v = std::bit_cast<float>(static_cast<uint32_t>(bits));
        if (!std::isfinite(v)) continue;
        const std::string text = ShortestSingleText(v);
        const DrawRecord r = DecodeRecord(DrawingFromJson("[{\"Value\": [" + text + "]}]", "a.json"));
        ASSERT_EQ(Bits(r.Value[1]), Bits(v)) << text;
    }
}

// A run of records read at once holds what reading each in turn gives: the bytes on disk, a
// partial last record and records past the end with zeros behind.
RC_GTEST_PROP(DrawingProperties, ARunOfRecordsReadsAsEachRecordInTurn, ()) {
    const size_t size = *rc::gen::inRange<size_t>(0, 6 * RecordLength);
    std::string data(size, '\0');
    for (size_t i = 0; i < size; ++i) data[i] = static_cast<char>(i * 7 + 3);
    TempDir dir;
    const std::string path = dir.Path + "/run.drw";
    WriteFileAtomically(path, data);
    const int32_t first = *rc::gen::inRange(1, 8);
    const size_t count = *rc::gen::inRange<size_t>(0, 6);
    DrawingFile file;
    OpenDrawing(file, path);
    std::vector<RecordBytes> run(count + 1);
    const size_t got = ReadRecordRun(file, first, run.data(), count);
    size_t total = 0;
    for (size_t i = 0; i < count; ++i) {
        RecordBytes one;
        const size_t held = ReadRecordBytes(file, first + static_cast<int32_t>(i), one);
        RC_ASSERT(one == run[i]);
        RC_ASSERT(held == HeldOfRun(got, i));
        total += held;
    }
    RC_ASSERT(got == total);
    CloseDrawing(file);
}

TEST(DrawingProperties, ARunOfNoRecordsReadsNothing) {
    TempDir dir;
    const std::string path = dir.Path + "/empty.drw";
    WriteFileAtomically(path, std::string(RecordLength, 'x'));
    DrawingFile file;
    OpenDrawing(file, path);
    RecordBytes one;
    EXPECT_EQ(ReadRecordRun(file, 1, &one, 0), 0u);
    EXPECT_EQ(ReadRecordRun(file, 1, &one, 1), RecordLength);
    EXPECT_EQ(one[0], 'x');
    CloseDrawing(file);
}
