#include <surveydata/geodetic/display_attributes.h>

namespace ODM {

DisplayAttributesC::DisplayAttributesC() = default;
DisplayAttributesC::DisplayAttributesC(API::BaseC* owner) : ImplC(owner) {}
DisplayAttributesC::DisplayAttributesC(const DisplayAttributesC& other) = default;
DisplayAttributesC& DisplayAttributesC::operator=(const DisplayAttributesC& other) = default;
DisplayAttributesC::~DisplayAttributesC() = default;
API::BaseC* DisplayAttributesC::GetBase() { return ImplC::GetBase(); }

std::uint32_t DisplayAttributesC::GetMode() const { return mode_; }
void DisplayAttributesC::SetMode(std::uint32_t mode) { mode_ = mode; }
std::int16_t DisplayAttributesC::GetParam1() const { return param1_; }
void DisplayAttributesC::SetParam1(std::int16_t param1) { param1_ = param1; }
std::int16_t DisplayAttributesC::GetParam2() const { return param2_; }
void DisplayAttributesC::SetParam2(std::int16_t param2) { param2_ = param2; }
std::int16_t DisplayAttributesC::GetParam3() const { return param3_; }
void DisplayAttributesC::SetParam3(std::int16_t param3) { param3_ = param3; }
std::int16_t DisplayAttributesC::GetParam4() const { return param4_; }
void DisplayAttributesC::SetParam4(std::int16_t param4) { param4_ = param4; }
std::int16_t DisplayAttributesC::GetParam5() const { return param5_; }
void DisplayAttributesC::SetParam5(std::int16_t param5) { param5_ = param5; }
std::int16_t DisplayAttributesC::GetParam6() const { return param6_; }
void DisplayAttributesC::SetParam6(std::int16_t param6) { param6_ = param6; }
std::uint32_t DisplayAttributesC::GetOptions() const { return options_; }
void DisplayAttributesC::SetOptions(std::uint32_t options) { options_ = options; }

}  // namespace ODM

namespace SDI {

DisplayAttributesC::DisplayAttributesC() = default;
DisplayAttributesC::DisplayAttributesC(ODM::DisplayAttributesC* impl) : HandleC(impl) {}
DisplayAttributesC::DisplayAttributesC(const DisplayAttributesC& other) = default;
DisplayAttributesC& DisplayAttributesC::operator=(const DisplayAttributesC& other) = default;
DisplayAttributesC::~DisplayAttributesC() = default;

std::uint32_t DisplayAttributesC::GetMode() const { return GetImpl()->GetMode(); }
void DisplayAttributesC::SetMode(std::uint32_t mode) { GetImpl()->SetMode(mode); }
std::int16_t DisplayAttributesC::GetParam1() const { return GetImpl()->GetParam1(); }
void DisplayAttributesC::SetParam1(std::int16_t param1) { GetImpl()->SetParam1(param1); }
std::int16_t DisplayAttributesC::GetParam2() const { return GetImpl()->GetParam2(); }
void DisplayAttributesC::SetParam2(std::int16_t param2) { GetImpl()->SetParam2(param2); }
std::int16_t DisplayAttributesC::GetParam3() const { return GetImpl()->GetParam3(); }
void DisplayAttributesC::SetParam3(std::int16_t param3) { GetImpl()->SetParam3(param3); }
std::int16_t DisplayAttributesC::GetParam4() const { return GetImpl()->GetParam4(); }
void DisplayAttributesC::SetParam4(std::int16_t param4) { GetImpl()->SetParam4(param4); }
std::int16_t DisplayAttributesC::GetParam5() const { return GetImpl()->GetParam5(); }
void DisplayAttributesC::SetParam5(std::int16_t param5) { GetImpl()->SetParam5(param5); }
std::int16_t DisplayAttributesC::GetParam6() const { return GetImpl()->GetParam6(); }
void DisplayAttributesC::SetParam6(std::int16_t param6) { GetImpl()->SetParam6(param6); }
std::uint32_t DisplayAttributesC::GetOptions() const { return GetImpl()->GetOptions(); }
void DisplayAttributesC::SetOptions(std::uint32_t options) { GetImpl()->SetOptions(options); }

}  // namespace SDI

template ODM::DisplayAttributesC* API::CastFromAny(API::ImplObjectC*);
