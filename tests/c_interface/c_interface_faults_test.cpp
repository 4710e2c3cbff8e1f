// Exceptions become statuses of the C interface: every allocation of every function fails once, and
// callbacks throw. Nothing leaks, outputs stay unchanged, and the next call succeeds.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <new>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/c_interface/surveydata.h>

#include "tests/support/faults.h"
#include "tests/support/frame_builder.h"

namespace {

using Faults::Allocations;
using Faults::Releases;
using TestSupport::Append;
using TestSupport::ByteVector;
using TestSupport::FrameOf;

// Calls `work`, each time with one more allocation, until it no longer runs out of memory and
// returns `expected`. Returns the number of failures.
template <class Work, class Check>
std::size_t FailuresBefore(surveydata_status expected, Work work, Check afterFailure) {
  for (std::size_t failures = 0;; ++failures) {
    SCOPED_TRACE(testing::Message() << "after " << failures << " allocations");
    const std::size_t taken = Allocations();
    const std::size_t released = Releases();
    Faults::LimitAllocations(failures);
    const surveydata_status status = work();
    Faults::LimitAllocations(Faults::kNever);
    if (status != SURVEYDATA_OUT_OF_MEMORY) {
      EXPECT_EQ(status, expected);
      return failures;
    }
    EXPECT_EQ(Allocations() - taken, Releases() - released);
    afterFailure();
  }
}

// --- Readers

ByteVector DamagedFile() {
  ByteVector bytes;
  for (int i = 0; i < 600; ++i) {
    Append(bytes, FrameOf(20));
    bytes.back() ^= 1;
  }
  Append(bytes, FrameOf(30));
  return bytes;
}

struct Source {
  ByteVector bytes;
  int released = 0;
  std::function<void()> before = [] {};

  static std::int64_t ReadAt(void* context, std::uint64_t offset, std::uint8_t* to,
                             std::size_t count) {
    const Source& self = *static_cast<Source*>(context);
    self.before();
    const std::size_t left = self.bytes.size() - static_cast<std::size_t>(offset);
    count = std::min(count, left);
    std::memcpy(to, self.bytes.data() + offset, count);
    return static_cast<std::int64_t>(count);
  }
  static void Release(void* context) { ++static_cast<Source*>(context)->released; }

  surveydata_source Get() {
    return {sizeof(surveydata_source), 0, &ReadAt, &Release, this, bytes.size()};
  }
};

surveydata_reader* OpenSource(Source& source) {
  const surveydata_source given = source.Get();
  surveydata_reader* reader = nullptr;
  EXPECT_EQ(surveydata_reader_open_source(&given, 0, SURVEYDATA_NO_END, &reader), SURVEYDATA_OK);
  return reader;
}

TEST(CInterfaceFaults, AReaderIsOpenedOrNotCreated) {
  const ByteVector bytes = FrameOf(20);
  surveydata_reader* reader = nullptr;
  const auto isNull = [&] { EXPECT_EQ(reader, nullptr); };
  EXPECT_GE(FailuresBefore(
                SURVEYDATA_OK,
                [&] {
                  return surveydata_reader_open_bytes(bytes.data(), bytes.size(), 0,
                                                      SURVEYDATA_NO_END, &reader);
                },
                isNull),
            3U);
  surveydata_reader_close(reader);
  Source source{bytes};
  const surveydata_source given = source.Get();
  EXPECT_GE(
      FailuresBefore(
          SURVEYDATA_OK,
          [&] { return surveydata_reader_open_source(&given, 0, SURVEYDATA_NO_END, &reader); },
          [&] {
            isNull();
            EXPECT_EQ(source.released, 0);  // the caller still owns it
          }),
      3U);
  surveydata_reader_close(reader);
  EXPECT_EQ(source.released, 1);
  EXPECT_GE(FailuresBefore(
                SURVEYDATA_NO_SUCH_FILE,
                [&] {
                  return surveydata_reader_open_file("no/such/file", 0, SURVEYDATA_NO_END, &reader);
                },
                isNull),
            3U);
}

TEST(CInterfaceFaults, ReadingTakesNoMemory) {
  const ByteVector bytes = DamagedFile();
  const Faults::BalanceC balance;
  surveydata_reader* reader = nullptr;
  ASSERT_EQ(surveydata_reader_open_bytes(bytes.data(), bytes.size(), 0, SURVEYDATA_NO_END, &reader),
            SURVEYDATA_OK);
  surveydata_entry entry{};
  entry.struct_size = sizeof(entry);
  surveydata_measurement measurement{};
  measurement.struct_size = sizeof(measurement);
  std::array<surveydata_field, SURVEYDATA_MOST_FIELDS> fields;
  std::size_t count = 0;
  std::size_t size = 0;
  std::array<std::uint8_t, SURVEYDATA_LONGEST_FRAME> frame;
  Faults::LimitAllocations(0);
  const surveydata_status found = surveydata_reader_next(reader, SURVEYDATA_MEASUREMENT, &entry);
  const surveydata_status decoded = surveydata_decode(entry.bytes, entry.size, &measurement);
  const surveydata_status explained = surveydata_fields(entry.bytes, entry.size, fields.data(),
                                                        sizeof(fields[0]), fields.size(), &count);
  const surveydata_status encoded =
      surveydata_encode(&measurement, frame.data(), frame.size(), &size, nullptr);
  Faults::LimitAllocations(Faults::kNever);
  EXPECT_EQ(found, SURVEYDATA_OK);
  EXPECT_EQ(decoded, SURVEYDATA_OK);
  EXPECT_EQ(explained, SURVEYDATA_OK);
  EXPECT_EQ(encoded, SURVEYDATA_OK);
  surveydata_reader_close(reader);
}

// As documented, when both entries and columns are read.
TEST(CInterfaceFaults, AReaderTakesLittleMemory) {
  const ByteVector bytes = DamagedFile();
  const struct {
    bool isInMemory;
    std::uint64_t begin;
    std::size_t least, most;
  } cases[] = {{true, 0, 80'000, 90'000},
               {true, 1, 97'000, 107'000},
               {false, 0, 335'000, 355'000},
               {false, 1, 352'000, 372'000}};
  for (const auto& [isInMemory, begin, least, most] : cases) {
    Source source{bytes};
    const surveydata_source given = source.Get();
    const std::size_t before = Faults::AllocatedBytes();
    surveydata_reader* reader = nullptr;
    const surveydata_status status =
        isInMemory ? surveydata_reader_open_bytes(bytes.data(), bytes.size(), begin,
                                                  SURVEYDATA_NO_END, &reader)
                   : surveydata_reader_open_source(&given, begin, SURVEYDATA_NO_END, &reader);
    ASSERT_EQ(status, SURVEYDATA_OK);
    surveydata_entry entry{};
    entry.struct_size = sizeof(entry);
    EXPECT_EQ(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_OK);
    std::size_t rows = 0;
    EXPECT_EQ(surveydata_reader_read_columns(reader, nullptr, sizeof(surveydata_column_buffer), 0,
                                             1, &rows, nullptr),
              SURVEYDATA_OK);
    const std::size_t taken = Faults::AllocatedBytes() - before;
    surveydata_reader_close(reader);
    EXPECT_LE(taken, most);
    EXPECT_GE(taken, least);
  }
}

// Setting up the report of damaged headers, or of progress, may allocate memory. No entry is
// skipped if that fails.
TEST(CInterfaceFaults, EntriesAreGivenDespiteFailures) {
  const ByteVector bytes = DamagedFile();
  surveydata_reader* reader = nullptr;
  ASSERT_EQ(surveydata_reader_open_bytes(bytes.data(), bytes.size(), 0, SURVEYDATA_NO_END, &reader),
            SURVEYDATA_OK);
  const auto progress = [](void*, std::uint64_t) { return std::int32_t{0}; };
  FailuresBefore(
      SURVEYDATA_OK, [&] { return surveydata_reader_set_progress(reader, progress, nullptr); },
      [] {});
  surveydata_entry entry{};
  entry.struct_size = sizeof(entry);
  for (std::uint64_t i = 0; i < 600; ++i) {
    FailuresBefore(
        SURVEYDATA_OK,
        [&] { return surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry); }, [] {});
    ASSERT_EQ(entry.kind, std::uint32_t{SURVEYDATA_DAMAGED_HEADER});
    ASSERT_EQ(entry.offset, i * 27);
  }
  FailuresBefore(
      SURVEYDATA_OK, [&] { return surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry); },
      [] {});
  EXPECT_EQ(entry.kind, std::uint32_t{SURVEYDATA_GAP});
  EXPECT_EQ(entry.size, 600U * 27);
  surveydata_reader_close(reader);
}

TEST(CInterfaceFaults, FunctionsOfTheCallerMayThrow) {
  const struct {
    std::function<void()> raise;
    surveydata_status status;
  } cases[] = {{[] { throw std::runtime_error("thrown"); }, SURVEYDATA_FAILED},
               {[] { throw 7; }, SURVEYDATA_FAILED},
               {[] { throw std::bad_alloc(); }, SURVEYDATA_OUT_OF_MEMORY},
               {[] { throw std::length_error("thrown"); }, SURVEYDATA_OUT_OF_MEMORY}};
  for (const auto& [raise, status] : cases) {
    Source source{FrameOf(20)};
    source.before = raise;
    surveydata_reader* const reader = OpenSource(source);
    surveydata_entry entry{};
    entry.struct_size = sizeof(entry);
    EXPECT_EQ(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), status);
    EXPECT_EQ(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), status);
    EXPECT_EQ(entry.kind, 0U);
    source.before = [] {};
    EXPECT_EQ(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_OK);
    EXPECT_EQ(entry.size, 27U);
    surveydata_reader_close(reader);

    // A progress callback throws.
    Source large{ByteVector(3 << 20, 0x9C)};
    surveydata_reader* const walker = OpenSource(large);
    const auto progress = [](void* context, std::uint64_t) {
      (*static_cast<const std::function<void()>*>(context))();
      return std::int32_t{0};
    };
    std::function<void()> thrown = raise;
    ASSERT_EQ(surveydata_reader_set_progress(walker, progress, &thrown), SURVEYDATA_OK);
    EXPECT_EQ(surveydata_reader_next(walker, SURVEYDATA_ALL_ENTRIES, &entry), status);
    thrown = [] {};
    EXPECT_EQ(surveydata_reader_next(walker, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_OK);
    EXPECT_EQ(entry.offset, 0U);
    EXPECT_EQ(entry.size, large.bytes.size());
    surveydata_reader_close(walker);
  }
}

// --- Frames and files

TEST(CInterfaceFaults, RecordsAreAppendedOrNot) {
  const ByteVector bytes = FrameOf(20);
  const std::string name = testing::TempDir() + "c_interface_faults_test.rec";
  std::remove(name.c_str());
  FailuresBefore(
      SURVEYDATA_OK, [&] { return surveydata_append(name.c_str(), bytes.data(), bytes.size()); },
      [&] { EXPECT_EQ(std::fopen(name.c_str(), "rb"), nullptr); });
  std::remove(name.c_str());
}

// --- Areas

class CInterfaceAreaFaults : public testing::Test {
 protected:
  CInterfaceAreaFaults() {
    definition_.struct_size = sizeof(definition_);
    definition_.kind = SURVEYDATA_POLYGON;
    definition_.count = hz_.size();
    definition_.hz = hz_.data();
    definition_.v = v_.data();
    definition_.hz_step = definition_.v_step = 0.1;
  }

  surveydata_area* Make() const {
    surveydata_area* area = nullptr;
    EXPECT_EQ(surveydata_area_create(&definition_, &area), SURVEYDATA_OK);
    return area;
  }

  // Swaps two corners, so that edges cross.
  void MakeTie() { std::swap(v_[1], v_[2]); }

  std::array<double, 4> hz_ = {1.0, 2.0, 2.0, 1.0};
  std::array<double, 4> v_ = {1.0, 1.0, 1.5, 1.5};
  surveydata_area_definition definition_{};
};

TEST_F(CInterfaceAreaFaults, AnAreaIsCreatedOrDoesNotExist) {
  surveydata_area* area = nullptr;
  for (const std::uint32_t kind : {SURVEYDATA_RECTANGLE, SURVEYDATA_POLYGON, SURVEYDATA_DOME}) {
    definition_.kind = kind;
    EXPECT_GE(FailuresBefore(
                  SURVEYDATA_OK, [&] { return surveydata_area_create(&definition_, &area); },
                  [&] { EXPECT_EQ(area, nullptr); }),
              3U);
    surveydata_area* prepared = nullptr;
    for (const std::uint32_t questions : {SURVEYDATA_QUESTIONS_FEW, SURVEYDATA_QUESTIONS_MANY}) {
      EXPECT_GE(
          FailuresBefore(
              SURVEYDATA_OK, [&] { return surveydata_area_prepare(area, questions, &prepared); },
              [&] { EXPECT_EQ(prepared, nullptr); }),
          3U);
      surveydata_area_destroy(prepared);
    }
    surveydata_area_destroy(area);
  }
}

TEST_F(CInterfaceAreaFaults, AnswersAreGivenOrNot) {
  surveydata_area* const area = Make();
  surveydata_bounds bounds{};
  bounds.struct_size = sizeof(bounds);
  EXPECT_GE(FailuresBefore(
                SURVEYDATA_OK, [&] { return surveydata_area_bounds(area, &bounds); },
                [&] { EXPECT_EQ(bounds.hz_max, 0.0); }),
            1U);
  EXPECT_EQ(bounds.hz_max, 2.0);

  std::array<double, 4> outline = {7, 7, 7, 7};
  std::size_t count = 7;
  const auto untouched = [&] {
    EXPECT_EQ(count, 7U);
    EXPECT_EQ(outline[0], 7);
  };
  EXPECT_GE(FailuresBefore(
                SURVEYDATA_OK,
                [&] {
                  return surveydata_area_outline(area, 1.0, outline.data(), nullptr, nullptr, 4,
                                                 &count);
                },
                untouched),
            1U);
  EXPECT_EQ(count, 4U);

  std::int32_t inside = 7;
  EXPECT_GE(FailuresBefore(
                SURVEYDATA_OK, [&] { return surveydata_area_contains(area, 1.5, 1.2, &inside); },
                [&] { EXPECT_EQ(inside, 7); }),
            1U);
  EXPECT_EQ(inside, 1);
  const double hz = 1.5;
  const double v = 1.2;
  std::uint8_t answer = 7;
  EXPECT_GE(FailuresBefore(
                SURVEYDATA_OK,
                [&] { return surveydata_area_contains_many(area, &hz, 8, &v, 8, 1, &answer); },
                [&] { EXPECT_EQ(answer, 7); }),
            1U);
  EXPECT_EQ(answer, 1);

  surveydata_explanation why{};
  why.struct_size = sizeof(why);
  count = 7;
  EXPECT_GE(FailuresBefore(
                SURVEYDATA_OK,
                [&] {
                  return surveydata_area_explain(area, 1.5, 1.2, &why, nullptr,
                                                 sizeof(surveydata_crossing), 0, &count);
                },
                [&] {
                  EXPECT_EQ(count, 7U);
                  EXPECT_EQ(why.inside, 0);
                }),
            1U);
  EXPECT_EQ(why.inside, 1);
  surveydata_area_destroy(area);

  MakeTie();
  surveydata_area* const tie = Make();
  surveydata_fault fault{};
  count = 7;
  EXPECT_GE(FailuresBefore(
                SURVEYDATA_OK,
                [&] { return surveydata_area_faults(tie, &fault, sizeof(fault), 1, &count); },
                [&] {
                  EXPECT_EQ(count, 7U);
                  EXPECT_EQ(fault.rule, 0U);
                }),
            1U);
  EXPECT_EQ(fault.rule, std::uint32_t{SURVEYDATA_FAULT_CROSSING_EDGES});
  surveydata_area_destroy(tie);
}

TEST_F(CInterfaceAreaFaults, NothingIsLeftAfterFailures) {
  const Faults::BalanceC balance;
  surveydata_area* const area = Make();
  surveydata_area* prepared = nullptr;
  EXPECT_EQ(surveydata_area_prepare(area, SURVEYDATA_QUESTIONS_MANY, &prepared), SURVEYDATA_OK);
  surveydata_area_destroy(area);
  surveydata_area_destroy(prepared);
}

}  // namespace
