// Prints the hash of the library's native answers for the directions of containment.mjs, and how
// many of them are inside. Standard input has the points of a polygon: Hz and V in rad, one per
// line.
#include <cstdint>
#include <cstdio>
#include <vector>

#include <surveydata/c_interface/surveydata.h>

namespace {

class GeneratorC {
 public:
  double Next() {
    state_ = state_ * 48271 % 2147483647;
    return static_cast<double>(state_) / 2147483647;
  }

 private:
  std::uint64_t state_ = 20260101;
};

}  // namespace

int main() {
  std::vector<double> hz, v;
  for (double a = 0, b = 0; std::scanf("%lf %lf", &a, &b) == 2;) {
    hz.push_back(a);
    v.push_back(b);
  }
  surveydata_area_definition definition{};
  definition.struct_size = sizeof(definition);
  definition.kind = SURVEYDATA_POLYGON;
  definition.count = hz.size();
  definition.hz = hz.data();
  definition.v = v.data();
  definition.hz_step = 0.001;
  definition.v_step = 0.001;
  surveydata_area* area = nullptr;
  surveydata_area* prepared = nullptr;
  if (surveydata_area_create(&definition, &area) != SURVEYDATA_OK ||
      surveydata_area_prepare(area, SURVEYDATA_QUESTIONS_MANY, &prepared) != SURVEYDATA_OK) {
    return 1;
  }
  constexpr int kCount = 10'000'000;
  GeneratorC generator;
  std::uint32_t hash = 2166136261u;
  std::uint32_t inside = 0;
  for (int i = 0; i < kCount; ++i) {
    const double eachHz = generator.Next() * 6.25;
    const double eachV = generator.Next() * 3.125;
    std::int32_t isInside = 0;
    if (surveydata_area_contains(prepared, eachHz, eachV, &isInside) != SURVEYDATA_OK) return 1;
    hash = (hash ^ static_cast<std::uint32_t>(isInside)) * 16777619u;
    inside += static_cast<std::uint32_t>(isInside);
  }
  std::printf("%u %u\n", hash, inside);
  surveydata_area_destroy(prepared);
  surveydata_area_destroy(area);
  return 0;
}
