#ifndef SURVEYDATA_SCANNING_SCAN_H_
#define SURVEYDATA_SCANNING_SCAN_H_

#include <cstdint>
#include <memory>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/fixed_string.h>
#include <surveydata/object_model/handle.h>
#include <surveydata/scanning/scan_definition.h>

namespace SDI {
class SURVEYDATA_API ScanC;

/// The data of a `ScanC`. It owns the area: deleting either deletes the area's implementation too.
class SURVEYDATA_API ScanImplC : public API::ImplC<ScanImplC, ScanC> {
 public:
  ScanImplC();
  explicit ScanImplC(API::BaseC* owner);
  /// Copies the area too.
  ScanImplC(const ScanImplC& other);
  /// Copies the area too; without one in `other`, this scan keeps its own.
  ScanImplC& operator=(const ScanImplC& other);
  ~ScanImplC() override;
  API::BaseC* GetBase() override;

  const char16_t* GetText1() const;
  bool SetText1(const char16_t* text);
  const char16_t* GetText2() const;
  bool SetText2(const char16_t* text);
  const char16_t* GetText3() const;
  bool SetText3(const char16_t* text);
  const char16_t* GetText4() const;
  void SetText4(const char16_t* text);
  double GetValue1() const;
  void SetValue1(double value);
  double GetValue2() const;
  void SetValue2(double value);
  double GetValue3() const;
  void SetValue3(double value);
  double GetValue4() const;
  void SetValue4(double value);
  std::uint32_t GetWord1() const;
  void SetWord1(std::uint32_t word);
  std::uint32_t GetWord2() const;
  void SetWord2(std::uint32_t word);

  ScanDefinitionC* GetArea() const;
  ScanDefinitionC* CreateArea(std::uint32_t type);
  /// Null changes nothing.
  ScanDefinitionC* SetArea(const ScanDefinitionC* area);
  /// Null removes the area.
  ScanDefinitionC* SetArea(const ScanDefinitionImplC* area);

  bool IsEqual(const ScanImplC& other) const;

 private:
  API::FixedStringC<32> text1_;
  API::FixedStringC<64> text2_;
  API::FixedStringC<255> text3_;
  API::FixedStringC<64> text4_;
  double value1_ = 0.0;
  double value2_ = 0.0;
  double value3_ = 0.0;
  double value4_ = 0.0;
  std::uint32_t word1_ = 0;
  std::uint32_t word2_ = 0;
  std::unique_ptr<ScanDefinitionC> area_;
};

/// One laser scan job: four texts, four values and two words whose meaning the caller defines,
/// and at most one area, which the scan owns.
///
/// Texts are empty and numbers 0 at first; there is no area.
class SURVEYDATA_API ScanC : public API::HandleC<ScanImplC> {
 public:
  ScanC();
  explicit ScanC(ScanImplC* impl);
  ScanC(const ScanC& other);
  ScanC& operator=(const ScanC& other);
  ~ScanC() override;

  /// The text, terminated by 0. The pointer is valid as long as the scan, and shows later changes.
  /// @{
  const char16_t* GetText1() const;
  const char16_t* GetText2() const;
  const char16_t* GetText3() const;
  const char16_t* GetText4() const;
  /// @}
  /// \return false, with the text unchanged, when `text` is null or longer than 32 units.
  bool SetText1(const char16_t* text);
  /// \return false, with the text unchanged, when `text` is null or longer than 32 units, although
  ///         there is room for 64.
  bool SetText2(const char16_t* text);
  /// \return false, with the text unchanged, when `text` is null or longer than 255 units.
  bool SetText3(const char16_t* text);
  /// A text that is null or longer than 64 units empties the field.
  void SetText4(const char16_t* text);
  double GetValue1() const;
  void SetValue1(double value);
  double GetValue2() const;
  void SetValue2(double value);
  double GetValue3() const;
  void SetValue3(double value);
  double GetValue4() const;
  void SetValue4(double value);
  std::uint32_t GetWord1() const;
  void SetWord1(std::uint32_t word);
  std::uint32_t GetWord2() const;
  void SetWord2(std::uint32_t word);

  /// The area, or null. It belongs to the scan, and is valid until the scan is destroyed or gets
  /// another area.
  ScanDefinitionC* GetArea() const;

  /// Replaces the area by a new one of the kind `type` (`ScanAreaType`); an unknown kind leaves the
  /// scan without an area.
  /// \return the new area, or null.
  ScanDefinitionC* CreateArea(std::uint32_t type);

  /// Replaces the area by a copy of `area`, which may be that of this scan. Null changes nothing;
  /// an unknown kind leaves the scan without an area.
  /// \return the new area, or null.
  ScanDefinitionC* SetArea(const ScanDefinitionC* area);

  /// Whether texts, values (by ==, so a NaN differs) and words are equal, and the areas too when
  /// both scans have one.
  bool IsEqual(const ScanC& other) const;
};

static_assert(API::kHasSize<ScanC, 16> && API::kHasSize<ScanImplC, 952>);

}  // namespace SDI

extern template SURVEYDATA_API SDI::ScanImplC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_SCANNING_SCAN_H_
