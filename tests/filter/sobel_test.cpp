#include "filter/sobel.h"

#include <gtest/gtest.h>

#include "tests/filter/masks.h"

namespace {

using Sizing = KprStatus (*)(KprSize, KprMaskSize, KprDataType, KprDataType, int, int*);

// Both element types of one filter; `across` and `down` are of the mask's size.
template <typename Bytes, typename Floats>
void checkDerivative(Bytes bytes, Floats floats, Sizing sizing, KprMaskSize mask, const std::vector<int>& across,
                     const std::vector<int>& down) {
    const auto sized = [=](KprDataType src, KprDataType dst) {
        return [=](KprSize roi, KprMaskSize m, int* size) { return sizing(roi, m, src, dst, 1, size); };
    };
    test::checkSeparable<Kpr8u, Kpr16s>(bytes, sized(kpr8u, kpr16s), mask, across, down);
    test::checkSeparable<Kpr32f, Kpr32f>(floats, sized(kpr32f, kpr32f), mask, across, down);

    Kpr8u image[16] = {}, buffer[1024];
    Kpr16s dst[16];
    const auto run = [&](const Kpr8u* src, KprSize roi, int dstStep, KprMaskSize m, KprBorderType word) {
        return bytes(src, 4, dst, dstStep, roi, m, word, 0, buffer);
    };
    EXPECT_EQ(run(nullptr, {0, 0}, 9, 34, 0), kprStatusNullPtr);
    EXPECT_EQ(run(image, {0, 0}, 9, 34, 0), kprStatusBadSize);
    EXPECT_EQ(run(image, {4, 2}, 9, 34, 0), kprStatusStepNotMultiple);
    EXPECT_EQ(run(image, {4, 2}, 8, 34, 0), kprStatusBadMaskSize);
    EXPECT_EQ(run(image, {4, 2}, 8, 33, 5), kprStatusBadBorder);
    EXPECT_EQ(run(image, {4, 2}, 4, 33, 1), kprStatusOk);  // rows may overlap
}

TEST(FilterDerivatives, Sobel) {
    const std::vector<int> dx3 = {-1, 0, 1}, neg3 = {1, 0, -1}, sobel3 = {1, 2, 1};
    const std::vector<int> dx5 = {-1, -2, 0, 2, 1}, neg5 = {1, 2, 0, -2, -1}, sobel5 = {1, 4, 6, 4, 1};
    checkDerivative(kpriFilterSobelVertBorder_8u16s_C1R, kpriFilterSobelVertBorder_32f_C1R,
                    kpriFilterSobelVertBorderGetBufferSize, 33, neg3, sobel3);
    checkDerivative(kpriFilterSobelVertBorder_8u16s_C1R, kpriFilterSobelVertBorder_32f_C1R,
                    kpriFilterSobelVertBorderGetBufferSize, 55, neg5, sobel5);
    checkDerivative(kpriFilterSobelNegVertBorder_8u16s_C1R, kpriFilterSobelNegVertBorder_32f_C1R,
                    kpriFilterSobelNegVertBorderGetBufferSize, 33, dx3, sobel3);
    checkDerivative(kpriFilterSobelNegVertBorder_8u16s_C1R, kpriFilterSobelNegVertBorder_32f_C1R,
                    kpriFilterSobelNegVertBorderGetBufferSize, 55, dx5, sobel5);
    checkDerivative(kpriFilterSobelHorizBorder_8u16s_C1R, kpriFilterSobelHorizBorder_32f_C1R,
                    kpriFilterSobelHorizBorderGetBufferSize, 33, sobel3, dx3);
    checkDerivative(kpriFilterSobelHorizBorder_8u16s_C1R, kpriFilterSobelHorizBorder_32f_C1R,
                    kpriFilterSobelHorizBorderGetBufferSize, 55, sobel5, dx5);
}

TEST(FilterDerivatives, Scharr) {
    const std::vector<int> dx = {-1, 0, 1}, scharr = {3, 10, 3};
    checkDerivative(kpriFilterScharrVertMaskBorder_8u16s_C1R, kpriFilterScharrVertMaskBorder_32f_C1R,
                    kpriFilterScharrVertMaskBorderGetBufferSize, 33, dx, scharr);
    checkDerivative(kpriFilterScharrHorizMaskBorder_8u16s_C1R, kpriFilterScharrHorizMaskBorder_32f_C1R,
                    kpriFilterScharrHorizMaskBorderGetBufferSize, 33, scharr, dx);
    Kpr8u image[16] = {}, buffer[64];
    Kpr16s dst[16];
    EXPECT_EQ(kpriFilterScharrVertMaskBorder_8u16s_C1R(image, 4, dst, 8, {4, 4}, 55, 1, 0, buffer),
              kprStatusBadMaskSize);
}

TEST(FilterDerivatives, Sizes) {
    int size = -1;
    const auto sized = [&](KprMaskSize mask, KprDataType src, KprDataType dst, int channels) {
        return kpriFilterSobelVertBorderGetBufferSize({20, 9}, mask, src, dst, channels, &size);
    };
    EXPECT_EQ(kpriFilterSobelVertBorderGetBufferSize({0, 9}, 1, 1, 1, 2, nullptr), kprStatusNullPtr);
    EXPECT_EQ(kpriFilterSobelVertBorderGetBufferSize({0, 9}, 1, 1, 1, 2, &size), kprStatusBadSize);
    EXPECT_EQ(sized(34, kpr8u, kpr8u, 2), kprStatusBadMaskSize);
    EXPECT_EQ(sized(33, kpr8u, kpr8u, 2), kprStatusBadDataType);
    EXPECT_EQ(sized(33, kpr32f, kpr16s, 2), kprStatusBadDataType);
    EXPECT_EQ(sized(33, kpr8u, kpr16s, 2), kprStatusBadCoi);
    EXPECT_EQ(size, -1);
    EXPECT_EQ(sized(33, kpr8u, kpr16s, 1), kprStatusOk);
    EXPECT_EQ(size, 32);
    EXPECT_EQ(sized(55, kpr32f, kpr32f, 1), kprStatusOk);
    EXPECT_EQ(size, 32 * 5 * 4 + 32);
    EXPECT_EQ(sized(33, kpr16s, kpr16s, 1), kprStatusOk);
    EXPECT_EQ(size, 32 * 3 * 4 + 32);
}

}  // namespace
