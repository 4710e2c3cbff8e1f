// Handles in several threads, as documented: an area is shared, each thread has its own readers.
// Run by the preset `tsan` with the thread sanitizer.
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/c_interface/arrow_c_interface.h>
#include <surveydata/c_interface/surveydata.h>

#include "tests/support/frame_builder.h"
#include "tests/support/temp_file.h"

namespace {

using TestSupport::ByteVector;

constexpr int kThreads = 4;

template <class Work>
void InThreads(Work work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
  for (std::thread& thread : threads) thread.join();
}

// The results of every function on an area.
std::vector<double> AskEverything(const surveydata_area* area) {
  std::vector<double> answers;
  surveydata_bounds bounds{};
  bounds.struct_size = sizeof(bounds);
  EXPECT_EQ(surveydata_area_bounds(area, &bounds), SURVEYDATA_OK);
  answers.insert(answers.end(), {bounds.hz_min, bounds.hz_max, bounds.v_min, bounds.v_max});
  std::array<double, 50> hz{};
  std::array<double, 50> v{};
  std::size_t count = 0;
  EXPECT_EQ(surveydata_area_outline(area, 1.0, hz.data(), v.data(), nullptr, hz.size(), &count),
            SURVEYDATA_OK);
  answers.insert(answers.end(), hz.begin(), hz.end());
  EXPECT_EQ(surveydata_area_faults(area, nullptr, sizeof(surveydata_fault), 0, &count),
            SURVEYDATA_OK);
  answers.push_back(static_cast<double>(count));
  std::array<std::uint8_t, 50> inside{};
  EXPECT_EQ(surveydata_area_contains_many(area, hz.data(), sizeof(double), v.data(), sizeof(double),
                                          50, inside.data()),
            SURVEYDATA_OK);
  answers.insert(answers.end(), inside.begin(), inside.end());
  surveydata_area* prepared = nullptr;
  EXPECT_EQ(surveydata_area_prepare(area, SURVEYDATA_QUESTIONS_FEW, &prepared), SURVEYDATA_OK);
  for (int i = 0; i < 50; ++i) {
    const double at = 0.13 * i;
    for (const surveydata_area* const each :
         {area, static_cast<const surveydata_area*>(prepared)}) {
      std::int32_t answer = 0;
      EXPECT_EQ(surveydata_area_contains(each, at, 1.2, &answer), SURVEYDATA_OK);
      answers.push_back(answer);
      surveydata_explanation why{};
      why.struct_size = sizeof(why);
      EXPECT_EQ(surveydata_area_explain(each, at, 1.2, &why, nullptr, sizeof(surveydata_crossing),
                                        0, &count),
                SURVEYDATA_OK);
      answers.push_back(why.distance);
    }
  }
  surveydata_area_destroy(prepared);
  return answers;
}

TEST(CInterfaceThreads, ShareAnArea) {
  std::vector<double> hz;
  std::vector<double> v;
  for (int i = 0; i < 40; ++i) {
    hz.push_back(0.15 * i + 0.1);
    v.push_back(1.0 + 0.1 * (i % 3));
  }
  surveydata_area_definition definition{};
  definition.struct_size = sizeof(definition);
  definition.kind = SURVEYDATA_POLYGON;
  definition.count = hz.size();
  definition.hz = hz.data();
  definition.v = v.data();
  definition.hz_step = definition.v_step = 0.1;
  surveydata_area* area = nullptr;
  ASSERT_EQ(surveydata_area_create(&definition, &area), SURVEYDATA_OK);
  surveydata_area* prepared = nullptr;
  ASSERT_EQ(surveydata_area_prepare(area, SURVEYDATA_QUESTIONS_MANY, &prepared), SURVEYDATA_OK);
  const std::vector<double> expected = AskEverything(area);
  std::atomic<int> differences = 0;
  InThreads([&](int) {
    for (int round = 0; round < 20; ++round) {
      if (AskEverything(area) != expected) ++differences;
      if (AskEverything(prepared) != expected) ++differences;
    }
  });
  EXPECT_EQ(differences, 0);
  surveydata_area_destroy(area);
  surveydata_area_destroy(prepared);
}

// Each thread reads a stretch of the same bytes; every record is read once.
TEST(CInterfaceThreads, ReadStretchesOfTheSameBytes) {
  ByteVector bytes;
  std::uint64_t total = 0;
  for (int i = 0; i < 3000; ++i) {
    TestSupport::Append(bytes, TestSupport::FrameOf(12 + static_cast<std::size_t>(i % 300)));
    ++total;
  }
  std::atomic<std::uint64_t> count = 0;
  std::atomic<std::uint64_t> told = 0;
  InThreads([&](int number) {
    const std::uint64_t begin = bytes.size() * static_cast<std::uint64_t>(number) / kThreads;
    const std::uint64_t end = bytes.size() * static_cast<std::uint64_t>(number + 1) / kThreads;
    surveydata_reader* reader = nullptr;
    EXPECT_EQ(surveydata_reader_open_bytes(bytes.data(), bytes.size(), begin, end, &reader),
              SURVEYDATA_OK);
    const auto progress = [](void* context, std::uint64_t) {
      ++*static_cast<std::atomic<std::uint64_t>*>(context);
      return std::int32_t{0};
    };
    EXPECT_EQ(surveydata_reader_set_progress(reader, progress, &told), SURVEYDATA_OK);
    surveydata_entry entry{};
    entry.struct_size = sizeof(entry);
    surveydata_measurement measurement{};
    measurement.struct_size = sizeof(measurement);
    while (surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry) == SURVEYDATA_OK) {
      EXPECT_EQ(surveydata_decode(entry.bytes, entry.size, &measurement), SURVEYDATA_OK);
      ++count;
    }
    surveydata_reader_close(reader);
  });
  EXPECT_EQ(count, total);
}

const ByteVector& Sample() {
  static const ByteVector bytes = TestSupport::ReadBytes(SURVEYDATA_TEST_DATA "valley_drive.rec");
  return bytes;
}

surveydata_reader* OpenSample() {
  surveydata_reader* reader = nullptr;
  EXPECT_EQ(
      surveydata_reader_open_bytes(Sample().data(), Sample().size(), 0, SURVEYDATA_NO_END, &reader),
      SURVEYDATA_OK);
  return reader;
}

std::size_t BytesOf(std::uint32_t type, std::size_t values) {
  switch (type) {
    case SURVEYDATA_COLUMN_BOOL:
      return (values + 7) / 8;
    case SURVEYDATA_COLUMN_UINT8:
    case SURVEYDATA_COLUMN_TEXT:
      return values;
    case SURVEYDATA_COLUMN_UINT16:
    case SURVEYDATA_COLUMN_UINT16_LIST:
      return 2 * values;
    case SURVEYDATA_COLUMN_UINT64:
    case SURVEYDATA_COLUMN_FLOAT64:
      return 8 * values;
    default:
      return 4 * values;
  }
}

// The values of all columns, in batches of 100 rows. Closes the reader.
ByteVector ReadAllColumns(surveydata_reader* reader) {
  constexpr std::size_t kRows = 100;
  std::size_t count = 0;
  surveydata_columns(nullptr, sizeof(surveydata_column), 0, &count);
  std::vector<surveydata_column> columns(count);
  EXPECT_EQ(surveydata_columns(columns.data(), sizeof(columns[0]), count, &count), SURVEYDATA_OK);
  std::vector<std::vector<std::uint64_t>> values(count);  // aligned for every type
  std::vector<std::vector<std::int64_t>> offsets(count, std::vector<std::int64_t>(kRows + 1));
  std::vector<ByteVector> validity(count, ByteVector(kRows));
  std::vector<surveydata_column_buffer> buffers(count);
  for (std::size_t i = 0; i < count; ++i) {
    values[i].resize(kRows * (columns[i].largest / 8 + 1));
    buffers[i] = {};
    buffers[i].column = static_cast<std::uint32_t>(i);
    buffers[i].values = values[i].data();
    buffers[i].values_size = values[i].size() * sizeof(std::uint64_t);
    buffers[i].offsets = columns[i].largest > 0 ? offsets[i].data() : nullptr;
    buffers[i].validity = validity[i].data();
  }
  ByteVector read;
  std::size_t rows = 0;
  while (surveydata_reader_read_columns(reader, buffers.data(), sizeof(buffers[0]), count, kRows,
                                        &rows, nullptr) == SURVEYDATA_OK) {
    for (std::size_t i = 0; i < count; ++i) {
      const bool hasOffsets = columns[i].largest > 0;
      const auto* const begin = reinterpret_cast<const std::uint8_t*>(values[i].data());
      const std::size_t size =
          BytesOf(columns[i].type, hasOffsets ? static_cast<std::size_t>(offsets[i][rows]) : rows);
      read.insert(read.end(), begin, begin + size);
      read.push_back(static_cast<std::uint8_t>(buffers[i].absent));
    }
  }
  surveydata_reader_close(reader);
  return read;
}

TEST(CInterfaceThreads, ReadColumnsOfTheSameFileAndBytes) {
  const TestSupport::TempFileC file(Sample());
  const std::string path = file.Path().string();
  const ByteVector expected = ReadAllColumns(OpenSample());
  EXPECT_GT(expected.size(), 100U * 100U);
  std::atomic<int> differences = 0;
  InThreads([&](int number) {
    for (int round = 0; round < 4; ++round) {
      surveydata_reader* reader = nullptr;
      if ((number + round) % 2 == 0) {
        reader = OpenSample();
      } else {
        EXPECT_EQ(surveydata_reader_open_file(path.c_str(), 0, SURVEYDATA_NO_END, &reader),
                  SURVEYDATA_OK);
      }
      if (ReadAllColumns(reader) != expected) ++differences;
    }
  });
  EXPECT_EQ(differences, 0);
}

// The columns of each batch, which share its memory, are read and released in several threads.
TEST(CInterfaceThreads, ReleaseTheColumnsOfTheSameBatches) {
  std::array<std::vector<ArrowArray>, kThreads> ofThreads;
  ArrowArrayStream stream = {};
  ASSERT_EQ(surveydata_reader_arrow_stream(OpenSample(), nullptr, 0, 50, &stream), SURVEYDATA_OK);
  std::int64_t values = 0;
  std::size_t batches = 0;
  for (;; ++batches) {
    ArrowArray batch = {};
    ASSERT_EQ(stream.get_next(&stream, &batch), 0);
    if (batch.release == nullptr) break;
    values += batch.length * batch.n_children;
    for (std::int64_t i = 0; i < batch.n_children; ++i) {
      ofThreads[static_cast<std::size_t>(i) % kThreads].push_back(*batch.children[i]);
      batch.children[i]->release = nullptr;
    }
    batch.release(&batch);
  }
  stream.release(&stream);
  EXPECT_GT(batches, 2U);
  std::atomic<std::int64_t> read = 0;
  std::atomic<std::int64_t> bytes = 0;  // read from the memory that the columns share
  InThreads([&](int number) {
    for (ArrowArray& column : ofThreads[static_cast<std::size_t>(number)]) {
      read += column.length;
      bytes += *static_cast<const std::uint8_t*>(column.buffers[1]);
      column.release(&column);
      EXPECT_EQ(column.release, nullptr);
    }
  });
  EXPECT_EQ(read, values);
  EXPECT_GT(bytes, 0);
}

}  // namespace
