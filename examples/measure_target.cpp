// Applies set-up, calibration and corrections to a measurement of a total station.
//
// The records store numbers; the application defines their meaning. This one stores instrument
// height, easting, northing, height and orientation in the values 1 to 5 of a set-up, collimation
// and index error in the values 1 and 2 of a calibration, and the prism constant in value 1 of a
// correction.

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>

#include <surveydata/total_station/tps_calibration_data.h>
#include <surveydata/total_station/tps_correction_data.h>
#include <surveydata/total_station/tps_meas_data.h>
#include <surveydata/total_station/tps_setup_data.h>

namespace {

constexpr std::uint32_t kRaw = 0x1;
constexpr std::uint32_t kCorrected = 0x2;
constexpr double kGon = std::numbers::pi / 200.0;

// The values 1 to 3 of a measurement are Hz, V and the slope distance.
void Correct(SDI::TPSMeasDataC& target, const SDI::TPSCalibrationDataC& calibration,
             const SDI::TPSCorrectionDataC& correction) {
  const double v = target.GetValue2() - calibration.GetValue2();
  target.SetValue1(target.GetValue1() - calibration.GetValue1() / std::sin(v));
  target.SetValue2(v);
  target.SetValue3((target.GetValue3() + correction.GetValue1()) * correction.GetScaleFactor());
  target.SetFlags(kCorrected, kRaw);
}

void Print(const char* what, const SDI::TPSMeasDataC& target) {
  std::printf("%-9s  Hz %9.4f gon  V %8.4f gon  distance %8.4f m\n", what,
              target.GetValue1() / kGon, target.GetValue2() / kGon, target.GetValue3());
}

}  // namespace

int main() {
  SDI::TPSSetupDataC setup;
  setup.SetValue1(1.623);
  setup.SetValue2(634217.482);
  setup.SetValue3(248903.117);
  setup.SetValue4(487.264);
  setup.SetValue5(35.2140 * kGon);

  SDI::TPSCalibrationDataC calibration;
  calibration.SetValue1(0.0012 * kGon);
  calibration.SetValue2(-0.0008 * kGon);

  SDI::TPSCorrectionDataC correction;
  correction.SetValue1(0.0344);
  correction.SetScaleFactor(correction.ScaleFromPpm(12.4));  // atmospheric correction, warm day

  SDI::TPSMeasDataC target;
  target.SetText(u"T-204");
  target.SetValue1(71.3862 * kGon);
  target.SetValue2(97.8431 * kGon);
  target.SetValue3(286.4172);
  target.SetFlags(kRaw, 0);

  const SDI::TPSMeasDataC measured(target);
  Correct(target, calibration, correction);
  Print("measured", measured);
  Print("corrected", target);
  std::printf("scale      %.1f ppm\n", correction.PpmFromScale(correction.GetScaleFactor()));

  // The measured point is the reflector; its height above the ground is ignored.
  const double azimuth = target.GetValue1() + setup.GetValue5();
  const double horizontal = target.GetValue3() * std::sin(target.GetValue2());
  std::printf(
      "reflector  east %.3f  north %.3f  height %.3f\n",
      setup.GetValue2() + horizontal * std::sin(azimuth),
      setup.GetValue3() + horizontal * std::cos(azimuth),
      setup.GetValue4() + setup.GetValue1() + target.GetValue3() * std::cos(target.GetValue2()));
}
