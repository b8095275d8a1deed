// Upright integral images: tables of one column and one row more than the source.
//
//     T[0][x] = T[y][0] = value
//     T[y + 1][x + 1] = rowSum + T[y][x + 1]      rowSum: of the source row y up to and with pixel x
//
// and the same of the pixels' squares. 32s wraps. In 32f sixteen pixels' sums are integers, converted and then added
// to the row's sum before them; a float source is summed in blocks of eight and its last columns one by one. 64f row
// sums of squares are exact, so that each element is rounded once. The row above is the only state: one pass.
#include "detect/table.h"
#include "frame/checks.h"

namespace n0::detect {
namespace {

// The table row under `above`, as far as the row's sums go: `put` takes the next sixteen pixels' own sums.
template <typename T>
struct Row;

template <>
struct Row<Kpr32s> {
    const Kpr32s* above;
    Kpr32s* dst;
    Vec<Kpr32s> before = zero<Kpr32s>();

    template <typename Part>
    KPR_INLINE void put(Part part, Kpr64s x, Vec<Kpr32s> sums) {
        store(dst + x, sums + before + load(above + x, part), part);
        before = before + spread<15>(sums);
    }
};

template <>
struct Row<Kpr32f> {
    const Kpr32f* above;
    Kpr32f* dst;
    Vec<Kpr32f> before = zero<Kpr32f>();

    template <typename Part>
    KPR_INLINE void put(Part part, Kpr64s x, Vec<Kpr32s> sums) {
        const auto within = toFloat(sums);
        store(dst + x, within + before + load(above + x, part), part);
        before = spread<15>(within) + before;
    }
};

template <typename Part>
KPR_INLINE void putDoubles(Part part, const Kpr64f* above, Kpr64f* dst, Vec<Kpr64f> lower, Vec<Kpr64f> upper) {
    store(dst, lower + load(above, part), part);
    store(dst + 8, upper + load(above + 8, upperHalf(part)), upperHalf(part));
}

// Squares of a row of up to kNarrow pixels: their sum fits in 32 bits.
inline constexpr int kNarrow = 0x10000;
static_assert(Bits64{255} * 255 * kNarrow <= 0xffffffff);

template <>
struct Row<Kpr64f> {
    const Kpr64f* above;
    Kpr64f* dst;
    Vec<unsigned> before = zero<unsigned>();

    template <typename Part>
    KPR_INLINE void put(Part part, Kpr64s x, Vec<Kpr32s> sums) {
        const auto rowSums = as<unsigned>(sums) + before;
        putDoubles(part, above + x, dst + x, half<0>(rowSums), half<1>(rowSums));
        before = spread<15>(rowSums);
    }
};

struct WideRow {
    const Kpr64f* above;
    Kpr64f* dst;
    Vec<Kpr64f> before = zero<Kpr64f>();

    template <typename Part>
    KPR_INLINE void put(Part part, Kpr64s x, Vec<Kpr32s> sums) {
        putDoubles(part, above + x, dst + x, half<0>(sums) + before, half<1>(sums) + before);
        before = before + half<0>(spread<15>(sums));
    }
};

template <typename Part, typename Sum, typename... Squares>
KPR_INLINE void sum16(Part part, const Kpr8u* src, Kpr64s x, Sum& sum, Squares&... square) {
    const auto pixels = loadAs<Kpr32s>(src + x, part);
    sum.put(part, x, sumsUpTo(pixels));
    (square.put(part, x, sumsUpTo(squares(pixels))), ...);
}

// 64 pixels at once, in a fifth fewer steps: the sums of whole groups of four run along the lanes once, and each pixel
// adds those of its own group.
KPR_INLINE void sum64(const Kpr8u* src, Kpr64s x, Row<Kpr32s>& sum) {
    const auto ofFour = [](Vec<Kpr8u> v) {
        return sumPairs(as<Kpr16s>(sumPairs(v, broadcast<Kpr8s>(1))), broadcast<Kpr16s>(1));
    };
    const auto groups = ofFour(load(src + x, All{}));
    const auto upToGroup = sumsUpTo(groups);
    const auto beforeGroup = upToGroup - groups + sum.before;
    sum.before = sum.before + spread<15>(upToGroup);
    takeTurns<4>([&](auto turn) {
        // Lane 4g + i has the pixels 4g to 4g + i of these sixteen.
        const auto inGroup = ofFour(permuteIn16(repeat16(src + x + 16 * turn), laneConstant<Kpr8u>([](int byte) {
                                                    const int group = byte / 16, last = byte % 16 / 4, k = byte % 4;
                                                    return k <= last ? 4 * group + k : 0x80;
                                                })));
        const auto base =
            permute(beforeGroup, laneConstant<Kpr32s>([](int lane) { return 4 * decltype(turn)::value + lane / 4; }));
        const Kpr64s column = x + 16 * turn;
        store(sum.dst + column, inGroup + base + load(sum.above + column, All{}), All{});
    });
}

// ---- rows

// With squares, the first columns are a part of their own, so that whole vectors fill whole lines of both tables where
// these begin alike: a tenth faster. A single table loses more by the shorter rest than it gains, and sums of floats
// keep their blocks.
template <typename Sum, typename... Squares>
KPR_INLINE void walkSums(const Kpr8u* src, Kpr64s width, Sum sum, Squares... square) {
    const auto step16 = [&](auto part, Kpr64s x) __attribute__((always_inline)) {
        sum16(part, src, x, sum, square...);
    };
    Kpr64s x = 0;
    if (std::is_same_v<Sum, Row<Kpr32s>> && sizeof...(Squares) != 0 && width >= 128) {
        x = (-reinterpret_cast<std::intptr_t>(sum.dst) & 63) / Kpr64s{sizeof(*sum.dst)};
        if (x != 0) step16(First{x}, 0);
    }
    if constexpr (std::is_same_v<Sum, Row<Kpr32s>>) {
        for (; x + 64 <= width; x += 64) {
            sum64(src, x, sum);
            takeTurns<4>([&](auto turn) __attribute__((always_inline)) {
                const Kpr64s column = x + 16 * turn;
                (square.put(All{}, column, sumsUpTo(squares(loadAs<Kpr32s>(src + column, All{})))), ...);
            });
        }
    }
    for (; x + 16 <= width; x += 16) step16(All{}, x);
    if (x < width) step16(First{width - x}, x);
}

// Blocks of eight, two to a vector; the last columns one by one.
KPR_INLINE void walkSums(const Kpr32f* src, Kpr64s width, Row<Kpr32f> sum) {
    Kpr64s x = 0;
    for (; x + 16 <= width; x += 16) {
        const auto within = sumsUpToInEights(load(src + x, All{}));
        const auto between = sum.before + spread<7>(within);
        const auto before = merge(Lanes{0xff00}, between, sum.before);
        store(sum.dst + x, before + within + load(sum.above + x, All{}), All{});
        sum.before = between + spread<15>(within);
    }
    if (x + 8 <= width) {
        const First eight(8);
        const auto within = sumsUpToInEights(load(src + x, eight));
        store(sum.dst + x, sum.before + within + load(sum.above + x, eight), eight);
        sum.before = sum.before + spread<7>(within);
        x += 8;
    }
    for (Kpr32f rowSum = firstLane(sum.before); x < width; ++x) {
        rowSum += src[x];
        sum.dst[x] = rowSum + sum.above[x];
    }
}

// ---- tables

template <typename T, typename Src>
KprStatus integral(Rows<const Src> src, Rows<T> dst, KprSize roi, T value) {
    fillRow(dst[0], Kpr64s{roi.width} + 1, value);
    for (int y = 0; y < roi.height; ++y) {
        T* const row = dst[y + 1];
        row[0] = value;
        walkSums(src[y], roi.width, Row<T>{dst[y] + 1, row + 1});
    }
    return kprStatusOk;
}

template <typename Square, typename T, typename S>
KprStatus integrals(Rows<const Kpr8u> src, Rows<T> dst, Rows<S> sqr, KprSize roi, T value, S valueSqr) {
    fillRow(dst[0], Kpr64s{roi.width} + 1, value);
    fillRow(sqr[0], Kpr64s{roi.width} + 1, valueSqr);
    for (int y = 0; y < roi.height; ++y) {
        T* const row = dst[y + 1];
        S* const sqrRow = sqr[y + 1];
        row[0] = value;
        sqrRow[0] = valueSqr;
        walkSums(src[y], roi.width, Row<T>{dst[y] + 1, row + 1}, Square{sqr[y] + 1, sqrRow + 1});
    }
    return kprStatusOk;
}

template <typename T>
KprStatus sqrIntegral(const Kpr8u* src, int srcStep, T* dst, int dstStep, Kpr64f* sqr, int sqrStep, KprSize roi,
                      T value, Kpr64f valueSqr) {
    return roi.width <= kNarrow
               ? integrals<Row<Kpr64f>, T, Kpr64f>({src, srcStep}, {dst, dstStep}, {sqr, sqrStep}, roi, value, valueSqr)
               : integrals<WideRow, T, Kpr64f>({src, srcStep}, {dst, dstStep}, {sqr, sqrStep}, roi, value, valueSqr);
}

}  // namespace
}  // namespace n0::detect

using namespace n0;
using namespace n0::detect;

KprStatus kpriIntegral_8u32s_C1R(const Kpr8u* src, int srcStep, Kpr32s* dst, int dstStep, KprSize roiSize,
                                 Kpr32s value) {
    return firstFailure(notNull(src, dst), roiHolds(roiSize), rowsFit<Kpr8u>(roiSize.width, srcStep),
                        rowsFit<Kpr32s>(Kpr64s{roiSize.width} + 1, dstStep), stepsAlign<Kpr32s>(dstStep))
               ?: integral<Kpr32s, Kpr8u>({src, srcStep}, {dst, dstStep}, roiSize, value);
}

KprStatus kpriIntegral_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                 Kpr32f value) {
    return firstFailure(notNull(src, dst), roiHolds(roiSize), rowsFit<Kpr8u>(roiSize.width, srcStep),
                        rowsFit<Kpr32f>(Kpr64s{roiSize.width} + 1, dstStep), stepsAlign<Kpr32f>(dstStep))
               ?: integral<Kpr32f, Kpr8u>({src, srcStep}, {dst, dstStep}, roiSize, value);
}

KprStatus kpriIntegral_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                               Kpr32f value) {
    return firstFailure(notNull(src, dst), roiHolds(roiSize), rowsFit<Kpr32f>(roiSize.width, srcStep),
                        rowsFit<Kpr32f>(Kpr64s{roiSize.width} + 1, dstStep), stepsAlign<Kpr32f>(srcStep, dstStep))
               ?: integral<Kpr32f, Kpr32f>({src, srcStep}, {dst, dstStep}, roiSize, value);
}

KprStatus kpriSqrIntegral_8u32s_C1R(const Kpr8u* src, int srcStep, Kpr32s* dst, int dstStep, Kpr32s* sqr, int sqrStep,
                                    KprSize roiSize, Kpr32s value, Kpr32s valueSqr) {
    return firstFailure(notNull(src, dst, sqr), roiHolds(roiSize), rowsFit<Kpr8u>(roiSize.width, srcStep),
                        rowsFit<Kpr32s>(Kpr64s{roiSize.width} + 1, dstStep, sqrStep),
                        stepsAlign<Kpr32s>(dstStep, sqrStep))
               ?: integrals<Row<Kpr32s>, Kpr32s, Kpr32s>({src, srcStep}, {dst, dstStep}, {sqr, sqrStep}, roiSize, value,
                                                         valueSqr);
}

KprStatus kpriSqrIntegral_8u32s64f_C1R(const Kpr8u* src, int srcStep, Kpr32s* dst, int dstStep, Kpr64f* sqr,
                                       int sqrStep, KprSize roiSize, Kpr32s value, Kpr64f valueSqr) {
    return firstFailure(notNull(src, dst, sqr), roiHolds(roiSize), rowsFit<Kpr8u>(roiSize.width, srcStep),
                        rowsFit<Kpr32s>(Kpr64s{roiSize.width} + 1, dstStep),
                        rowsFit<Kpr64f>(Kpr64s{roiSize.width} + 1, sqrStep), stepsAlign<Kpr32s>(dstStep),
                        stepsAlign<Kpr64f>(sqrStep))
               ?: sqrIntegral<Kpr32s>(src, srcStep, dst, dstStep, sqr, sqrStep, roiSize, value, valueSqr);
}

KprStatus kpriSqrIntegral_8u32f64f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, Kpr64f* sqr,
                                       int sqrStep, KprSize roiSize, Kpr32f value, Kpr64f valueSqr) {
    return firstFailure(notNull(src, dst, sqr), roiHolds(roiSize), rowsFit<Kpr8u>(roiSize.width, srcStep),
                        rowsFit<Kpr32f>(Kpr64s{roiSize.width} + 1, dstStep),
                        rowsFit<Kpr64f>(Kpr64s{roiSize.width} + 1, sqrStep), stepsAlign<Kpr32f>(dstStep),
                        stepsAlign<Kpr64f>(sqrStep))
               ?: sqrIntegral<Kpr32f>(src, srcStep, dst, dstStep, sqr, sqrStep, roiSize, value, valueSqr);
}
