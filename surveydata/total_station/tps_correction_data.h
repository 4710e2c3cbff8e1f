#ifndef SURVEYDATA_TOTAL_STATION_TPS_CORRECTION_DATA_H_
#define SURVEYDATA_TOTAL_STATION_TPS_CORRECTION_DATA_H_

#include <cstdint>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API TPSCorrectionDataC;
}

namespace ODM {

/// The data of an `SDI::TPSCorrectionDataC`.
class SURVEYDATA_API TPSCorrectionDataC
    : public API::ImplC<TPSCorrectionDataC, SDI::TPSCorrectionDataC> {
 public:
  TPSCorrectionDataC();
  explicit TPSCorrectionDataC(API::BaseC* owner);
  TPSCorrectionDataC(const TPSCorrectionDataC& other);
  TPSCorrectionDataC& operator=(const TPSCorrectionDataC& other);
  ~TPSCorrectionDataC() override;
  API::BaseC* GetBase() override;
  TPSCorrectionDataC(double value1, double value2, double value3, double scaleFactor, double value5,
                     double value6, double value7, double value8, float single1, float single2,
                     float single3, float single4, std::uint32_t flags);

  double GetValue1() const;
  void SetValue1(double value1);
  double GetValue2() const;
  void SetValue2(double value2);
  double GetValue3() const;
  void SetValue3(double value3);
  double GetScaleFactor() const;
  void SetScaleFactor(double scaleFactor);
  double GetValue5() const;
  void SetValue5(double value5);
  double GetValue6() const;
  void SetValue6(double value6);
  double GetValue7() const;
  void SetValue7(double value7);
  double GetValue8() const;
  void SetValue8(double value8);
  float GetSingle1() const;
  void SetSingle1(float single1);
  float GetSingle2() const;
  void SetSingle2(float single2);
  float GetSingle3() const;
  void SetSingle3(float single3);
  float GetSingle4() const;
  void SetSingle4(float single4);
  std::uint32_t GetFlags() const;
  void SetFlags(std::uint32_t set, std::uint32_t clear);

  /// The scale factor of a correction in parts per million, ppm * 1e-6 + 1.
  static double ScaleFromPpm(double ppm);
  /// The correction of a scale factor in parts per million, (scale - 1) * 1e6.
  static double PpmFromScale(double scale);

  /// Whether the flags are the same and all values agree within the tolerance of
  /// `API::CompareWithTolerance`.
  bool isEqual(const TPSCorrectionDataC& other) const;

 private:
  double value1_ = 0.0;
  double value2_ = 0.0;
  double value3_ = 0.0;
  double scaleFactor_ = 1.0;
  double value5_ = 0.0;
  double value6_ = 0.0;
  double value7_ = 0.0;
  double value8_ = 0.0;
  float single1_ = 0.0F;
  float single2_ = 0.0F;
  float single3_ = 0.0F;
  float single4_ = 0.0F;
  std::uint32_t flags_ = 0;
};

}  // namespace ODM

namespace SDI {

/// The corrections applied to the measurements of a total station, including a scale factor for
/// distances. The caller defines units and meaning of the other values and of the flags; any value
/// is accepted and stored unchanged. By default, the scale factor is 1 and the rest is 0.
class SURVEYDATA_API TPSCorrectionDataC : public API::HandleC<ODM::TPSCorrectionDataC> {
 public:
  TPSCorrectionDataC();
  explicit TPSCorrectionDataC(ODM::TPSCorrectionDataC* impl);
  TPSCorrectionDataC(const TPSCorrectionDataC& other);
  TPSCorrectionDataC& operator=(const TPSCorrectionDataC& other);
  ~TPSCorrectionDataC() override;
  TPSCorrectionDataC(double value1, double value2, double value3, double scaleFactor, double value5,
                     double value6, double value7, double value8, float single1, float single2,
                     float single3, float single4, std::uint32_t flags);

  double GetValue1() const;
  void SetValue1(double value1);
  double GetValue2() const;
  void SetValue2(double value2);
  double GetValue3() const;
  void SetValue3(double value3);
  /// The dimensionless scale factor for distances; 1 means no correction.
  double GetScaleFactor() const;
  void SetScaleFactor(double scaleFactor);
  double GetValue5() const;
  void SetValue5(double value5);
  double GetValue6() const;
  void SetValue6(double value6);
  double GetValue7() const;
  void SetValue7(double value7);
  double GetValue8() const;
  void SetValue8(double value8);
  float GetSingle1() const;
  void SetSingle1(float single1);
  float GetSingle2() const;
  void SetSingle2(float single2);
  float GetSingle3() const;
  void SetSingle3(float single3);
  float GetSingle4() const;
  void SetSingle4(float single4);
  std::uint32_t GetFlags() const;
  /// Sets the bits in `set`, then clears those in `clear`: a bit in both ends up cleared.
  void SetFlags(std::uint32_t set, std::uint32_t clear);

  /// The scale factor of a correction in parts per million, ppm * 1e-6 + 1.
  static double ScaleFromPpm(double ppm);
  /// The correction of a scale factor in parts per million, (scale - 1) * 1e6.
  static double PpmFromScale(double scale);

  /// Whether the flags are the same and all values agree within the tolerance of
  /// `API::CompareWithTolerance`, each in its precision. A NaN equals anything.
  bool IsEqual(const TPSCorrectionDataC& other) const;
};

static_assert(API::kHasSize<TPSCorrectionDataC, 16> && API::kHasSize<ODM::TPSCorrectionDataC, 104>);

}  // namespace SDI

extern template SURVEYDATA_API ODM::TPSCorrectionDataC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_TOTAL_STATION_TPS_CORRECTION_DATA_H_
