#include "drawing/drawjson.h"

#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <cstdint>
#include <limits>
#include <string>

#include "common/fault.h"
#include "common/textfile.h"
#include "drawing/drawfile.h"
#include "drawing/record.h"

using namespace tvx;

namespace {

std::string Bytes(const DrawRecord& r) {
    const RecordBytes b = EncodeRecord(r);
    return std::string(reinterpret_cast<const char*>(b.data()), b.size());
}

float FromBits(uint32_t bits) { return std::bit_cast<float>(bits); }

// The fault text of building the JSON, or "" when it builds.
std::string BuildFault(const std::string& json) {
    try {
        DrawingFromJson(json, "in.json");
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitFault);
        return e.Text;
    }
    return "";
}

// The dump of one cleared record with EntityCode 1 and RecordCount 1, written out by hand.
const char* const ClearedRecordJson = R"([
  {
    "EntityCode": 1,
    "EntityName": "                  ",
    "EntityText": "                                                                        ",
    "SpareWord": 0,
    "RecordCount": 1,
    "CarryWord1": 0,
    "CarryWord2": 0,
    "Point": [[0, 0], [0, 0], [0, 0], [0, 0], [0, 0], [0, 0]],
    "Value": [0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0],
    "Count": [0, 0, 0, 0, 0, 0, 0, 0],
    "Spare": [[0, 0, 0, 0], [0, 0, 0, 0]],
    "Side": 0,
    "FollowFlag": 0,
    "Extent": [[0, 0], [0, 0]],
    "Margin": [[0, 0], [0, 0]],
    "ToolA": {
      "Present": 0,
      "Letter": " ",
      "ToolName": "                                                                ",
      "Size": [0, 0, 0, 0],
      "ToolNumber": 0,
      "WorkType": 0,
      "ToolStep": 0,
      "ToolAngle": 0,
      "StageIndex": 0
    },
    "ToolB": {
      "Present": 0,
      "Letter": " ",
      "ToolName": "                                                                ",
      "Size": [0, 0, 0, 0],
      "ToolNumber": 0,
      "WorkType": 0,
      "ToolStep": 0,
      "ToolAngle": 0,
      "StageIndex": 0
    },
    "LeadIn": {
      "LeadKind": 0,
      "LeadLength": 0,
      "LeadAngle": 0,
      "LeadSpare": 0
    },
    "LeadOut": {
      "LeadKind": 0,
      "LeadLength": 0,
      "LeadAngle": 0,
      "LeadSpare": 0
    },
    "After": {
      "ActionCode": 0,
      "ActionValue": 0
    }
  }
]
)";

}  // namespace

TEST(ShortestSingleText, GivesTheShortestTextThatReadsBack) {
    EXPECT_EQ(ShortestSingleText(0.1f), "0.1");
    EXPECT_EQ(ShortestSingleText(1.5f), "1.5");
    EXPECT_EQ(ShortestSingleText(2500.0f), "2500");
    EXPECT_EQ(ShortestSingleText(-12.25f), "-12.25");
    EXPECT_EQ(ShortestSingleText(1.0f / 3.0f), "0.33333334");  // 0x3EAAAAAB
    EXPECT_EQ(ShortestSingleText(16777216.0f), "16777216");
    EXPECT_EQ(ShortestSingleText(123456.7f), "123456.7");
    EXPECT_EQ(ShortestSingleText(1e10f), "1e+10");
    EXPECT_EQ(ShortestSingleText(0.0001f), "0.0001");
    EXPECT_EQ(ShortestSingleText(0.00001f), "1e-05");
}

TEST(ShortestSingleText, ZerosKeepTheirSign) {
    EXPECT_EQ(ShortestSingleText(0.0f), "0");
    EXPECT_EQ(ShortestSingleText(-0.0f), "-0.0");
}

TEST(ShortestSingleText, ExtremeSinglesReadBack) {
    EXPECT_EQ(ShortestSingleText(FLT_MAX), "3.4028235e+38");
    EXPECT_EQ(ShortestSingleText(-FLT_MAX), "-3.4028235e+38");
    EXPECT_EQ(ShortestSingleText(FLT_MIN), "1.1754944e-38");
    EXPECT_EQ(ShortestSingleText(FromBits(1)), "1.4013e-45");  // the least subnormal
}

TEST(ShortestSingleText, NonFiniteSinglesGiveTheirBits) {
    EXPECT_EQ(ShortestSingleText(std::numeric_limits<float>::infinity()), "0x7f800000");
    EXPECT_EQ(ShortestSingleText(-std::numeric_limits<float>::infinity()), "0xff800000");
    EXPECT_EQ(ShortestSingleText(FromBits(0x7fc00000)), "0x7fc00000");
    EXPECT_EQ(ShortestSingleText(FromBits(0xffc12345)), "0xffc12345");
    EXPECT_EQ(ShortestSingleText(FromBits(0x7f800001)), "0x7f800001");
}

TEST(DrawingJson, ARecordIsWrittenFieldByFieldInFileOrder) {
    DrawRecord r;
    r.EntityCode = 1;
    r.RecordCount = 1;
    EXPECT_EQ(DrawingToJson(Bytes(r), "a.drw"), ClearedRecordJson);
}

TEST(DrawingJson, AnEmptyDrawingIsAnEmptyArray) {
    EXPECT_EQ(DrawingToJson("", "a.drw"), "[]\n");
    EXPECT_EQ(DrawingFromJson("[]", "in.json"), "");
}

TEST(DrawingJson, NumbersAreWrittenInTheirShortestForm) {
    DrawRecord r;
    r.Point[4] = SinglePoint{1.5f, -0.0f};
    r.Value[1] = 0.1f;
    r.Value[20] = FromBits(0x7fc00001);
    r.Count[8] = -32768;
    r.RecordCount = INT32_MIN;
    r.Spare[2] = RawCell{255, 0, 1, 128};
    r.ToolA.StageIndex = INT32_MAX;
    r.After.ActionValue = std::numeric_limits<float>::infinity();
    const std::string json = DrawingToJson(Bytes(r), "a.drw");
    EXPECT_NE(json.find(R"("Point": [[0, 0], [0, 0], [0, 0], [1.5, -0.0], [0, 0], [0, 0]])"), std::string::npos);
    EXPECT_NE(json.find(R"("Value": [0.1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, "0x7fc00001"])"),
              std::string::npos);
    EXPECT_NE(json.find(R"("Count": [0, 0, 0, 0, 0, 0, 0, -32768])"), std::string::npos);
    EXPECT_NE(json.find(R"("RecordCount": -2147483648,)"), std::string::npos);
    EXPECT_NE(json.find(R"("Spare": [[0, 0, 0, 0], [255, 0, 1, 128]])"), std::string::npos);
    EXPECT_NE(json.find(R"("StageIndex": 2147483647)"), std::string::npos);
    EXPECT_NE(json.find(R"("ActionValue": "0x7f800000")"), std::string::npos);
    EXPECT_EQ(DrawingFromJson(json, "in.json"), Bytes(r));
}

TEST(DrawingJson, TextBytesMapOneToOneOntoCharacters) {
    DrawRecord r;
    std::string text = "a\"b\\c";
    text += '\0';
    text += '\x1f';
    text += '\x7f';
    text += '\x85';
    text += '\xa0';
    text += '\xac';  // the byte 172, "¬"
    text += '\xff';
    text += "\r\n\t";
    r.EntityText = text;
    const std::string json = DrawingToJson(Bytes(r), "a.drw");
    const std::string expected = "\"EntityText\": \"a\\\"b\\\\c\\u0000\\u001f\\u007f\\u0085\xc2\xa0\xc2\xac\xc3\xbf"
                                 "\\r\\n\\t" + std::string(72 - 15, ' ') + "\"";
    EXPECT_NE(json.find(expected), std::string::npos) << json.substr(0, 300);
    EXPECT_EQ(DrawingFromJson(json, "in.json"), Bytes(r));
}

TEST(DrawingJson, EveryByteOfATextReadsBack) {
    std::string bytes;
    for (int start = 0; start < 256; start += 72) {
        DrawRecord r;
        for (int i = 0; i < 72; ++i) r.EntityText.Bytes[static_cast<size_t>(i)] = static_cast<char>((start + i) % 256);
        for (int i = 0; i < 18; ++i) r.EntityName.Bytes[static_cast<size_t>(i)] = static_cast<char>(255 - (start + i) % 256);
        bytes += Bytes(r);
    }
    EXPECT_EQ(DrawingFromJson(DrawingToJson(bytes, "a.drw"), "in.json"), bytes);
}

TEST(DrawingJson, AFieldLeftOutTakesItsClearedValue) {
    DrawRecord expected;
    expected.EntityCode = 210;
    expected.RecordCount = 1;
    EXPECT_EQ(DrawingFromJson(R"([{"EntityCode": 210}])", "in.json"), Bytes(expected));
    // A tool given in part: the rest of it is cleared too, its letter a blank.
    expected.ToolA.ToolNumber = 4;
    EXPECT_EQ(DrawingFromJson(R"([{"EntityCode": 210, "ToolA": {"ToolNumber": 4}}])", "in.json"), Bytes(expected));
    EXPECT_EQ(Bytes(expected)[292], ' ');
}

TEST(DrawingJson, AShorterTextIsBlankPadded) {
    DrawRecord expected;
    expected.EntityName = "Punch";
    expected.ToolA.ToolName = "RND 10";
    expected.RecordCount = 1;
    const std::string built =
        DrawingFromJson(R"([{"EntityName": "Punch", "ToolA": {"ToolName": "RND 10"}}])", "in.json");
    EXPECT_EQ(built, Bytes(expected));
    EXPECT_EQ(built.substr(2, 18), "Punch             ");
}

TEST(DrawingJson, RecordCountOfRecordOneIsFilledInWhenLeftOut) {
    const std::string built = DrawingFromJson(R"([{}, {"EntityCode": 210}, {"EntityCode": 350}])", "in.json");
    ASSERT_EQ(built.size(), 3u * 518);
    EXPECT_EQ(DecodeRecord(built.substr(0, 518)).RecordCount, 3);
    EXPECT_EQ(DecodeRecord(built.substr(518, 518)).RecordCount, 0);  // only record 1
    EXPECT_EQ(DecodeRecord(built.substr(1036, 518)).RecordCount, 0);
    // Given, it stands as given.
    const std::string given = DrawingFromJson(R"([{"RecordCount": 7}, {}])", "in.json");
    EXPECT_EQ(DecodeRecord(given.substr(0, 518)).RecordCount, 7);
}

TEST(DrawingJson, ArraysMayBeShorterOrGivenByIndex) {
    const std::string built = DrawingFromJson(
        R"([{"Value": [2500, 1250, 1.5], "Point": {"4": [100, 200.5]}, "Count": {"8": 2, "1": -1},
             "ToolA": {"Size": {"2": 5}}, "Spare": {"2": [1, 2, 3, 4]}}])",
        "in.json");
    const DrawRecord r = DecodeRecord(built);
    EXPECT_EQ(r.Value[1], 2500.0f);
    EXPECT_EQ(r.Value[2], 1250.0f);
    EXPECT_EQ(r.Value[3], 1.5f);
    EXPECT_EQ(r.Value[4], 0.0f);
    EXPECT_EQ(r.Point[4].X, 100.0f);
    EXPECT_EQ(r.Point[4].Y, 200.5f);
    EXPECT_EQ(r.Point[3].X, 0.0f);
    EXPECT_EQ(r.Count[1], -1);
    EXPECT_EQ(r.Count[8], 2);
    EXPECT_EQ(r.ToolA.Size[2], 5.0f);
    EXPECT_EQ(r.Spare[2], (RawCell{1, 2, 3, 4}));
}

TEST(DrawingJson, SinglesMayBeGivenByTheirBits) {
    const DrawRecord r =
        DecodeRecord(DrawingFromJson(R"([{"Value": ["0x7fc00001", "0xff800000", "0x3fc00000", "0x1"]}])", "in.json"));
    EXPECT_EQ(std::bit_cast<uint32_t>(r.Value[1]), 0x7fc00001u);
    EXPECT_EQ(std::bit_cast<uint32_t>(r.Value[2]), 0xff800000u);
    EXPECT_EQ(r.Value[3], 1.5f);
    EXPECT_EQ(std::bit_cast<uint32_t>(r.Value[4]), 1u);
}

TEST(DrawingJson, NegativeZeroReadsBackAsNegativeZero) {
    const DrawRecord r = DecodeRecord(DrawingFromJson(R"([{"Value": [-0.0, 0]}])", "in.json"));
    EXPECT_EQ(std::bit_cast<uint32_t>(r.Value[1]), 0x80000000u);
    EXPECT_EQ(std::bit_cast<uint32_t>(r.Value[2]), 0u);
}

TEST(DrawingJson, ANumberJustAboveTheLargestSingleRoundsToIt) {
    const DrawRecord r = DecodeRecord(DrawingFromJson(R"([{"Value": [3.4028235e38, -3.40282356e38]}])", "in.json"));
    EXPECT_EQ(r.Value[1], FLT_MAX);
    EXPECT_EQ(r.Value[2], -FLT_MAX);
}

TEST(DrawingJson, ADumpBuildsBackToTheSameBytes) {
    DrawRecord a;
    a.EntityCode = 1;
    a.EntityText = "MILD STEEL 1.5";
    a.RecordCount = 2;
    a.Value[1] = 2500;
    a.Value[2] = 1250;
    a.Value[3] = 1.5f;
    DrawRecord b;
    b.EntityCode = 210;
    b.EntityName = "Punch";
    b.Point[4] = SinglePoint{123.456f, 78.9f};
    ParseToolString("A,RND 10,10,0,0,0,1,10,0,0,1", b.ToolA);
    b.LeadIn = LeadSpec{-2, 3.25f, 45, 77};
    b.After = AfterAction{2, 0.5f};
    b.Spare[1] = RawCell{9, 8, 7, 6};
    b.SpareWord = -5;
    const std::string bytes = Bytes(a) + Bytes(b);
    EXPECT_EQ(DrawingFromJson(DrawingToJson(bytes, "a.drw"), "in.json"), bytes);
}

TEST(DrawingJsonFaults, NotJson) {
    EXPECT_EQ(BuildFault("[1, x]"), "in.json: not JSON: syntax error at byte 5");
    EXPECT_EQ(BuildFault(""), "in.json: not JSON: syntax error at byte 1");
}

TEST(DrawingJsonFaults, NotAnArrayOfRecords) {
    EXPECT_EQ(BuildFault("{}"), "in.json: expected an array of records");
    EXPECT_EQ(BuildFault("[{}, 5]"), "in.json: record 2: expected an object of fields");
}

TEST(DrawingJsonFaults, AWrongType) {
    EXPECT_EQ(BuildFault(R"([{"EntityCode": "210"}])"), "in.json: record 1, EntityCode: expected a whole number");
    EXPECT_EQ(BuildFault(R"([{"EntityCode": 2.5}])"), "in.json: record 1, EntityCode: expected a whole number");
    EXPECT_EQ(BuildFault(R"([{}, {"EntityName": 5}])"), "in.json: record 2, EntityName: expected a text");
    EXPECT_EQ(BuildFault(R"([{}, {"Value": [1, true]}])"), "in.json: record 2, Value[2]: expected a number");
    EXPECT_EQ(BuildFault(R"([{"Value": [1, "x"]}])"),
              "in.json: record 1, Value[2]: expected a number or the bits of a single such as \"0x7fc00000\"");
    EXPECT_EQ(BuildFault(R"([{"Point": [[1, 2], [3]]}])"), "in.json: record 1, Point[2]: expected [X, Y]");
    EXPECT_EQ(BuildFault(R"([{"Point": {"1": [1, null]}}])"), "in.json: record 1, Point[1].Y: expected a number");
    EXPECT_EQ(BuildFault(R"([{"Value": 5}])"),
              "in.json: record 1, Value: expected an array, or an object of indexes from 1");
    EXPECT_EQ(BuildFault(R"([{"ToolA": []}])"), "in.json: record 1, ToolA: expected an object of fields");
    EXPECT_EQ(BuildFault(R"([{"LeadIn": {"LeadLength": "long"}}])"),
              "in.json: record 1, LeadIn.LeadLength: expected a number or the bits of a single such as \"0x7fc00000\"");
    EXPECT_EQ(BuildFault(R"([{"Spare": [[1, 2, 3]]}])"), "in.json: record 1, Spare[1]: expected an array of four bytes");
}

TEST(DrawingJsonFaults, ATextLongerThanItsField) {
    EXPECT_EQ(BuildFault(R"([{"EntityName": "ABCDEFGHIJKLMNOPQRS"}])"),
              "in.json: record 1, EntityName: the text has 19 characters, the field holds 18");
    EXPECT_EQ(BuildFault(R"([{}, {}, {"ToolB": {"Letter": "AB"}}])"),
              "in.json: record 3, ToolB.Letter: the text has 2 characters, the field holds 1");
    // Characters beyond one byte do not fit a text of 8-bit bytes.
    EXPECT_EQ(BuildFault("[{\"EntityText\": \"\xe2\x82\xac\"}]"),
              "in.json: record 1, EntityText: holds a character beyond U+00FF; texts are 8-bit");
    // U+00AC is one byte: exactly 18 of them fit.
    std::string eighteen;
    for (int i = 0; i < 18; ++i) eighteen += "\xc2\xac";
    EXPECT_EQ(BuildFault("[{\"EntityName\": \"" + eighteen + "\"}]"), "");
}

TEST(DrawingJsonFaults, ANumberOutOfItsIntegerRange) {
    EXPECT_EQ(BuildFault(R"([{"EntityCode": 32768}])"),
              "in.json: record 1, EntityCode: out of the range -32768 to 32767");
    EXPECT_EQ(BuildFault(R"([{"Count": [0, -32769]}])"),
              "in.json: record 1, Count[2]: out of the range -32768 to 32767");
    EXPECT_EQ(BuildFault(R"([{"RecordCount": 2147483648}])"),
              "in.json: record 1, RecordCount: out of the range -2147483648 to 2147483647");
    EXPECT_EQ(BuildFault(R"([{"ToolA": {"StageIndex": -2147483649}}])"),
              "in.json: record 1, ToolA.StageIndex: out of the range -2147483648 to 2147483647");
    EXPECT_EQ(BuildFault(R"([{"Spare": [[0, 0, 256, 0]]}])"),
              "in.json: record 1, Spare[1][3]: out of the range 0 to 255");
    EXPECT_EQ(BuildFault(R"([{"Side": 18446744073709551615}])"),
              "in.json: record 1, Side: out of the range -32768 to 32767");
    EXPECT_EQ(BuildFault(R"([{"Value": [1e39]}])"), "in.json: record 1, Value[1]: out of the range of a single");
    EXPECT_EQ(BuildFault(R"([{"Value": [-1e400]}])"), "in.json: a number is too large to read");
    EXPECT_EQ(BuildFault(R"([{"Value": [1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21]}])"),
              "in.json: record 1, Value: more than 20 elements");
    EXPECT_EQ(BuildFault(R"([{"Point": {"7": [0, 0]}}])"), "in.json: record 1, Point: \"7\" is not an index from 1 to 6");
    EXPECT_EQ(BuildFault(R"([{"Count": {"0": 1}}])"), "in.json: record 1, Count: \"0\" is not an index from 1 to 8");
    EXPECT_EQ(BuildFault(R"([{"Count": {"x": 1}}])"), "in.json: record 1, Count: \"x\" is not an index from 1 to 8");
}

TEST(DrawingJsonFaults, AnUnknownFieldName) {
    EXPECT_EQ(BuildFault(R"([{"Entitycode": 1}])"), "in.json: record 1: unknown field \"Entitycode\"");
    EXPECT_EQ(BuildFault(R"([{}, {"ToolA": {"Diameter": 10}}])"), "in.json: record 2, ToolA: unknown field \"Diameter\"");
    EXPECT_EQ(BuildFault(R"([{"LeadOut": {"Kind": 1}}])"), "in.json: record 1, LeadOut: unknown field \"Kind\"");
    EXPECT_EQ(BuildFault(R"([{"After": {"Code": 1}}])"), "in.json: record 1, After: unknown field \"Code\"");
}

TEST(DrawingJsonFaults, ADrawingSizeThatIsNotAMultipleOf518) {
    try {
        DrawingToJson(std::string(519, '\0'), "a.drw");
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitFault);
        EXPECT_EQ(e.Text, "a.drw: the size of a drawing must be a multiple of 518 bytes, not 519 bytes");
    }
    EXPECT_THROW(DrawingToJson(std::string(517, '\0'), "a.drw"), RunEnd);
}
