/* Sub-pixel sampling and the undistortion of a lens. */
#ifndef KPRCV_GEOMETRY_H
#define KPRCV_GEOMETRY_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Copies a rectangle that lies a fraction of a pixel to the right of and below the source's: dst(x, y) is the bilinear
 * mean of src(x, y), src(x + 1, y), src(x, y + 1), src(x + 1, y + 1).
 *
 * dx, dy        pixels; only what is behind the point counts. A negative fraction f counts as 1 + f, and the four
 *               pixels stay the same: it does not move to the left or up. What is no number counts as 0 in integer
 *               forms and gives NaN in the others.
 * src           (roiSize.width + 1) x (roiSize.height + 1) pixels are read, whatever the fractions, srcStep bytes from
 *               row to row
 * dst           roiSize pixels, dstStep bytes from row to row; must not overlap the source
 *
 * 8u, 16u       Weights have 14 bits: with qx = trunc(16384 * dx + 0.5), rx = 16384 - qx, and likewise for y,
 *               w00 = (rx * ry + 16384) >> 14 and so on; what the four exceed 16384 by goes off the largest.
 *               dst = (w00 * p00 + w01 * p01 + w10 * p10 + w11 * p11 + 8192) >> 14. A displacement of 0 copies 8u
 *               exactly; in 16u neighbours keep a weight of 1 / 16384 each.
 * 8u16u_Sfs     The same sum times 2^-scaleFactor, rounded half up once, and saturated: -7 gives 128 times the pixel.
 *               Any scaleFactor is taken.
 * 32f, 8u32f, 16u32f   Weights (1 - dx) * (1 - dy), dx * (1 - dy), (1 - dx) * dy, dx * dy in single precision, added in
 *               this order, each sum after the first product a fused step. NaN and infinities spread to the pixels
 *               whose four they are among, with a weight of 0 too.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize (a side below 1), kprStatusBadStep (a step below its row of
 * roiSize.width elements), kprStatusStepNotMultiple (16u, 32f). */
KprStatus kpriCopySubpix_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize, Kpr32f dx,
                                Kpr32f dy);
KprStatus kpriCopySubpix_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize, Kpr32f dx,
                                 Kpr32f dy);
KprStatus kpriCopySubpix_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize, Kpr32f dx,
                                 Kpr32f dy);
KprStatus kpriCopySubpix_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize, Kpr32f dx,
                                   Kpr32f dy);
KprStatus kpriCopySubpix_16u32f_C1R(const Kpr16u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                    Kpr32f dx, Kpr32f dy);
KprStatus kpriCopySubpix_8u16u_C1R_Sfs(const Kpr8u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                       int scaleFactor, Kpr32f dx, Kpr32f dy);

/* Cuts a patch around a point out of an image, by the arithmetic of kpriCopySubpix. The patch may lie partly or wholly
 * outside: it is filled there with what is nearest at the image's edge.
 *
 * srcSize       pixels of the image; no others are read
 * dstSize       pixels of the patch, whose middle ((width - 1) / 2, (height - 1) / 2) comes to lie on `centre`
 * centre        pixels, x then y, from the middle of the image's first pixel. A NaN lies before the image.
 * pMin, pMax    out: the first and the last pixel of the patch of which all four neighbours lie in the image. Where
 *               pMax is less than pMin, none does.
 * src, dst      must not overlap
 *
 * In columns left and right of the inside a row takes the vertical mean of its two pixels at the image's edge; in rows
 * above and below, a column the horizontal mean likewise; in a corner, the image's own corner.
 *
 * Returns kprStatusOk, where the patch misses the image too; kprStatusNullPtr (any pointer), kprStatusBadSize (a side
 * of either below 1), kprStatusBadStep, kprStatusStepNotMultiple (16u, 32f). */
KprStatus kpriCopySubpixIntersect_8u_C1R(const Kpr8u* src, int srcStep, KprSize srcSize, Kpr8u* dst, int dstStep,
                                         KprSize dstSize, KprPoint32f centre, KprPoint* pMin, KprPoint* pMax);
KprStatus kpriCopySubpixIntersect_16u_C1R(const Kpr16u* src, int srcStep, KprSize srcSize, Kpr16u* dst, int dstStep,
                                          KprSize dstSize, KprPoint32f centre, KprPoint* pMin, KprPoint* pMax);
KprStatus kpriCopySubpixIntersect_32f_C1R(const Kpr32f* src, int srcStep, KprSize srcSize, Kpr32f* dst, int dstStep,
                                          KprSize dstSize, KprPoint32f centre, KprPoint* pMin, KprPoint* pMax);
KprStatus kpriCopySubpixIntersect_8u32f_C1R(const Kpr8u* src, int srcStep, KprSize srcSize, Kpr32f* dst, int dstStep,
                                            KprSize dstSize, KprPoint32f centre, KprPoint* pMin, KprPoint* pMax);
KprStatus kpriCopySubpixIntersect_16u32f_C1R(const Kpr16u* src, int srcStep, KprSize srcSize, Kpr32f* dst, int dstStep,
                                             KprSize dstSize, KprPoint32f centre, KprPoint* pMin, KprPoint* pMax);
KprStatus kpriCopySubpixIntersect_8u16u_C1R_Sfs(const Kpr8u* src, int srcStep, KprSize srcSize, Kpr16u* dst,
                                                int dstStep, KprSize dstSize, KprPoint32f centre, KprPoint* pMin,
                                                KprPoint* pMax, int scaleFactor);

/* Reads the pixels along a digital line, both ends included, into a buffer: max(|dx|, |dy|) + 1 pixels one after
 * another. The line goes along y where the two distances are equal.
 *
 * start, end    pixels inside roiSize
 * dst           room for the line's pixels; must not overlap the source
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusStepNotMultiple (16u, 32f),
 * kprStatusOutOfRange (an end outside of the ROI). */
KprStatus kpriSampleLine_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* dst, KprPoint start,
                                KprPoint end);
KprStatus kpriSampleLine_8u_C3R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* dst, KprPoint start,
                                KprPoint end);
KprStatus kpriSampleLine_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* dst, KprPoint start,
                                 KprPoint end);
KprStatus kpriSampleLine_16u_C3R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* dst, KprPoint start,
                                 KprPoint end);
KprStatus kpriSampleLine_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* dst, KprPoint start,
                                 KprPoint end);
KprStatus kpriSampleLine_32f_C3R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* dst, KprPoint start,
                                 KprPoint end);

/* The bytes of the buffer that the two families below take. It may lie at any address and holds nothing between calls.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize (a side below 1 or above 2^24, where columns are no longer
 * exact in single precision). */
KprStatus kpriUndistortGetSize(KprSize roiSize, int* bufferSize);

/* Takes the radial distortion of a lens out of an image. All in single precision, with ifx = 1 / fx and ify = 1 / fy:
 *
 *     x = (u - cx) * ifx    y = (v - cy) * ify    r2 = fma(y, y, x * x)    d = fma(r2, fma(r2, k2, k1), 1)
 *     dst(u, v) = src at (fma(fx, x * d, cx), fma(fy, y * d, cy))
 *
 * by bilinear interpolation: with ax, ay what the position exceeds its upper left pixel by,
 * top = fma(ax, s10 - s00, s00), bottom = fma(ax, s11 - s01, s01), value = fma(ay, bottom - top, top), to the nearest
 * integer, ties to even, in 8u and 16u. A position outside of the image, or a NaN, gives 0.
 *
 * fx, fy        focal lengths in pixels, not 0
 * cx, cy        the principal point in pixels
 * k1, k2        radial coefficients; with both 0 the image comes back, but for infinities, NaN and signs of zero
 * src, dst      roiSize pixels each; must not overlap. Nothing outside is read.
 * buffer        of kpriUndistortGetSize
 *
 * Returns kprStatusOk, kprStatusNullPtr (buffer too), kprStatusBadSize (a side below 1 or above 2^24),
 * kprStatusBadStep, kprStatusStepNotMultiple (16u, 32f), kprStatusBadArg (fx or fy 0, or any parameter not finite). */
KprStatus kpriUndistortRadial_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize, Kpr32f fx,
                                     Kpr32f fy, Kpr32f cx, Kpr32f cy, Kpr32f k1, Kpr32f k2, Kpr8u* buffer);
KprStatus kpriUndistortRadial_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize, Kpr32f fx,
                                     Kpr32f fy, Kpr32f cx, Kpr32f cy, Kpr32f k1, Kpr32f k2, Kpr8u* buffer);
KprStatus kpriUndistortRadial_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                      Kpr32f fx, Kpr32f fy, Kpr32f cx, Kpr32f cy, Kpr32f k1, Kpr32f k2, Kpr8u* buffer);
KprStatus kpriUndistortRadial_16u_C3R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                      Kpr32f fx, Kpr32f fy, Kpr32f cx, Kpr32f cy, Kpr32f k1, Kpr32f k2, Kpr8u* buffer);
KprStatus kpriUndistortRadial_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                      Kpr32f fx, Kpr32f fy, Kpr32f cx, Kpr32f cy, Kpr32f k1, Kpr32f k2, Kpr8u* buffer);
KprStatus kpriUndistortRadial_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                      Kpr32f fx, Kpr32f fy, Kpr32f cx, Kpr32f cy, Kpr32f k1, Kpr32f k2, Kpr8u* buffer);

/* Writes for each pixel (u, v) where a lens with radial and tangential distortion has put it. With x, y, r2 and d as
 * above:
 *
 *     xMap = fma(fx, fma(p2, fma(2 * x, x, r2), fma(2 * p1, x * y, x * d)), cx)
 *     yMap = fma(fy, fma(p1, fma(2 * y, y, r2), fma(2 * p2, x * y, y * d)), cy)
 *
 * xMap, yMap    roiSize floats each, xStep and yStep bytes from row to row; must not overlap
 * p1, p2        tangential coefficients
 *
 * The other arguments and the statuses are those of kpriUndistortRadial. */
KprStatus kpriCreateMapCameraUndistort_32f_C1R(Kpr32f* xMap, int xStep, Kpr32f* yMap, int yStep, KprSize roiSize,
                                               Kpr32f fx, Kpr32f fy, Kpr32f cx, Kpr32f cy, Kpr32f k1, Kpr32f k2,
                                               Kpr32f p1, Kpr32f p2, Kpr8u* buffer);

#ifdef __cplusplus
}
#endif

#endif
