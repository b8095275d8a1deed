/* Element types, geometry, status words and code words shared by every header of the library. */
#ifndef KPRCV_TYPES_H
#define KPRCV_TYPES_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Elements. The tokens 8u, 16s, 32f and so on in function names stand for these types. */
typedef uint8_t Kpr8u;
typedef int8_t Kpr8s;
typedef uint16_t Kpr16u;
typedef int16_t Kpr16s;
typedef int32_t Kpr32s;
typedef int64_t Kpr64s;
typedef float Kpr32f;
typedef double Kpr64f;

/* Geometry, in pixels. Functions whose names end in _L take the 64-bit forms. */
typedef struct KprSize {
    int32_t width;
    int32_t height;
} KprSize;

typedef struct KprSizeL {
    int64_t width;
    int64_t height;
} KprSizeL;

typedef struct KprPoint {
    int32_t x;
    int32_t y;
} KprPoint;

typedef struct KprPointL {
    int64_t x;
    int64_t y;
} KprPointL;

typedef struct KprPoint32f {
    float x;
    float y;
} KprPoint32f;

typedef struct KprRect {
    int32_t x;
    int32_t y;
    int32_t width;
    int32_t height;
} KprRect;

/* The result of every function but kprcvGetLibVersion: zero is success, a negative value an error, a positive value
 * a warning. After an error the outputs are as they were, unless the function says otherwise. */
typedef int32_t KprStatus;

enum {
    kprStatusRoiClipped = 48,           /* warning: the ROI was cut to fit the image */
    kprStatusListFull = 33,             /* warning: more results than the list holds */
    kprStatusSizeBeyond32Bit = 12,      /* warning: a size does not fit in 32 bits */
    kprStatusZeroDivisor = 2,           /* warning: the divisor norm is zero; the result is NaN or infinite */
    kprStatusNoMaskedPixels = 1,        /* warning: the mask selected no pixel */
    kprStatusOk = 0,                    /* success */
    kprStatusFail = -1,                 /* reserved */
    kprStatusError = -2,                /* a computed count does not fit */
    kprStatusBadArg = -5,               /* an argument outside what the function accepts */
    kprStatusBadSize = -6,              /* a width or height below 1 or below the function's minimum */
    kprStatusBadRange = -7,             /* a range that runs backwards */
    kprStatusNullPtr = -8,              /* a required pointer is null */
    kprStatusDivByZero = -10,           /* internal: division by a zero constant */
    kprStatusOutOfRange = -11,          /* a value outside its allowed range */
    kprStatusBadContext = -13,          /* a state block of another family, or never initialised */
    kprStatusBadMode = -14,             /* a mode word that is not accepted */
    kprStatusBadStep = -16,             /* a row step smaller than the row it must hold */
    kprStatusBadThreshold = -19,        /* a threshold below zero */
    kprStatusBadMaskSize = -33,         /* a mask-size word that is not accepted */
    kprStatusBadAnchor = -34,           /* an anchor outside the mask */
    kprStatusBadChannelCount = -47,     /* a channel count that is not accepted */
    kprStatusBadCoi = -52,              /* a channel of interest that is not 1, 2 or 3 */
    kprStatusBadChannel = -53,          /* a channels argument that is not accepted */
    kprStatusBadMetric = -56,           /* a distance metric below 1 */
    kprStatusBadDataType = -59,         /* a data-type word that is not accepted */
    kprStatusStepNotMultiple = -108,    /* a row step that is not a multiple of the element size */
    kprStatusBadBorder = -225,          /* a border word that is not accepted */
    kprStatusBadNorm = -229,            /* a norm word that is not accepted */
    kprStatusBadAlgorithm = -230,       /* a filter or algorithm word that is not accepted */
    kprStatusSizeOverflow = -232,       /* a size beyond 0x7fffffff where sizes are computed in 32 bits */
    kprStatusInPlaceUnsupported = -9998 /* source and destination are the same buffer */
};

/* The data-type word of sizing calls; each call accepts its own subset. */
typedef int32_t KprDataType;

enum { kpr1u = 0, kpr8u = 1, kpr16u = 5, kpr16s = 7, kpr32s = 11, kpr32f = 13, kpr64f = 19 };

/* The mask-size word: the two digits of a mask's width and height. */
typedef int32_t KprMaskSize;

enum { kprMaskSize3x3 = 33, kprMaskSize5x5 = 55 };

/* The norm word and the filter word of functions that take one. */
enum { kprNormInf = 1, kprNormL1 = 2, kprNormL2 = 4 };
enum { kprFilterSobel = 2, kprFilterScharr = 5, kprFilterCentralDifference = 8 };

/* The border word: a base mode, and flags for the sides on which the pixels outside the ROI are valid memory and are
 * read as they are. The base mode rules on the other sides. */
typedef uint32_t KprBorderType;

enum {
    kprBorderReplicate = 1,    /* the nearest edge pixel */
    kprBorderMirror = 3,       /* reflection that does not repeat the edge pixel: -1 reads 1, n reads n - 2 */
    kprBorderDefault = 5,      /* a constant that is neutral for the operation; morphology only */
    kprBorderConstant = 6,     /* a value given with the call */
    kprBorderInMemTop = 16,    /* the rows above the ROI are valid memory */
    kprBorderInMemBottom = 32, /* the rows below the ROI are valid memory */
    kprBorderInMemLeft = 64,   /* the columns left of the ROI are valid memory */
    kprBorderInMemRight = 128, /* the columns right of the ROI are valid memory */
    kprBorderInMem = 240       /* all four sides are valid memory; needs no base mode */
};

#ifdef __cplusplus
}
#endif

#endif
