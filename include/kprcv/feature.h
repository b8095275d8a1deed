/* Features: edges, corners, peaks, lines. */
#ifndef KPRCV_FEATURE_H
#define KPRCV_FEATURE_H

#include <kprcv/feature_corners.h>
#include <kprcv/feature_edges.h>
#include <kprcv/feature_lines.h>
#include <kprcv/feature_measures.h>
#include <kprcv/feature_peaks.h>

#endif
