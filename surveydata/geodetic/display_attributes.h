#ifndef SURVEYDATA_GEODETIC_DISPLAY_ATTRIBUTES_H_
#define SURVEYDATA_GEODETIC_DISPLAY_ATTRIBUTES_H_

#include <cstdint>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API DisplayAttributesC;
}

namespace ODM {

/// The data of an `SDI::DisplayAttributesC`.
class SURVEYDATA_API DisplayAttributesC
    : public API::ImplC<DisplayAttributesC, SDI::DisplayAttributesC> {
 public:
  DisplayAttributesC();
  explicit DisplayAttributesC(API::BaseC* owner);
  DisplayAttributesC(const DisplayAttributesC& other);
  DisplayAttributesC& operator=(const DisplayAttributesC& other);
  ~DisplayAttributesC() override;
  API::BaseC* GetBase() override;

  std::uint32_t GetMode() const;
  void SetMode(std::uint32_t mode);
  std::int16_t GetParam1() const;
  void SetParam1(std::int16_t param1);
  std::int16_t GetParam2() const;
  void SetParam2(std::int16_t param2);
  std::int16_t GetParam3() const;
  void SetParam3(std::int16_t param3);
  std::int16_t GetParam4() const;
  void SetParam4(std::int16_t param4);
  std::int16_t GetParam5() const;
  void SetParam5(std::int16_t param5);
  std::int16_t GetParam6() const;
  void SetParam6(std::int16_t param6);
  std::uint32_t GetOptions() const;
  void SetOptions(std::uint32_t options);

 private:
  std::uint32_t mode_ = 0;
  std::int16_t param1_ = 0;
  std::int16_t param2_ = 0;
  std::int16_t param3_ = 0;
  std::int16_t param4_ = 0;
  std::int16_t param5_ = 0;
  std::int16_t param6_ = 0;
  std::uint32_t options_ = 0;
};

}  // namespace ODM

namespace SDI {

/// Display settings: two words and six parameters whose meaning the caller defines. All are 0 by
/// default. There is no equality.
class SURVEYDATA_API DisplayAttributesC : public API::HandleC<ODM::DisplayAttributesC> {
 public:
  DisplayAttributesC();
  explicit DisplayAttributesC(ODM::DisplayAttributesC* impl);
  DisplayAttributesC(const DisplayAttributesC& other);
  DisplayAttributesC& operator=(const DisplayAttributesC& other);
  ~DisplayAttributesC() override;

  std::uint32_t GetMode() const;
  void SetMode(std::uint32_t mode);
  std::int16_t GetParam1() const;
  void SetParam1(std::int16_t param1);
  std::int16_t GetParam2() const;
  void SetParam2(std::int16_t param2);
  std::int16_t GetParam3() const;
  void SetParam3(std::int16_t param3);
  std::int16_t GetParam4() const;
  void SetParam4(std::int16_t param4);
  std::int16_t GetParam5() const;
  void SetParam5(std::int16_t param5);
  std::int16_t GetParam6() const;
  void SetParam6(std::int16_t param6);
  std::uint32_t GetOptions() const;
  void SetOptions(std::uint32_t options);
};

static_assert(API::kHasSize<DisplayAttributesC, 16> && API::kHasSize<ODM::DisplayAttributesC, 40>);

}  // namespace SDI

extern template SURVEYDATA_API ODM::DisplayAttributesC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_GEODETIC_DISPLAY_ATTRIBUTES_H_
