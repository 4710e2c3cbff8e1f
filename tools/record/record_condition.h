#ifndef SURVEYDATA_TOOLS_RECORD_RECORD_CONDITION_H_
#define SURVEYDATA_TOOLS_RECORD_RECORD_CONDITION_H_

#include <memory>
#include <string_view>

#include <record/decoded_record.h>

namespace Tool {

/// A condition on the columns of a measurement:
///
///     pdop < 4 and (used >= 6 or not present(name)) and antenna_is_vertical
///
/// A column is compared by = == != < <= > >= with a number, a text in single or double quotes
/// (doubled inside), true or false. A column that is true or false is a condition by itself.
/// `present(column)` is whether there is a value. `not` binds more tightly than `and`, which
/// binds more tightly than `or`. `in_view` and `used` are the columns total_first and total_second.
///
/// A comparison with an absent value or NaN is false, so that its `not` is true. Numbers are
/// compared with columns of the type float32 in single precision, with whole numbers exactly; texts
/// by the bytes of their UTF-8.
class RecordConditionC {
 public:
  /// \throw ValueErrorC with the place of the error, in characters, counted from 1
  explicit RecordConditionC(std::string_view text);
  RecordConditionC(RecordConditionC&& other) noexcept;
  RecordConditionC& operator=(RecordConditionC&& other) noexcept;
  ~RecordConditionC();

  bool IsTrue(const DecodedRecord& record) const;

  struct Term;

 private:
  std::unique_ptr<const Term> term_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_RECORD_CONDITION_H_
