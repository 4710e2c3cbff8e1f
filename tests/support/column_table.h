#ifndef SURVEYDATA_TESTS_SUPPORT_COLUMN_TABLE_H_
#define SURVEYDATA_TESTS_SUPPORT_COLUMN_TABLE_H_

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_record_columns.h>

/// \file
/// Column values as texts, different for different values, and the buffers of a batch.

namespace Columns {

template <class Number>
std::string Show(Number value) {
  if constexpr (std::is_same_v<Number, float>) {
    return "f" + std::to_string(std::bit_cast<std::uint32_t>(value));
  } else if constexpr (std::is_same_v<Number, double>) {
    return "d" + std::to_string(std::bit_cast<std::uint64_t>(value));
  } else if constexpr (std::is_same_v<Number, bool>) {
    return value ? "true" : "false";
  } else {
    return std::to_string(value);
  }
}
inline std::string Show(std::string_view text) { return "\"" + std::string(text) + "\""; }
inline std::string Show(std::span<const std::uint16_t> list) {
  std::string shown = "[";
  for (const std::uint16_t entry : list) shown += std::to_string(entry) + " ";
  return shown + "]";
}
inline std::string Show(std::monostate) { return "absent"; }
inline std::string Show(const SDI::GPSColumnValueC& value) {
  return std::visit([](const auto& held) { return Show(held); }, value.Get());
}

using Row = std::vector<std::string>;  // the text of each column's value
using Table = std::vector<Row>;

inline std::vector<const SDI::GPSColumn*> All() {
  std::vector<const SDI::GPSColumn*> columns;
  for (const SDI::GPSColumn& column : SDI::GetGPSColumns()) columns.push_back(&column);
  return columns;
}

inline Row RowOf(std::span<const SDI::GPSColumn* const> columns, const SDI::GPSRecordC& record) {
  Row row;
  SDI::GPSColumnValueC value;
  for (const SDI::GPSColumn* const column : columns) {
    SDI::AskGPSColumn(*column, record, value);
    EXPECT_EQ(value.IsAbsent(), std::holds_alternative<std::monostate>(value.Get()));
    row.push_back(Show(value));
  }
  return row;
}

inline std::size_t SizeOf(SDI::GPSColumnType type) {
  switch (type) {
    using enum SDI::GPSColumnType;
    case kUInt8:
    case kBool:
    case kText:
      return 1;
    case kUInt16:
    case kUInt16List:
      return 2;
    case kUInt32:
    case kInt32:
    case kFloat32:
      return 4;
    case kUInt64:
    case kFloat64:
      return 8;
  }
  return 0;
}

/// The buffers of a batch of at most `rows` rows, of exactly the required size. Unwritten bytes,
/// and the bytes before and after each buffer, are 0xA5.
class BuffersC {
 public:
  static constexpr std::uint8_t kUntouched = 0xA5;

  /// `room`: the size for texts and lists in bytes; by default enough for `rows` of the longest.
  BuffersC(std::span<const SDI::GPSColumn* const> columns, std::size_t rows, std::size_t room = 0)
      : columns_(columns.begin(), columns.end()), buffers_(columns.size()) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const SDI::GPSColumn& column = *columns[i];
      SDI::GPSColumnBuffer& buffer = buffers_[i];
      buffer.column = columns[i];
      buffer.size = column.largest != 0 ? room != 0 ? room : rows * column.largest
                    : column.type == SDI::GPSColumnType::kBool ? (rows + 7) / 8
                                                               : rows * SizeOf(column.type);
      buffer.values = Take(buffer.size);
      buffer.validity = static_cast<std::uint8_t*>(Take((rows + 7) / 8));
      if (column.largest != 0) {
        buffer.offsets = static_cast<std::int64_t*>(Take((rows + 1) * sizeof(std::int64_t)));
      }
    }
  }

  std::span<SDI::GPSColumnBuffer> Get() { return buffers_; }

  /// Appends the rows of a batch to `table`.
  void Read(std::size_t rows, Table& table) const {
    for (std::size_t row = 0; row < rows; ++row) {
      table.emplace_back();
      for (std::size_t i = 0; i < columns_.size(); ++i) table.back().push_back(ShowAt(i, row));
    }
  }

  /// Checks that nothing was written outside the data of `rows` rows, and that the count of absent
  /// values is correct.
  void ExpectWhole(std::size_t rows) const {
    for (const std::vector<std::uint8_t>& block : blocks_) {
      for (std::size_t i = 0; i < kGuard; ++i) {
        ASSERT_EQ(block[i], kUntouched);
        ASSERT_EQ(block[block.size() - 1 - i], kUntouched);
      }
    }
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      SCOPED_TRACE(columns_[i]->name);
      std::size_t absent = 0;
      for (std::size_t row = 0; row < rows; ++row) absent += IsPresent(i, row) ? 0 : 1;
      EXPECT_EQ(buffers_[i].absent, absent);
    }
  }

 private:
  static constexpr std::size_t kGuard = 64;

  void* Take(std::size_t size) {
    blocks_.emplace_back(size + 2 * kGuard, kUntouched);
    return blocks_.back().data() + kGuard;
  }

  static bool Bit(const void* bits, std::size_t at) {
    return (static_cast<const std::uint8_t*>(bits)[at / 8] >> at % 8 & 1) != 0;
  }
  bool IsPresent(std::size_t column, std::size_t row) const {
    return Bit(buffers_[column].validity, row);
  }

  template <class Number>
  static std::string NumberAt(const void* values, std::size_t at) {
    Number number{};
    std::memcpy(&number, static_cast<const Number*>(values) + at, sizeof(number));
    return Show(number);
  }

  std::string ShowAt(std::size_t column, std::size_t row) const {
    const SDI::GPSColumnBuffer& buffer = buffers_[column];
    const SDI::GPSColumnType type = columns_[column]->type;
    std::string shown;
    switch (type) {
      using enum SDI::GPSColumnType;
      case kBool:
        shown = Show(Bit(buffer.values, row));
        break;
      case kUInt8:
        shown = NumberAt<std::uint8_t>(buffer.values, row);
        break;
      case kUInt16:
        shown = NumberAt<std::uint16_t>(buffer.values, row);
        break;
      case kUInt32:
        shown = NumberAt<std::uint32_t>(buffer.values, row);
        break;
      case kUInt64:
        shown = NumberAt<std::uint64_t>(buffer.values, row);
        break;
      case kInt32:
        shown = NumberAt<std::int32_t>(buffer.values, row);
        break;
      case kFloat32:
        shown = NumberAt<float>(buffer.values, row);
        break;
      case kFloat64:
        shown = NumberAt<double>(buffer.values, row);
        break;
      case kText:
      case kUInt16List: {
        const auto begin = static_cast<std::size_t>(buffer.offsets[row]);
        const auto size = static_cast<std::size_t>(buffer.offsets[row + 1]) - begin;
        shown =
            type == kText
                ? Show(std::string_view(static_cast<const char*>(buffer.values) + begin, size))
                : Show(std::span(static_cast<const std::uint16_t*>(buffer.values) + begin, size));
        break;
      }
    }
    if (IsPresent(column, row)) return shown;
    // Absent values are 0 or empty.
    const bool isNothing = shown == "0" || shown == "false" || shown == Show(0.0) ||
                           shown == Show(0.0F) || shown == "\"\"" || shown == "[]";
    EXPECT_TRUE(isNothing) << columns_[column]->name << " " << shown;
    return "absent";
  }

  std::vector<const SDI::GPSColumn*> columns_;
  std::vector<SDI::GPSColumnBuffer> buffers_;
  std::vector<std::vector<std::uint8_t>> blocks_;
};

}  // namespace Columns

#endif  // SURVEYDATA_TESTS_SUPPORT_COLUMN_TABLE_H_
