#include <surveydata/geodetic/rectangle.h>
#include <surveydata/object_model/lent_object.h>

namespace ODM {

RectangleC::RectangleC() = default;
RectangleC::RectangleC(API::BaseC* owner) : ImplC(owner) {}
RectangleC::RectangleC(const RectangleC& other) = default;
RectangleC& RectangleC::operator=(const RectangleC& other) = default;
RectangleC::~RectangleC() = default;
API::BaseC* RectangleC::GetBase() { return ImplC::GetBase(); }

RectangleC::RectangleC(const CoordinateReferenceSystemC& crs, const CoordinatePointC& bottomLeft,
                       const CoordinatePointC& topRight)
    : crs_(crs), bottomLeft_(bottomLeft), topRight_(topRight) {}

const CoordinateReferenceSystemC& RectangleC::GetCRS() const { return crs_; }
CoordinateReferenceSystemC& RectangleC::GetCRS() { return crs_; }
void RectangleC::SetCRS(const CoordinateReferenceSystemC& crs) { crs_ = crs; }
const CoordinatePointC& RectangleC::GetBottomLeft() const { return bottomLeft_; }
CoordinatePointC& RectangleC::GetBottomLeft() { return bottomLeft_; }
void RectangleC::SetBottomLeft(const CoordinatePointC& bottomLeft) { bottomLeft_ = bottomLeft; }
const CoordinatePointC& RectangleC::GetTopRight() const { return topRight_; }
CoordinatePointC& RectangleC::GetTopRight() { return topRight_; }
void RectangleC::SetTopRight(const CoordinatePointC& topRight) { topRight_ = topRight; }

}  // namespace ODM

namespace SDI {

RectangleC::RectangleC() = default;
RectangleC::RectangleC(ODM::RectangleC* impl) : HandleC(impl) {}
RectangleC::RectangleC(const RectangleC& other) = default;
RectangleC& RectangleC::operator=(const RectangleC& other) = default;
RectangleC::~RectangleC() = default;

RectangleC::RectangleC(const CoordinateReferenceSystemC& crs, const CoordinatePointC& bottomLeft,
                       const CoordinatePointC& topRight)
    : HandleC(new ODM::RectangleC(*crs.GetImpl(), *bottomLeft.GetImpl(), *topRight.GetImpl())) {}

const CoordinateReferenceSystemC& RectangleC::GetCRS() const {
  return API::PublicOf<CoordinateReferenceSystemC>(GetImpl()->GetCRS());
}
CoordinateReferenceSystemC& RectangleC::GetCRS() {
  return API::PublicOf<CoordinateReferenceSystemC>(GetImpl()->GetCRS());
}
void RectangleC::SetCRS(const CoordinateReferenceSystemC& crs) {
  GetImpl()->SetCRS(*crs.GetImpl());
}
const CoordinatePointC& RectangleC::GetBottomLeft() const {
  return API::PublicOf<CoordinatePointC>(GetImpl()->GetBottomLeft());
}
CoordinatePointC& RectangleC::GetBottomLeft() {
  return API::PublicOf<CoordinatePointC>(GetImpl()->GetBottomLeft());
}
void RectangleC::SetBottomLeft(const CoordinatePointC& bottomLeft) {
  GetImpl()->SetBottomLeft(*bottomLeft.GetImpl());
}
const CoordinatePointC& RectangleC::GetTopRight() const {
  return API::PublicOf<CoordinatePointC>(GetImpl()->GetTopRight());
}
CoordinatePointC& RectangleC::GetTopRight() {
  return API::PublicOf<CoordinatePointC>(GetImpl()->GetTopRight());
}
void RectangleC::SetTopRight(const CoordinatePointC& topRight) {
  GetImpl()->SetTopRight(*topRight.GetImpl());
}

}  // namespace SDI

template ODM::RectangleC* API::CastFromAny(API::ImplObjectC*);
