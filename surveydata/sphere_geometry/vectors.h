#ifndef SURVEYDATA_SPHERE_GEOMETRY_VECTORS_H_
#define SURVEYDATA_SPHERE_GEOMETRY_VECTORS_H_

namespace GMAT {

/// Reports a bad index on standard output, as one line.
void ReportVectorError(const char* message);

/// What the vectors share: `N` doubles, stored contiguously, all zero at first.
template <class Self, int N>
class VectorC {
 public:
  VectorC() = default;

  /// Component `index`. A bad index is reported on standard output and then used anyway: the
  /// reference is computed as if the vector continued. The caller is responsible for that memory.
  double& operator[](int index) {
    Check(index);
    return Begin()[index];
  }
  const double& operator[](int index) const {
    Check(index);
    return const_cast<VectorC*>(this)->Begin()[index];
  }

 protected:
  double v_[N] = {};  // NOLINT(misc-non-private-member-variables-in-classes)

 private:
  // Hides the end of the array from the compiler.
  double* Begin() { return reinterpret_cast<double*>(reinterpret_cast<char*>(this)); }
  static void Check(int index) {
    if (index < 0 || index >= N) ReportVectorError(Self::kIllegalAccess);
  }
};

class cVec2 : public VectorC<cVec2, 2> {
 public:
  static constexpr const char* kIllegalAccess = "cVec2 [] operator: illegal access";

  cVec2() = default;
  cVec2(double x, double y) {
    v_[0] = x;
    v_[1] = y;
  }
};

class cVec3 : public VectorC<cVec3, 3> {
 public:
  static constexpr const char* kIllegalAccess = "cVec3 [] operator: illegal access";

  cVec3() = default;
  cVec3(double x, double y, double z) {
    v_[0] = x;
    v_[1] = y;
    v_[2] = z;
  }

  double X() const { return v_[0]; }
  double Y() const { return v_[1]; }
  double Z() const { return v_[2]; }

  /// Divides by `d`, with one reciprocal: each component is multiplied by 1.0 / d.
  void Scale(double d);
};

/// The vector product.
inline cVec3 Cross(const cVec3& a, const cVec3& b) {
  return {a.Y() * b.Z() - a.Z() * b.Y(), a.Z() * b.X() - a.X() * b.Z(),
          a.X() * b.Y() - a.Y() * b.X()};
}

class cVec4 : public VectorC<cVec4, 4> {
 public:
  static constexpr const char* kIllegalAccess = "cVec4 [] operator: illegal access";

  cVec4() = default;
  cVec4(double x, double y, double z, double w) {
    v_[0] = x;
    v_[1] = y;
    v_[2] = z;
    v_[3] = w;
  }
};

static_assert(sizeof(cVec2) == 16 && sizeof(cVec3) == 24 && sizeof(cVec4) == 32);

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_VECTORS_H_
