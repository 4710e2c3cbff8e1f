// The walks of the index and of the reader over a file of arbitrary bytes find the same records,
// gaps and damaged headers as a byte-by-byte search, as a whole and in two stretches, also far from
// the start of the file.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/memory_file.h"
#include "tests/fuzz/record_walks.h"

// 1 byte of choices: which records are sealed; whether 2 bytes follow that give the offset of the
// bytes in a long file, around the end of the reader's window and further from the start than a
// stretch looks back; and whether 2 bytes follow that give the start of the second stretch. In a
// long file it begins, seven times out of eight, before the bytes: looking back takes most of
// the time.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Fuzz::MemoryFileC file;
  Fuzz::InputC in({data, size});
  const unsigned choices = in.U8();
  const bool isLong = (choices & 0xF0) == 0xF0;
  const std::size_t before = isLong ? 192 * 1024 + in.U16() : 0;
  const std::size_t cut = (choices & 0x10) != 0 ? in.U16() : 0;
  Fuzz::ByteVector bytes = in.Rest();
  Fuzz::SealSome(bytes, choices & 0xF);
  const Fuzz::Listed expected = Fuzz::ListAfter(before, bytes);
  bytes.insert(bytes.begin(), before, 0x55);
  const std::size_t border =
      isLong && cut % 8 != 0 ? cut : before + std::min(cut, bytes.size() - before);

  file.Write(bytes.data(), bytes.size());
  SDI::GPSRecordIndexC index(file.Path().c_str());
  Fuzz::ExpectIndex(index, bytes, expected);
  SDI::GPSRecordReaderC reader(file.Path().c_str());
  Fuzz::ExpectReader(reader, bytes, expected);
  Fuzz::ExpectStretches(file.Path().c_str(), bytes.size(), border, expected);
  return 0;
}
