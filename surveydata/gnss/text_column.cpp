#include <surveydata/gnss/text_column.h>

namespace SDI::TextColumn {

std::size_t WriteRest(const char16_t* units, std::size_t i, std::size_t capacity, char* to) {
  char* out = to + i;
  while (i < capacity && units[i] != 0) out = PutCharacter(TakeCharacter(units, capacity, i), out);
  return static_cast<std::size_t>(out - to);
}

}  // namespace SDI::TextColumn
