#ifndef SURVEYDATA_IMAGING_IMG_EXTERIOR_ORIENTATION_H_
#define SURVEYDATA_IMAGING_IMG_EXTERIOR_ORIENTATION_H_

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API ImgExteriorOrientationC;

/// The data of an `ImgExteriorOrientationC`.
class SURVEYDATA_API ImgExteriorOrientationImplC
    : public API::ImplC<ImgExteriorOrientationImplC, ImgExteriorOrientationC> {
 public:
  ImgExteriorOrientationImplC();
  explicit ImgExteriorOrientationImplC(API::BaseC* owner);
  ImgExteriorOrientationImplC(const ImgExteriorOrientationImplC& other);
  ImgExteriorOrientationImplC& operator=(const ImgExteriorOrientationImplC& other);
  ~ImgExteriorOrientationImplC() override;
  API::BaseC* GetBase() override;

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

  bool operator==(const ImgExteriorOrientationImplC& other) const;
  bool operator!=(const ImgExteriorOrientationImplC& other) const = delete;

 private:
  double value1_ = 0.0;
  double value2_ = 0.0;
  double value3_ = 0.0;
  double value4_ = 0.0;
  double value5_ = 0.0;
  double value6_ = 0.0;
};

/// The exterior orientation of a camera, its pose: six numbers whose units and meaning the caller
/// defines, such as projection centre and rotation angles. All are 0 by default.
class SURVEYDATA_API ImgExteriorOrientationC : public API::HandleC<ImgExteriorOrientationImplC> {
 public:
  ImgExteriorOrientationC();
  explicit ImgExteriorOrientationC(ImgExteriorOrientationImplC* impl);
  ImgExteriorOrientationC(const ImgExteriorOrientationC& other);
  ImgExteriorOrientationC& operator=(const ImgExteriorOrientationC& other);
  ~ImgExteriorOrientationC() override;

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
  bool operator==(const ImgExteriorOrientationC& other) const;
  bool operator!=(const ImgExteriorOrientationC& other) const = delete;
};

static_assert(API::kHasSize<ImgExteriorOrientationC, 16> &&
              API::kHasSize<ImgExteriorOrientationImplC, 64>);

}  // namespace SDI

extern template SURVEYDATA_API SDI::ImgExteriorOrientationImplC* API::CastFromAny(
    API::ImplObjectC*);

#endif  // SURVEYDATA_IMAGING_IMG_EXTERIOR_ORIENTATION_H_
