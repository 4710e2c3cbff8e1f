#include <cstddef>
#include <string>

#include <gtest/gtest.h>

#include <record/explain_frame.h>

#include "tests/tools/program.h"

namespace {

TEST(ExplainFrame, ExplainsEveryByteOfEverySampleFrameOnce) {
  for (const char* const name : kSamples) {
    const Bytes file = ReadBytes(DataPath(std::string(name) + ".rec"));
    const auto index = SampleIndex(name);
    for (const auto& entry : index["frames"]) {
      SCOPED_TRACE(entry);
      const std::size_t size = entry["size"];
      std::size_t at = 0;
      for (const Tool::FrameField& field :
           Tool::ExplainFrame({&file[entry["offset"].get<std::size_t>()], size})) {
        EXPECT_EQ(field.at, at);
        EXPECT_GT(field.size, 0u);
        EXPECT_TRUE(field.field.has_value());
        at += field.size;
      }
      EXPECT_EQ(at, size);
    }
  }
}

// For any length of a frame whose flags words announce many blocks.
TEST(ExplainFrame, ExplainsEveryByteOnceForFramesOfAnyLength) {
  const Bytes sample = ReadBytes(DataPath("valley_drive.rec"));
  const Bytes body(sample.begin() + 965, sample.begin() + 960 + 465);
  for (std::size_t length = 0; length <= body.size(); ++length) {
    SCOPED_TRACE(length);
    const Bytes frame =
        MakeFrame(113, Bytes(body.begin(), body.begin() + static_cast<std::ptrdiff_t>(length)));
    std::size_t at = 0;
    bool fits = true;
    for (const Tool::FrameField& field : Tool::ExplainFrame(frame)) {
      EXPECT_EQ(field.at, at);
      at += field.size;
      fits = fits && field.field.has_value();
    }
    EXPECT_EQ(at, frame.size());
    // A frame that ends between two blocks has no bytes of an incomplete block to list; the reader
    // refuses it nevertheless.
    EXPECT_TRUE(fits || length < body.size());
  }
}

}  // namespace
