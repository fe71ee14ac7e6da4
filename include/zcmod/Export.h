// Export and import of the library's interface.
#pragma once

#if defined(ZCMOD_BUILDING)
#define ZCMOD_API __declspec(dllexport)
#elif defined(ZCMOD_STATIC)
#define ZCMOD_API
#else
#define ZCMOD_API __declspec(dllimport)
#endif

// Global functions are exported with C linkage, so that their names in the export table are the plain names.
#ifdef __cplusplus
#define ZCMOD_EXTERN_C extern "C"
#else
#define ZCMOD_EXTERN_C
#endif
