#include <surveydata/geodetic/q_matrix.h>
#include <surveydata/object_model/compare.h>

namespace ODM {

QMatrixC::QMatrixC() = default;
QMatrixC::QMatrixC(API::BaseC* owner) : ImplC(owner) {}
QMatrixC::QMatrixC(const QMatrixC& other) = default;
QMatrixC& QMatrixC::operator=(const QMatrixC& other) = default;
QMatrixC::~QMatrixC() = default;
API::BaseC* QMatrixC::GetBase() { return ImplC::GetBase(); }

QMatrixC::QMatrixC(float q11, float q12, float q13, float q22, float q23, float q33)
    : q11_(q11), q12_(q12), q13_(q13), q22_(q22), q23_(q23), q33_(q33) {}

float QMatrixC::GetQ11() const { return q11_; }
void QMatrixC::SetQ11(float q11) { q11_ = q11; }
float QMatrixC::GetQ12() const { return q12_; }
void QMatrixC::SetQ12(float q12) { q12_ = q12; }
float QMatrixC::GetQ13() const { return q13_; }
void QMatrixC::SetQ13(float q13) { q13_ = q13; }
float QMatrixC::GetQ22() const { return q22_; }
void QMatrixC::SetQ22(float q22) { q22_ = q22; }
float QMatrixC::GetQ23() const { return q23_; }
void QMatrixC::SetQ23(float q23) { q23_ = q23; }
float QMatrixC::GetQ33() const { return q33_; }
void QMatrixC::SetQ33(float q33) { q33_ = q33; }

bool QMatrixC::isEqual(const QMatrixC& other) const {
  return API::EqualFields(*this, other, &QMatrixC::q11_, &QMatrixC::q12_, &QMatrixC::q13_,
                          &QMatrixC::q22_, &QMatrixC::q23_, &QMatrixC::q33_);
}

}  // namespace ODM

namespace SDI {

QMatrixC::QMatrixC() = default;
QMatrixC::QMatrixC(ODM::QMatrixC* impl) : HandleC(impl) {}
QMatrixC::QMatrixC(const QMatrixC& other) = default;
QMatrixC& QMatrixC::operator=(const QMatrixC& other) = default;
QMatrixC::~QMatrixC() = default;

QMatrixC::QMatrixC(float q11, float q12, float q13, float q22, float q23, float q33)
    : HandleC(new ODM::QMatrixC(q11, q12, q13, q22, q23, q33)) {}

float QMatrixC::GetQ11() const { return GetImpl()->GetQ11(); }
void QMatrixC::SetQ11(float q11) { GetImpl()->SetQ11(q11); }
float QMatrixC::GetQ12() const { return GetImpl()->GetQ12(); }
void QMatrixC::SetQ12(float q12) { GetImpl()->SetQ12(q12); }
float QMatrixC::GetQ13() const { return GetImpl()->GetQ13(); }
void QMatrixC::SetQ13(float q13) { GetImpl()->SetQ13(q13); }
float QMatrixC::GetQ22() const { return GetImpl()->GetQ22(); }
void QMatrixC::SetQ22(float q22) { GetImpl()->SetQ22(q22); }
float QMatrixC::GetQ23() const { return GetImpl()->GetQ23(); }
void QMatrixC::SetQ23(float q23) { GetImpl()->SetQ23(q23); }
float QMatrixC::GetQ33() const { return GetImpl()->GetQ33(); }
void QMatrixC::SetQ33(float q33) { GetImpl()->SetQ33(q33); }

bool QMatrixC::IsEqual(const QMatrixC& other) const { return GetImpl()->isEqual(*other.GetImpl()); }

}  // namespace SDI

template ODM::QMatrixC* API::CastFromAny(API::ImplObjectC*);
