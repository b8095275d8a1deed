// Motion history: the time at which each pixel last moved. With limit = timeStamp - duration in single precision,
//
//     history = timeStamp    where the silhouette is not zero; a NaN is not
//               0            elsewhere, where history < limit; a NaN is not
//               history      elsewhere
#include "frame/checks.h"
#include "primitives/rows.h"

namespace n0::motion {
namespace {

template <typename T>
KPR_INLINE Mask<Kpr32f> moving(const T* silhouette, auto part) {
    if constexpr (sizeof(T) == 1) return loadMask<Kpr32f>(silhouette, part);
    if constexpr (sizeof(T) > 1) {
        using Lane = std::conditional_t<sizeof(T) == 4, Kpr32f, Kpr32s>;
        return static_cast<Mask<Kpr32f>>(~equal(loadAs<Lane>(silhouette, part), zero<Lane>()));
    }
}

template <typename T>
KprStatus update(const T* silhouette, int silhouetteStep, Kpr32f* history, int historyStep, KprSize roi,
                 Kpr32f timeStamp, Kpr32f duration) {
    const auto now = broadcast(timeStamp), limit = broadcast(timeStamp - duration);
    return walkRoi<kLanes<Kpr32f>>(
        roi,
        [=](auto part, Kpr32f* h, const T* s) {
            const auto old = load(h, part);
            const auto aged = select(less(old, limit), zero<Kpr32f>(), old);
            store(h, select(moving(s, part), now, aged), part);
        },
        Rows<Kpr32f>{history, historyStep}, Rows<const T>{silhouette, silhouetteStep});
}

template <typename T>
KprStatus holds(const T* silhouette, int silhouetteStep, const Kpr32f* history, int historyStep, KprSize roi,
                Kpr32f duration) {
    return firstFailure(notNull(silhouette, history), roiHolds(roi), rowsFit<T>(roi.width, silhouetteStep),
                        rowsFit<Kpr32f>(roi.width, historyStep), stepsAlign<T>(silhouetteStep),
                        stepsAlign<Kpr32f>(historyStep), failIf(duration < 0.0F, kprStatusOutOfRange));
}

}  // namespace
}  // namespace n0::motion

using namespace n0;
using namespace n0::motion;

KprStatus kpriUpdateMotionHistory_8u32f_C1IR(const Kpr8u* silhouette, int silhouetteStep, Kpr32f* history,
                                             int historyStep, KprSize roiSize, Kpr32f timeStamp, Kpr32f duration) {
    return holds(silhouette, silhouetteStep, history, historyStep, roiSize, duration)
               ?: update(silhouette, silhouetteStep, history, historyStep, roiSize, timeStamp, duration);
}

KprStatus kpriUpdateMotionHistory_16u32f_C1IR(const Kpr16u* silhouette, int silhouetteStep, Kpr32f* history,
                                              int historyStep, KprSize roiSize, Kpr32f timeStamp, Kpr32f duration) {
    return holds(silhouette, silhouetteStep, history, historyStep, roiSize, duration)
               ?: update(silhouette, silhouetteStep, history, historyStep, roiSize, timeStamp, duration);
}

KprStatus kpriUpdateMotionHistory_32f_C1IR(const Kpr32f* silhouette, int silhouetteStep, Kpr32f* history,
                                           int historyStep, KprSize roiSize, Kpr32f timeStamp, Kpr32f duration) {
    return holds(silhouette, silhouetteStep, history, historyStep, roiSize, duration)
               ?: update(silhouette, silhouetteStep, history, historyStep, roiSize, timeStamp, duration);
}
