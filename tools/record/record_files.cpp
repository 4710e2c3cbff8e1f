#include <algorithm>
#include <cctype>
#include <filesystem>
#include <system_error>

#include <fmt/format.h>

#include <command_line/exit_code.h>
#include <command_line/text.h>
#include <platform/file_error.h>
#include <platform/input_file.h>
#include <platform/platform.h>
#include <record/record_files.h>

namespace Tool {
namespace {

namespace fs = std::filesystem;

bool IsFolder(const std::string& name) {
  std::error_code ignored;
  return !IsStandardInput(name) && fs::is_directory(ToPath(name), ignored);
}

std::string ToName(const fs::path& path) {
  const std::u8string name = path.u8string();
  return {name.begin(), name.end()};
}

bool IsRecordFile(const fs::directory_entry& entry) {
  std::error_code ignored;
  std::string extension = ToName(entry.path().extension());
  std::ranges::transform(extension, extension.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension == ".rec" && entry.is_regular_file(ignored);
}

// The record files of a folder, and folders that cannot be read, with the reason.
void FindIn(const fs::path& folder, bool isRecursive, std::vector<RecordFile>& found) {
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code ignored;
    if (isRecursive && entry->symlink_status(ignored).type() == fs::file_type::directory) {
      FindIn(entry->path(), isRecursive, found);
    } else if (IsRecordFile(*entry)) {
      found.push_back({.name = ToName(entry->path())});
    }
  }
  if (!error) return;
  const std::string name = ToName(folder);
  found.push_back(
      {.name = name, .fault = fmt::format("cannot read {}: {}", name, error.message())});
}

std::vector<RecordFile> FilesOfFolder(const std::string& folder, bool isRecursive) {
  std::vector<RecordFile> found;
  FindIn(ToPath(folder), isRecursive, found);
  if (found.empty()) {
    throw ToolErrorC(ExitCode::kFileError,
                     fmt::format("cannot read {}: it is a folder without files *.rec{}", folder,
                                 isRecursive ? "" : "; --recursive also reads its subfolders"));
  }
  std::ranges::sort(found, {}, &RecordFile::name);
  return found;
}

// Opens the only file of a command. Several files may be too many to keep open, so each is opened
// when it is read.
RecordFile Look(const std::string& name, bool isOnly) {
  RecordFile file{.name = name};
  std::error_code error;
  // A pipe is opened only once, when it is read.
  const bool isThere = IsStandardInput(name) || fs::exists(fs::status(ToPath(name), error));
  if (isThere && !IsStandardInput(name) && !fs::is_regular_file(ToPath(name), error)) return file;
  // Standard input has one position, and is read by one reader.
  const bool hasSize = !IsStandardInput(name);
  try {
    if (isOnly) {
      file.opened = std::make_shared<InputFileC>(name);
      if (hasSize) file.size = file.opened->GetSize();
    } else if (hasSize) {
      file.size = ReadableSize(name);
    }
  } catch (const FileErrorC& fault) {
    file.fault = fault.what();
  }
  return file;
}

unsigned ParseJobs(const std::string& text) {
  // Each thread may have two files open, and some systems allow a program hardly more than 512.
  constexpr unsigned kMost = 250;
  const auto jobs = ToNumber<unsigned>(text);
  if (!jobs || *jobs == 0 || *jobs > kMost) {
    throw ValueErrorC(fmt::format("not a whole number from 1 to {}", kMost));
  }
  return *jobs;
}

}  // namespace

bool RecordFileOptions::AreMany() const {
  return names.size() > 1 || std::ranges::any_of(names, IsFolder);
}

std::string RecordFile::Title() const { return IsStandardInput(name) ? "standard input" : name; }

void AddNamesOptions(Command& command, RecordFileOptions& options) {
  command.arguments.Add(
      {.names = {"FILE"},
       .value = "TEXT",
       .description = "Record files, folders, of which the files *.rec are read, or - for standard "
                      "input",
       .take =
           [&options](const std::string& name) {
             if (IsStandardInput(name) && std::ranges::any_of(options.names, IsStandardInput)) {
               throw ValueErrorC("standard input can be read only once");
             }
             options.names.push_back(name);
           },
       .isRequired = true,
       .isRepeatable = true});
  command.options.Add({.names = {"-r", "--recursive"},
                       .description = "Also read the subfolders of folders",
                       .flag = &options.isRecursive});
}

void AddFileOptions(Command& command, RecordFileOptions& options) {
  AddNamesOptions(command, options);
  command.options.Add(
      {.names = {"-j", "--jobs"},
       .value = "N",
       .description =
           "The number of threads, by default the number of processors; the output does not "
           "depend on it",
       .take = [&options](const std::string& text) { options.jobs = ParseJobs(text); }});
}

std::vector<RecordFile> FindRecordFiles(const RecordFileOptions& options,
                                        const std::string& output) {
  std::vector<RecordFile> files;
  for (const std::string& name : options.names) {
    if (!IsFolder(name)) {
      files.push_back(Look(name, !options.AreMany()));
      continue;
    }
    for (const RecordFile& below : FilesOfFolder(name, options.isRecursive)) {
      files.push_back(below.fault.empty() ? Look(below.name, false) : below);
    }
  }
  if (!options.AreMany() && !files.front().fault.empty()) {
    throw ToolErrorC(ExitCode::kFileError, files.front().fault);
  }
  for (const RecordFile& file : files) {
    if (!output.empty() && IsSameRegularFile(output, file.name)) {
      throw ToolErrorC(ExitCode::kUsage, fmt::format("{} is the input itself", output));
    }
  }
  return files;
}

OpenRecordFilesC::OpenRecordFilesC(const std::vector<RecordFile>& files,
                                   const std::vector<RecordPiece>& pieces)
    : files_(files), inputs_(files.size()) {
  for (const RecordPiece& piece : pieces) ++inputs_[piece.file].unread;
}

std::shared_ptr<InputFileC> OpenRecordFilesC::Open(std::size_t file) {
  Input& input = inputs_[file];
  const std::lock_guard lock(input.mutex);
  if (!input.opened) input.opened = files_[file].Open();
  return input.opened;
}

void OpenRecordFilesC::EndPiece(std::size_t file) {
  Input& input = inputs_[file];
  const std::lock_guard lock(input.mutex);
  if (--input.unread == 0) input.opened.reset();
}

RecordFile FindRecordFile(const std::string& name) {
  const RecordFileOptions options{.names = {name}};
  if (options.AreMany()) {
    throw ToolErrorC(ExitCode::kFileError, fmt::format("cannot read {}: it is a folder", name));
  }
  return FindRecordFiles(options).front();
}

std::uint64_t StretchOf(std::uint64_t total, unsigned jobs, std::uint64_t longest) {
  constexpr std::uint64_t kOfAThread = 4;
  const std::uint64_t count = kOfAThread * jobs;
  return std::clamp((total + count - 1) / count, kShortestStretch, longest);
}

std::vector<RecordPiece> CutIntoPieces(const std::vector<RecordFile>& files,
                                       std::uint64_t stretch) {
  std::vector<RecordPiece> pieces;
  for (std::size_t file = 0; file < files.size(); ++file) {
    const std::uint64_t size = files[file].size;
    if (stretch == 0 || size <= stretch) {
      pieces.push_back({.file = file});
      continue;
    }
    for (std::uint64_t begin = 0; begin < size; begin += stretch) {
      const bool isLast = size - begin <= stretch;
      pieces.push_back({file, {begin, isLast ? size : begin + stretch}, begin == 0, isLast});
    }
  }
  return pieces;
}

}  // namespace Tool
