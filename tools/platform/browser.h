#ifndef SURVEYDATA_TOOLS_PLATFORM_BROWSER_H_
#define SURVEYDATA_TOOLS_PLATFORM_BROWSER_H_

#include <filesystem>
#include <string>

/// \file
/// What it takes to show a page in a browser: `browser_posix.cpp` or `browser_windows.cpp`. Every
/// function throws `FileErrorC` on failure.

namespace Tool {

/// The folder that the program itself lies in.
std::filesystem::path ProgramFolder();

/// A folder for pages that only this user can read. It is created where it is missing.
std::filesystem::path PrivateFolder();

/// A new empty file in `folder`, named "view-", six characters and ".html", that only this user can
/// read and write.
std::filesystem::path NewPrivateFile(const std::filesystem::path& folder);

/// Shows a file with the program `browser`; with the default program of the user when it is empty.
/// Does not wait until the browser is closed.
void OpenInBrowser(const std::string& browser, const std::filesystem::path& file);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_PLATFORM_BROWSER_H_
