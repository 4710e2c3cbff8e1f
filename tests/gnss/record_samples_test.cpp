#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <surveydata/gnss/gps_meas_data.h>
#include <surveydata/gnss/gps_record_file.h>
#include <surveydata/gnss/gps_record_index.h>

#include "tests/gnss/stored_fields.h"
#include "tests/support/temp_file.h"

namespace {

using nlohmann::json;
using SDI::GPSMeasDataC;
using SDI::GPSMeasDataImplC;
using SDI::GPSRecordFileC;
using SDI::GPSRecordFileInfo;
using TestSupport::StoredFields;
using TestSupport::StoredIn;

const std::filesystem::path kData = SURVEYDATA_TEST_DATA;

json LoadIndex(const std::string& name) {
  std::ifstream in(kData / (name + ".index.json"));
  return json::parse(in);
}

std::vector<json> LoadExpectations(const std::string& name) {
  std::ifstream in(kData / (name + ".expected.jsonl"));
  std::vector<json> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(json::parse(line));
  return lines;
}

json PairOf(const SDI::GPSCounterPair& pair) { return {pair.first, pair.second}; }

// Converts a text as in the JSON strings of the expectations. In the samples, every unit that is
// not a surrogate is a character.
std::string Utf8Of(const std::u16string& text) {
  std::string bytes;
  for (const char16_t u : text) {
    if (u < 0x80) {
      bytes += static_cast<char>(u);
    } else if (u < 0x800) {
      bytes += static_cast<char>(0xC0 | u >> 6);
      bytes += static_cast<char>(0x80 | (u & 0x3F));
    } else {
      bytes += static_cast<char>(0xE0 | u >> 12);
      bytes += static_cast<char>(0x80 | (u >> 6 & 0x3F));
      bytes += static_cast<char>(0x80 | (u & 0x3F));
    }
  }
  return bytes;
}

std::string NameOf(const GPSRecordFileInfo& info) {
  const std::string all(info.name, sizeof(info.name));
  return all.substr(0, all.find('\0'));
}

std::string HexOf(const std::string& bytes) {
  std::string hex;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    hex += "0123456789abcdef"[byte / 16];
    hex += "0123456789abcdef"[byte % 16];
  }
  return hex;
}

json MeasurementOf(const GPSMeasDataImplC& m) {
  const StoredFields s = StoredIn(m);
  const auto number = [](auto bits) {
    if constexpr (sizeof(bits) == 4) {
      return static_cast<double>(std::bit_cast<float>(bits));
    } else {
      return std::bit_cast<double>(bits);
    }
  };
  const std::vector<std::uint16_t> entries(s.listEntries.begin(),
                                           s.listEntries.begin() + s.listCount);
  return {{"timeA", {s.timeA.week, s.timeA.timeOfWeek}},
          {"timeB", s.timeB.timeOfWeek},
          {"extraTimeCount", s.extraTimeCount},
          {"extraTime", {s.extraWeek, s.extraTimeOfWeek}},
          {"setMask", s.setMask},
          {"statusMask", s.statusMask},
          {"antennaHeight",
           {{"height", number(s.height)},
            {"isVertical", s.isVertical},
            {"horizontalOffset", number(s.horizontalOffset)}}},
          {"valueCount", s.valueCount},
          {"values", s.values},
          {"dops", {{"hdop", s.dops[0]}, {"vdop", s.dops[1]}, {"tdop", s.dops[2]}}},
          {"word16", s.word16},
          {"totalPair", PairOf(s.totalPair)},
          {"system1Pair", PairOf(s.system1Pair)},
          {"system2Pair", PairOf(s.system2Pair)},
          {"system3Pair", PairOf(s.system3Pair)},
          {"vector", {number(s.vector[0]), number(s.vector[1]), number(s.vector[2])}},
          {"flagA", s.flagA},
          {"valueB", s.valueB},
          {"valueC", s.valueC},
          {"textA", Utf8Of(s.textA)},
          {"textB", Utf8Of(s.textB)},
          {"valueD", s.valueD},
          {"textC", Utf8Of(s.textC)},
          {"flagE", s.flagE},
          {"textD", Utf8Of(s.textD)},
          {"valueF", s.valueF},
          {"valueG", s.valueG},
          {"valueH", s.valueH},
          {"valueI", s.valueI},
          {"listBlock", {{"head", s.listHead}, {"count", s.listCount}, {"entries", entries}}}};
}

template <class Meas>
json AskedPair(const Meas& meas, bool (Meas::*get)(std::uint8_t&, std::uint8_t&) const) {
  SDI::GPSCounterPair pair;
  return (meas.*get)(pair.first, pair.second) ? PairOf(pair) : json();
}

json GettersOf(const GPSMeasDataC& meas) {
  json verticalHeight;
  SDI::GPSAntHeightC antenna;
  if (meas.GetAntennaHeight(antenna)) {
    verticalHeight = static_cast<double>(antenna.GetVerticalHeight());
  }
  json dops;
  SDI::GPSDOPsC held;
  if (meas.GetDOPs(held)) {
    dops = {{"hdop", held.GetHDOP()},
            {"vdop", held.GetVDOP()},
            {"tdop", held.GetTDOP()},
            {"pdop", held.GetPDOP()},
            {"gdop", held.GetGDOP()}};
  }
  return {{"totalPair", AskedPair(meas, &GPSMeasDataC::GetTotalPair)},
          {"system1Pair", AskedPair(meas, &GPSMeasDataC::GetSystem1Pair)},
          {"system2Pair", AskedPair(meas, &GPSMeasDataC::GetSystem2Pair)},
          {"system3Pair", AskedPair(meas, &GPSMeasDataC::GetSystem3Pair)},
          {"system1Used", meas.IsSystem1Used()},
          {"system2Used", meas.IsSystem2Used()},
          {"system3Used", meas.GetImpl()->IsSystem3Used()},
          {"statusBits",
           {meas.IsStatusBit0(), meas.IsStatusBit1(), meas.IsStatusBit2(), meas.IsStatusBit3()}},
          {"verticalHeight", verticalHeight},
          {"dops", dops}};
}

// Numbers of single precision are exact after a cast.
void ToSinglePrecision(json& number) {
  if (number.is_number()) {
    number = static_cast<double>(static_cast<float>(number.get<double>()));
  }
}

class RecordSamples : public testing::TestWithParam<const char*> {};

TEST_P(RecordSamples, EveryFrameGivesExactlyItsExpectation) {
  const json index = LoadIndex(GetParam());
  const std::vector<json> expectations = LoadExpectations(GetParam());
  const TestSupport::TempFileC file(TestSupport::ReadBytes(kData / index["file"]));
  ASSERT_EQ(expectations.size(), index["frames"].size());
  ASSERT_FALSE(expectations.empty());
  for (std::size_t i = 0; i < expectations.size(); ++i) {
    json expected = expectations[i];
    SCOPED_TRACE(expected["offset"]);
    ASSERT_EQ(expected["offset"], index["frames"][i]["offset"]);
    ASSERT_EQ(expected["size"], index["frames"][i]["size"]);
    expected.erase("size");  // the index is compared with the walk
    json& antenna = expected["measurement"]["antennaHeight"];
    ToSinglePrecision(antenna["height"]);
    ToSinglePrecision(antenna["horizontalOffset"]);
    ToSinglePrecision(expected["getters"]["verticalHeight"]);

    const GPSMeasDataC meas;
    GPSRecordFileInfo info = file.Info(expected["offset"]);
    const std::uint32_t result = GPSRecordFileC::ReadGPSMeasData(meas.GetImpl(), &info);
    const json actual = {{"offset", info.offset},
                         {"result", result},
                         {"info",
                          {{"number", info.number},
                           {"flags", info.flags},
                           {"name", NameOf(info)},
                           {"nameHex", HexOf(NameOf(info))}}},
                         {"measurement", MeasurementOf(*meas.GetImpl())},
                         {"getters", GettersOf(meas)}};
    EXPECT_EQ(actual, expected) << json::diff(expected, actual);
    EXPECT_EQ(meas.GetImpl()->GetTimeB().week, 0);
  }
}

TEST_P(RecordSamples, RecordsOfOtherKindsAreRefusedAndChangeNothing) {
  const json index = LoadIndex(GetParam());
  const TestSupport::TempFileC file(TestSupport::ReadBytes(kData / index["file"]));
  ASSERT_FALSE(index["others"].empty());
  for (const json& other : index["others"]) {
    SCOPED_TRACE(other.dump());
    GPSMeasDataImplC meas = TestSupport::FilledMeasurement();
    const StoredFields before = StoredIn(meas);
    GPSRecordFileInfo info = file.Info(other["offset"]);
    EXPECT_EQ(GPSRecordFileC::ReadGPSMeasData(&meas, &info), 2U);
    EXPECT_EQ(GPSRecordFileC::WriteGPSMeasData(&meas, &info), 2U);
    EXPECT_EQ(StoredIn(meas), before);
    EXPECT_EQ(info.number, 0);
    EXPECT_EQ(info.flags, 0U);
    EXPECT_EQ(NameOf(info), "");
  }
  EXPECT_EQ(file.Bytes(), TestSupport::ReadBytes(kData / index["file"]));
}

TEST_P(RecordSamples, TheIndexListsExactlyTheRecordsAndThePaddingAsGaps) {
  const json index = LoadIndex(GetParam());
  const std::string path = (kData / index["file"]).string();
  const auto bytes = TestSupport::ReadBytes(path);
  SDI::GPSRecordIndexC walk(path.c_str());
  ASSERT_TRUE(walk.IsOpen());
  EXPECT_EQ(walk.GetFileSize(), index["size"]);

  json actual = {{"frames", json::array()}, {"others", json::array()}, {"padding", json::array()}};
  std::uint64_t covered = 0;
  for (SDI::GPSRecordEntry entry; walk.Next(entry);) {
    ASSERT_EQ(entry.offset, covered);
    covered += entry.size;
    json listed = {{"offset", entry.offset}, {"size", entry.size}};
    const bool isFrame = !entry.isGap && entry.type == 113 && entry.size <= 500;
    EXPECT_EQ(entry.IsMeasurement(), isFrame);
    if (!entry.isGap) {
      ASSERT_EQ(walk.GetBytes().size(), entry.size);
      const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(entry.offset);
      EXPECT_TRUE(std::equal(walk.GetBytes().begin(), walk.GetBytes().end(), begin));
      if (!isFrame) listed["type"] = entry.type;
    } else {
      EXPECT_TRUE(walk.GetBytes().empty());
    }
    actual[isFrame ? "frames" : entry.isGap ? "padding" : "others"].push_back(listed);
  }
  EXPECT_FALSE(walk.HasFailed());
  EXPECT_EQ(covered, index["size"]);
  EXPECT_EQ(actual["frames"], index["frames"]);
  EXPECT_EQ(actual["others"], index["others"]);
  EXPECT_EQ(actual["padding"], index["padding"]);
}

INSTANTIATE_TEST_SUITE_P(Files, RecordSamples, testing::Values("valley_drive", "desert_highway"),
                         [](const auto& file) { return std::string(file.param); });

}  // namespace
