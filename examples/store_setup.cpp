// Copies and compares the set-up of a total station, writes it as text and reads it back.

#include <charconv>
#include <cmath>
#include <cstdint>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string_view>

#include <surveydata/total_station/tps_setup_data.h>

namespace {

// Writes the numbers in one line, each with the fewest digits that restore it exactly.
template <class... Numbers>
void WriteLine(std::ostream& out, Numbers... numbers) {
  char text[32];
  const char* separator = "";
  const auto write = [&](auto number) {
    const auto end = std::to_chars(std::begin(text), std::end(text), number).ptr;
    out << separator << std::string_view(text, end);
    separator = " ";
  };
  (write(numbers), ...);
  out << '\n';
}

// Writes the fields in the order of the value constructor.
void Write(std::ostream& out, const SDI::TPSSetupDataC& s) {
  WriteLine(out, s.GetValue1(), s.GetFlags(), s.GetByte1(), s.GetValue2(), s.GetValue3(),
            s.GetValue4(), s.GetValue5(), s.GetSingle1(), s.GetSingle2(), s.GetSingle3(),
            s.GetWord1(), s.GetWord2(), s.GetWord3());
}

// Returns false, with `setup` unchanged, if the line does not have thirteen numbers or if the third
// exceeds a byte. The byte is read as a wider number: a stream would read it as a character.
bool Read(std::istream& in, SDI::TPSSetupDataC& setup) {
  double value[5];
  float single[3];
  std::uint32_t flags, byte, word[3];
  in >> value[0] >> flags >> byte >> value[1] >> value[2] >> value[3] >> value[4];
  in >> single[0] >> single[1] >> single[2] >> word[0] >> word[1] >> word[2];
  if (!in || byte > 0xFF) return false;
  setup = SDI::TPSSetupDataC(value[0], flags, static_cast<std::uint8_t>(byte), value[1], value[2],
                             value[3], value[4], single[0], single[1], single[2], word[0], word[1],
                             word[2]);
  return true;
}

const char* Answer(bool equal) { return equal ? "equal" : "different"; }

}  // namespace

int main() {
  const SDI::TPSSetupDataC setup(1.623, 0x5, 2, 634217.482, 248903.117, 487.264, 0.553,  //
                                 21.5F, 947.2F, 0.13F, 1024, 7, 0);

  SDI::TPSSetupDataC copy(setup);
  std::cout << "a copy is " << Answer(copy.IsEqual(setup)) << '\n';
  copy.SetValue2(std::nextafter(copy.GetValue2(), 0.0));
  std::cout << "off by a unit in the last place it is " << Answer(copy.IsEqual(setup)) << '\n';
  copy.SetValue2(634217.483);
  std::cout << "off by a millimetre it is " << Answer(copy.IsEqual(setup)) << '\n';

  std::stringstream file;
  Write(file, setup);
  std::cout << "stored as " << file.str();

  SDI::TPSSetupDataC restored;
  if (!Read(file, restored)) return 1;
  std::cout << "what is read back is " << Answer(restored.IsEqual(setup)) << '\n';

  std::istringstream damaged("1.623 5 300 634217.482 248903.117 487.264 0.553 0 0 0 0 0 0");
  if (Read(damaged, restored)) return 1;
  std::cout << "after refusing a line with a byte of 300 it is " << Answer(restored.IsEqual(setup))
            << '\n';
}
