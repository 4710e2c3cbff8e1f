#include <cmath>

#include <surveydata/gnss/gps_ant_height.h>
#include <surveydata/object_model/compare.h>

namespace SDI {

template <class Self>
GPSAntHeightFieldsC<Self>::GPSAntHeightFieldsC(float height, bool isVertical,
                                               float horizontalOffset)
    : height_(height), isVertical_(isVertical), horizontalOffset_(horizontalOffset) {}

template <class Self>
void GPSAntHeightFieldsC<Self>::GetHeight(float& height, bool& isVertical) const {
  height = height_;
  isVertical = isVertical_;
}

template <class Self>
void GPSAntHeightFieldsC<Self>::SetHeight(float height, bool isVertical) {
  height_ = height;
  isVertical_ = isVertical;
}

template <class Self>
float GPSAntHeightFieldsC<Self>::GetHorizontalOffset() const {
  return horizontalOffset_;
}

template <class Self>
void GPSAntHeightFieldsC<Self>::SetHorizontalOffset(float horizontalOffset) {
  horizontalOffset_ = horizontalOffset;
}

template <class Self>
float GPSAntHeightFieldsC<Self>::GetVerticalHeight() const {
  if (isVertical_) return height_;
  if (height_ >= horizontalOffset_) {
    return std::sqrt(height_ * height_ - horizontalOffset_ * horizontalOffset_);
  }
  return Self::TooShort(height_);
}

template <class Self>
bool GPSAntHeightFieldsC<Self>::isEqual(const Self& other) const {
  return API::EqualFields<GPSAntHeightFieldsC>(*this, other, &GPSAntHeightFieldsC::height_,
                                               &GPSAntHeightFieldsC::isVertical_,
                                               &GPSAntHeightFieldsC::horizontalOffset_);
}

template class GPSAntHeightFieldsC<GPSAntHeightImplC>;
template class GPSAntHeightFieldsC<ODM::GPSAntHeightC>;

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
