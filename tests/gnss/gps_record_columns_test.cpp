#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <map>
#include <numeric>
#include <random>
#include <set>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <surveydata/gnss/gps_record_columns.h>
#include <surveydata/gnss/gps_time.h>

#include "tests/support/column_table.h"
#include "tests/support/frame_builder.h"
#include "tests/support/temp_file.h"

namespace {

using Columns::BuffersC;
using Columns::Show;
using Columns::Table;
using nlohmann::json;
using SDI::GPSColumn;
using SDI::GPSColumnReaderC;
using SDI::GPSColumnsOutcome;
using SDI::GPSColumnType;
using SDI::GPSRecordC;
using SDI::GPSRecordReaderC;
using TestSupport::Append;
using TestSupport::ByteVector;
using TestSupport::FrameBuilderC;

constexpr const char* kSamples[] = {"valley_drive", "desert_highway"};

ByteVector Sample(const std::string& name) {
  return TestSupport::ReadBytes(SURVEYDATA_TEST_DATA + name + ".rec");
}

struct Result {
  GPSColumnsOutcome outcome;
  std::size_t rows;

  bool operator==(const Result&) const = default;
};
constexpr Result kEnd{GPSColumnsOutcome::kEnd, 0};
constexpr Result kNoRoom{GPSColumnsOutcome::kNoRoom, 0};
constexpr Result kNotABuffer{GPSColumnsOutcome::kNotABuffer, 0};
constexpr Result Done(std::size_t rows) { return {GPSColumnsOutcome::kDone, rows}; }

Result Read(GPSColumnReaderC& batches, std::span<SDI::GPSColumnBuffer> buffers,
            std::size_t capacity) {
  std::size_t rows = 77;
  const GPSColumnsOutcome outcome = batches.Read(buffers, capacity, rows);
  return {outcome, rows};
}

// The rows of the records whose outcome is `kDone`, value by value.
Table Asked(const ByteVector& bytes, const std::vector<const GPSColumn*>& columns) {
  Table table;
  GPSRecordReaderC reader(bytes);
  for (const GPSRecordC& record : reader) {
    if (record.IsDone()) table.push_back(Columns::RowOf(columns, record));
  }
  return table;
}

// The rows in batches of at most `rows`.
Table InBatches(const ByteVector& bytes, const std::vector<const GPSColumn*>& columns,
                std::size_t rows, std::size_t room = 0) {
  Table table;
  GPSRecordReaderC reader(bytes);
  GPSColumnReaderC batches(reader);
  for (;;) {
    BuffersC buffers(columns, rows, room);
    const Result result = Read(batches, buffers.Get(), rows);
    EXPECT_LE(result.rows, rows);
    buffers.ExpectWhole(result.rows);
    if (result.outcome != GPSColumnsOutcome::kDone) {
      EXPECT_EQ(result, kEnd);
      return table;
    }
    EXPECT_GT(result.rows, 0U);
    buffers.Read(result.rows, table);
  }
}

// The value of one column of one frame.
std::string Value(const ByteVector& frame, const char* name) {
  const GPSColumn* const column = SDI::FindGPSColumn(name);
  if (column == nullptr) return "no such column";
  const Table table = Asked(frame, {column});
  const Table batch = InBatches(frame, {column}, 1);
  EXPECT_EQ(table, batch);
  return table.size() == 1 ? table[0][0] : std::to_string(table.size()) + " rows";
}

TEST(GPSColumns, HaveNamesInSnakeCaseByWhichTheyAreFound) {
  std::set<std::string> names;
  for (const GPSColumn& column : SDI::GetGPSColumns()) {
    const std::string name = column.name;
    SCOPED_TRACE(name);
    EXPECT_TRUE(names.insert(name).second);
    EXPECT_EQ(name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_"), name.npos);
    EXPECT_EQ(SDI::FindGPSColumn(name), &column);
    const std::string description = column.description;
    EXPECT_FALSE(description.empty() || description.ends_with('.'));
    EXPECT_NE(column.unit, nullptr);
    const bool isLong =
        column.type == GPSColumnType::kText || column.type == GPSColumnType::kUInt16List;
    EXPECT_EQ(column.largest != 0, isLong);
    EXPECT_STRNE(TextOf(column.type), "unknown");
  }
  for (const char* const none : {"", "week", "OFFSET", "offset "}) {
    EXPECT_EQ(SDI::FindGPSColumn(none), nullptr);
  }
}

// The expected columns of a sample, from another program.
std::map<std::string, std::string> ExpectedOf(const json& record) {
  const json& info = record["info"];
  const json& m = record["measurement"];
  const json& getters = record["getters"];
  std::map<std::string, std::string> row;
  const auto isSet = [&](unsigned bit) { return (m["setMask"].get<unsigned>() & bit) != 0; };
  const auto put = [&](const char* name, const json& value, bool isPresent = true) {
    if (!isPresent || value.is_null()) {
      row[name] = "absent";
    } else if (value.is_boolean()) {
      row[name] = Show(value.get<bool>());
    } else if (value.is_string()) {
      row[name] = value.get<std::string>().empty()
                      ? "absent"
                      : Show(std::string_view(value.get<std::string>()));
    } else if (value.is_number_float()) {
      row[name] = Show(value.get<double>());
    } else if (value.is_number_unsigned()) {
      row[name] = Show(value.get<std::uint64_t>());
    } else {
      row[name] = Show(value.get<std::int64_t>());
    }
  };
  const auto single = [&](const char* name, const json& value) {
    row[name] = value.is_null() || !isSet(0x0002) ? "absent" : Show(value.get<float>());
  };
  const auto time = [&](const std::string& prefix, const json& parts, bool isPresent) {
    const Vorlin::TimeC value{parts[0].get<std::uint16_t>(), parts[1].get<std::int32_t>()};
    char text[SDI::kTimeTextSize + 1];
    const bool isTime = isPresent && SDI::FormatGPSTime(value, text);
    row[prefix + "time_gps"] = isTime ? Show(std::string_view(text)) : "absent";
    SDI::FormatUTC(value, text);
    row[prefix + "time_utc"] = isTime ? Show(std::string_view(text)) : "absent";
  };

  put("offset", record["offset"]);
  put("size", record["size"]);
  put("name", info["name"]);
  put("number", info["number"]);
  put("kind_zero", (info["flags"].get<unsigned>() & 1) != 0);
  put("kind_non_zero", (info["flags"].get<unsigned>() & 2) != 0);
  put("gps_week", m["timeA"][0]);
  put("time_of_week", m["timeA"][1]);
  time("", m["timeA"], true);
  put("time_b_of_week", m["timeB"]);
  const bool hasExtra = m["extraTimeCount"] != 0;
  put("extra_gps_week", m["extraTime"][0], hasExtra);
  put("extra_time_of_week", m["extraTime"][1], hasExtra);
  time("extra_", m["extraTime"], hasExtra);
  for (std::size_t i = 0; i < 4; ++i) {
    put(("status_bit_" + std::to_string(i)).c_str(), getters["statusBits"][i]);
  }
  put("system_1_used", getters["system1Used"]);
  put("system_2_used", getters["system2Used"]);
  put("system_3_used", getters["system3Used"]);
  single("antenna_height", m["antennaHeight"]["height"]);
  put("antenna_is_vertical", m["antennaHeight"]["isVertical"], isSet(0x0002));
  single("antenna_horizontal_offset", m["antennaHeight"]["horizontalOffset"]);
  single("antenna_vertical_height", getters["verticalHeight"]);
  put("value_0", m["values"][0], m["valueCount"] > 0);
  put("value_1", m["values"][1], m["valueCount"] > 1);
  for (const char* const dop : {"hdop", "vdop", "tdop", "pdop", "gdop"}) {
    const json value = getters["dops"].is_null() ? json() : getters["dops"][dop];
    put(dop, value, !value.is_null() && value != -1.0);
  }
  put("word_16", m["word16"], isSet(0x0020));
  const auto pair = [&](const std::string& prefix, const json& counters) {
    put((prefix + "_first").c_str(), counters.is_null() ? json() : counters[0]);
    put((prefix + "_second").c_str(), counters.is_null() ? json() : counters[1]);
  };
  pair("total", getters["totalPair"]);
  pair("system_1", getters["system1Pair"]);
  pair("system_2", getters["system2Pair"]);
  pair("system_3", getters["system3Pair"]);
  put("vector_x", m["vector"][0], isSet(0x0010));
  put("vector_y", m["vector"][1], isSet(0x0010));
  put("vector_z", m["vector"][2], isSet(0x0010));
  put("flag_a", m["flagA"] != 0);
  put("value_b", m["valueB"]);
  put("value_c", m["valueC"], isSet(0x0080));
  put("text_a", m["textA"]);
  put("text_b", m["textB"]);
  put("value_d", m["valueD"]);
  put("text_c", m["textC"]);
  put("flag_e", m["flagE"] != 0);
  put("text_d", m["textD"]);
  put("value_f", m["valueF"]);
  put("value_g", m["valueG"]);
  put("value_h", m["valueH"], isSet(0x0100));
  put("value_i", m["valueI"], isSet(0x0200));
  put("list_head", m["listBlock"]["head"], isSet(0x0400));
  const auto entries = m["listBlock"]["entries"].get<std::vector<std::uint16_t>>();
  row["list_entries"] = isSet(0x0400) ? Show(std::span<const std::uint16_t>(entries)) : "absent";
  return row;
}

TEST(GPSColumns, HaveTheExpectedValuesOfBothSamples) {
  const auto columns = Columns::All();
  for (const char* const name : kSamples) {
    SCOPED_TRACE(name);
    const Table table = Asked(Sample(name), columns);
    std::ifstream in(SURVEYDATA_TEST_DATA + std::string(name) + ".expected.jsonl");
    std::size_t row = 0;
    for (std::string line; std::getline(in, line); ++row) {
      const json record = json::parse(line);
      SCOPED_TRACE(record["offset"]);
      auto expected = ExpectedOf(record);
      ASSERT_LT(row, table.size());
      for (std::size_t i = 0; i < columns.size(); ++i) {
        const auto found = expected.find(columns[i]->name);
        ASSERT_NE(found, expected.end()) << columns[i]->name;
        EXPECT_EQ(table[row][i], found->second) << columns[i]->name;
        EXPECT_TRUE(columns[i]->canBeAbsent || found->second != "absent") << columns[i]->name;
        expected.erase(found);
      }
      for (const auto& [left, value] : expected) ADD_FAILURE() << "no column " << left;
    }
    EXPECT_EQ(row, table.size());
  }
}

TEST(GPSColumns, AreTheSameInBatchesOfAnySize) {
  const auto columns = Columns::All();
  for (const char* const name : kSamples) {
    const ByteVector bytes = Sample(name);
    const Table table = Asked(bytes, columns);
    for (const std::size_t rows :
         {1U, 2U, 7U, 8U, 9U, 15U, 16U, 17U, 31U, 33U, 63U, 64U, 65U, 129U, 65536U}) {
      SCOPED_TRACE(rows);
      EXPECT_TRUE(InBatches(bytes, columns, rows) == table);
    }
  }
}

TEST(GPSColumns, AreTheSameInBatchesForFramesOfEveryKind) {
  const auto columns = Columns::All();
  std::mt19937_64 random(20261122);
  ByteVector bytes;
  for (int i = 0; i < 3000; ++i) {
    const auto bits = static_cast<unsigned>(random());
    Append(bytes, TestSupport::WellFormedFrame(bits & 0xFFFF, bits >> 16 & 0xFFFF, random));
  }
  const Table table = Asked(bytes, columns);
  EXPECT_GT(table.size(), 2000U);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    std::set<bool> presence;
    for (const Columns::Row& row : table) presence.insert(row[i] != "absent");
    EXPECT_EQ(presence.size(), columns[i]->canBeAbsent ? 2U : 1U) << columns[i]->name;
  }
  for (const std::size_t rows : {1U, 5U, 16U, 1000U}) {
    SCOPED_TRACE(rows);
    EXPECT_TRUE(InBatches(bytes, columns, rows) == table);
  }
}

TEST(GPSColumns, AreReadInAnyChoiceAndOrder) {
  const ByteVector bytes = Sample("valley_drive");
  std::mt19937_64 random(1);
  auto columns = Columns::All();
  for (int i = 0; i < 20; ++i) {
    std::shuffle(columns.begin(), columns.end(), random);
    const std::vector<const GPSColumn*> some(columns.begin(), columns.begin() + 1 + i);
    EXPECT_TRUE(InBatches(bytes, some, 50) == Asked(bytes, some));
  }
  const std::vector<const GPSColumn*> twice(2, columns.front());
  EXPECT_TRUE(InBatches(bytes, twice, 50) == Asked(bytes, twice));
  EXPECT_EQ(Asked(bytes, {}).size(), 414U);
  EXPECT_EQ(InBatches(bytes, {}, 50).size(), 414U);
}

TEST(GPSColumns, OfABatchMayLeaveOutWhereValuesAreAbsent) {
  const ByteVector bytes = Sample("valley_drive");
  const GPSColumn* const column = SDI::FindGPSColumn("word_16");
  GPSRecordReaderC reader(bytes);
  GPSColumnReaderC batches(reader);
  std::vector<std::uint16_t> words(1000, 7);
  SDI::GPSColumnBuffer buffer{column, words.data(), words.size() * 2, nullptr, nullptr, 99};
  EXPECT_EQ(Read(batches, {&buffer, 1}, 1000), Done(414));
  const Table table = Asked(bytes, {column});
  std::size_t absent = 0;
  for (std::size_t i = 0; i < table.size(); ++i) {
    const bool isAbsent = table[i][0] == "absent";
    absent += isAbsent ? 1 : 0;
    EXPECT_EQ(std::to_string(words[i]), isAbsent ? "0" : table[i][0]);
  }
  EXPECT_EQ(buffer.absent, absent);
  EXPECT_EQ(words[414], 7);
}

TEST(GPSColumns, EndABatchBeforeARowForWhichThereMayBeNoRoom) {
  const auto columns = Columns::All();
  const ByteVector bytes = Sample("valley_drive");
  const Table table = Asked(bytes, columns);
  // Room for one of the longest texts, for that and a little more, and for some.
  for (const std::size_t room : {237U, 238U, 300U, 1000U, 5000U}) {
    SCOPED_TRACE(room);
    EXPECT_TRUE(InBatches(bytes, columns, 100, room) == table);
  }
}

TEST(GPSColumns, EndABatchNoEarlierThanTheyMust) {
  const GPSColumn* const name = SDI::FindGPSColumn("name");
  ASSERT_EQ(name->largest, 49U);
  FrameBuilderC builder;
  ByteVector bytes;
  for (int i = 0; i < 100; ++i) {
    Append(bytes, FrameBuilderC().Times().U16(2).NameUnits(u"P1").I32(i).Frame());
  }
  GPSRecordReaderC reader(bytes);
  GPSColumnReaderC batches(reader);
  BuffersC buffers({&name, 1}, 100, 49 + 2 * 20);  // 20 names, and room for one of any length
  EXPECT_EQ(Read(batches, buffers.Get(), 100).rows, 21U);
  BuffersC one({&name, 1}, 100, 50);
  EXPECT_EQ(Read(batches, one.Get(), 100).rows, 1U);
}

TEST(GPSColumns, OfBuffersWithoutRoomAreRefusedAndNothingIsLost) {
  const ByteVector bytes = Sample("valley_drive");
  const auto columns = Columns::All();
  GPSRecordReaderC reader(bytes);
  GPSColumnReaderC batches(reader);
  BuffersC tooSmall(columns, 10, 236);
  EXPECT_EQ(Read(batches, tooSmall.Get(), 10), kNoRoom);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    BuffersC buffers(columns, 10);
    buffers.Get()[i].values = nullptr;
    EXPECT_EQ(Read(batches, buffers.Get(), 10), kNotABuffer);
    BuffersC nameless(columns, 10);
    nameless.Get()[i].column = nullptr;
    EXPECT_EQ(Read(batches, nameless.Get(), 10), kNotABuffer);
    if (columns[i]->largest == 0) continue;
    BuffersC others(columns, 10);
    others.Get()[i].offsets = nullptr;
    EXPECT_EQ(Read(batches, others.Get(), 10), kNotABuffer);
  }
  BuffersC buffers(columns, 1000);
  EXPECT_EQ(Read(batches, buffers.Get(), 0), kNoRoom);
  EXPECT_EQ(Read(batches, buffers.Get(), 1000), Done(414));
  EXPECT_EQ(Read(batches, buffers.Get(), 1000), kEnd);
}

TEST(GPSColumns, LeaveOutAFrameWhoseBlocksDoNotFitAndCountIt) {
  const ByteVector good = FrameBuilderC().Times().U16(0).Frame();
  const ByteVector bad = FrameBuilderC().Times().U16(0x0008).U8(2).Frame();
  ByteVector bytes;
  for (const ByteVector& frame : {bad, good, bad, bad, good, bad}) Append(bytes, frame);
  const GPSColumn* const offset = SDI::FindGPSColumn("offset");
  GPSRecordReaderC reader(bytes);
  GPSColumnReaderC batches(reader);
  BuffersC buffers({&offset, 1}, 1);
  Table table;
  for (const std::uint64_t leftOut : {1U, 3U}) {
    EXPECT_EQ(Read(batches, buffers.Get(), 1).rows, 1U);
    EXPECT_EQ(batches.GetLeftOut(), leftOut);
    buffers.Read(1, table);
  }
  EXPECT_EQ(Read(batches, buffers.Get(), 1).outcome, GPSColumnsOutcome::kEnd);
  EXPECT_EQ(batches.GetLeftOut(), 4U);
  const std::size_t second = 2 * good.size() + 3 * bad.size() - good.size();
  EXPECT_EQ(table, (Table{{std::to_string(bad.size())}, {std::to_string(second)}}));
}

// Frames without their last bytes, between whole ones: the texts and numbers before the missing
// bytes were already read. One reader reads a different choice of columns in each batch.
TEST(GPSColumns, AreTheSameAfterFramesWhoseBlocksDoNotFit) {
  std::mt19937_64 random(20261123);
  ByteVector bytes;
  for (int i = 0; i < 1000; ++i) {
    const auto bits = static_cast<unsigned>(random());
    const ByteVector frame =
        TestSupport::WellFormedFrame((bits & 0x30CF) | 0x2000, bits >> 16, random);
    FrameBuilderC cut;
    const std::size_t end = frame.size() - 2;
    const std::size_t lost = random() % 2 * (random() % std::min<std::size_t>(end - 5, 40));
    for (std::size_t at = 5; at < end - lost; ++at) cut.U8(frame[at]);
    Append(bytes, cut.Frame());
  }
  auto columns = Columns::All();
  const Table table = Asked(bytes, columns);
  EXPECT_GT(table.size(), 400U);
  EXPECT_LT(table.size(), 800U);
  EXPECT_TRUE(InBatches(bytes, columns, 1000) == table);

  std::vector<std::size_t> order(columns.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  GPSRecordReaderC reader(bytes);
  GPSColumnReaderC batches(reader);
  for (std::size_t first = 0; first < table.size();) {
    std::shuffle(order.begin(), order.end(), random);
    std::vector<const GPSColumn*> some;
    const std::size_t count = 1 + random() % (random() % 2 == 0 ? 12 : order.size());
    for (std::size_t i = 0; i < count; ++i) some.push_back(columns[order[i]]);
    BuffersC buffers(some, 100);
    const Result result = Read(batches, buffers.Get(), 1 + random() % 100);
    ASSERT_EQ(result.outcome, GPSColumnsOutcome::kDone);
    buffers.ExpectWhole(result.rows);
    Table batch;
    buffers.Read(result.rows, batch);
    for (std::size_t row = 0; row < result.rows; ++row) {
      for (std::size_t i = 0; i < count; ++i) {
        ASSERT_EQ(batch[row][i], table[first + row][order[i]]) << some[i]->name;
      }
    }
    first += result.rows;
  }
}

TEST(GPSColumns, PassOnExceptionsOfTheReadersFunctionAndKeepTheRowsBefore) {
  ByteVector bytes;
  while (bytes.size() < 600'000) Append(bytes, Sample("valley_drive"));
  bool isToThrow = false;
  const auto read = [&](std::uint64_t offset, std::span<std::uint8_t> to) -> std::ptrdiff_t {
    if (isToThrow && offset > 100'000) {
      isToThrow = false;
      throw std::runtime_error("asked to");
    }
    const std::size_t count = std::min<std::size_t>(to.size(), bytes.size() - offset);
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(offset), count, to.begin());
    return static_cast<std::ptrdiff_t>(count);
  };
  const auto columns = Columns::All();
  GPSRecordReaderC reader(read, bytes.size());
  GPSColumnReaderC batches(reader);
  Table table;
  int thrown = 0;
  isToThrow = true;
  for (;;) {
    BuffersC buffers(columns, 10000);
    std::size_t rows = 0;
    try {
      if (batches.Read(buffers.Get(), 10000, rows) != GPSColumnsOutcome::kDone) break;
    } catch (const std::runtime_error&) {
      ++thrown;
      EXPECT_GT(rows, 16U);
      EXPECT_NE(rows % 16, 0U);  // also those of a block that is not full
    }
    buffers.ExpectWhole(rows);
    buffers.Read(rows, table);
  }
  EXPECT_EQ(thrown, 1);
  EXPECT_TRUE(table == Asked(bytes, columns));
}

TEST(GPSColumns, OfTextsAreUtf8) {
  const struct {
    std::u16string units;
    std::string expected;
  } cases[] = {
      {u"A", "\"A\""},
      {u"\u00DF", "\"\u00DF\""},
      {u"\u20AC", "\"\u20AC\""},
      {u"a\xD83D\xDE00z", "\"a\U0001F600z\""},
      {u"\xD83D", "\"\uFFFD\""},
      {u"\xD83D\xD83D\xDE00", "\"\uFFFD\U0001F600\""},
      {u"\xDE00\xD83D", "\"\uFFFD\uFFFD\""},
      {u"\xD83D"
       u"A",
       "\"\uFFFDA\""},
      {u"\u0001\u007F\u0080", "\"\u0001\u007F\u0080\""},
      {u"", "absent"},
  };
  for (const auto& [units, expected] : cases) {
    SCOPED_TRACE(expected);
    const auto text = FrameBuilderC().Times().U16(0x2000).U16(0x0008).Units(units).U16(0).Frame();
    EXPECT_EQ(Value(text, "text_a"), expected);
    const auto name = FrameBuilderC().Times().U16(0x0002).NameUnits(units).I32(0).Frame();
    EXPECT_EQ(Value(name, "name"), expected);
  }
}

// Texts of every length, with a unit that is not ASCII at each position or nowhere.
TEST(GPSColumns, OfTextsAreRightForEveryLength) {
  for (std::size_t length = 0; length <= 79; ++length) {
    for (std::size_t place = 0; place <= length; place += place < 20 ? 1 : 7) {
      for (const char16_t other : {u'\u00E4', u'\uFFFF', u'\u8000', u'\u0100'}) {
        std::u16string units;
        std::string expected = "\"";
        for (std::size_t i = 0; i < length; ++i) {
          units += i == place ? other : static_cast<char16_t>('!' + i % 90);
          if (i != place) {
            expected += static_cast<char>(units.back());
          } else if (other < 0x800) {
            expected +=
                {static_cast<char>(0xC0 | other >> 6), static_cast<char>(0x80 | (other & 0x3F))};
          } else {
            expected += {static_cast<char>(0xE0 | other >> 12),
                         static_cast<char>(0x80 | (other >> 6 & 0x3F)),
                         static_cast<char>(0x80 | (other & 0x3F))};
          }
        }
        expected += "\"";
        const auto frame =
            FrameBuilderC().Times().U16(0x2000).U16(0x0010).Units(units).U16(0).Frame();
        ASSERT_EQ(Value(frame, "text_b"), length == 0 ? "absent" : expected);
      }
    }
  }
}

TEST(GPSColumns, HaveNoTextLongerThanTheyState) {
  const std::u16string units(79, u'\u20AC');
  const auto text = FrameBuilderC().Times().U16(0x2000).U16(0x0040).Units(units).U16(0).Frame();
  EXPECT_EQ(Value(text, "text_c").size(), SDI::FindGPSColumn("text_c")->largest + 2);
  const std::u16string shorter(29, u'\u20AC');
  const auto textD = FrameBuilderC().Times().U16(0x2000).U16(0x0100).Units(shorter).U16(0).Frame();
  EXPECT_EQ(Value(textD, "text_d").size(), SDI::FindGPSColumn("text_d")->largest + 2);
  const std::u16string name = std::u16string(16, u'\u20AC') + u"x";
  const auto named = FrameBuilderC().Times().U16(0x0002).NameUnits(name).I32(0).Frame();
  EXPECT_EQ(Value(named, "name").size(), SDI::FindGPSColumn("name")->largest + 2);
}

TEST(GPSColumns, OfTimesAreAbsentOutOfTheWeek) {
  for (const std::int32_t timeOfWeek : {-1, 604'800'000}) {
    const auto frame =
        FrameBuilderC().Times(2091, timeOfWeek).U16(0x0008).U8(1).U16(2091).I32(timeOfWeek).Frame();
    EXPECT_EQ(Value(frame, "gps_week"), "2091");
    EXPECT_EQ(Value(frame, "time_of_week"), std::to_string(timeOfWeek));
    EXPECT_EQ(Value(frame, "extra_time_of_week"), std::to_string(timeOfWeek));
    for (const char* const name : {"time_gps", "time_utc", "extra_time_gps", "extra_time_utc"}) {
      EXPECT_EQ(Value(frame, name), "absent");
    }
  }
  const auto leap = FrameBuilderC().Times(1930, 17'500).U16(0).Frame();  // the last one of 2016
  EXPECT_EQ(Value(leap, "time_utc"), "\"2016-12-31T23:59:60.500\"");
  EXPECT_EQ(Value(leap, "time_gps"), "\"2017-01-01T00:00:17.500\"");
}

TEST(GPSColumns, SayThatATimeInUtcIsAfterTheExpiryOfTheLeapSeconds) {
  const auto early = FrameBuilderC().Times(2091, 0).U16(0).Frame();
  const auto late = FrameBuilderC().Times(2500, 0).U16(0).Frame();
  ByteVector bytes = early;
  Append(bytes, late);
  Append(bytes, early);
  for (const char* const name : {"time_utc", "time_gps", "gps_week"}) {
    const GPSColumn* const column = SDI::FindGPSColumn(name);
    GPSRecordReaderC reader(bytes);
    GPSColumnReaderC batches(reader);
    BuffersC buffers({&column, 1}, 1);
    std::vector<bool> answers;
    for (int i = 0; i < 3; ++i) {
      Read(batches, buffers.Get(), 1);
      answers.push_back(batches.HasTimesAfterExpiry());
    }
    const bool isUtc = std::string_view(name) == "time_utc";
    EXPECT_EQ(answers, (std::vector<bool>{false, isUtc, isUtc}));
  }
}

TEST(GPSColumns, OfDilutionsAreAbsentWhenNotAvailable) {
  const auto frame = FrameBuilderC().Times().U16(0x0080).U8(0).U16(30).U16(40).U16(0xFFFF).Frame();
  EXPECT_EQ(Value(frame, "hdop"), Show(3.0));
  EXPECT_EQ(Value(frame, "vdop"), Show(4.0));
  EXPECT_EQ(Value(frame, "pdop"), Show(5.0));
  EXPECT_EQ(Value(frame, "tdop"), "absent");
  EXPECT_EQ(Value(frame, "gdop"), "absent");
}

TEST(GPSColumns, KeepNaNAndInfinities) {
  for (const std::uint32_t bits : {0x7F800000U, 0xFF800000U, 0x7FC00001U}) {
    const auto frame = FrameBuilderC().Times().U16(0x0004).U32(bits).U8(0).Frame();
    EXPECT_EQ(Value(frame, "antenna_height"), "f" + std::to_string(bits));
  }
}

}  // namespace
