#include <type_traits>
#include <utility>

#include <fmt/format.h>

#include <surveydata/gnss/frame_explanation.h>

#include <command_line/text.h>
#include <record/explain_frame.h>

namespace Tool {
namespace {

using SDI::RecordFrame::Field;
using SDI::RecordFrame::FieldPlace;

// Lists the fields, with their values as text.
class FieldListC {
 public:
  explicit FieldListC(std::vector<FrameField>& fields) : fields_(fields) {}

  template <class Value>
  void Number(const FieldPlace& place, Value value) {
    if constexpr (std::is_integral_v<Value>) {
      const bool isBits = place.field == Field::kFlags1 || place.field == Field::kFlags2 ||
                          place.field == Field::kChecksum;
      Add(place, isBits ? fmt::format("{:#06x}", value) : fmt::format("{}", value));
    } else {
      Add(place, fmt::format("{}", value));
    }
  }
  void Text(const FieldPlace& place, std::u16string_view text) {
    Add(place, fmt::format("\"{}\"", ToVisible(text)));
  }
  void Ignored(const FieldPlace& place) { Add(place, ""); }

 private:
  void Add(const FieldPlace& place, std::string value) {
    fields_.push_back({place.at, place.size, place.block, place.field, std::move(value)});
  }

  std::vector<FrameField>& fields_;
};

}  // namespace

std::vector<FrameField> ExplainFrame(std::span<const std::uint8_t> frame) {
  std::vector<FrameField> fields;
  FieldListC list(fields);
  SDI::RecordFrame::Explain(frame, list);
  return fields;
}

}  // namespace Tool
