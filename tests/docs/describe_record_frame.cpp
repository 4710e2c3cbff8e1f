// Prints the tables of docs/record_frames.md: the header of a frame and every block, out of the
// tables that the reader reads by.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <surveydata/gnss/record_frame.h>

namespace {

namespace Frame = SDI::RecordFrame;

struct Field {
  std::size_t at;
  std::size_t least;  // bytes
  std::size_t most;
  const char* type;
  std::string name;
};

// Takes the part of a reading cursor and notes what is asked for. All bytes that it answers are 0,
// or all say that what they announce is there.
class NotingCursorC {
 public:
  NotingCursorC(std::size_t at, bool isFull) : at_(at), isFull_(isFull) {}

  std::uint8_t U8(const char* field) {
    Note(field, "u8", 1, 1);
    if (!isFull_) return 0;
    return std::string_view(field) == "systems" ? 7 : 1;
  }
  std::uint16_t U16(const char* field) {
    Note(field, "u16", 2, 2);
    return 0;
  }
  std::int32_t I32(const char* field) {
    Note(field, "i32", 4, 4);
    return 0;
  }
  float F32(const char* field) {
    Note(field, "f32", 4, 4);
    return 0.0F;
  }
  void Ignored(std::size_t count) { Note("ignored", "", count, count); }
  template <std::size_t N>
  void Units(const char* field, char16_t (&units)[N]) {
    Note(field, "units", sizeof(units), sizeof(units));
    units[0] = 0;
  }
  template <std::size_t N>
  void Text(const char* field, char16_t (&text)[N]) {
    Note(field, "text", sizeof(char16_t), sizeof(text));
    text[0] = 0;
  }
  void Fail() { isOk_ = false; }
  bool Ok() const { return isOk_; }

  const std::vector<Field>& Fields() const { return fields_; }

 private:
  void Note(const char* field, const char* type, std::size_t least, std::size_t most) {
    fields_.push_back({at_, least, most, type, field});
    at_ += least;
  }

  std::size_t at_;
  bool isFull_;
  bool isOk_ = true;
  std::vector<Field> fields_;
};

void PrintHead() {
  std::printf("\n| bit | block | at | bytes | type | field |\n|---|---|---|---|---|---|\n");
}

// What stands in a block only when the fields before it say so has no fixed place.
void PrintField(const Field& field, bool isAlways) {
  const std::string at = isAlways ? std::to_string(field.at) : "";
  std::string bytes = std::to_string(field.least);
  if (field.most != field.least) bytes += " to " + std::to_string(field.most);
  std::printf(" %s | %s | %s | %s%s |\n", at.c_str(), bytes.c_str(), field.type, field.name.c_str(),
              isAlways ? "" : ", if announced");
}

// The rows of one block, whose first one begins with `begin`.
template <class Read>
void PrintFields(const std::string& begin, std::size_t at, Read read) {
  NotingCursorC least(at, false);
  NotingCursorC most(at, true);
  SDI::GPSMeasDataImplC measurement;
  SDI::GPSRecordFileInfo info;
  read(least, Frame::Target{measurement, info});
  read(most, Frame::Target{measurement, info});
  for (std::size_t i = 0; i < most.Fields().size(); ++i) {
    std::printf("%s", i == 0 ? begin.c_str() : "| | |");
    PrintField(most.Fields()[i], i < least.Fields().size());
  }
}

void PrintBlocks(std::span<const Frame::Block<NotingCursorC>> blocks) {
  PrintHead();
  for (const auto& block : blocks) {
    char begin[80];
    std::snprintf(begin, sizeof(begin), "| 0x%04x | %s |", static_cast<unsigned>(block.bit),
                  block.name);
    PrintFields(begin, 0, block.read);
  }
}

}  // namespace

int main() {
  PrintHead();
  std::printf("| | header | 0 | 2 | u16 | magic: %u |\n", static_cast<unsigned>(Frame::kMagic));
  std::printf("| | | 2 | 2 | u16 | length: %u to %u |\n", static_cast<unsigned>(Frame::kMinLength),
              static_cast<unsigned>(Frame::kMaxLength));
  std::printf("| | | 4 | 1 | u8 | type: %u |\n", static_cast<unsigned>(Frame::kType));
  PrintFields("| | times |", Frame::kHeaderSize, [](NotingCursorC& in, const Frame::Target& out) {
    Frame::ReadPayload(in, out);  // both flags words are 0: no block follows
  });
  std::printf("\nThe blocks of flags word 1:\n");
  PrintBlocks(Frame::kBlocks1<NotingCursorC>);
  std::printf(
      "\nBehind them, if bit 0x%04x of word 1 is set, flags word 2 (u16), and its blocks:\n",
      static_cast<unsigned>(Frame::kMore));
  PrintBlocks(Frame::kBlocks2<NotingCursorC>);
  std::printf("\n");
}
