// Each connected marker takes a label of its own. Labels run from the smallest to the largest and begin again, in the
// raster order of the markers' first pixels, which is that of their first runs.
#include <bit>

#include "frame/checks.h"
#include "segment/flood_fill.h"
#include "segment/joined_runs.h"

namespace n0::segment {
namespace {

struct Labels {
    Kpr32s smallest, largest;
};

// Markers are the pixels of `src` other than 0. `dst` may be the same image: a label is never 0. `reach` is 0 for 4
// neighbours, 1 for 8.
template <typename Src, typename Dst>
class Markers {
  public:
    Markers(Rows<const Src> src, Rows<Dst> dst, KprSize roi, Kpr64s reach, Kpr8u* buffer)
        : src_(src), dst_(dst), width_(roi.width), height_(roi.height), reach_(reach) {
        // Together no more than the buffer of a fill: a single row has no edges of the row above.
        Workspace space(buffer, floodBytes(roi));
        edges_[0] = space.take<Kpr32s>(width_ + 2);
        edges_[1] = height_ > 1 ? space.take<Kpr32s>(width_ + 2) : edges_[0];
        leaders_ = space.take<Kpr32s>((width_ + 1) / 2 * height_);
    }

    int run(Labels labels) {
        const JoinedRuns runs(leaders_);
        Kpr64s above = 0, countAbove = 0, total = 0;
        for (Kpr64s y = 0; y < height_; ++y) {
            const Kpr64s count = findEdges(y);
            runs.begin(total, total + count);
            if (y > 0) joinRows(runs, edges_[(y - 1) & 1], countAbove, above, edges_[y & 1], count, total);
            above = total;
            countAbove = count;
            total += count;
        }

        // Labels take the place of leaders, which are earlier runs.
        int markers = 0;
        Kpr32s next = labels.smallest;
        for (Kpr64s i = 0; i < total; ++i) {
            if (leaders_[i] != i) {
                leaders_[i] = leaders_[leaders_[i]];
                continue;
            }
            leaders_[i] = next;
            ++markers;
            next = next == labels.largest ? labels.smallest : next + 1;
        }

        Kpr64s first = 0;
        for (Kpr64s y = 0; y < height_; ++y) {
            const Kpr64s count = findEdges(y);
            paint(dst_[y], edges_[y & 1], leaders_ + first, count);
            first += count;
        }
        return markers;
    }

  private:
    // Notes the column where each run of a row begins and the one behind its end, and gives the number of runs.
    Kpr64s findEdges(Kpr64s y) const {
        Kpr32s* const edges = edges_[y & 1];
        const Src* const row = src_[y];
        Kpr64s count = 0;
        Bits64 before = 0;
        for (Kpr64s x = 0; x < width_; x += kLanes<Src>) {
            const First part{std::min<Kpr64s>(kLanes<Src>, width_ - x)};
            const Bits64 markers = ~Bits64{equal(load(row + x, part), zero<Src>())} & part.bits;
            count += storePlaces(edges + count, (markers ^ (markers << 1 | before)) & part.bits, x);
            before = markers >> (kLanes<Src> - 1) & 1;
        }
        if (count % 2 != 0) edges[count++] = static_cast<Kpr32s>(width_);
        return count / 2;
    }

    void joinRows(const JoinedRuns& runs, const Kpr32s* up, Kpr64s countUp, Kpr64s firstUp, const Kpr32s* row,
                  Kpr64s count, Kpr64s first) const {
        Kpr64s j = 0;
        for (Kpr64s i = 0; i < count; ++i) {
            const Kpr64s begin = row[2 * i] - reach_, end = row[2 * i + 1] + reach_;
            while (j < countUp && up[2 * j + 1] <= begin) ++j;
            Kpr64s k = j;
            for (; k < countUp && up[2 * k] < end; ++k)
                runs.join(static_cast<Kpr32s>(firstUp + k), static_cast<Kpr32s>(first + i));
            if (k > j) j = k - 1;  // the last one may reach the next run too
        }
    }

    void paint(Dst* row, const Kpr32s* edges, const Kpr32s* labels, Kpr64s count) const {
        const auto fill = [row](Kpr64s begin, Kpr64s end, Dst value) {
            walkRow<kLanes<Dst>>(
                end - begin, [v = broadcast(value)](auto part, Dst* d) { store(d, v, part); }, row + begin);
        };
        if constexpr (!std::is_same_v<Src, Dst>) fill(0, width_, Dst{0});
        for (Kpr64s i = 0; i < count; ++i) fill(edges[2 * i], edges[2 * i + 1], static_cast<Dst>(labels[i]));
    }

    Rows<const Src> src_;
    Rows<Dst> dst_;
    Kpr64s width_, height_, reach_;
    Kpr32s* edges_[2];  // of the row and of the one above it
    Kpr32s* leaders_;
};

template <typename Dst>
KprStatus labelsHold(int minLabel, int maxLabel, int norm, Dst bound) {
    return failIf(minLabel < 1 || maxLabel >= int{bound} || minLabel > maxLabel || (norm != 0 && norm != 1),
                  kprStatusBadArg);
}

template <typename Src, typename Dst>
KprStatus label(Rows<const Src> src, Rows<Dst> dst, KprSize roi, int minLabel, int maxLabel, int norm, int* markerCount,
                Kpr8u* buffer) {
    *markerCount = Markers<Src, Dst>(src, dst, roi, norm == 0 ? 1 : 0, buffer).run({minLabel, maxLabel});
    return kprStatusOk;
}

template <typename T>
KprStatus labelInPlace(T* image, int step, KprSize roi, int minLabel, int maxLabel, int norm, int* markerCount,
                       Kpr8u* buffer) {
    return firstFailure(notNull(image, markerCount, buffer), roiHolds(roi), rowsFit<T>(roi.width, step),
                        stepsAlign<T>(step), labelsHold(minLabel, maxLabel, norm, static_cast<T>(-1)))
               ?: label<T, T>({image, step}, {image, step}, roi, minLabel, maxLabel, norm, markerCount, buffer);
}

}  // namespace
}  // namespace n0::segment

using namespace n0;
using namespace n0::segment;

KprStatus kpriLabelMarkersGetBufferSize_8u_C1R(KprSize roiSize, int* bufferSize) {
    return kpriFloodFillGetSize(roiSize, bufferSize);
}

KprStatus kpriLabelMarkersGetBufferSize_16u_C1R(KprSize roiSize, int* bufferSize) {
    return kpriFloodFillGetSize(roiSize, bufferSize);
}

KprStatus kpriLabelMarkersGetBufferSize_8u32s_C1R(KprSize roiSize, int* bufferSize) {
    return kpriFloodFillGetSize(roiSize, bufferSize);
}

KprStatus kpriLabelMarkers_8u_C1IR(Kpr8u* marker, int markerStep, KprSize roiSize, int minLabel, int maxLabel, int norm,
                                   int* markerCount, Kpr8u* buffer) {
    return labelInPlace(marker, markerStep, roiSize, minLabel, maxLabel, norm, markerCount, buffer);
}

KprStatus kpriLabelMarkers_16u_C1IR(Kpr16u* marker, int markerStep, KprSize roiSize, int minLabel, int maxLabel,
                                    int norm, int* markerCount, Kpr8u* buffer) {
    return labelInPlace(marker, markerStep, roiSize, minLabel, maxLabel, norm, markerCount, buffer);
}

KprStatus kpriLabelMarkers_8u32s_C1R(const Kpr8u* src, int srcStep, Kpr32s* dst, int dstStep, KprSize roiSize,
                                     int minLabel, int maxLabel, int norm, int* markerCount, Kpr8u* buffer) {
    return firstFailure(notNull(src, dst, markerCount, buffer), roiHolds(roiSize),
                        rowsFit<Kpr8u>(roiSize.width, srcStep), rowsFit<Kpr32s>(roiSize.width, dstStep),
                        stepsAlign<Kpr32s>(dstStep), labelsHold(minLabel, maxLabel, norm, 0x7fffffff))
               ?: label<Kpr8u, Kpr32s>({src, srcStep}, {dst, dstStep}, roiSize, minLabel, maxLabel, norm, markerCount,
                                       buffer);
}
