// Where the coins of coins.png are: column and row of the centre, and the radius, in pixels.
#pragma once

#include <kprcv.h>

#include <cmath>
#include <vector>

namespace detect {

struct Coin {
    int x, y, radius;
};

inline const Coin kCoins[24] = {
    {44, 55, 22},  {100, 57, 19},  {155, 51, 23},  {215, 49, 24},  {276, 52, 21},  {335, 44, 30},
    {45, 125, 21}, {102, 126, 19}, {154, 126, 20}, {204, 125, 20}, {270, 120, 25}, {337, 123, 19},
    {43, 198, 19}, {101, 196, 22}, {154, 197, 20}, {212, 193, 25}, {274, 194, 23}, {347, 186, 32},
    {46, 259, 28}, {114, 266, 22}, {171, 261, 28}, {242, 263, 24}, {301, 263, 26}, {358, 268, 23},
};

// A box that lies on the coin and is about as large.
inline bool shows(const KprRect& box, const Coin& coin) {
    const double dx = box.x + box.width / 2.0 - coin.x, dy = box.y + box.height / 2.0 - coin.y;
    return std::hypot(dx, dy) < 0.5 * coin.radius && box.width > 1.7 * coin.radius && box.width < 4.0 * coin.radius;
}

struct Score {
    int found = 0;        // coins with a box
    int falseAlarms = 0;  // boxes without a coin
};

inline Score scoreOf(const std::vector<KprRect>& boxes) {
    Score score;
    for (const Coin& coin : kCoins) {
        for (const KprRect& box : boxes) {
            if (shows(box, coin)) {
                ++score.found;
                break;
            }
        }
    }
    for (const KprRect& box : boxes) {
        bool any = false;
        for (const Coin& coin : kCoins) any = any || shows(box, coin);
        if (!any) ++score.falseAlarms;
    }
    return score;
}

}  // namespace detect
