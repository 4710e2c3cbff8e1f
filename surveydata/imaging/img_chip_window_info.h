#ifndef SURVEYDATA_IMAGING_IMG_CHIP_WINDOW_INFO_H_
#define SURVEYDATA_IMAGING_IMG_CHIP_WINDOW_INFO_H_

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API ImgChipWindowInfoC;

/// The data of an `ImgChipWindowInfoC`.
class SURVEYDATA_API ImgChipWindowInfoImplC
    : public API::ImplC<ImgChipWindowInfoImplC, ImgChipWindowInfoC> {
 public:
  ImgChipWindowInfoImplC();
  explicit ImgChipWindowInfoImplC(API::BaseC* owner);
  ImgChipWindowInfoImplC(const ImgChipWindowInfoImplC& other);
  ImgChipWindowInfoImplC& operator=(const ImgChipWindowInfoImplC& other);
  ~ImgChipWindowInfoImplC() override;
  API::BaseC* GetBase() override;

  double GetValue1() const;
  void SetValue1(double value1);
  double GetValue2() const;
  void SetValue2(double value2);
  double GetValue3() const;
  void SetValue3(double value3);
  double GetValue4() const;
  void SetValue4(double value4);

  bool operator==(const ImgChipWindowInfoImplC& other) const;
  bool operator!=(const ImgChipWindowInfoImplC& other) const = delete;

 private:
  double value1_ = 0.0;
  double value2_ = 0.0;
  double value3_ = 0.0;
  double value4_ = 0.0;
};

/// A window on the image chip: four numbers, either two corners or an origin and a size, as the
/// caller defines. All are 0 by default.
class SURVEYDATA_API ImgChipWindowInfoC : public API::HandleC<ImgChipWindowInfoImplC> {
 public:
  ImgChipWindowInfoC();
  explicit ImgChipWindowInfoC(ImgChipWindowInfoImplC* impl);
  ImgChipWindowInfoC(const ImgChipWindowInfoC& other);
  ImgChipWindowInfoC& operator=(const ImgChipWindowInfoC& other);
  ~ImgChipWindowInfoC() override;

  double GetValue1() const;
  void SetValue1(double value1);
  double GetValue2() const;
  void SetValue2(double value2);
  double GetValue3() const;
  void SetValue3(double value3);
  double GetValue4() const;
  void SetValue4(double value4);

  /// Whether all fields are equal by `==`: an object with a NaN differs even from itself.
  bool operator==(const ImgChipWindowInfoC& other) const;
  bool operator!=(const ImgChipWindowInfoC& other) const = delete;
};

static_assert(API::kHasSize<ImgChipWindowInfoC, 16> && API::kHasSize<ImgChipWindowInfoImplC, 48>);

}  // namespace SDI

extern template SURVEYDATA_API SDI::ImgChipWindowInfoImplC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_IMAGING_IMG_CHIP_WINDOW_INFO_H_
