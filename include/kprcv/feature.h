/* Features: edges, corners. */
#ifndef KPRCV_FEATURE_H
#define KPRCV_FEATURE_H

#include <kprcv/feature_edges.h>
#include <kprcv/feature_measures.h>

#endif
