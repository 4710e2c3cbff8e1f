#ifndef SURVEYDATA_C_INTERFACE_ARROW_C_INTERFACE_H_
#define SURVEYDATA_C_INTERFACE_ARROW_C_INTERFACE_H_

#include <stdint.h>

/// \file
/// The structs of the Arrow C data and C stream interfaces, a binary interface that every
/// implementation of Arrow declares for itself:
/// <https://arrow.apache.org/docs/format/CDataInterface.html> and
/// <https://arrow.apache.org/docs/format/CStreamInterface.html>. The guards are those that it
/// prescribes, so that the header can be combined with others that declare it.

#ifdef __cplusplus
extern "C" {
#endif

#ifndef ARROW_C_DATA_INTERFACE
#define ARROW_C_DATA_INTERFACE

#define ARROW_FLAG_DICTIONARY_ORDERED 1
#define ARROW_FLAG_NULLABLE 2
#define ARROW_FLAG_MAP_KEYS_SORTED 4

/// The type of an array, and of its children.
struct ArrowSchema {
  const char* format;
  const char* name;
  const char* metadata;
  int64_t flags;
  int64_t n_children;
  struct ArrowSchema** children;
  struct ArrowSchema* dictionary;
  void (*release)(struct ArrowSchema*);  ///< Null once it was called.
  void* private_data;
};

/// The values of an array: its buffers, and its children.
struct ArrowArray {
  int64_t length;
  int64_t null_count;
  int64_t offset;
  int64_t n_buffers;
  int64_t n_children;
  const void** buffers;
  struct ArrowArray** children;
  struct ArrowArray* dictionary;
  void (*release)(struct ArrowArray*);  ///< Null once it was called.
  void* private_data;
};

#endif  // ARROW_C_DATA_INTERFACE

#ifndef ARROW_C_STREAM_INTERFACE
#define ARROW_C_STREAM_INTERFACE

/// A sequence of arrays of one type. The functions return 0 or a code of `errno.h`.
struct ArrowArrayStream {
  int (*get_schema)(struct ArrowArrayStream*, struct ArrowSchema* out);
  /// Returns an array without a release function at the end of the stream.
  int (*get_next)(struct ArrowArrayStream*, struct ArrowArray* out);
  /// Describes the error of the last call. Null if it succeeded.
  const char* (*get_last_error)(struct ArrowArrayStream*);
  void (*release)(struct ArrowArrayStream*);  ///< Null once it was called.
  void* private_data;
};

#endif  // ARROW_C_STREAM_INTERFACE

#ifdef __cplusplus
}
#endif

#endif  // SURVEYDATA_C_INTERFACE_ARROW_C_INTERFACE_H_
