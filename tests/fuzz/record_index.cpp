// The walks of the index and of the reader over arbitrary bytes in memory find the same records,
// gaps and damaged headers as a byte-by-byte search, as a whole and in two stretches. The target
// record_files does the same through files.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/record_walks.h"

// 1 byte of choices: which records are sealed, and whether 2 bytes follow that give the start of
// the second stretch.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::InputC in({data, size});
  const unsigned choices = in.U8();
  const std::size_t cut = (choices & 0x10) != 0 ? in.U16() : 0;
  Fuzz::ByteVector bytes = in.Rest();
  Fuzz::SealSome(bytes, choices & 0xF);
  const Fuzz::Listed expected = Fuzz::ListAfter(0, bytes);

  const std::span<const std::uint8_t> memory(bytes);
  SDI::GPSRecordIndexC index(memory);
  Fuzz::ExpectIndex(index, bytes, expected);
  SDI::GPSRecordReaderC reader(memory);
  Fuzz::ExpectReader(reader, bytes, expected);
  Fuzz::ExpectStretches(memory, bytes.size(), std::min(cut, bytes.size()), expected);
  return 0;
}
