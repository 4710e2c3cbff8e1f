#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/c_interface/arrow_c_interface.h>
#include <surveydata/c_interface/surveydata.h>
#include <surveydata/gnss/gps_record_columns.h>
#include <surveydata/gnss/gps_time.h>

#include "tests/support/column_table.h"
#include "tests/support/faults.h"
#include "tests/support/frame_builder.h"
#include "tests/support/temp_file.h"

namespace {

using Columns::Table;
using SDI::GPSColumn;
using SDI::GPSColumnType;
using TestSupport::ByteVector;

const ByteVector& Sample() {
  static const ByteVector bytes = TestSupport::ReadBytes(SURVEYDATA_TEST_DATA "valley_drive.rec");
  return bytes;
}

Table Asked(const ByteVector& bytes, const std::vector<const GPSColumn*>& columns) {
  Table table;
  SDI::GPSRecordReaderC reader(bytes);
  for (const SDI::GPSRecordC& record : reader) table.push_back(Columns::RowOf(columns, record));
  return table;
}

surveydata_reader* OpenBytes(const ByteVector& bytes) {
  surveydata_reader* reader = nullptr;
  EXPECT_EQ(surveydata_reader_open_bytes(bytes.data(), bytes.size(), 0, SURVEYDATA_NO_END, &reader),
            SURVEYDATA_OK);
  return reader;
}

/// A stream, released at the end.
class StreamC {
 public:
  explicit StreamC(surveydata_reader* reader, std::vector<std::uint32_t> columns = {},
                   std::size_t rows = 0) {
    EXPECT_EQ(surveydata_reader_arrow_stream(reader, columns.empty() ? nullptr : columns.data(),
                                             columns.size(), rows, &stream_),
              SURVEYDATA_OK);
  }
  StreamC(const StreamC&) = delete;
  StreamC& operator=(const StreamC&) = delete;
  ~StreamC() { Release(); }

  ArrowArrayStream* operator->() { return &stream_; }
  ArrowArrayStream* Get() { return &stream_; }
  void Release() {
    if (stream_.release != nullptr) stream_.release(&stream_);
    EXPECT_EQ(stream_.release, nullptr);
  }

 private:
  ArrowArrayStream stream_ = {};
};

/// A schema or an array, released at the end.
template <class Struct>
class OwnedC {
 public:
  OwnedC() = default;
  explicit OwnedC(Struct& from) : held_(std::exchange(from, Struct{})) {}
  OwnedC(OwnedC&& other) noexcept : held_(std::exchange(other.held_, Struct{})) {}
  OwnedC& operator=(OwnedC&&) = delete;
  ~OwnedC() { Release(); }

  Struct* Get() { return &held_; }
  Struct* operator->() { return &held_; }
  void Release() {
    if (held_.release != nullptr) held_.release(&held_);
    EXPECT_EQ(held_.release, nullptr);
  }

 private:
  Struct held_ = {};
};
using Schema = OwnedC<ArrowSchema>;
using Array = OwnedC<ArrowArray>;

std::map<std::string, std::string> MetadataOf(const ArrowSchema& schema) {
  std::map<std::string, std::string> pairs;
  const char* at = schema.metadata;
  if (at == nullptr) return pairs;
  const auto number = [&at] {
    std::int32_t value = 0;
    std::memcpy(&value, at, sizeof(value));
    at += sizeof(value);
    return value;
  };
  const auto text = [&] {
    const auto size = static_cast<std::size_t>(number());
    std::string taken(at, size);
    at += size;
    return taken;
  };
  for (std::int32_t left = number(); left > 0; --left) {
    const std::string key = text();
    pairs[key] = text();
  }
  return pairs;
}

/// Copies the values of a column into the rows of `table`, starting at row `first`.
void ReadColumn(const GPSColumn& column, const ArrowArray& array, std::size_t first, Table& table) {
  SCOPED_TRACE(column.name);
  const bool isLong = column.largest != 0;
  const bool isText = column.type == GPSColumnType::kText;
  ASSERT_EQ(array.n_buffers, isText ? 3 : 2);
  ASSERT_EQ(array.n_children, column.type == GPSColumnType::kUInt16List ? 1 : 0);
  EXPECT_EQ(array.offset, 0);
  EXPECT_EQ(array.dictionary, nullptr);
  EXPECT_EQ(array.buffers[0] != nullptr, column.canBeAbsent);
  const auto rows = static_cast<std::size_t>(array.length);
  const auto* const offsets = static_cast<const std::int64_t*>(array.buffers[1]);
  const void* values = isText ? array.buffers[2] : array.buffers[1];
  if (column.type == GPSColumnType::kUInt16List) {
    const ArrowArray& entries = *array.children[0];
    EXPECT_EQ(entries.length, offsets[rows]);
    EXPECT_EQ(entries.null_count, 0);
    ASSERT_EQ(entries.n_buffers, 2);
    EXPECT_EQ(entries.buffers[0], nullptr);
    values = entries.buffers[1];
  }
  // Laid out as the column reader does it, so that both can be formatted by the same code.
  const std::size_t size = Columns::SizeOf(column.type);
  const std::size_t room = isLong ? static_cast<std::size_t>(offsets[rows]) * size : 0;
  Columns::BuffersC shown({std::vector<const GPSColumn*>{&column}}, rows, room);
  SDI::GPSColumnBuffer& buffer = shown.Get()[0];
  const std::size_t bitmap = (rows + 7) / 8;
  if (array.buffers[0] != nullptr) {
    std::memcpy(buffer.validity, array.buffers[0], bitmap);
  } else {
    std::memset(buffer.validity, 0xFF, bitmap);
  }
  if (isLong) {
    std::memcpy(buffer.offsets, offsets, (rows + 1) * sizeof(std::int64_t));
    std::memcpy(buffer.values, values, room);
  } else {
    std::memcpy(buffer.values, values, column.type == GPSColumnType::kBool ? bitmap : rows * size);
  }
  buffer.absent = static_cast<std::uint64_t>(array.null_count);
  shown.ExpectWhole(rows);
  Table values_;
  shown.Read(rows, values_);
  for (std::size_t i = 0; i < rows; ++i) table[first + i].push_back(values_[i][0]);
}

void ReadBatch(const std::vector<const GPSColumn*>& columns, const ArrowArray& batch,
               Table& table) {
  ASSERT_EQ(batch.n_children, static_cast<std::int64_t>(columns.size()));
  ASSERT_EQ(batch.n_buffers, 1);
  EXPECT_EQ(batch.buffers[0], nullptr);
  EXPECT_EQ(batch.null_count, 0);
  const std::size_t first = table.size();
  table.resize(first + static_cast<std::size_t>(batch.length));
  for (std::size_t i = 0; i < columns.size(); ++i) {
    EXPECT_EQ(batch.children[i]->length, batch.length);
    ReadColumn(*columns[i], *batch.children[i], first, table);
  }
}

TEST(ArrowStream, HasASchemaOfNamesTypesUnitsAndDescriptions) {
  const std::map<GPSColumnType, std::string> formats = {
      {GPSColumnType::kBool, "b"},    {GPSColumnType::kUInt8, "C"},
      {GPSColumnType::kUInt16, "S"},  {GPSColumnType::kUInt32, "I"},
      {GPSColumnType::kUInt64, "L"},  {GPSColumnType::kInt32, "i"},
      {GPSColumnType::kFloat32, "f"}, {GPSColumnType::kFloat64, "g"},
      {GPSColumnType::kText, "U"},    {GPSColumnType::kUInt16List, "+L"}};
  StreamC stream(OpenBytes(Sample()));
  for (int twice = 0; twice < 2; ++twice) {
    Schema schema;
    ASSERT_EQ(stream->get_schema(stream.Get(), schema.Get()), 0);
    EXPECT_STREQ(schema->format, "+s");
    const std::map<std::string, std::string> leapSeconds = {
        {"leap_seconds", SDI::kLeapSecondSource},
        {"leap_seconds_expire", SDI::kLeapSecondExpiry},
        {"leap_seconds_after_expiry", "the last offset is used"}};
    EXPECT_EQ(MetadataOf(*schema.Get()), leapSeconds);
    const auto columns = Columns::All();
    ASSERT_EQ(schema->n_children, static_cast<std::int64_t>(columns.size()));
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const ArrowSchema& field = *schema->children[i];
      SCOPED_TRACE(columns[i]->name);
      EXPECT_STREQ(field.name, columns[i]->name);
      EXPECT_EQ(field.format, formats.at(columns[i]->type));
      EXPECT_EQ(field.flags, columns[i]->canBeAbsent ? ARROW_FLAG_NULLABLE : 0);
      auto expected = std::string_view(field.name).ends_with("_utc")
                          ? leapSeconds
                          : std::map<std::string, std::string>();
      expected["description"] = columns[i]->description;
      if (*columns[i]->unit != 0) expected["unit"] = columns[i]->unit;
      EXPECT_EQ(MetadataOf(field), expected);
      if (columns[i]->type == GPSColumnType::kUInt16List) {
        ASSERT_EQ(field.n_children, 1);
        EXPECT_STREQ(field.children[0]->format, "S");
      } else {
        EXPECT_EQ(field.n_children, 0);
      }
    }
  }
}

TEST(ArrowStream, OfColumnsWithoutUtcHasNoLeapSeconds) {
  StreamC stream(OpenBytes(Sample()), {0, 1});
  Schema schema;
  ASSERT_EQ(stream->get_schema(stream.Get(), schema.Get()), 0);
  EXPECT_EQ(schema->n_children, 2);
  EXPECT_EQ(schema->metadata, nullptr);
}

TEST(ArrowStream, HasEveryValueInBatchesOfAnySize) {
  const auto columns = Columns::All();
  const Table expected = Asked(Sample(), columns);
  for (const std::size_t rows : {0U, 1U, 7U, 16U, 100U, 413U, 414U, 415U}) {
    SCOPED_TRACE(rows);
    StreamC stream(OpenBytes(Sample()), {}, rows);
    Table table;
    for (;;) {
      Array batch;
      ASSERT_EQ(stream->get_next(stream.Get(), batch.Get()), 0);
      if (batch->release == nullptr) break;
      const std::size_t left = expected.size() - table.size();
      EXPECT_EQ(batch->length, static_cast<std::int64_t>(rows == 0 ? left : std::min(rows, left)));
      ReadBatch(columns, *batch.Get(), table);
    }
    EXPECT_TRUE(table == expected);
    Array after;
    EXPECT_EQ(stream->get_next(stream.Get(), after.Get()), 0);
    EXPECT_EQ(after->release, nullptr);
    EXPECT_EQ(stream->get_last_error(stream.Get()), nullptr);
  }
}

TEST(ArrowStream, HasBatchesOf65536Rows) {
  const ByteVector frame = TestSupport::FrameBuilderC().Times().U16(0).Frame();
  ByteVector bytes;
  for (int i = 0; i < 65536 + 100; ++i) TestSupport::Append(bytes, frame);
  StreamC stream(OpenBytes(bytes));
  std::vector<std::int64_t> lengths;
  for (;;) {
    Array batch;
    ASSERT_EQ(stream->get_next(stream.Get(), batch.Get()), 0);
    if (batch->release == nullptr) break;
    lengths.push_back(batch->length);
  }
  EXPECT_EQ(lengths, (std::vector<std::int64_t>{65536, 100}));
}

TEST(ArrowStream, HasTheChosenColumnsInTheirOrder) {
  std::vector<std::uint32_t> chosen;
  std::vector<const GPSColumn*> columns;
  for (const char* const name : {"time_gps", "offset", "list_entries", "name", "offset"}) {
    columns.push_back(SDI::FindGPSColumn(name));
    ASSERT_NE(columns.back(), nullptr);
    chosen.push_back(static_cast<std::uint32_t>(columns.back() - SDI::GetGPSColumns().data()));
  }
  StreamC stream(OpenBytes(Sample()), chosen);
  Array batch;
  ASSERT_EQ(stream->get_next(stream.Get(), batch.Get()), 0);
  Table table;
  ReadBatch(columns, *batch.Get(), table);
  EXPECT_TRUE(table == Asked(Sample(), columns));
}

TEST(ArrowStream, OfNoRecordsHasNoBatches) {
  StreamC stream(OpenBytes({}));
  Schema schema;
  EXPECT_EQ(stream->get_schema(stream.Get(), schema.Get()), 0);
  Array batch;
  EXPECT_EQ(stream->get_next(stream.Get(), batch.Get()), 0);
  EXPECT_EQ(batch->release, nullptr);
}

// The longest possible texts, so that buffers have to grow.
TEST(ArrowStream, GrowsWithItsTexts) {
  const std::u16string units(79, u'\u20AC');
  const ByteVector frame =
      TestSupport::FrameBuilderC().Times().U16(0x2000).U16(0x0008).Units(units).U16(0).Frame();
  ByteVector bytes;
  for (int i = 0; i < 5000; ++i) TestSupport::Append(bytes, frame);
  const auto columns = Columns::All();
  StreamC stream(OpenBytes(bytes));
  Array batch;
  ASSERT_EQ(stream->get_next(stream.Get(), batch.Get()), 0);
  EXPECT_EQ(batch->length, 5000);
  Table table;
  ReadBatch(columns, *batch.Get(), table);
  EXPECT_TRUE(table == Asked(bytes, columns));
}

// A consumer may move children out of a batch, and release them in any order and in any thread.
TEST(ArrowStream, HasBatchesThatOutliveItAndColumnsThatOutliveTheirBatch) {
  const auto columns = Columns::All();
  const Table expected = Asked(Sample(), columns);
  StreamC stream(OpenBytes(Sample()), {}, 100);
  Array first;
  Array second;
  ASSERT_EQ(stream->get_next(stream.Get(), first.Get()), 0);
  ASSERT_EQ(stream->get_next(stream.Get(), second.Get()), 0);
  stream.Release();
  std::vector<Array> taken;
  for (std::size_t i = 0; i < columns.size(); i += 2) taken.emplace_back(*first->children[i]);
  first.Release();
  for (std::size_t i = 0; i < taken.size(); ++i) {
    Table table(100);
    ReadColumn(*columns[2 * i], *taken[i].Get(), 0, table);
    for (std::size_t row = 0; row < 100; ++row) EXPECT_EQ(table[row][0], expected[row][2 * i]);
  }
  std::vector<Array> half;
  for (int i = 0; i < 10; ++i) {
    half.push_back(std::move(taken.back()));
    taken.pop_back();
  }
  std::thread other([&] { half.clear(); });
  taken.clear();
  other.join();
  Table table;
  ReadBatch(columns, *second.Get(), table);
  EXPECT_TRUE(table == Table(expected.begin() + 100, expected.begin() + 200));
}

// A consumer may move fields out of a schema: it copies them and sets `release` of the original to
// null. They then outlive the schema, or are released before it.
TEST(ArrowStream, HasFieldsThatOutliveTheirSchema) {
  const auto columns = Columns::All();
  const auto take = [](ArrowSchema& field) {
    ArrowSchema copy = field;
    field.release = nullptr;
    return Schema(copy);
  };
  const auto expectWhole = [](const GPSColumn& column, const ArrowSchema& field) {
    EXPECT_STREQ(field.name, column.name);
    EXPECT_EQ(MetadataOf(field).at("description"), column.description);
  };
  for (const bool endsFirst : {true, false}) {
    Schema schema;
    {
      StreamC stream(OpenBytes(Sample()));
      ASSERT_EQ(stream->get_schema(stream.Get(), schema.Get()), 0);
    }
    std::vector<std::pair<const GPSColumn*, Schema>> taken;
    std::vector<Schema> items;  // taken out of the fields of lists
    for (std::size_t i = 0; i < columns.size(); ++i) {
      ArrowSchema& field = *schema->children[i];
      if (field.n_children > 0) items.push_back(take(*field.children[0]));
      if (i % 2 == 0) taken.emplace_back(columns[i], take(field));
    }
    ASSERT_FALSE(items.empty());
    if (endsFirst) {
      schema.Release();
      for (auto& [column, field] : taken) expectWhole(*column, *field.Get());
    } else {
      taken.clear();
      for (std::size_t i = 1; i < columns.size(); i += 2) {
        expectWhole(*columns[i], *schema->children[i]);
      }
      schema.Release();
    }
    taken.clear();
    for (Schema& item : items) {
      EXPECT_STREQ(item->format, "S");
      EXPECT_STREQ(item->name, "item");
    }
  }
}

// ----- Errors

struct Source {
  ByteVector bytes;
  std::int64_t answer = 0;  // returned once instead of bytes, at offset `from` or later
  std::uint64_t from = 0;
  int released = 0;
};

surveydata_reader* OpenSource(Source& source) {
  surveydata_source definition = {};
  definition.struct_size = sizeof(definition);
  definition.read_at = [](void* context, std::uint64_t offset, std::uint8_t* to,
                          std::size_t count) -> std::int64_t {
    Source& self = *static_cast<Source*>(context);
    if (self.answer != 0 && offset >= self.from) return std::exchange(self.answer, 0);
    const std::size_t read = std::min<std::size_t>(count, self.bytes.size() - offset);
    std::memcpy(to, self.bytes.data() + offset, read);
    return static_cast<std::int64_t>(read);
  };
  definition.release = [](void* context) { ++static_cast<Source*>(context)->released; };
  definition.context = &source;
  definition.size = source.bytes.size();
  surveydata_reader* reader = nullptr;
  EXPECT_EQ(surveydata_reader_open_source(&definition, 0, SURVEYDATA_NO_END, &reader),
            SURVEYDATA_OK);
  return reader;
}

Source LargeSource(std::int64_t answer) {
  Source source;
  while (source.bytes.size() < 600'000) TestSupport::Append(source.bytes, Sample());
  source.answer = answer;
  source.from = 300'000;
  return source;
}

TEST(ArrowStream, ContinuesAfterItWasCancelled) {
  Source source = LargeSource(SURVEYDATA_READ_CANCELLED);
  const auto columns = Columns::All();
  {
    StreamC stream(OpenSource(source), {}, 2000);
    Table table;
    int cancelled = 0;
    for (;;) {
      Array batch;
      const int result = stream->get_next(stream.Get(), batch.Get());
      if (result != 0) {
        EXPECT_EQ(result, ECANCELED);
        EXPECT_STREQ(stream->get_last_error(stream.Get()), "cancelled");
        EXPECT_EQ(batch->release, nullptr);
        ++cancelled;
        continue;
      }
      EXPECT_EQ(stream->get_last_error(stream.Get()), nullptr);
      if (batch->release == nullptr) break;
      ReadBatch(columns, *batch.Get(), table);
    }
    EXPECT_EQ(cancelled, 1);
    EXPECT_TRUE(table == Asked(source.bytes, columns));
    EXPECT_EQ(source.released, 0);
  }
  EXPECT_EQ(source.released, 1);
}

TEST(ArrowStream, ReportsAFailedReadAfterTheRowsBefore) {
  Source source = LargeSource(SURVEYDATA_READ_FAILED);
  StreamC stream(OpenSource(source));
  Array batch;
  ASSERT_EQ(stream->get_next(stream.Get(), batch.Get()), 0);
  EXPECT_GT(batch->length, 500);
  for (int again = 0; again < 2; ++again) {
    Array none;
    EXPECT_EQ(stream->get_next(stream.Get(), none.Get()), EIO);
    EXPECT_EQ(none->release, nullptr);
    EXPECT_STREQ(stream->get_last_error(stream.Get()), "reading failed");
  }
}

TEST(ArrowStream, IsRefusedWithoutTakingTheReader) {
  surveydata_reader* const reader = OpenBytes(Sample());
  ArrowArrayStream stream = {};
  const std::uint32_t none = static_cast<std::uint32_t>(SDI::GetGPSColumns().size());
  EXPECT_EQ(surveydata_reader_arrow_stream(nullptr, nullptr, 0, 0, &stream),
            SURVEYDATA_INVALID_ARGUMENT);
  EXPECT_EQ(surveydata_reader_arrow_stream(reader, nullptr, 0, 0, nullptr),
            SURVEYDATA_INVALID_ARGUMENT);
  EXPECT_EQ(surveydata_reader_arrow_stream(reader, nullptr, 1, 0, &stream),
            SURVEYDATA_INVALID_ARGUMENT);
  EXPECT_EQ(surveydata_reader_arrow_stream(reader, &none, 1, 0, &stream),
            SURVEYDATA_INVALID_ARGUMENT);
  EXPECT_EQ(stream.release, nullptr);
  std::size_t rows = 0;
  EXPECT_EQ(surveydata_reader_read_columns(reader, nullptr, sizeof(surveydata_column_buffer), 0,
                                           1000, &rows, nullptr),
            SURVEYDATA_OK);
  EXPECT_EQ(rows, 414U);
  surveydata_reader_close(reader);
}

// The number of bytes of such a batch exceeds 64 bits: without a check it would look small. The
// size of the source is no limit, because the caller states it.
TEST(ArrowStream, SaysThatABatchOfTooManyRowsExceedsMemory) {
  surveydata_source definition = {};
  definition.struct_size = sizeof(definition);
  definition.read_at = [](void*, std::uint64_t, std::uint8_t*, std::size_t) {
    return std::int64_t{0};
  };
  const auto resultOf = [&](std::uint64_t size, std::size_t columns, std::size_t rows) {
    definition.size = size;
    surveydata_reader* reader = nullptr;
    EXPECT_EQ(surveydata_reader_open_source(&definition, 0, SURVEYDATA_NO_END, &reader),
              SURVEYDATA_OK);
    StreamC stream(reader, std::vector<std::uint32_t>(columns, 0), rows);  // of "offset", 8 bytes
    Array batch;
    const int result = stream->get_next(stream.Get(), batch.Get());
    EXPECT_EQ(batch->release, nullptr);
    return result;
  };
  EXPECT_EQ(resultOf(UINT64_MAX, 19, SIZE_MAX), ENOMEM);  // 19 bytes of the source for each row
  EXPECT_EQ(resultOf(0, 1, SIZE_MAX), ENOMEM);            // a source of unknown size
  EXPECT_EQ(resultOf(0, 1, SIZE_MAX / 8 + 1), ENOMEM);
  EXPECT_EQ(resultOf(0, 1024, SIZE_MAX / 8 / 1024 + 1), ENOMEM);
  EXPECT_EQ(resultOf(UINT64_MAX, 19, 100), 0);
}

// Every allocation fails once: nothing leaks (the sanitizer checks that, too), and no row is lost.
TEST(ArrowStream, SaysThatMemoryIsExhaustedAndLosesNothing) {
  const auto columns = Columns::All();
  const Table expected = Asked(Sample(), columns);
  const Faults::BalanceC balance;
  const auto limited = [](std::size_t allocations, const std::function<int()>& call) {
    Faults::LimitAllocations(allocations);
    const int result = call();
    Faults::LimitAllocations(Faults::kNever);
    return result;
  };
  // Repeats `call`, each time with one more allocation, until it succeeds. Returns the failures.
  const auto failures = [&](int code, const std::function<int()>& call) {
    std::size_t count = 0;
    for (int result = code; (result = limited(count, call)) != 0; ++count) EXPECT_EQ(result, code);
    return count;
  };

  surveydata_reader* const reader = OpenBytes(Sample());
  ArrowArrayStream stream = {};
  EXPECT_GT(failures(SURVEYDATA_OUT_OF_MEMORY,
                     [&] {
                       return static_cast<int>(
                           surveydata_reader_arrow_stream(reader, nullptr, 0, 0, &stream));
                     }),
            3U);
  Schema schema;
  EXPECT_GT(failures(ENOMEM, [&] { return stream.get_schema(&stream, schema.Get()); }), 100U);
  {
    Array batch;
    EXPECT_GT(failures(ENOMEM,
                       [&] {
                         const int result = stream.get_next(&stream, batch.Get());
                         if (result != 0) {
                           EXPECT_EQ(batch->release, nullptr);
                           EXPECT_STREQ(stream.get_last_error(&stream), "out of memory");
                         }
                         return result;
                       }),
              60U);
    EXPECT_EQ(batch->length, 414);
    Table table;
    ReadBatch(columns, *batch.Get(), table);
    EXPECT_TRUE(table == expected);
  }
  stream.release(&stream);
}

}  // namespace
