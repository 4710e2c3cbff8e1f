#ifndef SURVEYDATA_IMAGING_IMG_CAMERA_INFO_H_
#define SURVEYDATA_IMAGING_IMG_CAMERA_INFO_H_

#include <cstdint>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API ImgCameraInfoC;

/// The data of an `ImgCameraInfoC`.
class SURVEYDATA_API ImgCameraInfoImplC : public API::ImplC<ImgCameraInfoImplC, ImgCameraInfoC> {
 public:
  ImgCameraInfoImplC();
  explicit ImgCameraInfoImplC(API::BaseC* owner);
  ImgCameraInfoImplC(const ImgCameraInfoImplC& other);
  ImgCameraInfoImplC& operator=(const ImgCameraInfoImplC& other);
  ~ImgCameraInfoImplC() override;
  API::BaseC* GetBase() override;

  std::uint32_t GetInt1() const;
  void SetInt1(std::uint32_t int1);
  std::uint32_t GetInt2() const;
  void SetInt2(std::uint32_t int2);
  std::uint32_t GetInt3() const;
  void SetInt3(std::uint32_t int3);
  double GetReal1() const;
  void SetReal1(double real1);
  double GetReal2() const;
  void SetReal2(double real2);
  std::uint16_t GetShort1() const;
  void SetShort1(std::uint16_t short1);
  std::uint16_t GetShort2() const;
  void SetShort2(std::uint16_t short2);
  double GetReal3() const;
  void SetReal3(double real3);
  double GetReal4() const;
  void SetReal4(double real4);
  std::uint32_t GetInt4() const;
  void SetInt4(std::uint32_t int4);
  std::uint32_t GetInt5() const;
  void SetInt5(std::uint32_t int5);

  bool operator==(const ImgCameraInfoImplC& other) const;
  bool operator!=(const ImgCameraInfoImplC& other) const = delete;

 private:
  std::uint32_t int1_ = 0;
  std::uint32_t int2_ = 0;
  std::uint32_t int3_ = 0;
  double real1_ = 0.0;
  double real2_ = 0.0;
  std::uint16_t short1_ = 0;
  std::uint16_t short2_ = 0;
  double real3_ = 0.0;
  double real4_ = 0.0;
  std::uint32_t int4_ = 0;
  std::uint32_t int5_ = 0;
};

/// The description of a camera: numbers whose units and meaning the caller defines. All are 0 by
/// default. Two additional 16-bit numbers are copied and compared like the rest; only the
/// implementation has accessors for them.
class SURVEYDATA_API ImgCameraInfoC : public API::HandleC<ImgCameraInfoImplC> {
 public:
  ImgCameraInfoC();
  explicit ImgCameraInfoC(ImgCameraInfoImplC* impl);
  ImgCameraInfoC(const ImgCameraInfoC& other);
  ImgCameraInfoC& operator=(const ImgCameraInfoC& other);
  ~ImgCameraInfoC() override;

  std::uint32_t GetInt1() const;
  void SetInt1(std::uint32_t int1);
  std::uint32_t GetInt2() const;
  void SetInt2(std::uint32_t int2);
  std::uint32_t GetInt3() const;
  void SetInt3(std::uint32_t int3);
  double GetReal1() const;
  void SetReal1(double real1);
  double GetReal2() const;
  void SetReal2(double real2);
  double GetReal3() const;
  void SetReal3(double real3);
  double GetReal4() const;
  void SetReal4(double real4);
  std::uint32_t GetInt4() const;
  void SetInt4(std::uint32_t int4);
  std::uint32_t GetInt5() const;
  void SetInt5(std::uint32_t int5);

  /// Whether all fields are equal by `==`: an object with a NaN differs even from itself.
  bool operator==(const ImgCameraInfoC& other) const;
  bool operator!=(const ImgCameraInfoC& other) const = delete;
};

static_assert(API::kHasSize<ImgCameraInfoC, 16> && API::kHasSize<ImgCameraInfoImplC, 80>);

}  // namespace SDI

extern template SURVEYDATA_API SDI::ImgCameraInfoImplC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_IMAGING_IMG_CAMERA_INFO_H_
