// Prints a libFuzzer dictionary of record frames: what their header is made of, and every bit of
// the two flags words, out of the tables that the reader reads by.

#include <cstdint>
#include <cstdio>
#include <span>

#include <surveydata/gnss/record_frame.h>

namespace {

using namespace SDI::RecordFrame;

void PrintByte(const char* comment, unsigned value) {
  std::printf("# %s\n\"\\x%02x\"\n", comment, value);
}

// Little-endian, as it stands in a frame.
void PrintWord(const char* comment, unsigned value) {
  std::printf("# %s\n\"\\x%02x\\x%02x\"\n", comment, value & 0xFF, value >> 8);
}

void PrintBlocks(const char* word, std::span<const Block<FrameCursorC>> blocks) {
  unsigned all = 0;
  for (const auto& block : blocks) {
    char comment[80];
    std::snprintf(comment, sizeof(comment), "%s: %s", word, block.name);
    PrintWord(comment, block.bit);
    all |= block.bit;
  }
  char comment[80];
  std::snprintf(comment, sizeof(comment), "%s: every block", word);
  PrintWord(comment, all);
}

}  // namespace

int main() {
  std::printf("# Made by make_record_dictionary.\n");
  PrintWord("magic", kMagic);
  PrintByte("type", kType);
  PrintWord("smallest length", kMinLength);
  PrintWord("largest length", kMaxLength);
  PrintByte("kind of a slant antenna height", kSlantHeight);
  PrintByte("entries of a full list", SDI::GPSListBlock::kCapacity);
  PrintBlocks("flags word 1", kBlocks1<FrameCursorC>);
  PrintWord("flags word 1: flags word 2 follows", kMore);
  PrintBlocks("flags word 2", kBlocks2<FrameCursorC>);
}
