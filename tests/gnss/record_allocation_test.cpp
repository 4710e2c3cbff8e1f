// Counts the allocations of C++ in this program. A test program of its own, because it replaces the
// allocation functions; not inlined, so that the compiler sees them as a pair.

#include <cstddef>
#include <cstdlib>
#include <new>

#include <gtest/gtest.h>
#include <tests/support/frame_builder.h>
#include <tests/support/temp_file.h>

#include <surveydata/gnss/gps_record_file.h>
#include <surveydata/gnss/record_frame.h>

namespace {

std::size_t allocations = 0;

}  // namespace

[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocations;
  if (void* const block = std::malloc(size)) return block;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* block) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete(void* block, std::size_t /*size*/) noexcept {
  std::free(block);
}

namespace {

using SDI::GPSMeasDataImplC;
using SDI::GPSRecordFileC;
using SDI::GPSRecordFileInfo;

TEST(RecordAllocation, IsCounted) {
  const std::size_t before = allocations;
  delete new GPSMeasDataImplC;
  EXPECT_EQ(allocations, before + 1);
}

TEST(RecordAllocation, NeitherDecodingNorReadingNorWritingAllocates) {
  std::mt19937_64 random(1);
  const TestSupport::ByteVector frame = TestSupport::WellFormedFrame(0x3FFF, 0x3FFF, random);
  const TestSupport::TempFileC file(frame);
  GPSMeasDataImplC measurement;
  GPSRecordFileInfo info = file.Info();
  const std::size_t before = allocations;
  const std::uint32_t decoded = SDI::RecordFrame::Decode(frame, measurement, info);
  const std::uint32_t read = GPSRecordFileC::ReadGPSMeasData(&measurement, &info);
  const std::uint32_t written = GPSRecordFileC::WriteGPSMeasData(&measurement, &info);
  EXPECT_EQ(allocations, before);
  EXPECT_EQ(decoded, GPSRecordFileC::kDone);
  EXPECT_EQ(read, GPSRecordFileC::kDone);
  EXPECT_EQ(written, GPSRecordFileC::kDone);
}

}  // namespace
