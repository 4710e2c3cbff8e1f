#ifndef SURVEYDATA_IMAGING_IMG_INTERIOR_ORIENTATION_H_
#define SURVEYDATA_IMAGING_IMG_INTERIOR_ORIENTATION_H_

#include <cstdint>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API ImgInteriorOrientationC;

/// The data of an `ImgInteriorOrientationC`.
class SURVEYDATA_API ImgInteriorOrientationImplC
    : public API::ImplC<ImgInteriorOrientationImplC, ImgInteriorOrientationC> {
 public:
  ImgInteriorOrientationImplC();
  explicit ImgInteriorOrientationImplC(API::BaseC* owner);
  ImgInteriorOrientationImplC(const ImgInteriorOrientationImplC& other);
  ImgInteriorOrientationImplC& operator=(const ImgInteriorOrientationImplC& other);
  ~ImgInteriorOrientationImplC() override;
  API::BaseC* GetBase() override;

  std::uint32_t GetModelCode() const;
  void SetModelCode(std::uint32_t modelCode);
  double GetValue1() const;
  void SetValue1(double value1);
  double GetValue2() const;
  void SetValue2(double value2);
  double GetValue3() const;
  void SetValue3(double value3);
  double GetValue4() const;
  void SetValue4(double value4);
  double GetValue5() const;
  void SetValue5(double value5);
  double GetValue6() const;
  void SetValue6(double value6);

  bool operator==(const ImgInteriorOrientationImplC& other) const;
  bool operator!=(const ImgInteriorOrientationImplC& other) const = delete;

 private:
  std::uint32_t modelCode_ = 0;
  double value1_ = 0.0;
  double value2_ = 0.0;
  double value3_ = 0.0;
  double value4_ = 0.0;
  double value5_ = 0.0;
  double value6_ = 0.0;
};

/// The interior orientation of a camera: the code of a camera model and six numbers whose units and
/// meaning the caller defines. All are 0 by default.
class SURVEYDATA_API ImgInteriorOrientationC : public API::HandleC<ImgInteriorOrientationImplC> {
 public:
  ImgInteriorOrientationC();
  explicit ImgInteriorOrientationC(ImgInteriorOrientationImplC* impl);
  ImgInteriorOrientationC(const ImgInteriorOrientationC& other);
  ImgInteriorOrientationC& operator=(const ImgInteriorOrientationC& other);
  ~ImgInteriorOrientationC() override;

  std::uint32_t GetModelCode() const;
  void SetModelCode(std::uint32_t modelCode);
  double GetValue1() const;
  void SetValue1(double value1);
  double GetValue2() const;
  void SetValue2(double value2);
  double GetValue3() const;
  void SetValue3(double value3);
  double GetValue4() const;
  void SetValue4(double value4);
  double GetValue5() const;
  void SetValue5(double value5);
  double GetValue6() const;
  void SetValue6(double value6);

  /// Whether all fields are equal by `==`: an object with a NaN differs even from itself.
  bool operator==(const ImgInteriorOrientationC& other) const;
  bool operator!=(const ImgInteriorOrientationC& other) const = delete;
};

static_assert(API::kHasSize<ImgInteriorOrientationC, 16> &&
              API::kHasSize<ImgInteriorOrientationImplC, 72>);

}  // namespace SDI

extern template SURVEYDATA_API SDI::ImgInteriorOrientationImplC* API::CastFromAny(
    API::ImplObjectC*);

#endif  // SURVEYDATA_IMAGING_IMG_INTERIOR_ORIENTATION_H_
