// The C interface returns the same results as the classes.
#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <span>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/surveydata.h>

#include "tests/c_interface/same_measurement.h"
#include "tests/gnss/record_pieces.h"
#include "tests/support/frame_builder.h"
#include "tests/support/ring_generator.h"

namespace {

using SDI::AreaExplanation;
using TestSupport::Append;
using TestSupport::ByteVector;

// --- Records

struct Entry {
  std::uint32_t kind;
  std::uint64_t offset;
  std::uint64_t size;
  std::uint32_t type;
  std::uint32_t damage;

  bool operator==(const Entry&) const = default;
};

ByteVector MixedFile(std::mt19937_64& random, std::size_t pieces) {
  ByteVector bytes;
  for (; pieces > 0; --pieces) {
    if (random() % 2 == 0) {
      Append(bytes, TestSupport::Piece(random, 600));
    } else {
      const auto flags1 = static_cast<unsigned>(random() & 0x33FF);
      Append(bytes, TestSupport::WellFormedFrame(flags1, static_cast<unsigned>(random() & 0x3FFF),
                                                 random));
    }
  }
  return bytes;
}

std::vector<Entry> ListByClass(std::span<const std::uint8_t> bytes, SDI::GPSRecordStretch stretch) {
  std::vector<Entry> list;
  SDI::GPSRecordReaderC reader(bytes, stretch);
  reader.SetReportDamaged([&](const SDI::GPSDamagedHeader& header) {
    list.push_back({SURVEYDATA_DAMAGED_HEADER, header.offset, header.size, 113,
                    static_cast<std::uint32_t>(header.damage) + 1});
  });
  for (SDI::GPSRecordEntry entry; reader.NextEntry(entry);) {
    const std::uint32_t kind = entry.isGap             ? SURVEYDATA_GAP
                               : entry.IsMeasurement() ? SURVEYDATA_MEASUREMENT
                                                       : SURVEYDATA_OTHER_RECORD;
    list.push_back({kind, entry.offset, entry.size, entry.type, 0});
  }
  return list;
}

std::vector<Entry> ListByC(std::span<const std::uint8_t> bytes, SDI::GPSRecordStretch stretch) {
  std::vector<Entry> list;
  surveydata_reader* reader = nullptr;
  EXPECT_EQ(
      surveydata_reader_open_bytes(bytes.data(), bytes.size(), stretch.begin, stretch.end, &reader),
      SURVEYDATA_OK);
  surveydata_entry entry{};
  entry.struct_size = sizeof(entry);
  while (surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry) == SURVEYDATA_OK) {
    list.push_back({entry.kind, entry.offset, entry.size, entry.record_type, entry.damage});
    if (entry.bytes != nullptr) {
      EXPECT_EQ(entry.bytes, bytes.data() + entry.offset);
    }
  }
  surveydata_reader_close(reader);
  return list;
}

TEST(CInterfaceReader, GivesTheResultsOfTheClass) {
  std::mt19937_64 random(20260201);
  for (int round = 0; round < 300; ++round) {
    SCOPED_TRACE(round);
    const ByteVector bytes = MixedFile(random, random() % 60);
    const std::uint64_t begin = random() % (bytes.size() + 1);
    const std::uint64_t end = begin + random() % (bytes.size() + 1);
    for (const SDI::GPSRecordStretch& stretch :
         {SDI::GPSRecordStretch(), SDI::GPSRecordStretch{begin, end}}) {
      EXPECT_EQ(ListByC(bytes, stretch), ListByClass(bytes, stretch));
    }
  }
}

void ExpectSameEncoding(const surveydata_measurement& measurement,
                        const SDI::GPSMeasDataImplC& expected, const SDI::GPSRecordFileInfo& info) {
  std::array<std::uint8_t, SURVEYDATA_LONGEST_FRAME> expectedFrame{};
  const SDI::GPSEncodeResult result = SDI::GPSRecordWriterC::Encode(expected, info, expectedFrame);
  std::array<std::uint8_t, SURVEYDATA_LONGEST_FRAME> frame{};
  std::size_t size = 1;
  std::uint32_t field = 1;
  const surveydata_status status =
      surveydata_encode(&measurement, frame.data(), frame.size(), &size, &field);
  EXPECT_EQ(status == SURVEYDATA_OK, result.IsDone());
  EXPECT_EQ(field, static_cast<std::uint32_t>(result.field));
  ASSERT_EQ(size, result.size);
  EXPECT_TRUE(std::equal(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(size),
                         expectedFrame.begin()));
}

TEST(CInterfaceDecode, GivesTheResultsOfTheClass) {
  std::mt19937_64 random(20260202);
  int done = 0;
  int misfits = 0;
  for (int round = 0; round < 3000; ++round) {
    SCOPED_TRACE(round);
    ByteVector frame = TestSupport::WellFormedFrame(
        static_cast<unsigned>(random() & 0x33FF), static_cast<unsigned>(random() & 0x3FFF), random);
    if (random() % 4 == 0) {  // blocks that may not fit
      frame[15 + random() % 2] ^= static_cast<std::uint8_t>(1U << random() % 8);
      TestSupport::Seal(frame);
    }
    SDI::GPSMeasDataImplC expected;
    SDI::GPSRecordFileInfo info;
    const SDI::GPSDecodeResult result = SDI::GPSRecordReaderC::Decode(frame, expected, info);
    surveydata_measurement measurement{};
    measurement.struct_size = sizeof(measurement);
    const surveydata_status status = surveydata_decode(frame.data(), frame.size(), &measurement);
    EXPECT_EQ(status == SURVEYDATA_OK, result.IsDone());
    EXPECT_EQ(status == SURVEYDATA_BLOCK_DOES_NOT_FIT, !result.IsDone());
    EXPECT_EQ(measurement.block, static_cast<std::uint32_t>(result.block));
    TestSupport::ExpectSame(measurement, expected, info);
    if (result.IsDone()) ExpectSameEncoding(measurement, expected, info);
    ++(result.IsDone() ? done : misfits);
  }
  EXPECT_GT(done, 1000);
  EXPECT_GT(misfits, 100);
}

// --- Areas

struct AreaPair {
  std::unique_ptr<SDI::ScanAreaC> area;
  std::array<surveydata_area*, 3> same{};  // unprepared, and prepared in both ways

  AreaPair() = default;
  AreaPair(AreaPair&&) = default;
  AreaPair& operator=(AreaPair&&) = delete;
  ~AreaPair() {
    for (surveydata_area* const each : same) surveydata_area_destroy(each);
  }
};

std::unique_ptr<SDI::ScanAreaC> MakeKind(std::uint32_t kind) {
  if (kind == SURVEYDATA_RECTANGLE) return std::make_unique<SDI::ScanRectangularAreaC>();
  if (kind == SURVEYDATA_DOME) return std::make_unique<SDI::ScanDomeAreaC>();
  return std::make_unique<SDI::ScanPolygonAreaC>();
}

AreaPair MakeAreas(RingGenerator& random) {
  const auto kind = static_cast<std::uint32_t>(
      random.Below(10) == 0 ? SURVEYDATA_DOME : 1 + (random.Below(4) != 0 ? 1 : 0));
  std::vector<GMAT::AnglePointC> ring =
      random.Ring(kind == SURVEYDATA_RECTANGLE ? 2 : 12, random.Below(4) == 0);
  std::vector<double> hz;
  std::vector<double> v;
  std::vector<double> distance;
  for (const GMAT::AnglePointC& p : ring) {
    hz.push_back(p.Hz);
    v.push_back(p.V);
    distance.push_back(random.Below(2) == 0 ? -1.0 : random.Uniform(1.0, 100.0));
  }
  const bool hasDistances = random.Below(2) == 0;
  surveydata_area_definition definition{};
  definition.struct_size = sizeof(definition);
  definition.kind = kind;
  definition.count = ring.size();
  definition.hz = hz.data();
  definition.v = v.data();
  definition.distance = hasDistances ? distance.data() : nullptr;
  definition.hz_step = random.Below(10) == 0 ? 0.0 : 0.1;
  definition.v_step = 0.2;

  AreaPair pair;
  pair.area = MakeKind(kind);
  pair.area->SetSteps(definition.hz_step, definition.v_step);
  for (std::size_t i = 0; i < ring.size(); ++i) {
    pair.area->AddPoint({hz[i], v[i], hasDistances ? distance[i] : -1.0});
  }
  EXPECT_EQ(surveydata_area_create(&definition, &pair.same[0]), SURVEYDATA_OK);
  EXPECT_EQ(surveydata_area_prepare(pair.same[0], SURVEYDATA_QUESTIONS_FEW, &pair.same[1]),
            SURVEYDATA_OK);
  EXPECT_EQ(surveydata_area_prepare(pair.same[0], SURVEYDATA_QUESTIONS_MANY, &pair.same[2]),
            SURVEYDATA_OK);
  return pair;
}

std::uint64_t IndexOf(std::size_t index) {
  return index == static_cast<std::size_t>(-1) ? SURVEYDATA_NONE : index;
}

void ExpectSameFaults(const surveydata_area* same, const SDI::ScanAreaC& area) {
  const std::vector<SDI::AreaFault> expected = SDI::FindAreaFaults(area);
  std::array<surveydata_fault, 64> faults;
  std::size_t count = 0;
  ASSERT_EQ(surveydata_area_faults(same, faults.data(), sizeof(faults[0]), faults.size(), &count),
            SURVEYDATA_OK);
  EXPECT_EQ(count == 0, area.IsValid());
  ASSERT_EQ(count, expected.size());
  for (std::size_t i = 0; i < count; ++i) {
    EXPECT_EQ(faults[i].rule, static_cast<std::uint32_t>(expected[i].rule));
    for (std::size_t k = 0; k < 2; ++k) {
      EXPECT_EQ(faults[i].points[k], IndexOf(expected[i].points[k]));
      EXPECT_EQ(faults[i].edges[k], IndexOf(expected[i].edges[k]));
    }
    EXPECT_EQ(faults[i].hz, expected[i].hz);
    EXPECT_EQ(faults[i].v, expected[i].v);
  }
}

void ExpectSameBounds(const surveydata_area* same, const SDI::ScanAreaC& area) {
  surveydata_bounds bounds{};
  bounds.struct_size = sizeof(bounds);
  SDI::ScanDefPointC low;
  SDI::ScanDefPointC high;
  const bool isValid = area.GetBoundingPoints(low, high, true);
  ASSERT_EQ(surveydata_area_bounds(same, &bounds), isValid ? SURVEYDATA_OK : SURVEYDATA_NOT_VALID);
  if (!isValid) return;
  EXPECT_EQ(bounds.hz_min, low.GetHz());
  EXPECT_EQ(bounds.v_min, low.GetV());
  EXPECT_EQ(bounds.hz_max, high.GetHz());
  EXPECT_EQ(bounds.v_max, high.GetV());
}

void ExpectSameOutline(const surveydata_area* same, const SDI::ScanAreaC& area) {
  std::vector<SDI::ScanDefPointC> expected;
  area.GetOutline(expected, 5.0);
  std::array<double, 64> hz;
  std::array<double, 64> v;
  std::array<double, 64> distance;
  std::size_t count = 0;
  ASSERT_EQ(surveydata_area_outline(same, 5.0, hz.data(), v.data(), distance.data(), 64, &count),
            SURVEYDATA_OK);
  ASSERT_EQ(count, expected.size());
  const auto bits = [](double value) { return std::bit_cast<std::uint64_t>(value); };
  for (std::size_t i = 0; i < count; ++i) {
    EXPECT_EQ(bits(hz[i]), bits(expected[i].GetHz()));
    EXPECT_EQ(bits(v[i]), bits(expected[i].GetV()));
    EXPECT_EQ(distance[i], expected[i].GetDistance());
  }
}

void ExpectSameExplanation(const surveydata_area* same, const AreaExplanation& expected, double hz,
                           double v) {
  surveydata_explanation why{};
  why.struct_size = sizeof(why);
  std::array<surveydata_crossing, 64> crossings;
  std::size_t count = 0;
  ASSERT_EQ(surveydata_area_explain(same, hz, v, &why, crossings.data(), sizeof(crossings[0]),
                                    crossings.size(), &count),
            SURVEYDATA_OK);
  EXPECT_EQ(why.inside, expected.isInside ? 1 : 0);
  EXPECT_EQ(why.rule, static_cast<std::uint32_t>(expected.rule));
  EXPECT_EQ(std::bit_cast<std::uint64_t>(why.hz), std::bit_cast<std::uint64_t>(expected.hz));
  EXPECT_EQ(std::bit_cast<std::uint64_t>(why.v), std::bit_cast<std::uint64_t>(expected.v));
  EXPECT_EQ(why.band_edge, IndexOf(expected.bandEdge));
  EXPECT_EQ(why.nearest_edge, IndexOf(expected.nearestEdge));
  EXPECT_EQ(why.distance, expected.distance);
  ASSERT_EQ(count, expected.crossings.size());
  for (std::size_t i = 0; i < count; ++i) {
    EXPECT_EQ(crossings[i].edge, expected.crossings[i].edge);
    EXPECT_EQ(crossings[i].v, expected.crossings[i].v);
    EXPECT_EQ(crossings[i].is_counted, expected.crossings[i].isCounted ? 1 : 0);
  }
}

TEST(CInterfaceArea, AnswersAsTheClassDoes) {
  RingGenerator random(20260203);
  int valid = 0;
  int inside = 0;
  for (int round = 0; round < 2000; ++round) {
    SCOPED_TRACE(round);
    const AreaPair pair = MakeAreas(random);
    valid += pair.area->IsValid() ? 1 : 0;
    std::vector<GMAT::AnglePointC> edges;
    double hzOrigin = 0.0;
    pair.area->GetImpl()->GetSphereArea().BuildEdgeList(edges, hzOrigin);
    for (const surveydata_area* const same : pair.same) {
      ExpectSameFaults(same, *pair.area);
      ExpectSameBounds(same, *pair.area);
      ExpectSameOutline(same, *pair.area);
    }
    for (int probe = 0; probe < 5; ++probe) {
      const GMAT::AnglePointC at = random.Probe(edges, hzOrigin, true);
      const bool isInside = pair.area->Contains(at.Hz, at.V);
      inside += isInside ? 1 : 0;
      const AreaExplanation why = pair.area->Explain(at.Hz, at.V);
      for (const surveydata_area* const same : pair.same) {
        std::int32_t answer = 7;
        EXPECT_EQ(surveydata_area_contains(same, at.Hz, at.V, &answer), SURVEYDATA_OK);
        EXPECT_EQ(answer, isInside ? 1 : 0);
        std::uint8_t inBatch = 7;
        EXPECT_EQ(surveydata_area_contains_many(same, &at.Hz, 0, &at.V, 0, 1, &inBatch),
                  SURVEYDATA_OK);
        EXPECT_EQ(inBatch, isInside ? 1 : 0);
        ExpectSameExplanation(same, why, at.Hz, at.V);
      }
    }
  }
  EXPECT_GT(valid, 500);
  EXPECT_GT(inside, 500);
}

}  // namespace
