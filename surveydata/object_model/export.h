#ifndef SURVEYDATA_OBJECT_MODEL_EXPORT_H_
#define SURVEYDATA_OBJECT_MODEL_EXPORT_H_

/// \file
/// Export macros.
///
/// `SURVEYDATA_API` marks a class or function that the library exports. `SURVEYDATA_HIDDEN` marks a
/// member of such a class that is not exported. `SURVEYDATA_VISIBLE` marks a class template whose
/// type information must be the same in the library and its callers, although its code is compiled
/// wherever it is used.

#if defined(_WIN32)
#if defined(SURVEYDATA_STATIC)
#define SURVEYDATA_API
#elif defined(SURVEYDATA_BUILDING)
#define SURVEYDATA_API __declspec(dllexport)
#else
#define SURVEYDATA_API __declspec(dllimport)
#endif
#define SURVEYDATA_VISIBLE
#define SURVEYDATA_HIDDEN
#else
#define SURVEYDATA_API __attribute__((visibility("default")))
#define SURVEYDATA_VISIBLE __attribute__((visibility("default")))
#define SURVEYDATA_HIDDEN __attribute__((visibility("hidden")))
#endif

#endif  // SURVEYDATA_OBJECT_MODEL_EXPORT_H_
