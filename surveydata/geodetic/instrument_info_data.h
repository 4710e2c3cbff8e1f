#ifndef SURVEYDATA_GEODETIC_INSTRUMENT_INFO_DATA_H_
#define SURVEYDATA_GEODETIC_INSTRUMENT_INFO_DATA_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/fixed_string.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API InstrumentInfoDataC;
}

namespace ODM {

/// The data of an `SDI::InstrumentInfoDataC`.
class SURVEYDATA_API InstrumentInfoDataC
    : public API::ImplC<InstrumentInfoDataC, SDI::InstrumentInfoDataC> {
 public:
  InstrumentInfoDataC();
  explicit InstrumentInfoDataC(API::BaseC* owner);
  InstrumentInfoDataC(const InstrumentInfoDataC& other);
  InstrumentInfoDataC& operator=(const InstrumentInfoDataC& other);
  ~InstrumentInfoDataC() override;
  API::BaseC* GetBase() override;
  /// An identifier of more than 16 units, or null, becomes empty. The texts must not be null.
  /// @{
  InstrumentInfoDataC(const char16_t* identifier, std::uint32_t flags, const char* text1,
                      const char* text2, const char* text3, const char* text4, float value,
                      std::int32_t number1, std::int32_t number2, std::int32_t number3,
                      std::int32_t number4);
  InstrumentInfoDataC(const wchar_t* identifier, std::uint32_t flags, const char* text1,
                      const char* text2, const char* text3, const char* text4, float value,
                      std::int32_t number1, std::int32_t number2, std::int32_t number3,
                      std::int32_t number4);
  InstrumentInfoDataC(std::nullptr_t identifier, std::uint32_t flags, const char* text1,
                      const char* text2, const char* text3, const char* text4, float value,
                      std::int32_t number1, std::int32_t number2, std::int32_t number3,
                      std::int32_t number4);
  /// @}

  /// The record's own identifier: the reference is valid until the record is destroyed, and shows
  /// later changes.
  const API::FixedStringC<16>& getIdentifier() const;
  /// The field becomes empty if `identifier` has more than 16 units or is null.
  /// @{
  void setIdentifier(const char16_t* identifier);
  void setIdentifier(const wchar_t* identifier);
  void setIdentifier(std::nullptr_t identifier);
  /// @}
  std::uint32_t getFlags() const;
  /// Sets the bits in `set`, then clears those in `clear`: a bit in both ends up cleared.
  void setFlags(std::uint32_t set, std::uint32_t clear);
  /// The pointer to a text is valid until that text is set or assigned again, or the record is
  /// destroyed. A setter treats null as the empty text.
  /// @{
  const char* getText1() const;
  void setText1(const char* text1);
  const char* getText2() const;
  void setText2(const char* text2);
  const char* getText3() const;
  void setText3(const char* text3);
  const char* getText4() const;
  void setText4(const char* text4);
  /// @}
  float getValue() const;
  void setValue(float value);
  std::int32_t getNumber1() const;
  void setNumber1(std::int32_t number1);
  std::int32_t getNumber2() const;
  void setNumber2(std::int32_t number2);
  std::int32_t getNumber3() const;
  void setNumber3(std::int32_t number3);
  std::int32_t getNumber4() const;
  void setNumber4(std::int32_t number4);

  /// Whether all other fields are the same and the values agree within the tolerance of
  /// `API::CompareWithTolerance`.
  bool isEqual(const InstrumentInfoDataC& other) const;

 private:
  API::FixedStringC<16> identifier_;
  std::uint32_t flags_ = 0;
  std::string text1_;
  std::string text2_;
  std::string text3_;
  std::string text4_;
  float value_ = 0.0F;
  std::int32_t number1_ = 0;
  std::int32_t number2_ = 0;
  std::int32_t number3_ = 0;
  std::int32_t number4_ = 0;
};

}  // namespace ODM

namespace SDI {

/// The description of an instrument: a short identifier, flags, four texts and five numbers, whose
/// meaning the caller defines. All are empty or 0 by default.
class SURVEYDATA_API InstrumentInfoDataC : public API::HandleC<ODM::InstrumentInfoDataC> {
 public:
  InstrumentInfoDataC();
  explicit InstrumentInfoDataC(ODM::InstrumentInfoDataC* impl);
  InstrumentInfoDataC(const InstrumentInfoDataC& other);
  InstrumentInfoDataC& operator=(const InstrumentInfoDataC& other);
  ~InstrumentInfoDataC() override;
  /// An identifier of more than 16 units, or null, becomes empty. The texts must not be null.
  /// @{
  InstrumentInfoDataC(const char16_t* identifier, std::uint32_t flags, const char* text1,
                      const char* text2, const char* text3, const char* text4, float value,
                      std::int32_t number1, std::int32_t number2, std::int32_t number3,
                      std::int32_t number4);
  InstrumentInfoDataC(const wchar_t* identifier, std::uint32_t flags, const char* text1,
                      const char* text2, const char* text3, const char* text4, float value,
                      std::int32_t number1, std::int32_t number2, std::int32_t number3,
                      std::int32_t number4);
  InstrumentInfoDataC(std::nullptr_t identifier, std::uint32_t flags, const char* text1,
                      const char* text2, const char* text3, const char* text4, float value,
                      std::int32_t number1, std::int32_t number2, std::int32_t number3,
                      std::int32_t number4);
  /// @}

  /// The record's own identifier: the reference is valid until the record is destroyed, and shows
  /// later changes.
  const API::FixedStringC<16>& GetIdentifier() const;
  /// The field becomes empty if `identifier` has more than 16 units or is null.
  /// @{
  void SetIdentifier(const char16_t* identifier);
  void SetIdentifier(const wchar_t* identifier);
  void SetIdentifier(std::nullptr_t identifier);
  /// @}
  std::uint32_t GetFlags() const;
  /// Sets the bits in `set`, then clears those in `clear`: a bit in both ends up cleared.
  void SetFlags(std::uint32_t set, std::uint32_t clear);
  /// The pointer to a text is valid until that text is set or assigned again, or the record is
  /// destroyed. A setter treats null as the empty text.
  /// @{
  const char* GetText1() const;
  void SetText1(const char* text1);
  const char* GetText2() const;
  void SetText2(const char* text2);
  const char* GetText3() const;
  void SetText3(const char* text3);
  const char* GetText4() const;
  void SetText4(const char* text4);
  /// @}
  float GetValue() const;
  void SetValue(float value);
  std::int32_t GetNumber1() const;
  void SetNumber1(std::int32_t number1);
  std::int32_t GetNumber2() const;
  void SetNumber2(std::int32_t number2);
  std::int32_t GetNumber3() const;
  void SetNumber3(std::int32_t number3);
  std::int32_t GetNumber4() const;
  void SetNumber4(std::int32_t number4);

  /// Whether all other fields are the same and the values agree within the tolerance of
  /// `API::CompareWithTolerance` in single precision. A NaN equals anything.
  bool IsEqual(const InstrumentInfoDataC& other) const;
};

static_assert(API::kHasSize<InstrumentInfoDataC, 16>);

}  // namespace SDI

extern template SURVEYDATA_API ODM::InstrumentInfoDataC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_GEODETIC_INSTRUMENT_INFO_DATA_H_
