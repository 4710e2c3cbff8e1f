#ifndef SURVEYDATA_TOOLS_PLATFORM_BROWSER_H_
#define SURVEYDATA_TOOLS_PLATFORM_BROWSER_H_

#include <filesystem>
#include <string>

/// \file
/// System functions that show a page in a browser: `browser_posix.cpp` or `browser_windows.cpp`.
/// Every function throws `FileErrorC` on failure.

namespace Tool {

/// The folder that contains the program.
std::filesystem::path ProgramFolder();

/// A folder for pages that only this user can read. It is created if it does not exist.
std::filesystem::path PrivateFolder();

/// A new empty file in `folder`, named "view-", six characters and ".html", that only this user can
/// read and write.
std::filesystem::path NewPrivateFile(const std::filesystem::path& folder);

/// Shows a file with the program `browser`, or with the user's default browser if it is empty. Does
/// not wait until the browser is closed.
void OpenInBrowser(const std::string& browser, const std::filesystem::path& file);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_PLATFORM_BROWSER_H_
