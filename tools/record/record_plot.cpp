#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include <command_line/common_options.h>
#include <output/output.h>
#include <platform/input_file.h>
#include <platform/platform.h>
#include <record/decoded_record.h>
#include <record/each_measurement.h>
#include <record/record_commands.h>
#include <record/record_filter.h>
#include <record/record_pass.h>
#include <record/record_picture.h>
#include <record/satellite_series.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Draw dilutions of precision and satellites over time as an SVG picture, one for all files.\n"
    "Lines are interrupted where time advances by more than three times the median step. Bad\n"
    "frames are left out and counted on standard error, and the exit code is 1, as in export.";

struct Options {
  RecordFileOptions files;
  PictureOutput output;
  RecordFilter filter;
};

std::string TitleOf(const std::vector<RecordFile>& files) {
  if (files.size() > 1) return fmt::format("{} files", files.size());
  const std::string& name = files.front().name;
  return IsStandardInput(name) ? files.front().Title() : ToPath(name).filename().string();
}

using Samples = std::vector<SatelliteSeriesC::Sample>;

// Reuses the memory of samples. Several threads may use it at once.
class SamplePoolC {
 public:
  Samples Take() {
    const std::lock_guard lock(mutex_);
    if (free_.empty()) return {};
    Samples samples = std::move(free_.back());
    free_.pop_back();
    return samples;
  }
  void Give(Samples samples) {
    samples.clear();
    const std::lock_guard lock(mutex_);
    free_.push_back(std::move(samples));
  }

 private:
  std::mutex mutex_;
  std::vector<Samples> free_;
};

// The result of a piece.
struct PlottedPiece {
  PieceOutputC output;
  MeasurementCounts counts;
  Samples samples;  // kept until the pieces before are written
};

class PlotPassC : public RecordPassI<PlottedPiece> {
 public:
  PlotPassC(const Options& options, const std::vector<RecordFile>& files)
      : options_(options), files_(files) {}

  void Read(RecordWalkC& walk, PlottedPiece& result) const override {
    if (result.output.IsKept()) result.samples = pool_.Take();
    result.counts =
        ForEachMeasurement(walk, options_.filter, result.output,
                           Prefix(files_[walk.GetPiece().file]), [&](const DecodedRecord& record) {
                             const auto sample = SatelliteSeriesC::ToSample(record);
                             if (result.output.IsKept()) {
                               result.samples.push_back(sample);
                             } else {
                               series_.Add(sample);
                             }
                           });
  }
  void Take(const RecordPiece& piece, PlottedPiece& result, PieceOutputC& direct) override {
    result.output.PutTo(direct);
    for (const SatelliteSeriesC::Sample& sample : result.samples) series_.Add(sample);
    pool_.Give(std::move(result.samples));
    if (piece.isFirst) counts_ = {};
    counts_.Add(result.counts);
  }
  ExitCode EndFile(const RecordFile& file, PieceOutputC& direct) override {
    return TellAbout(counts_, options_.filter, file, Prefix(file), direct);
  }

  const SatelliteSeriesC& GetSeries() const { return series_; }

 private:
  std::string Prefix(const RecordFile& file) const {
    return options_.files.AreMany() ? file.Title() + ": " : std::string();
  }

  const Options& options_;
  const std::vector<RecordFile>& files_;
  MeasurementCounts counts_;  // of the file
  mutable SamplePoolC pool_;
  mutable SatelliteSeriesC series_;  // changed by `Read` only when one thread reads everything
};

ExitCode Run(const Options& options) {
  for (const std::string& name : options.files.names) options.output.Require(name);
  const std::vector<RecordFile> files = FindRecordFiles(options.files, options.output.file);
  PlotPassC pass(options, files);
  // The samples of a stretch take less memory than its bytes.
  constexpr std::uint64_t kLongestStretch = std::uint64_t{8} << 20;
  const ExitCode result = RunPass(files,
                                  {.jobs = options.files.jobs,
                                   .mayCut = options.filter.every == 1,
                                   .longestStretch = kLongestStretch},
                                  pass);
  if (pass.GetSeries().GetRecordCount() == 0) return result;
  const std::string svg = DrawRecords(pass.GetSeries(), TitleOf(files));
  OutputC out(options.output.file);
  out.GetBuffer().append(svg.data(), svg.data() + svg.size());
  out.Close();
  return result;
}

}  // namespace

Command RecordPlotCommand() {
  const auto options = std::make_shared<Options>();
  Command command;
  command.name = "plot";
  command.description = kDescription;
  command.footer = "Example:\n  surveydata record plot valley_drive.rec -o valley_drive.svg";
  command.options = {PictureOption(options->output)};
  AddFileOptions(command, options->files);
  AddFilterOptions(command, options->filter);
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
