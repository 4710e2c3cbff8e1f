#include <type_traits>
#include <utility>

#include <fmt/format.h>

#include <surveydata/gnss/frame_blocks.h>

#include <command_line/text.h>
#include <record/explain_frame.h>

namespace Tool {
namespace {

namespace Frame = SDI::RecordFrame;
using Frame::Block;
using Frame::Field;

std::string Told(std::u16string_view text) { return fmt::format("\"{}\"", ToVisible(text)); }

// Reads as the library's cursor does, and notes what it reads.
class ExplainingCursorC {
 public:
  ExplainingCursorC(Frame::Bytes bytes, std::size_t at, std::vector<FrameField>& fields)
      : in_(bytes), at_(at), fields_(fields) {}

  void BeginBlock(Block block) { block_ = block; }

  template <class Value>
  void Number(Field field, Value& value) {
    in_.Number(field, value);
    const bool isBits = field == Field::kFlags1 || field == Field::kFlags2;
    if constexpr (std::is_integral_v<Value>) {
      Note(field, sizeof(value), isBits ? fmt::format("{:#06x}", value) : fmt::format("{}", value));
    } else {
      Note(field, sizeof(value), fmt::format("{}", value));
    }
  }
  void Ignored(std::size_t count) {
    in_.Ignored(count);
    Note(Field::kIgnored, count, "");
  }
  template <std::size_t N>
  void Units(Field field, char16_t (&units)[N]) {
    in_.Units(field, units);
    const std::u16string_view all(units, N);
    Note(field, sizeof(units), Told(all.substr(0, all.find(u'\0'))));
  }
  template <std::size_t N>
  void Text(Field field, char16_t (&text)[N]) {
    in_.Text(field, text);
    const std::u16string_view kept(text);
    Note(field, (kept.size() + 1) * sizeof(char16_t), Told(kept));
  }

  void Fail() { in_.Fail(); }
  bool Ok() const { return in_.Ok(); }

  std::size_t At() const { return at_; }

 private:
  void Note(Field field, std::size_t size, std::string value) {
    if (!in_.Ok()) return;  // from the first byte that is missing on nothing is known
    fields_.push_back({at_, size, block_, field, std::move(value)});
    at_ += size;
  }

  Frame::FrameCursorC in_;
  std::size_t at_;
  Block block_ = Block::kHeader;
  std::vector<FrameField>& fields_;
};

}  // namespace

std::vector<FrameField> ExplainFrame(std::span<const std::uint8_t> frame) {
  std::vector<FrameField> fields;
  ExplainingCursorC front(frame.first(Frame::kHeaderSize), 0, fields);
  Frame::Header header;
  header.Walk(front);

  ExplainingCursorC in(frame.subspan(Frame::kHeaderSize, header.length - Frame::kHeaderSize),
                       Frame::kHeaderSize, fields);
  SDI::GPSMeasDataImplC measurement;
  SDI::GPSRecordFileInfo info;
  const std::optional<Block> bad = Frame::ReadPayload(in, Frame::Target{measurement, info});
  if (in.At() < header.length) {
    const std::size_t left = header.length - in.At();
    if (bad) {
      fields.push_back({in.At(), left, *bad, {}, ""});
    } else {
      fields.push_back({in.At(), left, Block::kUnused, Field::kIgnored, ""});
    }
  }
  fields.push_back({header.length, Frame::kChecksumSize, Block::kChecksum, Field::kChecksum,
                    fmt::format("{:#06x}", boost::endian::load_little_u16(&frame[header.length]))});
  return fields;
}

}  // namespace Tool
