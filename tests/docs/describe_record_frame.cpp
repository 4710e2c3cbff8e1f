// Prints the tables of docs/record_frames.md, the header of a frame and every block, from the
// tables that drive the reader.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include <surveydata/gnss/frame_blocks.h>

namespace {

namespace Frame = SDI::RecordFrame;
using Frame::Field;

struct NotedField {
  std::size_t at;
  std::size_t least;  // bytes
  std::size_t most;
  const char* type;
  const char* name;
};

// Replaces the reading cursor and notes every field. It returns all bytes as 0, or with values that
// announce all optional fields.
class NotingCursorC {
 public:
  NotingCursorC(std::size_t at, bool isFull) : at_(at), isFull_(isFull) {}

  void Number(Field field, std::uint8_t& value) {
    const bool isSystems = field == Field::kSystems || field == Field::kIgnoredSystems;
    value = !isFull_ ? 0 : isSystems ? 7 : 1;
    Note(field, "u8", 1, 1);
  }
  void Number(Field field, std::uint16_t& /*value*/) { Note(field, "u16", 2, 2); }
  void Number(Field field, std::int32_t& /*value*/) { Note(field, "i32", 4, 4); }
  void Number(Field field, float& /*value*/) { Note(field, "f32", 4, 4); }
  void Ignored(std::size_t count) { Note(Field::kIgnored, "", count, count); }
  template <std::size_t N>
  void Units(Field field, char16_t (&units)[N]) {
    Note(field, "units", sizeof(units), sizeof(units));
  }
  template <std::size_t N>
  void Text(Field field, char16_t (&text)[N]) {
    Note(field, "text", sizeof(char16_t), sizeof(text));
  }
  void Fail() {}

  const std::vector<NotedField>& Fields() const { return fields_; }

 private:
  void Note(Field field, const char* type, std::size_t least, std::size_t most) {
    fields_.push_back({at_, least, most, type, Frame::NameOf(field)});
    at_ += least;
  }

  std::size_t at_;
  bool isFull_;
  std::vector<NotedField> fields_;
};

void PrintHead() {
  std::printf("\n| bit | block | at | bytes | type | field |\n|---|---|---|---|---|---|\n");
}

// A field that is present only if an earlier field announces it has no fixed offset.
void PrintField(const NotedField& field, bool isAlways, const std::string& limits) {
  const std::string at = isAlways ? std::to_string(field.at) : "";
  std::string bytes = std::to_string(field.least);
  if (field.most != field.least) bytes += " to " + std::to_string(field.most);
  std::printf(" %s | %s | %s | %s%s%s |\n", at.c_str(), bytes.c_str(), field.type, field.name,
              limits.c_str(), isAlways ? "" : ", if announced");
}

// Prints the rows of one block; the first begins with `bit` and the name of the block. `limits`
// belong to its first fields.
template <class Content>
void PrintBlock(const std::string& bit, Frame::Block block, std::size_t at,
                const std::vector<std::string>& limits = {}) {
  NotingCursorC least(at, false);
  NotingCursorC most(at, true);
  Content().Walk(least);
  Content().Walk(most);
  for (std::size_t i = 0; i < most.Fields().size(); ++i) {
    if (i == 0) {
      std::printf("| %s| %s |", bit.c_str(), TextOf(block));
    } else {
      std::printf("| | |");
    }
    PrintField(most.Fields()[i], i < least.Fields().size(), i < limits.size() ? limits[i] : "");
  }
}

template <class Blocks>
void PrintBlocks() {
  PrintHead();
  Blocks::WhileTrue([](auto row) {
    char bit[16];
    std::snprintf(bit, sizeof(bit), "0x%04x ", static_cast<unsigned>(row.kBit));
    PrintBlock<typename decltype(row)::Content>(bit, row.kBlock, 0);
    return true;
  });
}

}  // namespace

int main() {
  PrintHead();
  PrintBlock<Frame::Header>(
      "", Frame::Block::kHeader, 0,
      {": " + std::to_string(Frame::kMagic),
       ": " + std::to_string(Frame::kMinLength) + " to " + std::to_string(Frame::kMaxLength),
       ": " + std::to_string(Frame::kType)});
  PrintBlock<Frame::Times>("", Frame::Block::kTimes, Frame::kHeaderSize);
  std::printf("\nThe blocks of flags word 1:\n");
  PrintBlocks<Frame::Blocks1>();
  std::printf("\nAfter them, if bit 0x%04x of word 1 is set, flags word 2 (u16), and its blocks:\n",
              static_cast<unsigned>(Frame::kMore));
  PrintBlocks<Frame::Blocks2>();
  std::printf("\n");
}
