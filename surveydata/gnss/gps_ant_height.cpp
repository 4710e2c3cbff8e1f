#include <cmath>

#include <surveydata/gnss/gps_ant_height.h>
#include <surveydata/object_model/compare.h>

namespace {

// `tooShort` is the result for a slant height that is shorter than its offset, or a NaN.
float VerticalHeight(float height, bool isVertical, float horizontalOffset, float tooShort) {
  if (isVertical) return height;
  if (height >= horizontalOffset) {
    return std::sqrt(height * height - horizontalOffset * horizontalOffset);
  }
  return tooShort;
}

}  // namespace

namespace ODM {

GPSAntHeightC::GPSAntHeightC() = default;
GPSAntHeightC::GPSAntHeightC(API::BaseC* owner) : ImplC(owner) {}
GPSAntHeightC::GPSAntHeightC(const GPSAntHeightC& other) = default;
GPSAntHeightC& GPSAntHeightC::operator=(const GPSAntHeightC& other) = default;
GPSAntHeightC::~GPSAntHeightC() = default;
API::BaseC* GPSAntHeightC::GetBase() { return ImplC::GetBase(); }
GPSAntHeightC::GPSAntHeightC(float height, bool isVertical, float horizontalOffset)
    : height_(height), isVertical_(isVertical), horizontalOffset_(horizontalOffset) {}

void GPSAntHeightC::GetHeight(float& height, bool& isVertical) const {
  height = height_;
  isVertical = isVertical_;
}
void GPSAntHeightC::SetHeight(float height, bool isVertical) {
  height_ = height;
  isVertical_ = isVertical;
}
float GPSAntHeightC::GetHorizontalOffset() const { return horizontalOffset_; }
void GPSAntHeightC::SetHorizontalOffset(float horizontalOffset) {
  horizontalOffset_ = horizontalOffset;
}
float GPSAntHeightC::GetVerticalHeight() const {
  return VerticalHeight(height_, isVertical_, horizontalOffset_, height_);
}

bool GPSAntHeightC::isEqual(const GPSAntHeightC& other) const {
  return API::EqualFields(*this, other, &GPSAntHeightC::height_, &GPSAntHeightC::isVertical_,
                          &GPSAntHeightC::horizontalOffset_);
}

}  // namespace ODM

namespace SDI {

GPSAntHeightImplC::GPSAntHeightImplC() = default;
GPSAntHeightImplC::GPSAntHeightImplC(API::BaseC* owner) : ImplC(owner) {}
GPSAntHeightImplC::GPSAntHeightImplC(const GPSAntHeightImplC& other) = default;
GPSAntHeightImplC& GPSAntHeightImplC::operator=(const GPSAntHeightImplC& other) = default;
GPSAntHeightImplC::~GPSAntHeightImplC() = default;
API::BaseC* GPSAntHeightImplC::GetBase() { return ImplC::GetBase(); }
GPSAntHeightImplC::GPSAntHeightImplC(float height, bool isVertical, float horizontalOffset)
    : height_(height), isVertical_(isVertical), horizontalOffset_(horizontalOffset) {}

void GPSAntHeightImplC::GetHeight(float& height, bool& isVertical) const {
  height = height_;
  isVertical = isVertical_;
}
void GPSAntHeightImplC::SetHeight(float height, bool isVertical) {
  height_ = height;
  isVertical_ = isVertical;
}
float GPSAntHeightImplC::GetHorizontalOffset() const { return horizontalOffset_; }
void GPSAntHeightImplC::SetHorizontalOffset(float horizontalOffset) {
  horizontalOffset_ = horizontalOffset;
}
float GPSAntHeightImplC::GetVerticalHeight() const {
  return VerticalHeight(height_, isVertical_, horizontalOffset_, 0.0F);
}

bool GPSAntHeightImplC::isEqual(const GPSAntHeightImplC& other) const {
  return API::EqualFields(*this, other, &GPSAntHeightImplC::height_,
                          &GPSAntHeightImplC::isVertical_, &GPSAntHeightImplC::horizontalOffset_);
}

GPSAntHeightC::GPSAntHeightC() = default;
GPSAntHeightC::GPSAntHeightC(GPSAntHeightImplC* impl) : HandleC(impl) {}
template <std::same_as<ODM::GPSAntHeightC> Compact>
GPSAntHeightC::GPSAntHeightC(Compact* impl) : HandleC(nullptr) {
  SetImpl(impl);
}
template GPSAntHeightC::GPSAntHeightC(ODM::GPSAntHeightC* impl);
GPSAntHeightC::GPSAntHeightC(const GPSAntHeightC& other) = default;
GPSAntHeightC& GPSAntHeightC::operator=(const GPSAntHeightC& other) = default;
GPSAntHeightC::~GPSAntHeightC() = default;

void GPSAntHeightC::GetHeight(float& height, bool& isVertical) const {
  height = 0.0F;
  isVertical = false;
  if (const auto* impl = GetImpl()) impl->GetHeight(height, isVertical);
}

void GPSAntHeightC::SetHeight(float height, bool isVertical) {
  Tell(&GPSAntHeightImplC::SetHeight, height, isVertical);
}

float GPSAntHeightC::GetHorizontalOffset() const {
  return Ask(&GPSAntHeightImplC::GetHorizontalOffset, 0.0F);
}

void GPSAntHeightC::SetHorizontalOffset(float horizontalOffset) {
  Tell(&GPSAntHeightImplC::SetHorizontalOffset, horizontalOffset);
}

float GPSAntHeightC::GetVerticalHeight() const {
  return Ask(&GPSAntHeightImplC::GetVerticalHeight, 0.0F);
}

bool GPSAntHeightC::IsEqual(const GPSAntHeightC& other) const { return AreBothEqual(other); }

}  // namespace SDI

template SDI::GPSAntHeightImplC* API::CastFromAny(API::ImplObjectC*);
