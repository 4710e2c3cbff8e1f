#ifndef SURVEYDATA_TOTAL_STATION_TPS_SETUP_DATA_H_
#define SURVEYDATA_TOTAL_STATION_TPS_SETUP_DATA_H_

#include <cstdint>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API TPSSetupDataC;
}

namespace ODM {

/// The data of an `SDI::TPSSetupDataC`.
class SURVEYDATA_API TPSSetupDataC : public API::ImplC<TPSSetupDataC, SDI::TPSSetupDataC> {
 public:
  TPSSetupDataC();
  explicit TPSSetupDataC(API::BaseC* owner);
  TPSSetupDataC(const TPSSetupDataC& other);
  TPSSetupDataC& operator=(const TPSSetupDataC& other);
  ~TPSSetupDataC() override;
  API::BaseC* GetBase() override;
  TPSSetupDataC(double value1, std::uint32_t flags, std::uint8_t byte1, double value2,
                double value3, double value4, double value5, float single1, float single2,
                float single3, std::uint32_t word1, std::uint32_t word2, std::uint32_t word3);

  double GetValue1() const;
  void SetValue1(double value1);
  std::uint32_t GetFlags() const;
  void SetFlags(std::uint32_t set, std::uint32_t clear);
  std::uint8_t GetByte1() const;
  void SetByte1(std::uint8_t byte1);
  double GetValue2() const;
  void SetValue2(double value2);
  double GetValue3() const;
  void SetValue3(double value3);
  double GetValue4() const;
  void SetValue4(double value4);
  double GetValue5() const;
  void SetValue5(double value5);
  float GetSingle1() const;
  void SetSingle1(float single1);
  float GetSingle2() const;
  void SetSingle2(float single2);
  float GetSingle3() const;
  void SetSingle3(float single3);
  std::uint32_t GetWord1() const;
  void SetWord1(std::uint32_t word1);
  std::uint32_t GetWord2() const;
  void SetWord2(std::uint32_t word2);
  std::uint32_t GetWord3() const;
  void SetWord3(std::uint32_t word3);

  /// Whether flags and integers are the same and all floating-point values agree within the
  /// tolerance of `API::CompareWithTolerance`.
  bool isEqual(const TPSSetupDataC& other) const;

 private:
  double value1_ = 0.0;
  std::uint32_t flags_ = 0;
  std::uint8_t byte1_ = 0;
  double value2_ = 0.0;
  double value3_ = 0.0;
  double value4_ = 0.0;
  double value5_ = 0.0;
  float single1_ = 0.0F;
  float single2_ = 0.0F;
  float single3_ = 0.0F;
  std::uint32_t word1_ = 0;
  std::uint32_t word2_ = 0;
  std::uint32_t word3_ = 0;
};

}  // namespace ODM

namespace SDI {

/// The set-up of a total station. The caller defines units and meaning of the values and of the
/// flags; any value is accepted and stored unchanged. All are 0 by default.
class SURVEYDATA_API TPSSetupDataC : public API::HandleC<ODM::TPSSetupDataC> {
 public:
  TPSSetupDataC();
  explicit TPSSetupDataC(ODM::TPSSetupDataC* impl);
  TPSSetupDataC(const TPSSetupDataC& other);
  TPSSetupDataC& operator=(const TPSSetupDataC& other);
  ~TPSSetupDataC() override;
  TPSSetupDataC(double value1, std::uint32_t flags, std::uint8_t byte1, double value2,
                double value3, double value4, double value5, float single1, float single2,
                float single3, std::uint32_t word1, std::uint32_t word2, std::uint32_t word3);

  double GetValue1() const;
  void SetValue1(double value1);
  std::uint32_t GetFlags() const;
  /// Sets the bits in `set`, then clears those in `clear`: a bit in both ends up cleared.
  void SetFlags(std::uint32_t set, std::uint32_t clear);
  std::uint8_t GetByte1() const;
  void SetByte1(std::uint8_t byte1);
  double GetValue2() const;
  void SetValue2(double value2);
  double GetValue3() const;
  void SetValue3(double value3);
  double GetValue4() const;
  void SetValue4(double value4);
  double GetValue5() const;
  void SetValue5(double value5);
  float GetSingle1() const;
  void SetSingle1(float single1);
  float GetSingle2() const;
  void SetSingle2(float single2);
  float GetSingle3() const;
  void SetSingle3(float single3);
  std::uint32_t GetWord1() const;
  void SetWord1(std::uint32_t word1);
  std::uint32_t GetWord2() const;
  void SetWord2(std::uint32_t word2);
  std::uint32_t GetWord3() const;
  void SetWord3(std::uint32_t word3);

  /// Whether flags and integers are the same and all floating-point values agree within the
  /// tolerance of `API::CompareWithTolerance`, each in its precision. A NaN equals anything.
  bool IsEqual(const TPSSetupDataC& other) const;
};

static_assert(API::kHasSize<TPSSetupDataC, 16> && API::kHasSize<ODM::TPSSetupDataC, 88>);

}  // namespace SDI

extern template SURVEYDATA_API ODM::TPSSetupDataC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_TOTAL_STATION_TPS_SETUP_DATA_H_
