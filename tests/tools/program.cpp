#include "tests/tools/program.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace fs = std::filesystem;

TempFolderC::TempFolderC() {
  std::random_device random;
  do {
    path_ = fs::temp_directory_path() / ("surveydata-test-" + std::to_string(random()));
  } while (!fs::create_directory(path_));
}

TempFolderC::~TempFolderC() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::vector<std::string> TempFolderC::Names() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(path_)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string ProgramPath() { return fs::absolute(SURVEYDATA_PROGRAM).string(); }

std::string DataPath(std::string_view name) {
  return fs::absolute(SURVEYDATA_TEST_DATA + std::string(name)).string();
}

std::string ReadText(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + file);
  std::ostringstream text;
  text << in.rdbuf();
  return std::move(text).str();
}

Bytes ReadBytes(const std::string& file) {
  const std::string text = ReadText(file);
  return {text.begin(), text.end()};
}

void WriteBytes(const std::string& file, const Bytes& bytes) {
  std::ofstream out(file, std::ios::binary);
  out.write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
  if (!out.flush()) throw std::runtime_error("cannot write " + file);
}

std::vector<std::string> Lines(std::string_view text) {
  std::vector<std::string> lines;
  std::istringstream in{std::string(text)};
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::vector<nlohmann::json> JsonLines(std::string_view text) {
  std::vector<nlohmann::json> values;
  for (const std::string& line : Lines(text)) values.push_back(nlohmann::json::parse(line));
  return values;
}

std::string BadFramesTold(int count) {
  const bool isOne = count == 1;
  return "surveydata: " + std::to_string(count) +
         (isOne ? " bad frame is left out; surveydata record list shows it\n"
                : " bad frames are left out; surveydata record list shows them\n");
}

nlohmann::json SampleIndex(std::string_view name) {
  return nlohmann::json::parse(ReadText(DataPath(std::string(name) + ".index.json")));
}

void FixChecksum(std::uint8_t* frame, std::size_t size) {
  unsigned sum = 0;
  for (std::size_t i = 2; i < size - 2; ++i) sum += frame[i];
  frame[size - 2] = static_cast<std::uint8_t>(-sum);
  frame[size - 1] = static_cast<std::uint8_t>(-sum >> 8);
}

Bytes MakeFrame(std::uint8_t type, const Bytes& body) {
  const std::size_t length = 5 + body.size();
  Bytes frame = Bytes{0x9C, 0xAE, static_cast<std::uint8_t>(length),
                      static_cast<std::uint8_t>(length >> 8), type} +
                body + Bytes{0, 0};
  FixChecksum(frame.data(), frame.size());
  return frame;
}

Bytes MakeBody(std::uint16_t flags, const Bytes& blocks) {
  // Week 2091, 440075.000 s; time B likewise.
  const Bytes times = {0x2B, 0x08, 0xF8, 0x02, 0x3B, 0x1A, 0xF8, 0x02, 0x3B, 0x1A};
  return times + Bytes{static_cast<std::uint8_t>(flags), static_cast<std::uint8_t>(flags >> 8)} +
         blocks;
}

Bytes operator+(Bytes a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}
