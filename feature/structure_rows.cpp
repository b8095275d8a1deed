#include "feature/structure_rows.h"

namespace n0::feature {
namespace {

// out[x] = the sum of in[x] to in[x + size - 1].
template <int size>
[[gnu::noinline]] void sumRun(const Kpr32f* in, Kpr32f* out, Kpr64s count) {
    walkRow<16>(
        count,
        [](auto part, Kpr32f* o, const Kpr32f* i) {
            Vec<Kpr32f> total = load(i, part);
            for (int tap = 1; tap < size; ++tap) total = total + load(i + tap, part);
            store(o, total, part);
        },
        out, in);
}
[[gnu::noinline]] void sumRun(const Kpr32f* in, Kpr32f* out, Kpr64s count, int size) {
    walkRow<16>(
        count,
        [=](auto part, Kpr32f* o, const Kpr32f* i) {
            Vec<Kpr32f> total = load(i, part);
            for (int tap = 1; tap < size; ++tap) total = total + load(i + tap, part);
            store(o, total, part);
        },
        out, in);
}

}  // namespace

StructureRows::StructureRows(Workspace& space, const Plane& plane, Window window, const Measure& measure, Kpr64s first,
                             Kpr64s count, Kpr64s roiHeight, Rows<Kpr32f> dst)
    : plane_(plane),
      window_(window),
      measure_(measure),
      count_(count),
      from_(first + plane.roiAt.x - window.before),
      begin_(std::max<Kpr64s>(from_, 0)),
      end_(std::min(from_ + count + window.size() - 1, plane.width)),
      roiHeight_(roiHeight),
      dst_(dst),
      distance_(roundUp(count, 16)),
      ringRows_(ringRows(window, plane.height)) {
    const Kpr64s held = roundUp(count + window.size(), 16) + 32;
    products_ = {space.take<Kpr32f>(3 * held, 64), held};
    sums_ = space.take<Kpr32f>(3 * distance_ * (ringRows_ + 1));
    if (plane.mode != kprBorderConstant) return;
    // A row of the constant is summed like any other.
    for (Kpr64s i = 0; i < 3 * held; ++i) products_.first[i] = plane.value;
    sumAcross(sums_ + 3 * distance_ * ringRows_);
}

void StructureRows::made() {
    extendProducts();
    sumAcross(sums_ + made_ % ringRows_ * 3 * distance_);
    ++made_;
    const Kpr64s ready = made_ == plane_.height ? roiHeight_ : made_ - window_.after - plane_.roiAt.y;
    for (; written_ < ready && written_ < roiHeight_; ++written_) put(written_);
}

// Products of columns that the plane does not have.
void StructureRows::extendProducts() {
    const Axis columns = {plane_.width, plane_.mode};
    const auto make = [&](Kpr64s column) {
        const Kpr64s from = columns(column);
        for (int i = 0; i < 3; ++i)
            products_[i][column - from_] = from == kConstant ? plane_.value : products_[i][from - from_];
    };
    for (Kpr64s column = from_; column < 0; ++column) make(column);
    const Kpr64s last = from_ + count_ + window_.size() - 1;
    for (Kpr64s column = plane_.width; column < last; ++column) make(column);
}

void StructureRows::sumAcross(Kpr32f* out) {
    for (int i = 0; i < 3; ++i) {
        if (window_.size() == 3)
            sumRun<3>(products_[i], out + i * distance_, count_);
        else if (window_.size() == 5)
            sumRun<5>(products_[i], out + i * distance_, count_);
        else
            sumRun(products_[i], out + i * distance_, count_, window_.size());
    }
}

const Kpr32f* StructureRows::sumsOf(Kpr64s row) const {
    const Kpr64s from = Axis{plane_.height, plane_.mode}(row);
    return sums_ + (from == kConstant ? ringRows_ : from % ringRows_) * 3 * distance_;
}

void StructureRows::put(Kpr64s y) {
    const Kpr64s first = y + plane_.roiAt.y - window_.before;
    const Kpr32f* rows[5];
    const int size = window_.size();
    if (size == 3 || size == 5) {
        for (int i = 0; i < size; ++i) rows[i] = sumsOf(first + i);
        measure_.put(measure_, rows, distance_, dst_[y], count_);
        return;
    }
    // Other windows are summed beforehand, where products were.
    Kpr32f* const sums = products_.first;
    for (int i = 0; i < size; ++i) {
        walkRow<16>(
            3 * distance_,
            [=](auto part, Kpr32f* out, const Kpr32f* row) {
                store(out, i == 0 ? load(row, part) : load(out, part) + load(row, part), part);
            },
            sums, sumsOf(first + i));
    }
    rows[0] = sums;
    measure_.put(measure_, rows, distance_, dst_[y], count_);
}

}  // namespace n0::feature
