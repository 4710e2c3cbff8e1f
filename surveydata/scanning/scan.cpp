#include <cstddef>
#include <string_view>

#include <surveydata/scanning/scan.h>
#include <surveydata/scanning/scan_dome_area.h>
#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/scanning/scan_rectangular_area.h>

namespace SDI {
namespace {

// Stores a text of at most `limit` units.
template <class Text>
bool SetText(Text& field, const char16_t* text, std::size_t limit) {
  if (text == nullptr || std::u16string_view(text).size() > limit) return false;
  field = Text(text);
  return true;
}

// A new public area with a copy of `area`; null if `area` is not an `Impl`.
template <class Public, class Impl>
std::unique_ptr<ScanDefinitionC> CopyAs(const ScanDefinitionImplC& area) {
  const auto* const impl = dynamic_cast<const Impl*>(&area);
  if (impl == nullptr) return nullptr;
  auto copy = std::make_unique<Impl>(*impl);
  auto object = std::make_unique<Public>(copy.get());
  static_cast<void>(copy.release());  // the public object owns it now
  return object;
}

std::unique_ptr<ScanDefinitionC> Copy(const ScanDefinitionImplC& area) {
  switch (area.GetType()) {
    case kRectangularArea:
      return CopyAs<ScanRectangularAreaC, ScanRectangularAreaImplC>(area);
    case kPolygonArea:
      return CopyAs<ScanPolygonAreaC, ScanPolygonAreaImplC>(area);
    case kDomeArea:
      return CopyAs<ScanDomeAreaC, ScanDomeAreaImplC>(area);
    default:
      return nullptr;
  }
}

}  // namespace

ScanImplC::ScanImplC() = default;
ScanImplC::ScanImplC(API::BaseC* owner) : ImplC(owner) {}

ScanImplC::ScanImplC(const ScanImplC& other)
    : ImplC(other),
      text1_(other.text1_.GetData()),
      text2_(other.text2_.GetData()),
      text3_(other.text3_.GetData()),
      text4_(other.text4_.GetData()),
      value1_(other.value1_),
      value2_(other.value2_),
      value3_(other.value3_),
      value4_(other.value4_),
      word1_(other.word1_),
      word2_(other.word2_) {
  SetArea(other.GetArea());
}

ScanImplC& ScanImplC::operator=(const ScanImplC& other) {
  if (this == &other) return *this;
  SetArea(other.GetArea());  // first, because nothing else can fail
  text1_ = API::FixedStringC<32>(other.text1_.GetData());
  text2_ = API::FixedStringC<64>(other.text2_.GetData());
  text3_ = API::FixedStringC<255>(other.text3_.GetData());
  text4_ = API::FixedStringC<64>(other.text4_.GetData());
  value1_ = other.value1_;
  value2_ = other.value2_;
  value3_ = other.value3_;
  value4_ = other.value4_;
  word1_ = other.word1_;
  word2_ = other.word2_;
  return *this;
}

ScanImplC::~ScanImplC() = default;
API::BaseC* ScanImplC::GetBase() { return ImplC::GetBase(); }

const char16_t* ScanImplC::GetText1() const { return text1_.GetData(); }
bool ScanImplC::SetText1(const char16_t* text) { return SetText(text1_, text, 32); }
const char16_t* ScanImplC::GetText2() const { return text2_.GetData(); }
bool ScanImplC::SetText2(const char16_t* text) { return SetText(text2_, text, 32); }
const char16_t* ScanImplC::GetText3() const { return text3_.GetData(); }
bool ScanImplC::SetText3(const char16_t* text) { return SetText(text3_, text, 255); }
const char16_t* ScanImplC::GetText4() const { return text4_.GetData(); }
void ScanImplC::SetText4(const char16_t* text) { text4_ = API::FixedStringC<64>(text); }
double ScanImplC::GetValue1() const { return value1_; }
void ScanImplC::SetValue1(double value) { value1_ = value; }
double ScanImplC::GetValue2() const { return value2_; }
void ScanImplC::SetValue2(double value) { value2_ = value; }
double ScanImplC::GetValue3() const { return value3_; }
void ScanImplC::SetValue3(double value) { value3_ = value; }
double ScanImplC::GetValue4() const { return value4_; }
void ScanImplC::SetValue4(double value) { value4_ = value; }
std::uint32_t ScanImplC::GetWord1() const { return word1_; }
void ScanImplC::SetWord1(std::uint32_t word) { word1_ = word; }
std::uint32_t ScanImplC::GetWord2() const { return word2_; }
void ScanImplC::SetWord2(std::uint32_t word) { word2_ = word; }

ScanDefinitionC* ScanImplC::GetArea() const { return area_.get(); }

ScanDefinitionC* ScanImplC::CreateArea(std::uint32_t type) {
  area_.reset();
  switch (type) {
    case kRectangularArea:
      area_ = std::make_unique<ScanRectangularAreaC>();
      break;
    case kPolygonArea:
      area_ = std::make_unique<ScanPolygonAreaC>();
      break;
    case kDomeArea:
      area_ = std::make_unique<ScanDomeAreaC>();
      break;
    default:
      break;
  }
  return area_.get();
}

ScanDefinitionC* ScanImplC::SetArea(const ScanDefinitionC* area) {
  return area != nullptr ? SetArea(area->GetImpl()) : nullptr;
}

ScanDefinitionC* ScanImplC::SetArea(const ScanDefinitionImplC* area) {
  // The copy comes first: the argument may be the area of this scan.
  area_ = area != nullptr ? Copy(*area) : nullptr;
  return area_.get();
}

bool ScanImplC::IsEqual(const ScanImplC& other) const {
  return text1_ == other.text1_ && text2_ == other.text2_ && text4_ == other.text4_ &&
         text3_ == other.text3_ && value1_ == other.value1_ && value2_ == other.value2_ &&
         value3_ == other.value3_ && value4_ == other.value4_ && word1_ == other.word1_ &&
         word2_ == other.word2_ &&
         (area_ == nullptr || other.area_ == nullptr || area_->IsEqual(*other.area_));
}

ScanC::ScanC() = default;
ScanC::ScanC(ScanImplC* impl) : HandleC(impl) {}
ScanC::ScanC(const ScanC& other) = default;
ScanC& ScanC::operator=(const ScanC& other) = default;
ScanC::~ScanC() = default;

const char16_t* ScanC::GetText1() const { return GetImpl()->GetText1(); }
bool ScanC::SetText1(const char16_t* text) { return GetImpl()->SetText1(text); }
const char16_t* ScanC::GetText2() const { return GetImpl()->GetText2(); }
bool ScanC::SetText2(const char16_t* text) { return GetImpl()->SetText2(text); }
const char16_t* ScanC::GetText3() const { return GetImpl()->GetText3(); }
bool ScanC::SetText3(const char16_t* text) { return GetImpl()->SetText3(text); }
const char16_t* ScanC::GetText4() const { return GetImpl()->GetText4(); }
void ScanC::SetText4(const char16_t* text) { GetImpl()->SetText4(text); }
double ScanC::GetValue1() const { return GetImpl()->GetValue1(); }
void ScanC::SetValue1(double value) { GetImpl()->SetValue1(value); }
double ScanC::GetValue2() const { return GetImpl()->GetValue2(); }
void ScanC::SetValue2(double value) { GetImpl()->SetValue2(value); }
double ScanC::GetValue3() const { return GetImpl()->GetValue3(); }
void ScanC::SetValue3(double value) { GetImpl()->SetValue3(value); }
double ScanC::GetValue4() const { return GetImpl()->GetValue4(); }
void ScanC::SetValue4(double value) { GetImpl()->SetValue4(value); }
std::uint32_t ScanC::GetWord1() const { return GetImpl()->GetWord1(); }
void ScanC::SetWord1(std::uint32_t word) { GetImpl()->SetWord1(word); }
std::uint32_t ScanC::GetWord2() const { return GetImpl()->GetWord2(); }
void ScanC::SetWord2(std::uint32_t word) { GetImpl()->SetWord2(word); }

ScanDefinitionC* ScanC::GetArea() const { return GetImpl()->GetArea(); }
ScanDefinitionC* ScanC::CreateArea(std::uint32_t type) { return GetImpl()->CreateArea(type); }
ScanDefinitionC* ScanC::SetArea(const ScanDefinitionC* area) { return GetImpl()->SetArea(area); }

bool ScanC::IsEqual(const ScanC& other) const { return GetImpl()->IsEqual(*other.GetImpl()); }

}  // namespace SDI

template SDI::ScanImplC* API::CastFromAny(API::ImplObjectC*);
