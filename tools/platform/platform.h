#ifndef SURVEYDATA_TOOLS_PLATFORM_PLATFORM_H_
#define SURVEYDATA_TOOLS_PLATFORM_PLATFORM_H_

#include <filesystem>
#include <string>

/// \file
/// What the program needs of the operating system beside the C++ library: `platform_posix.cpp` or
/// `platform_windows.cpp`. The files that `record set` replaces have a seam of their own,
/// `file_pair.h`.

namespace Tool {

enum class StandardStream { kInput, kOutput, kError };

/// Makes the standard streams carry bytes as they are, and text in UTF-8; keeps files that are
/// opened later from taking the place of one that is closed. Call it first.
void PrepareStandardStreams();

bool IsTerminal(StandardStream stream);

/// What a user types to end the input on a terminal.
extern const char* const kEndOfInput;

/// The path that a name of the command line means; on Windows such names are UTF-8.
std::filesystem::path ToPath(const std::string& name);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_PLATFORM_PLATFORM_H_
