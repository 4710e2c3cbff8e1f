#ifndef SURVEYDATA_TOTAL_STATION_TPS_MEAS_DATA_H_
#define SURVEYDATA_TOTAL_STATION_TPS_MEAS_DATA_H_

#include <cstdint>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/fixed_string.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API TPSMeasDataC;
}

namespace ODM {

/// The data of an `SDI::TPSMeasDataC`.
class SURVEYDATA_API TPSMeasDataC : public API::ImplC<TPSMeasDataC, SDI::TPSMeasDataC> {
 public:
  TPSMeasDataC();
  explicit TPSMeasDataC(API::BaseC* owner);
  TPSMeasDataC(const TPSMeasDataC& other);
  TPSMeasDataC& operator=(const TPSMeasDataC& other);
  ~TPSMeasDataC() override;
  API::BaseC* GetBase() override;
  /// `text` is handled as in `SetText`.
  TPSMeasDataC(const char16_t* text, double value1, double value2, double value3, double value4,
               double value5, double value6, float single1, double value7, double value8,
               double value9, double value10, double value11, float single2, float single3,
               float single4, float single5, float single6, std::uint32_t word1,
               std::uint32_t word2, std::uint32_t word3, std::uint32_t word4, std::uint32_t word5,
               std::uint32_t word6, std::uint32_t word7, std::uint32_t word8, std::uint32_t flags,
               std::uint32_t word9);

  const char16_t* GetText() const;
  void SetText(const char16_t* text);
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
  float GetSingle1() const;
  void SetSingle1(float single1);
  double GetValue7() const;
  void SetValue7(double value7);
  double GetValue8() const;
  void SetValue8(double value8);
  double GetValue9() const;
  void SetValue9(double value9);
  double GetValue10() const;
  void SetValue10(double value10);
  double GetValue11() const;
  void SetValue11(double value11);
  float GetSingle2() const;
  void SetSingle2(float single2);
  float GetSingle3() const;
  void SetSingle3(float single3);
  float GetSingle4() const;
  void SetSingle4(float single4);
  float GetSingle5() const;
  void SetSingle5(float single5);
  float GetSingle6() const;
  void SetSingle6(float single6);
  std::uint32_t GetWord1() const;
  void SetWord1(std::uint32_t word1);
  std::uint32_t GetWord2() const;
  void SetWord2(std::uint32_t word2);
  std::uint32_t GetWord3() const;
  void SetWord3(std::uint32_t word3);
  std::uint32_t GetWord4() const;
  void SetWord4(std::uint32_t word4);
  std::uint32_t GetWord5() const;
  void SetWord5(std::uint32_t word5);
  std::uint32_t GetWord6() const;
  void SetWord6(std::uint32_t word6);
  std::uint32_t GetWord7() const;
  void SetWord7(std::uint32_t word7);
  std::uint32_t GetWord8() const;
  void SetWord8(std::uint32_t word8);
  std::uint32_t GetFlags() const;
  void SetFlags(std::uint32_t set, std::uint32_t clear);
  std::uint32_t GetWord9() const;
  void SetWord9(std::uint32_t word9);

  /// Whether text, flags and integers are the same and all floating-point values agree within the
  /// tolerance of `API::CompareWithTolerance`.
  bool isEqual(const TPSMeasDataC& other) const;

 private:
  API::FixedStringC<16> text_;
  double value1_ = 0.0;
  double value2_ = 0.0;
  double value3_ = 0.0;
  double value4_ = 0.0;
  double value5_ = 0.0;
  double value6_ = 0.0;
  float single1_ = 0.0F;
  double value7_ = 0.0;
  double value8_ = 0.0;
  double value9_ = 0.0;
  double value10_ = 0.0;
  double value11_ = 0.0;
  float single2_ = 0.0F;
  float single3_ = 0.0F;
  float single4_ = 0.0F;
  float single5_ = 0.0F;
  float single6_ = 0.0F;
  std::uint32_t word1_ = 0;
  std::uint32_t word2_ = 0;
  std::uint32_t word3_ = 0;
  std::uint32_t word4_ = 0;
  std::uint32_t word5_ = 0;
  std::uint32_t word6_ = 0;
  std::uint32_t word7_ = 0;
  std::uint32_t word8_ = 0;
  std::uint32_t flags_ = 0;
  std::uint32_t word9_ = 0;
};

}  // namespace ODM

namespace SDI {

/// One measurement of a total station: a short text, eleven values in double and six in single
/// precision, nine words and flags. The caller defines units and meaning of the values and of the
/// flags; any value is accepted and stored unchanged. By default, the text is empty and the rest is
/// 0.
class SURVEYDATA_API TPSMeasDataC : public API::HandleC<ODM::TPSMeasDataC> {
 public:
  TPSMeasDataC();
  explicit TPSMeasDataC(ODM::TPSMeasDataC* impl);
  TPSMeasDataC(const TPSMeasDataC& other);
  TPSMeasDataC& operator=(const TPSMeasDataC& other);
  ~TPSMeasDataC() override;
  /// `text` is handled as in `SetText`.
  TPSMeasDataC(const char16_t* text, double value1, double value2, double value3, double value4,
               double value5, double value6, float single1, double value7, double value8,
               double value9, double value10, double value11, float single2, float single3,
               float single4, float single5, float single6, std::uint32_t word1,
               std::uint32_t word2, std::uint32_t word3, std::uint32_t word4, std::uint32_t word5,
               std::uint32_t word6, std::uint32_t word7, std::uint32_t word8, std::uint32_t flags,
               std::uint32_t word9);

  /// The pointer is valid as long as this object, and shows later changes.
  const char16_t* GetText() const;
  /// The text becomes empty if `text` has more than 16 units or is null.
  void SetText(const char16_t* text);
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
  float GetSingle1() const;
  void SetSingle1(float single1);
  double GetValue7() const;
  void SetValue7(double value7);
  double GetValue8() const;
  void SetValue8(double value8);
  double GetValue9() const;
  void SetValue9(double value9);
  double GetValue10() const;
  void SetValue10(double value10);
  double GetValue11() const;
  void SetValue11(double value11);
  float GetSingle2() const;
  void SetSingle2(float single2);
  float GetSingle3() const;
  void SetSingle3(float single3);
  float GetSingle4() const;
  void SetSingle4(float single4);
  float GetSingle5() const;
  void SetSingle5(float single5);
  float GetSingle6() const;
  void SetSingle6(float single6);
  std::uint32_t GetWord1() const;
  void SetWord1(std::uint32_t word1);
  std::uint32_t GetWord2() const;
  void SetWord2(std::uint32_t word2);
  std::uint32_t GetWord3() const;
  void SetWord3(std::uint32_t word3);
  std::uint32_t GetWord4() const;
  void SetWord4(std::uint32_t word4);
  std::uint32_t GetWord5() const;
  void SetWord5(std::uint32_t word5);
  std::uint32_t GetWord6() const;
  void SetWord6(std::uint32_t word6);
  std::uint32_t GetWord7() const;
  void SetWord7(std::uint32_t word7);
  std::uint32_t GetWord8() const;
  void SetWord8(std::uint32_t word8);
  std::uint32_t GetFlags() const;
  /// Sets the bits in `set`, then clears those in `clear`: a bit in both ends up cleared.
  void SetFlags(std::uint32_t set, std::uint32_t clear);
  std::uint32_t GetWord9() const;
  void SetWord9(std::uint32_t word9);

  /// Whether text, flags and integers are the same and all floating-point values agree within the
  /// tolerance of `API::CompareWithTolerance`, each in its precision. A NaN equals anything.
  bool IsEqual(const TPSMeasDataC& other) const;
};

static_assert(API::kHasSize<TPSMeasDataC, 16> && API::kHasSize<ODM::TPSMeasDataC, 224>);

}  // namespace SDI

extern template SURVEYDATA_API ODM::TPSMeasDataC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_TOTAL_STATION_TPS_MEAS_DATA_H_
