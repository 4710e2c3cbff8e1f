#include <cstdio>

#include <surveydata/sphere_geometry/vectors.h>

namespace GMAT {

void ReportVectorError(const char* message) { std::printf("VERROR %s\n", message); }

void cVec3::Scale(double d) {
  const double reciprocal = 1.0 / d;
  for (double& component : v_) component *= reciprocal;
}

}  // namespace GMAT
