/* The library's own identity. */
#ifndef KPRCV_FRAME_H
#define KPRCV_FRAME_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct KprLibraryVersion {
    int32_t major;
    int32_t minor;
    int32_t update;
    int32_t revision;
    char target[4];          /* the processor target's tag, zero-padded: "n0" */
    const char* libraryName; /* what the build is and which instructions it needs */
    const char* versionText;
    const char* buildDate;
} KprLibraryVersion;

/* Returns the version record: the same constant for every call, neither written nor freed by the caller. */
const KprLibraryVersion* kprcvGetLibVersion(void);

#ifdef __cplusplus
}
#endif

#endif
