// Prints a libFuzzer dictionary of record frames: the parts of the header and every bit of the two
// flags words, from the tables that drive the reader.

#include <cstdint>
#include <cstdio>

#include <surveydata/gnss/frame_blocks.h>

namespace {

using SDI::RecordFrame::Blocks1;
using SDI::RecordFrame::Blocks2;
using SDI::RecordFrame::kMagic;
using SDI::RecordFrame::kMaxLength;
using SDI::RecordFrame::kMinLength;
using SDI::RecordFrame::kMore;
using SDI::RecordFrame::kSlantHeight;
using SDI::RecordFrame::kType;
using SDI::RecordFrame::NameOf;

void PrintByte(const char* comment, unsigned value) {
  std::printf("# %s\n\"\\x%02x\"\n", comment, value);
}

// Little-endian, as in a frame.
void PrintWord(const char* comment, unsigned value) {
  std::printf("# %s\n\"\\x%02x\\x%02x\"\n", comment, value & 0xFF, value >> 8);
}

template <class Blocks>
void PrintBlocks(const char* word) {
  unsigned all = 0;
  Blocks::WhileTrue([&](auto row) {
    char comment[80];
    std::snprintf(comment, sizeof(comment), "%s: %s", word, TextOf(row.kBlock));
    PrintWord(comment, row.kBit);
    all |= row.kBit;
    return true;
  });
  char comment[80];
  std::snprintf(comment, sizeof(comment), "%s: every block", word);
  PrintWord(comment, all);
}

}  // namespace

int main() {
  std::printf("# Written by make_record_dictionary.\n");
  PrintWord("magic", kMagic);
  PrintByte("type", kType);
  PrintWord("smallest length", kMinLength);
  PrintWord("largest length", kMaxLength);
  PrintByte("kind of a slant antenna height", kSlantHeight);
  PrintByte("entries of a full list", SDI::GPSListBlock::kCapacity);
  PrintBlocks<Blocks1>("flags word 1");
  PrintWord("flags word 1: flags word 2 follows", kMore);
  PrintBlocks<Blocks2>("flags word 2");
}
