// An arbitrary condition is refused with its place, or answers the same in parentheses and the
// opposite after `not`.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <command_line/command.h>
#include <record/decoded_record.h>
#include <record/record_condition.h>

namespace {

Tool::DecodedRecord FullRecord() {
  Tool::DecodedRecord record;
  record.offset = 960;
  record.size = 467;
  record.measurement.SetDOPs(SDI::GPSDOPsImplC(8, 13, 15));
  record.measurement.SetTotalPair(39, 25);
  record.measurement.SetTextA(u"a'b");
  return record;
}

}  // namespace

// Input: the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Tool::DecodedRecord records[] = {{}, FullRecord()};
  const std::string text(reinterpret_cast<const char*>(data), size);
  try {
    const Tool::RecordConditionC condition(text);
    const Tool::RecordConditionC same("(" + text + ")");
    const Tool::RecordConditionC opposite("not (" + text + ")");
    for (const Tool::DecodedRecord& record : records) {
      EXPECT_EQ(same.IsTrue(record), condition.IsTrue(record));
      EXPECT_EQ(opposite.IsTrue(record), !condition.IsTrue(record));
    }
  } catch (const Tool::ValueErrorC& error) {
    const std::string_view message = error.what();
    EXPECT_TRUE(message.starts_with("at character ") || message.starts_with("at its end: "))
        << message;
  }
  return 0;
}
