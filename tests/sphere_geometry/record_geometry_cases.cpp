// Writes tests/data/geometry_cases.txt to standard output: generated queries with the results of
// this build. With a file of cases as argument, it evaluates their queries again; with two numbers,
// it generates queries from each seed between the first and the last.

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <vector>

#include "tests/support/geometry_cases.h"

namespace {

using GMAT::AnglePointC;

void WriteNumbers(const std::vector<double>& numbers) {
  for (const double number : numbers) std::printf(" %a", number);
}

class WriterC {
 public:
  void Write(const GeometryCases::Case& next) {
    if (next.area != area_) {
      area_ = next.area;
      std::fputs("area", stdout);
      for (const AnglePointC& p : area_) std::printf(" %a %a", p.Hz, p.V);
      std::fputs("\n", stdout);
    }
    const std::string_view source = GeometryCases::NameOf(next.source);
    std::printf("%.*s %s", static_cast<int>(source.size()), source.data(), next.question.c_str());
    WriteNumbers(next.given);
    std::fputs(" =", stdout);
    WriteNumbers(GeometryCases::Answer(next));
    std::fputs("\n", stdout);
  }

 private:
  std::vector<AnglePointC> area_;
};

}  // namespace

int main(int argc, char** argv) try {
  constexpr std::uint64_t kSeed = 20260101;
  std::puts(
      "# Results of the sphere geometry, bit for bit. tests/support/geometry_cases.h describes\n"
      "# the format. To regenerate: build/dev/tests/sphere_geometry/record_geometry_cases\n"
      "#\n"
      "# source     this library, checked by the literal rules in tests/support\n"
      "# generator  record_geometry_cases, seed 20260101; g++ 12 -O1, glibc 2.36, x86-64");
  WriterC writer;
  const auto write = [&writer](const GeometryCases::Case& next) { writer.Write(next); };
  if (argc > 2) {
    const std::uint64_t last = std::strtoull(argv[2], nullptr, 10);
    for (auto seed = std::strtoull(argv[1], nullptr, 10); seed <= last; ++seed) {
      GeometryCases::MakeUp(seed, write);
    }
  } else if (argc > 1) {
    std::ifstream file(argv[1]);
    GeometryCases::ForEach(file, write);
  } else {
    GeometryCases::MakeUp(kSeed, write);
  }
  return std::ferror(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return EXIT_FAILURE;
}
