#include <iterator>

#include <fmt/format.h>

#include <surveydata/gnss/record_frame.h>

#include <command_line/text.h>
#include <record/explain_frame.h>

namespace Tool {
namespace {

namespace Frame = SDI::RecordFrame;

std::string Told(std::u16string_view text) { return fmt::format("\"{}\"", ToPrintable(text)); }

// Reads as the library's cursor does, and notes what it reads.
class ExplainingCursorC {
 public:
  ExplainingCursorC(Frame::Bytes payload, std::size_t at, std::vector<FrameField>& fields)
      : in_(payload), at_(at), fields_(fields) {}

  void BeginBlock(const char* name) { block_ = name; }

  std::uint8_t U8(const char* field) { return Number(field, in_.U8(field)); }
  std::uint16_t U16(const char* field) { return Number(field, in_.U16(field)); }
  std::int32_t I32(const char* field) { return Number(field, in_.I32(field)); }
  float F32(const char* field) { return Number(field, in_.F32(field)); }
  void Ignored(std::size_t count) {
    in_.Ignored(count);
    Note("ignored", count, "");
  }
  template <std::size_t N>
  void Units(const char* field, char16_t (&units)[N]) {
    in_.Units(field, units);
    const std::u16string_view all(units, N);
    Note(field, sizeof(units), Told(all.substr(0, all.find(u'\0'))));
  }
  template <std::size_t N>
  void Text(const char* field, char16_t (&text)[N]) {
    in_.Text(field, text);
    const std::u16string_view kept(text);
    Note(field, (kept.size() + 1) * sizeof(char16_t), Told(kept));
  }

  void Fail() { in_.Fail(); }
  bool Ok() const { return in_.Ok(); }

  std::size_t At() const { return at_; }
  std::string_view Block() const { return block_; }

 private:
  template <class Value>
  Value Number(const char* field, Value value) {
    const bool isBits = std::string_view(field).starts_with("flags word");
    if constexpr (std::is_integral_v<Value>) {
      Note(field, sizeof(value), isBits ? fmt::format("{:#06x}", value) : fmt::format("{}", value));
    } else {
      Note(field, sizeof(value), fmt::format("{}", value));
    }
    return value;
  }

  void Note(const char* field, std::size_t size, std::string value) {
    if (!in_.Ok()) return;  // from the first byte that is missing on nothing is known
    fields_.push_back({at_, size, block_, field, std::move(value)});
    at_ += size;
  }

  Frame::FrameCursorC in_;
  std::size_t at_;
  std::string_view block_;
  std::vector<FrameField>& fields_;
};

}  // namespace

std::vector<FrameField> ExplainFrame(std::span<const std::uint8_t> frame) {
  const auto header = Frame::Header::Load(frame.data());
  std::vector<FrameField> fields{{0, 2, "header", "magic", fmt::format("{}", header.magic)},
                                 {2, 2, "header", "length", fmt::format("{}", header.length)},
                                 {4, 1, "header", "type", fmt::format("{}", header.type)}};
  ExplainingCursorC in(frame.subspan(Frame::kHeaderSize, header.length - Frame::kHeaderSize),
                       Frame::kHeaderSize, fields);
  SDI::GPSMeasDataImplC measurement;
  SDI::GPSRecordFileInfo info;
  const bool isGood = Frame::ReadPayload(in, Frame::Target{measurement, info});
  if (in.At() < header.length) {
    const std::size_t left = header.length - in.At();
    if (isGood) {
      fields.push_back({in.At(), left, "unused", "ignored", ""});
    } else {
      fields.push_back({in.At(), left, in.Block(), "does not fit", ""});
    }
  }
  fields.push_back({header.length, Frame::kChecksumSize, "checksum", "checksum",
                    fmt::format("{:#06x}", boost::endian::load_little_u16(&frame[header.length]))});
  return fields;
}

}  // namespace Tool
