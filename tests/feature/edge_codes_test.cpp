#include "feature/edge_codes.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/reference/edges.h"

namespace {

// All pairs up to a reach that lie next to a tangent, against the rule in single precision.
template <int reach>
void checkCodes() {
    std::vector<std::pair<int, int>> pairs;
    for (int a = 0; a <= reach; ++a) {
        for (const double tangent : {0.41421356237, 2.41421356237}) {
            const int b = static_cast<int>(a * tangent);
            for (int c = std::max(b - 2, a == 0 ? 1 : 0); c <= std::min(b + 3, reach); ++c) pairs.emplace_back(a, c);
        }
    }
    pairs.resize(pairs.size() / 32 * 32);
    for (std::size_t first = 0; first < pairs.size(); first += 32) {
        Kpr16u a[32], b[32];
        for (std::size_t i = 0; i < 32; ++i) {
            a[i] = static_cast<Kpr16u>(pairs[first + i].first);
            b[i] = static_cast<Kpr16u>(pairs[first + i].second);
        }
        const auto codes = n0::feature::codesWithin<reach>(n0::load(a, n0::All{}), n0::load(b, n0::All{}));
        for (std::size_t i = 0; i < 32; ++i) {
            const int wanted = reference::edgeCode(a[i], b[i]);
            ASSERT_EQ((codes.level >> i & 1) != 0, wanted == 1) << a[i] << " " << b[i];
            ASSERT_EQ((codes.upright >> i & 1) != 0, wanted == 3) << a[i] << " " << b[i];
        }
    }
}

TEST(EdgeCodes, AsInSinglePrecision) {
    checkCodes<n0::feature::kShortReach>();
    checkCodes<n0::feature::kLongReach>();
}

}  // namespace
