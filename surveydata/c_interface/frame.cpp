#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>

#include <surveydata/c_interface/boundary.h>
#include <surveydata/c_interface/measurement.h>
#include <surveydata/gnss/frame_explanation.h>
#include <surveydata/gnss/gps_record_reader.h>
#include <surveydata/gnss/gps_record_writer.h>
#include <surveydata/gnss/record_change.h>
#include <surveydata/gnss/text_column.h>

using SDI::CInterface::Guarded;
using SDI::CInterface::HasKnownSize;
using SDI::CInterface::OutArray;
using SDI::RecordFrame::Bytes;
using SDI::RecordFrame::Field;
using SDI::RecordFrame::FieldPlace;

namespace {

// Checks a frame that is to be explained or changed.
surveydata_status Check(Bytes frame) {
  SDI::GPSMeasDataImplC measurement;
  SDI::GPSRecordFileInfo info;
  return SDI::CInterface::StatusOf(SDI::GPSRecordReaderC::Decode(frame, measurement, info).outcome);
}

std::size_t SizeOf(const std::uint8_t* frame) {
  return SDI::RecordFrame::Header::Load(frame).Size();
}

const char* UnitOf(Field field) {
  switch (field) {
    case Field::kTimeAOfWeek:
    case Field::kTimeBOfWeek:
    case Field::kExtraTimeOfWeek:
      return "ms";
    case Field::kHeight:
    case Field::kX:
    case Field::kY:
    case Field::kZ:
      return "m";
    case Field::kHDOP:
    case Field::kVDOP:
    case Field::kTDOP:
      return "0.1";
    default:
      return "";
  }
}

constexpr char32_t kReplacement = 0xFFFD;

bool IsControl(char32_t c) { return c < 0x20 || (0x7F <= c && c < 0xA0); }

// Writes the value of a field as text.
class ValueWriterC {
 public:
  explicit ValueWriterC(std::span<char> to) : at_(to.data()), end_(at_ + to.size()) {}

  void Append(std::u16string_view text) {
    for (std::size_t i = 0; i < text.size() && end_ - at_ >= 4;) {
      const char32_t c = SDI::TextColumn::TakeCharacter(text.data(), text.size(), i);
      at_ = SDI::TextColumn::PutCharacter(IsControl(c) ? kReplacement : c, at_);
    }
  }
  void AppendBits(std::uint16_t bits) {
    Put('0');
    Put('x');
    constexpr std::u32string_view kDigits = U"0123456789abcdef";
    for (int shift = 12; shift >= 0; shift -= 4) Put(kDigits[bits >> shift & 0xF]);
  }
  template <class Integer>
  void AppendInteger(Integer value) {
    at_ = std::to_chars(at_, end_, value).ptr;
  }
  // The shortest decimal that converts back to the same number, without an exponent if readable.
  void AppendFloat(float value) {
    const float size = std::fabs(value);
    const bool isPlain = size == 0.0F || (1e-4F <= size && size < 1e7F);
    const auto format = isPlain ? std::chars_format::fixed : std::chars_format::general;
    at_ = std::to_chars(at_, end_, value, format).ptr;
  }

 private:
  void Put(char32_t byte) {
    if (at_ != end_) *at_++ = static_cast<char>(byte);
  }

  char* at_;
  char* end_;
};

// Fills an array of fields.
class FieldListC {
 public:
  explicit FieldListC(std::span<surveydata_field> fields) : fields_(fields) {}

  template <class Value>
  void Number(const FieldPlace& place, Value value) {
    const bool isBits = place.field == Field::kFlags1 || place.field == Field::kFlags2 ||
                        place.field == Field::kChecksum;
    surveydata_field* const field = Add(place, isBits ? kBits : TypeOf<Value>());
    if (field == nullptr) return;
    field->number = static_cast<double>(value);
    ValueWriterC out = Writer(*field);
    if constexpr (std::is_floating_point_v<Value>) {
      out.AppendFloat(value);
    } else if (isBits) {
      out.AppendBits(static_cast<std::uint16_t>(value));
    } else {
      out.AppendInteger(value);
    }
  }
  void Text(const FieldPlace& place, std::u16string_view text) {
    if (surveydata_field* const field = Add(place, SURVEYDATA_FIELD_TEXT)) {
      Writer(*field).Append(text);
    }
  }
  void Ignored(const FieldPlace& place) { Add(place, SURVEYDATA_FIELD_BYTES); }

  std::size_t GetCount() const { return count_; }

 private:
  static constexpr std::uint32_t kBits = SURVEYDATA_FIELD_BITS;

  template <class Value>
  static std::uint32_t TypeOf() {
    if (std::is_floating_point_v<Value>) return SURVEYDATA_FIELD_FLOAT;
    if (std::is_signed_v<Value>) return SURVEYDATA_FIELD_SIGNED;
    return SURVEYDATA_FIELD_UNSIGNED;
  }
  static ValueWriterC Writer(surveydata_field& field) {
    return ValueWriterC(std::span(field.value).first<sizeof(field.value) - 1>());
  }

  // Null if there is no room for it.
  surveydata_field* Add(const FieldPlace& place, std::uint32_t type) {
    if (count_++ >= fields_.size()) return nullptr;
    surveydata_field& field = fields_[count_ - 1];
    field = {};
    field.offset = static_cast<std::uint32_t>(place.at);
    field.size = static_cast<std::uint32_t>(place.size);
    field.type = type;
    field.block = static_cast<std::uint32_t>(place.block);
    field.block_name = TextOf(place.block);
    field.name = place.field ? NameOf(*place.field) : "does not fit";
    field.unit = place.field ? UnitOf(*place.field) : "";
    return &field;
  }

  std::span<surveydata_field> fields_;
  std::size_t count_ = 0;
};

// Converts the changes of the caller; none if they are not valid.
std::optional<SDI::RecordFrame::Changes> ChangesOf(const surveydata_changes& from) {
  constexpr std::uint32_t kAll =
      SURVEYDATA_CHANGE_NAME | SURVEYDATA_CHANGE_NUMBER | SURVEYDATA_CHANGE_ANTENNA_HEIGHT;
  if ((from.which & ~kAll) != 0 || from.reserved != 0) return {};
  SDI::RecordFrame::Changes changes;
  if ((from.which & SURVEYDATA_CHANGE_NAME) != 0) {
    if (from.name == nullptr) return {};
    changes.name = from.name;
  }
  if ((from.which & SURVEYDATA_CHANGE_NUMBER) != 0) changes.number = from.number;
  if ((from.which & SURVEYDATA_CHANGE_ANTENNA_HEIGHT) != 0) {
    changes.antenna = {from.antenna_height, from.is_slant != 0};
  }
  return changes;
}

}  // namespace

surveydata_status surveydata_patch(const std::uint8_t* frame, std::size_t size,
                                   const surveydata_changes* changes, std::uint8_t* patched) {
  if (frame == nullptr || changes == nullptr || patched == nullptr) {
    return SURVEYDATA_INVALID_ARGUMENT;
  }
  if (!HasKnownSize(*changes)) return SURVEYDATA_WRONG_SIZE;
  return Guarded([&]() -> surveydata_status {
    const std::optional<SDI::RecordFrame::Changes> wanted = ChangesOf(*changes);
    if (!wanted) return SURVEYDATA_INVALID_ARGUMENT;
    const surveydata_status status = Check({frame, size});
    if (status != SURVEYDATA_OK) return status;
    std::array<std::uint8_t, SURVEYDATA_LONGEST_FRAME> changed;
    const std::size_t frameSize = SizeOf(frame);
    std::copy_n(frame, frameSize, changed.begin());
    if (!SDI::RecordFrame::Change(std::span(changed).first(frameSize), *wanted)) {
      return SURVEYDATA_NO_PLACE;
    }
    std::copy_n(changed.begin(), frameSize, patched);
    return SURVEYDATA_OK;
  });
}

surveydata_status surveydata_fields(const std::uint8_t* frame, std::size_t size,
                                    surveydata_field* fields, std::size_t field_size,
                                    std::size_t capacity, std::size_t* count) {
  const OutArray<surveydata_field> out{fields, capacity, count};
  if (frame == nullptr || !out.IsGood()) return SURVEYDATA_INVALID_ARGUMENT;
  if (field_size != sizeof(*fields)) return SURVEYDATA_WRONG_SIZE;
  return Guarded([&]() -> surveydata_status {
    const surveydata_status status = Check({frame, size});
    if (status != SURVEYDATA_OK && status != SURVEYDATA_BLOCK_DOES_NOT_FIT) return status;
    FieldListC list({fields, capacity});
    SDI::RecordFrame::Explain({frame, SizeOf(frame)}, list);
    return out.SetCount(list.GetCount());
  });
}

surveydata_status surveydata_append(const char* file_name, const std::uint8_t* records,
                                    std::size_t size) {
  if (file_name == nullptr || (records == nullptr && size != 0)) {
    return SURVEYDATA_INVALID_ARGUMENT;
  }
  return Guarded([&]() -> surveydata_status {
    switch (SDI::GPSRecordWriterC::Append(file_name, {records, size})) {
      case SDI::GPSAppendOutcome::kDone:
        return SURVEYDATA_OK;
      case SDI::GPSAppendOutcome::kNoRecords:
        return SURVEYDATA_NO_RECORDS;
      case SDI::GPSAppendOutcome::kNoSuchFile:
        return SURVEYDATA_NO_SUCH_FILE;
      case SDI::GPSAppendOutcome::kNoPermission:
        return SURVEYDATA_NO_PERMISSION;
      case SDI::GPSAppendOutcome::kCannotOpen:
        return SURVEYDATA_CANNOT_OPEN;
      case SDI::GPSAppendOutcome::kWritingFailed:
        return SURVEYDATA_WRITING_FAILED;
      case SDI::GPSAppendOutcome::kLeftOver:
        break;
    }
    return SURVEYDATA_LEFT_OVER;
  });
}
