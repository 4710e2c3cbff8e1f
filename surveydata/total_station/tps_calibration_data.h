#ifndef SURVEYDATA_TOTAL_STATION_TPS_CALIBRATION_DATA_H_
#define SURVEYDATA_TOTAL_STATION_TPS_CALIBRATION_DATA_H_

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API TPSCalibrationDataC;
}

namespace ODM {

/// The data of an `SDI::TPSCalibrationDataC`.
class SURVEYDATA_API TPSCalibrationDataC
    : public API::ImplC<TPSCalibrationDataC, SDI::TPSCalibrationDataC> {
 public:
  TPSCalibrationDataC();
  explicit TPSCalibrationDataC(API::BaseC* owner);
  TPSCalibrationDataC(const TPSCalibrationDataC& other);
  TPSCalibrationDataC& operator=(const TPSCalibrationDataC& other);
  ~TPSCalibrationDataC() override;
  API::BaseC* GetBase() override;
  TPSCalibrationDataC(double value1, double value2, double value3, double value4, double value5,
                      double value6, double value7, double value8);

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
  double GetValue7() const;
  void SetValue7(double value7);
  double GetValue8() const;
  void SetValue8(double value8);

  /// Whether all values agree within the tolerance of `API::CompareWithTolerance`.
  bool isEqual(const TPSCalibrationDataC& other) const;

 private:
  double value1_ = 0.0;
  double value2_ = 0.0;
  double value3_ = 0.0;
  double value4_ = 0.0;
  double value5_ = 0.0;
  double value6_ = 0.0;
  double value7_ = 0.0;
  double value8_ = 0.0;
};

}  // namespace ODM

namespace SDI {

/// The calibration values of a total station: eight numbers whose units and meaning the caller
/// defines. All are 0 by default. Any value is accepted.
class SURVEYDATA_API TPSCalibrationDataC : public API::HandleC<ODM::TPSCalibrationDataC> {
 public:
  TPSCalibrationDataC();
  explicit TPSCalibrationDataC(ODM::TPSCalibrationDataC* impl);
  TPSCalibrationDataC(const TPSCalibrationDataC& other);
  TPSCalibrationDataC& operator=(const TPSCalibrationDataC& other);
  ~TPSCalibrationDataC() override;
  TPSCalibrationDataC(double value1, double value2, double value3, double value4, double value5,
                      double value6, double value7, double value8);

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
  double GetValue7() const;
  void SetValue7(double value7);
  double GetValue8() const;
  void SetValue8(double value8);

  /// Whether all values agree within the tolerance of `API::CompareWithTolerance`. NaN equals
  /// anything.
  bool IsEqual(const TPSCalibrationDataC& other) const;
};

static_assert(API::kHasSize<TPSCalibrationDataC, 16> &&
              API::kHasSize<ODM::TPSCalibrationDataC, 80>);

}  // namespace SDI

extern template SURVEYDATA_API ODM::TPSCalibrationDataC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_TOTAL_STATION_TPS_CALIBRATION_DATA_H_
