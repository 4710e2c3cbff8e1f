#ifndef SURVEYDATA_TOOLS_PLATFORM_PLATFORM_H_
#define SURVEYDATA_TOOLS_PLATFORM_PLATFORM_H_

#include <filesystem>
#include <string>

/// \file
/// What the program needs from the operating system in addition to the C++ library:
/// `platform_posix.cpp` or `platform_windows.cpp`. `file_pair.h` replaces files for `record set`.

namespace Tool {

enum class StandardStream { kInput, kOutput, kError };

/// Makes the standard streams pass bytes unchanged, and text as UTF-8. Prevents files that are
/// opened later from getting the number of a closed standard stream. Call it first.
void PrepareStandardStreams();

bool IsTerminal(StandardStream stream);

/// Whether the stream is a terminal that obeys the escape sequences of colours. On Windows this
/// turns them on; the console is restored when the program ends.
bool ShowsColours(StandardStream stream);

/// What a user types to end the input on a terminal.
extern const char* const kEndOfInput;

/// The path for a name from the command line; on Windows such names are UTF-8.
std::filesystem::path ToPath(const std::string& name);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_PLATFORM_PLATFORM_H_
