#ifndef SURVEYDATA_TOOLS_RECORD_DIFFERENCE_WRITER_H_
#define SURVEYDATA_TOOLS_RECORD_DIFFERENCE_WRITER_H_

#include <cstdint>
#include <string>
#include <string_view>

#include <output/colours.h>
#include <output/json_writer.h>
#include <record/compare_records.h>
#include <record/piece_output.h>

namespace Tool {

/// How many records are the same, and how many differ.
struct DifferenceCounts {
  std::uint64_t same = 0;
  std::uint64_t changed = 0;
  std::uint64_t removed = 0;
  std::uint64_t added = 0;

  bool AreSame() const { return changed + removed + added == 0; }
  void Add(const DifferenceCounts& more);
  /// "12 the same, 1 changed, 0 removed, 2 added"
  std::string ToText() const;
  void Write(JsonWriterC& line) const;
};

/// The format of differences.
struct DifferenceFormat {
  bool isJson = false;
  ColoursC colours;
};

/// Writes a line for each difference of two files, and counts them.
class DifferenceWriterC : public RecordDifferencesI {
 public:
  /// In JSON, each line begins with `file` unless it is empty. The others must outlive the writer.
  DifferenceWriterC(PieceOutputC& out, const DifferenceFormat& format, std::string_view file)
      : out_(out), format_(format), file_(file) {}

  void Same(std::uint64_t count) override { counts_.same += count; }
  void Removed(const ComparedRecord& a) override;
  void Added(const ComparedRecord& b) override;
  void Changed(const ComparedRecord& a, const ComparedRecord& b) override;

  const DifferenceCounts& GetCounts() const { return counts_; }

 private:
  void Write(std::string_view change, Colour colour, const ComparedRecord* a,
             const ComparedRecord* b);

  PieceOutputC& out_;
  const DifferenceFormat& format_;
  std::string_view file_;
  DifferenceCounts counts_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_DIFFERENCE_WRITER_H_
