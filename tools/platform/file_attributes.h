#ifndef SURVEYDATA_TOOLS_PLATFORM_FILE_ATTRIBUTES_H_
#define SURVEYDATA_TOOLS_PLATFORM_FILE_ATTRIBUTES_H_

#include <string>

namespace Tool {

/// Gives the open file `to` the extended attributes of `from` and no others; the access control
/// list is one of them. Attributes that the new file inherited from its folder are removed first.
/// The signatures `security.ima` and `security.evm`, which the kernel computes for each file, are
/// not copied.
///
/// \return empty on success; otherwise the attribute that cannot be read, set or removed, with the
///         reason in `errno`.
std::string CopyAttributes(int from, int to);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_PLATFORM_FILE_ATTRIBUTES_H_
