#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/record_frame.h>
#include <surveydata/surveydata.h>

#include "tests/object_model/fixed_string_model.h"
#include "tests/support/faults.h"
#include "tests/support/pairs.h"
#include "tests/support/temp_file.h"
#include "tests/support/test_each.h"

// Tests how many heap blocks an operation allocates, and its effect when an allocation fails.

namespace {

using Faults::FailuresBeforeSuccess;

// The number of blocks that `work` allocates.
template <class Work>
std::size_t Allocations(Work work) {
  const std::size_t before = Faults::Allocations();
  work();
  return Faults::Allocations() - before;
}

template <class Work>
std::size_t Releases(Work work) {
  const std::size_t before = Faults::Releases();
  work();
  return Faults::Releases() - before;
}

TEST(Heap, IsCounted) {
  int* number = nullptr;
  EXPECT_EQ(Allocations([&] { number = new int(1); }), 1U);
  EXPECT_EQ(Releases([&] { delete number; }), 1U);
  EXPECT_EQ(Allocations([] { std::string(100, 'x'); }), 1U);
}

template <class P>
class PairHeap : public testing::Test {};
TEST_EACH_SUITE(PairHeap, Pairs::AllPairs);

TEST_EACH(PairHeap, AnObjectIsTwoBlocksAndACopyTwoMore) {
  using Public = typename TypeParam::PublicT;
  using Impl = typename TypeParam::ImplT;
  Public* object = nullptr;
  EXPECT_EQ(Allocations([&] { object = new Public; }), 2U);
  if constexpr (std::is_copy_constructible_v<Public>) {
    Public* copy = nullptr;
    EXPECT_EQ(Allocations([&] { copy = new Public(*object); }), 2U);
    EXPECT_EQ(Allocations([&] { *copy = *object; }), 0U);
    EXPECT_EQ(Releases([&] { delete copy; }), 2U);
  }
  EXPECT_EQ(Releases([&] { delete object; }), 2U);
  EXPECT_EQ(Allocations([] { Public onStack; }), 1U);

  Impl impl;
  EXPECT_EQ(Allocations([&] { Impl another(impl); }), 0U);
  EXPECT_EQ(Allocations([&] { impl.GetBase(); }), 1U);  // the public object
  EXPECT_EQ(Allocations([&] { impl.GetBase(); }), 0U);
}

TEST_EACH(PairHeap, WithoutMemoryNothingIsLeftBehind) {
  using Public = typename TypeParam::PublicT;
  using Impl = typename TypeParam::ImplT;
  Public* object = nullptr;
  EXPECT_EQ(FailuresBeforeSuccess([&] { object = new Public; }), 2U);
  if constexpr (std::is_copy_constructible_v<Public>) {
    Pairs::Mark(*object->GetImpl());
    const std::string before = Pairs::Shown(*object->GetImpl());
    Public* copy = nullptr;
    EXPECT_GE(FailuresBeforeSuccess([&] { copy = new Public(*object); }), 2U);
    EXPECT_EQ(Pairs::Shown(*object->GetImpl()), before);
    EXPECT_EQ(Pairs::Shown(*copy->GetImpl()), before);
    delete copy;
  }
  delete object;

  Impl impl;
  EXPECT_EQ(FailuresBeforeSuccess([&] { impl.GetBase(); }), 1U);
  ASSERT_NE(impl.GetBase(), nullptr);
  EXPECT_EQ(impl.GetBase()->GetImpl(), &impl);
}

TEST(FixedStringHeap, NoOperationUsesIt) {
  const std::string narrow(300, 'x');
  const std::u16string wide(300, u'x');
  const std::wstring wider(300, L'x');
  const std::string utf8 = "caf\xC3\xA9 \xE2\x82\xAC";
  Model::ForEachCapacity([&](auto capacity) {
    constexpr std::uint16_t N = capacity();
    using String = API::FixedStringC<N>;
    char bytes[3 * N + 1];
    bool isTrue = false;
    EXPECT_EQ(Allocations([&] {
                for (const int from : {300 - N - 1, 300 - N + 0, 295}) {
                  String a(narrow.c_str() + from);
                  const String b(wide.c_str() + from);
                  const String c(wider.c_str() + from);
                  a = b;
                  a += narrow.c_str() + from;
                  a += wide.c_str() + from;
                  a += wider.c_str() + from;
                  a = b + c;
                  a += a;
                  isTrue = a == b || a != c || a <= b;
                  a.SubString(1, 3);
                  a += 'x';
                  a += u'x';
                  a += L'x';
                  a = String('x') + String(u'x') + String(L'x') + String();
                  a.ToNarrow(bytes, sizeof(bytes));
                  a.ToInt();
                  a.ToLong();
                  a.ToDouble();
                  b.ToUtf8(bytes, sizeof(bytes));
                  std::size_t length = utf8.size();
                  a.FromUtf8(utf8.c_str(), &length);
                  a.Format("%d %s", 12, "ab");
                  a.Format("%s", narrow.c_str());
                }
              }),
              0U);
    EXPECT_TRUE(isTrue);
  });
}

// The offsets of the measurement frames of a sample file.
std::vector<std::uint32_t> FramesIn(const std::vector<std::uint8_t>& file) {
  using SDI::RecordFrame::HasRightChecksum;
  using SDI::RecordFrame::Header;
  using SDI::RecordFrame::kHeaderSize;
  std::vector<std::uint32_t> offsets;
  for (std::size_t at = 0; at + kHeaderSize <= file.size(); ++at) {
    const Header header = Header::Load(file.data() + at);
    if (header.IsMeasurement() && at + header.Size() <= file.size() &&
        HasRightChecksum(file.data() + at, header.length)) {
      offsets.push_back(static_cast<std::uint32_t>(at));
    }
  }
  return offsets;
}

TEST(RecordHeap, ReadingTakesNoneBesidesTheFileBufferOfTheRuntime) {
  const std::string path = SURVEYDATA_TEST_DATA "valley_drive.rec";
  TestSupport::TempFolderC folder;
  const auto copy = folder.Path() / "drive.rec";  // GPSRecordFileC needs write permission
  std::filesystem::copy_file(path, copy);
  const auto file = TestSupport::ReadBytes(path);
  const auto offsets = FramesIn(file);
  ASSERT_GT(offsets.size(), 100U);
  SDI::GPSMeasDataImplC measurement;
  auto info = TestSupport::InfoFor(copy);
  std::size_t bad = 0;
  EXPECT_EQ(Allocations([&] {
              for (const std::uint32_t offset : offsets) {
                info.offset = offset;
                const auto result = SDI::GPSRecordFileC::ReadGPSMeasData(&measurement, &info);
                bad += result != SDI::GPSRecordFileC::kDone;
              }
            }),
            0U);
  EXPECT_EQ(Allocations([&] {
              for (const std::uint32_t offset : offsets) {
                const auto* const frame = file.data() + offset;
                const auto size = SDI::RecordFrame::Header::Load(frame).Size();
                bad += !SDI::RecordFrame::Decode({frame, size}, measurement, info).IsDone();
              }
            }),
            0U);
  EXPECT_EQ(Allocations([&] {
              info.offset = offsets.front();
              bad += SDI::GPSRecordFileC::WriteGPSMeasData(&measurement, &info) !=
                     SDI::GPSRecordFileC::kDone;
            }),
            0U);
  EXPECT_EQ(bad, 0U);
}

}  // namespace
