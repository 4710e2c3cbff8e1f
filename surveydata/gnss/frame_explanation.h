#ifndef SURVEYDATA_GNSS_FRAME_EXPLANATION_H_
#define SURVEYDATA_GNSS_FRAME_EXPLANATION_H_

#include <cstddef>
#include <optional>
#include <string_view>

#include <surveydata/gnss/frame_blocks.h>
#include <surveydata/gnss/record_frame.h>

/// \file
/// Internal: the meaning of each byte of a measurement frame.

namespace SDI::RecordFrame {

/// A run of bytes in a frame.
struct FieldPlace {
  std::size_t at;    ///< The first byte, counted from the start of the frame.
  std::size_t size;  ///< In bytes.
  Block block;
  std::optional<Field> field;  ///< Empty for bytes of a block that does not fit.
};

/// Reads as `FrameCursorC` does, and passes each field that it reads to a visitor.
template <class Visitor>
class ExplainingCursorC {
 public:
  ExplainingCursorC(Bytes bytes, std::size_t at, Visitor& visitor)
      : in_(bytes), at_(at), visitor_(visitor) {}

  void BeginBlock(Block block) { block_ = block; }

  template <class Value>
  void Number(Field field, Value& value) {
    in_.Number(field, value);
    if (in_.Ok()) visitor_.Number(Pass(field, sizeof(value)), value);
  }
  void Ignored(std::size_t count) {
    in_.Ignored(count);
    if (in_.Ok()) visitor_.Ignored(Pass(Field::kIgnored, count));
  }
  template <std::size_t N>
  void Units(Field field, char16_t (&units)[N]) {
    in_.Units(field, units);
    const std::u16string_view all(units, N);
    if (in_.Ok()) visitor_.Text(Pass(field, sizeof(units)), all.substr(0, all.find(u'\0')));
  }
  template <std::size_t N>
  void Text(Field field, char16_t (&text)[N]) {
    in_.Text(field, text);
    if (!in_.Ok()) return;  // nothing is known after the first missing byte
    const std::u16string_view kept(text);
    visitor_.Text(Pass(field, (kept.size() + 1) * sizeof(char16_t)), kept);
  }

  void Fail() { in_.Fail(); }
  bool Ok() const { return in_.Ok(); }

  std::size_t At() const { return at_; }

 private:
  FieldPlace Pass(Field field, std::size_t size) {
    const FieldPlace place{at_, size, block_, field};
    at_ += size;
    return place;
  }

  FrameCursorC in_;
  std::size_t at_;
  Block block_ = Block::kHeader;
  Visitor& visitor_;
};

/// Passes every byte of a measurement frame to a visitor once, in order: header, blocks, bytes
/// after the last block, checksum. If a block does not fit, the bytes from there to the checksum
/// are one place. `frame` has a valid header and length.
///
/// \param visitor  has `Number(const FieldPlace&, value)`, `Text(const FieldPlace&,
///                 std::u16string_view)` and `Ignored(const FieldPlace&)`.
template <class Visitor>
void Explain(Bytes frame, Visitor& visitor) {
  ExplainingCursorC<Visitor> front(frame.first(kHeaderSize), 0, visitor);
  Header header;
  header.Walk(front);

  ExplainingCursorC<Visitor> in(frame.subspan(kHeaderSize, header.length - kHeaderSize),
                                kHeaderSize, visitor);
  GPSMeasDataImplC measurement;
  GPSRecordFileInfo info;
  const std::optional<Block> bad = ReadPayload(in, Target{measurement, info});
  if (in.At() < header.length) {
    const std::size_t left = header.length - in.At();
    visitor.Ignored(bad ? FieldPlace{in.At(), left, *bad, {}}
                        : FieldPlace{in.At(), left, Block::kUnused, Field::kIgnored});
  }
  visitor.Number(FieldPlace{header.length, kChecksumSize, Block::kChecksum, Field::kChecksum},
                 boost::endian::load_little_u16(&frame[header.length]));
}

}  // namespace SDI::RecordFrame

#endif  // SURVEYDATA_GNSS_FRAME_EXPLANATION_H_
