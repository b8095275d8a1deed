#include "morph/call.h"

#include "primitives/border_word.h"

namespace n0::morph {
namespace {

constexpr Kpr64s kBeyond = 0x7fffffff;  // steps end here in the large interface, and ROIs of its processing calls

template <typename T>
KprStatus stepsHold(const Call<T>& c) {
    const KprStatus aligned = sizeof(T) == 1 ? KprStatus{kprStatusOk} : stepsAlign<T>(c.srcStep, c.dstStep);
    return firstFailure(rowsFit<T>(c.width * c.channels, c.srcStep, c.dstStep), aligned);
}

// Bit offsets lie within a byte, and a step holds the bytes that the row's bits lie in.
KprStatus stepsHold(const BitCall& c) {
    const auto within = [](int offset) { return offset >= 0 && offset <= 7; };
    return firstFailure(failIf(!within(c.srcBitOffset) || !within(c.dstBitOffset), kprStatusBadArg),
                        rowsFit<Kpr8u>((c.width + c.srcBitOffset + 7) >> 3, c.srcStep),
                        rowsFit<Kpr8u>((c.width + c.dstBitOffset + 7) >> 3, c.dstStep));
}

// A constant border has a value.
template <typename Call>
KprStatus valueGiven(const Call& c) {
    return failIf(baseOf(c.border) == kprBorderConstant && c.value == nullptr, kprStatusNullPtr);
}

}  // namespace

template <typename Call>
KprStatus callHolds(InPlace inPlace, const Call& c, const void* spec) {
    return firstFailure(notNull(c.src, c.dst, spec, c.buffer),
                        failIf(inPlace == InPlace::Refused && c.src == c.dst, kprStatusInPlaceUnsupported),
                        roiHolds(KprSizeL{c.width, c.height}), stepsHold(c), borderServesMorphology(c.border),
                        valueGiven(c));
}

template <typename Call>
KprStatus largeCallHolds(InPlace inPlace, const Call& c, const void* spec) {
    return firstFailure(notNull(c.src, c.dst, spec, c.buffer),
                        failIf(inPlace == InPlace::Refused && c.src == c.dst, kprStatusInPlaceUnsupported),
                        roiHolds(KprSizeL{c.width, c.height}), roiNotBeyond(c.width, c.height))
               ?: firstFailure(stepsHold(c), borderServesMorphology(c.border),
                               failIf(c.width == kBeyond || c.height == kBeyond, kprStatusBadSize),
                               failIf(c.srcStep >= kBeyond || c.dstStep >= kBeyond, kprStatusBadStep), valueGiven(c));
}

template <typename Call>
KprStatus largeCompoundHolds(const Call& c, const void* spec) {
    return firstFailure(notNull(c.src, c.dst, spec, c.buffer), valueGiven(c), roiHolds(KprSizeL{c.width, c.height}),
                        roiNotBeyond(c.width, c.height))
               ?: firstFailure(stepsHold(c), borderServesMorphology(c.border),
                               failIf(c.width == kBeyond || c.height == kBeyond, kprStatusSizeOverflow));
}

template KprStatus callHolds(InPlace, const Call<Kpr8u>&, const void*);
template KprStatus largeCallHolds(InPlace, const Call<Kpr8u>&, const void*);
template KprStatus largeCompoundHolds(const Call<Kpr8u>&, const void*);
template KprStatus callHolds(InPlace, const Call<Kpr16u>&, const void*);
template KprStatus largeCallHolds(InPlace, const Call<Kpr16u>&, const void*);
template KprStatus largeCompoundHolds(const Call<Kpr16u>&, const void*);
template KprStatus callHolds(InPlace, const Call<Kpr16s>&, const void*);
template KprStatus largeCallHolds(InPlace, const Call<Kpr16s>&, const void*);
template KprStatus largeCompoundHolds(const Call<Kpr16s>&, const void*);
template KprStatus callHolds(InPlace, const Call<Kpr32f>&, const void*);
template KprStatus largeCallHolds(InPlace, const Call<Kpr32f>&, const void*);
template KprStatus largeCompoundHolds(const Call<Kpr32f>&, const void*);
template KprStatus callHolds(InPlace, const BitCall&, const void*);
template KprStatus largeCallHolds(InPlace, const BitCall&, const void*);
template KprStatus largeCompoundHolds(const BitCall&, const void*);

}  // namespace n0::morph
