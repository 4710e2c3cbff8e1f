#include <chrono>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <system_error>
#include <utility>

#include <fmt/format.h>
#include <view/embedded_file.h>
#include <view/view_command.h>

#include <command_line/common_options.h>
#include <output/output.h>
#include <platform/browser.h>
#include <platform/file_error.h>
#include <platform/input_file.h>
#include <platform/platform.h>

namespace Tool {
namespace {

namespace fs = std::filesystem;

constexpr const char* kDescription =
    "Show a record file or an area in a browser: a record file as a list, plots and single\n"
    "records, an area in two views. The file, of at most 50 MB, is embedded in a copy of the\n"
    "page, which sends no data. The copy is written to a folder that only you can read, and its\n"
    "name to standard output; the next run removes copies that are older than a minute.";

constexpr std::size_t kMostBytes = 50'000'000;
constexpr std::size_t kMostPageBytes = 10'000'000;
constexpr std::chrono::minutes kOld(1);  // by then, the browser has read the copy

struct Options {
  std::string file;
  std::string output;
  bool hasOutput = false;
  std::string browser;
  std::string page;
};

// The whole content of a file.
std::string ReadAll(const std::string& name, std::size_t most, const std::string& tooLong) {
  InputFileC file(name);
  std::string bytes;
  for (;;) {
    constexpr std::size_t kBlock = std::size_t{1} << 20;
    const std::size_t size = bytes.size();
    bytes.resize(size + kBlock);
    const std::size_t count = file.Read(std::span(bytes).subspan(size));
    bytes.resize(size + count);
    if (count == 0) return bytes;
    if (bytes.size() > most) throw FileErrorC(file.GetName() + tooLong);
  }
}

std::string Utf8(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

// The page that the user named, or else the installed one.
std::string NameOfPage(const std::string& given) {
  if (!given.empty()) return given;
  const fs::path installed = (ProgramFolder() / ToPath(SURVEYDATA_PAGE_PATH)).lexically_normal();
  std::error_code ignored;
  if (!fs::exists(installed, ignored)) {
    throw FileErrorC(fmt::format("{} does not exist: the page was not installed; --page names one",
                                 Utf8(installed)));
  }
  return Utf8(installed);
}

void RemoveOldPages(const fs::path& folder) {
  std::error_code error;
  const auto now = fs::file_time_type::clock::now();
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    const std::string name = Utf8(entry.path().filename());
    if (!name.starts_with("view-") || !name.ends_with(".html")) continue;
    if (!fs::is_regular_file(entry.symlink_status(error))) continue;
    const auto written = entry.last_write_time(error);
    if (!error && now - written > kOld) fs::remove(entry.path(), error);
  }
}

// Removes the file unless it is kept.
class UnfinishedFileC {
 public:
  explicit UnfinishedFileC(fs::path file) : file_(std::move(file)) {}
  UnfinishedFileC(const UnfinishedFileC&) = delete;
  UnfinishedFileC& operator=(const UnfinishedFileC&) = delete;
  ~UnfinishedFileC() {
    std::error_code ignored;
    if (!file_.empty()) fs::remove(file_, ignored);
  }
  void Keep() { file_.clear(); }

 private:
  fs::path file_;
};

ExitCode Run(const Options& options) {
  const std::string pageName = NameOfPage(options.page);
  const std::string page = ReadAll(pageName, kMostPageBytes, " is too long to be the page");
  const std::string bytes =
      ReadAll(options.file, kMostBytes,
              " has more than 50 MB; open the page itself and drop the file on it");
  const std::string name =
      IsStandardInput(options.file) ? "standard input" : Utf8(ToPath(options.file).filename());
  const auto write = [&](const std::string& to) {
    const std::string inputs[] = {options.file, pageName};
    OutputC out(to, inputs);
    if (!WriteWithFile(page, name, bytes, out)) {
      throw FileErrorC(fmt::format(
          "{} is not the page of this program: it has no placeholder for a file", pageName));
    }
    out.Close();
  };
  fs::path file = ToPath(options.output);
  if (options.hasOutput) {
    write(options.output);
    if (options.output.empty()) return ExitCode::kDone;  // standard output: nothing to open
  } else {
    const fs::path folder = PrivateFolder();
    RemoveOldPages(folder);
    file = NewPrivateFile(folder);
    UnfinishedFileC unfinished(file);
    write(Utf8(file));
    unfinished.Keep();
  }
  OutputC out;
  out.Print("{}\n", Utf8(file));
  out.Close();
  OpenInBrowser(options.browser, file);
  return ExitCode::kDone;
}

}  // namespace

Command ViewCommand() {
  const auto options = std::make_shared<Options>();
  Command command;
  command.name = "view";
  command.description = kDescription;
  command.footer =
      "Examples:\n  surveydata view valley_drive.rec\n"
      "  surveydata view facade.json -o facade.html --browser firefox";
  command.arguments = {{.names = {"FILE"},
                        .value = "TEXT",
                        .description = "A record file or an area file; - for standard input",
                        .take = StoreIn(options->file),
                        .isRequired = true}};
  CommandOption output = OutputOption(
      options->output, "The copy to write instead; - for standard output, without showing it",
      "OUT.html");
  output.take = [options, take = output.take](const std::string& name) {
    take(name);
    options->hasOutput = true;
  };
  command.options = {output,
                     {.names = {"--browser"},
                      .value = "PROGRAM",
                      .description = "The program that opens the copy; by default your "
                                     "desktop's browser",
                      .take = StoreIn(options->browser)},
                     {.names = {"--page"},
                      .value = "PAGE.html",
                      .description = "The page; by default the installed one",
                      .take = StoreIn(options->page)}};
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
