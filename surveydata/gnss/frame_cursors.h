#ifndef SURVEYDATA_GNSS_FRAME_CURSORS_H_
#define SURVEYDATA_GNSS_FRAME_CURSORS_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include <boost/endian/conversion.hpp>

#include <surveydata/gnss/frame_fields.h>

/// \file
/// Internal: cursors that walk the fields of a frame from front to back. A block passes its fields
/// to a cursor, which reads them, writes them, or only counts their bytes.

namespace SDI::RecordFrame {

using Bytes = std::span<const std::uint8_t>;

/// Reads fields. A read past the end gives 0 and clears `Ok()`, so that a block is checked once,
/// after all of it was read.
class FrameCursorC {
 public:
  explicit FrameCursorC(Bytes bytes) : at_(bytes.data()), end_(at_ + bytes.size()) {}

  template <class Value>
  void Number(Field /*field*/, Value& value) {
    if (Left() < sizeof(Value)) {
      value = {};
      return Fail();
    }
    value = boost::endian::endian_load<Value, sizeof(Value), boost::endian::order::little>(at_);
    at_ += sizeof(Value);
  }

  void Ignored(std::size_t count) {
    if (Left() < count) return Fail();
    at_ += count;
  }

  /// `N` units.
  template <std::size_t N>
  void Units(Field /*field*/, char16_t (&units)[N]) {
    if (Left() < sizeof(units)) return Fail();
    Load(units, N);
    at_ += sizeof(units);
  }

  /// Units up to and including a 0 unit, at most `N`. The last unit taken is replaced by 0.
  template <std::size_t N>
  void Text(Field /*field*/, char16_t (&text)[N]) {
    const std::size_t most = std::min(N, Left() / sizeof(char16_t));
    Load(text, most);  // all at once, including what follows the terminator
    const auto length = static_cast<std::size_t>(std::find(text, text + most, u'\0') - text);
    if (length == most && most < N) return Fail();
    const std::size_t taken = std::min(length + 1, N);
    text[taken - 1] = 0;
    at_ += taken * sizeof(char16_t);
  }

  /// Marks what was read as invalid.
  void Fail() { ok_ = false; }
  bool Ok() const { return ok_; }

 protected:
  /// What has not been read.
  Bytes Rest() const { return {at_, Left()}; }

 private:
  void Load(char16_t* units, std::size_t count) const {
    for (std::size_t i = 0; i < count; ++i) {
      units[i] = boost::endian::load_little_u16(at_ + i * sizeof(char16_t));
    }
  }

  std::size_t Left() const { return static_cast<std::size_t>(end_ - at_); }

  const std::uint8_t* at_;
  const std::uint8_t* end_;
  bool ok_ = true;
};

/// Writes fields, and zeros for ignored bytes. A field past the end clears `Ok()` and is not
/// written.
class FrameWriterC {
 public:
  explicit FrameWriterC(std::span<std::uint8_t> bytes)
      : begin_(bytes.data()), at_(begin_), end_(at_ + bytes.size()) {}

  template <class Value>
  void Number(Field /*field*/, const Value& value) {
    std::uint8_t* const to = Take(sizeof(Value));
    if (to == nullptr) return;
    boost::endian::endian_store<Value, sizeof(Value), boost::endian::order::little>(to, value);
  }

  void Ignored(std::size_t count) {
    if (std::uint8_t* const to = Take(count)) std::fill_n(to, count, std::uint8_t{0});
  }

  template <std::size_t N>
  void Units(Field /*field*/, const char16_t (&units)[N]) {
    Store(units, N);
  }

  /// Units up to and including the 0 unit. There is one among the `N`.
  template <std::size_t N>
  void Text(Field /*field*/, const char16_t (&text)[N]) {
    Store(text, static_cast<std::size_t>(std::find(text, text + N - 1, u'\0') - text) + 1);
  }

  /// Leaves bytes unchanged.
  void Skip(std::size_t count) { Take(count); }

  void Fail() { ok_ = false; }
  bool Ok() const { return ok_; }
  /// The bytes passed.
  std::size_t At() const { return static_cast<std::size_t>(at_ - begin_); }

 private:
  std::uint8_t* Take(std::size_t count) {
    if (static_cast<std::size_t>(end_ - at_) < count) {
      Fail();
      return nullptr;
    }
    at_ += count;
    return at_ - count;
  }

  void Store(const char16_t* units, std::size_t count) {
    std::uint8_t* const to = Take(count * sizeof(char16_t));
    if (to == nullptr) return;
    for (std::size_t i = 0; i < count; ++i) {
      boost::endian::store_little_u16(to + i * sizeof(char16_t), units[i]);
    }
  }

  std::uint8_t* begin_;
  std::uint8_t* at_;
  std::uint8_t* end_;
  bool ok_ = true;
};

/// Overwrites the fields of a frame that a list names, and leaves all other bytes unchanged.
class FramePatchC {
 public:
  FramePatchC(std::span<std::uint8_t> bytes, std::span<const Field> fields)
      : out_(bytes), fields_(fields) {}

  template <class Value>
  void Number(Field field, const Value& value) {
    if (IsListed(field)) {
      out_.Number(field, value);
    } else {
      out_.Skip(sizeof(Value));
    }
  }

  void Ignored(std::size_t count) { out_.Skip(count); }

  template <std::size_t N>
  void Units(Field field, const char16_t (&units)[N]) {
    if (IsListed(field)) {
      out_.Units(field, units);
    } else {
      out_.Skip(sizeof(units));
    }
  }

 private:
  bool IsListed(Field field) const {
    return std::find(fields_.begin(), fields_.end(), field) != fields_.end();
  }

  FrameWriterC out_;
  std::span<const Field> fields_;
};

/// Counts bytes.
class FrameSizeC {
 public:
  template <class Value>
  constexpr void Number(Field /*field*/, const Value& /*value*/) {
    size_ += sizeof(Value);
  }
  constexpr void Ignored(std::size_t count) { size_ += count; }
  template <std::size_t N>
  constexpr void Units(Field /*field*/, const char16_t (&units)[N]) {
    size_ += sizeof(units);
  }

  constexpr std::size_t Size() const { return size_; }

 private:
  std::size_t size_ = 0;
};

/// The bytes of a block that always has the same fields.
template <class Content>
constexpr std::size_t SizeOf() {
  Content content{};
  FrameSizeC size;
  content.Walk(size);
  return size.Size();
}

/// Counts the bytes before a field.
class FieldOffsetC {
 public:
  explicit constexpr FieldOffsetC(Field wanted) : wanted_(wanted) {}

  template <class Value>
  constexpr void Number(Field field, const Value& /*value*/) {
    Pass(field, sizeof(Value));
  }
  constexpr void Ignored(std::size_t count) { Pass(Field::kIgnored, count); }
  template <std::size_t N>
  constexpr void Units(Field field, const char16_t (&units)[N]) {
    Pass(field, sizeof(units));
  }

  constexpr std::size_t Offset() const { return offset_; }

 private:
  constexpr void Pass(Field field, std::size_t size) {
    isPassed_ = isPassed_ || field == wanted_;
    if (!isPassed_) offset_ += size;
  }

  Field wanted_;
  std::size_t offset_ = 0;
  bool isPassed_ = false;
};

/// Where a field lies in a block that always has the same fields.
template <class Content>
constexpr std::size_t OffsetOf(Field field) {
  Content content{};
  FieldOffsetC offset(field);
  content.Walk(offset);
  return offset.Offset();
}

}  // namespace SDI::RecordFrame

#endif  // SURVEYDATA_GNSS_FRAME_CURSORS_H_
