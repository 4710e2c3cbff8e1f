// Runs a target on the given files and on all files in the given folders. Builds without libFuzzer
// run the corpus this way.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "tests/fuzz/fuzz_input.h"
#include "tests/support/temp_file.h"

namespace fs = std::filesystem;

int main(int argc, char** argv) {
  LLVMFuzzerInitialize(&argc, &argv);
  std::vector<fs::path> files;
  for (int i = 1; i < argc; ++i) {
    if (!fs::is_directory(argv[i])) {
      files.emplace_back(argv[i]);
      continue;
    }
    for (const auto& entry : fs::directory_iterator(argv[i])) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  for (const fs::path& file : files) {
    std::printf("%s\n", file.c_str());
    std::fflush(stdout);  // if the target fails, the last line names the input
    const auto bytes = TestSupport::ReadBytes(file);
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
  }
  std::printf("%zu inputs\n", files.size());
  return files.empty() ? 1 : 0;
}
