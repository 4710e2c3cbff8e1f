#include <cstdio>

#include <surveydata/surveydata.h>

int main() {
  const SDI::CoordinatePointC point(1.0, 2.0, 3.0);
  const SDI::CoordinatePointC copy(point);
  if (!copy.IsEqual(point)) return 1;
  std::puts("all is well");
}
