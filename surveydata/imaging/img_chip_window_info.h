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
  using ImplC::ImplC;

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

/// A window on the image chip: four numbers, two corners or an origin and a size as the caller has
/// it. All are 0 by default.
class SURVEYDATA_API ImgChipWindowInfoC : public API::HandleC<ImgChipWindowInfoImplC> {
 public:
  using HandleC::HandleC;

  double GetValue1() const;
  void SetValue1(double value1);
  double GetValue2() const;
  void SetValue2(double value2);
  double GetValue3() const;
  void SetValue3(double value3);
  double GetValue4() const;
  void SetValue4(double value4);

  /// Whether every field is equal by `==`: an object with a NaN differs even from itself.
  bool operator==(const ImgChipWindowInfoC& other) const;
  bool operator!=(const ImgChipWindowInfoC& other) const = delete;
};

static_assert(sizeof(ImgChipWindowInfoC) == 16 && sizeof(ImgChipWindowInfoImplC) == 48);

}  // namespace SDI

#endif  // SURVEYDATA_IMAGING_IMG_CHIP_WINDOW_INFO_H_
