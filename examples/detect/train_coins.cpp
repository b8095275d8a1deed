// Learns what a coin looks like:  train_coins PHOTOS_DIR OUT.cascade
//
// Patches of the coins photograph, turned, scaled and moved a little, against windows of all the other photographs and
// of the ground between the coins. Each stage is boosted from stumps over rectangle features until it keeps nearly all
// coins and few of the windows that the stages before it let pass; the next stage learns from those few. The same
// photographs give the same cascade.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <numeric>
#include <stdexcept>

#include "examples/detect/cascade.h"
#include "examples/detect/coins.h"

namespace detect {
namespace {

constexpr int kSide = 24;
constexpr int kFeatures = 3000;
constexpr std::size_t kNegatives = 2500;
constexpr int kMostStages = 14;
constexpr int kMostStumps = 24;
constexpr double kWantedHits = 0.9985;  // of the coins' patches, in each stage
constexpr double kWantedPasses = 0.35;  // of the other windows
const char* const kOthers[] = {"camera.png", "astronaut.png", "coast.png", "blossom.png", "brick.png", "coffee.png"};

// The same numbers everywhere.
class Random {
  public:
    unsigned below(unsigned limit) {
        state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<unsigned>((state_ >> 33) % limit);
    }
    double between(double low, double high) { return low + (high - low) * below(1 << 20) / double(1 << 20); }

  private:
    unsigned long long state_ = 20240229;
};

// ---- patches

double bilinear(const Gray& image, double x, double y) {
    x = std::clamp(x, 0.0, image.width - 1.001);
    y = std::clamp(y, 0.0, image.height - 1.001);
    const int x0 = static_cast<int>(x), y0 = static_cast<int>(y);
    const double fx = x - x0, fy = y - y0;
    return (1 - fy) * ((1 - fx) * image.at(x0, y0) + fx * image.at(x0 + 1, y0)) +
           fy * ((1 - fx) * image.at(x0, y0 + 1) + fx * image.at(x0 + 1, y0 + 1));
}

// A square around (x, y), turned, in the size of the window.
Gray patchAt(const Gray& image, double x, double y, double side, double angle) {
    const int pixels = std::max(kSide, static_cast<int>(std::lround(side)));
    Gray turned(pixels, pixels);
    for (int j = 0; j < pixels; ++j) {
        for (int i = 0; i < pixels; ++i) {
            const double u = (i + 0.5) / pixels * side - side / 2, v = (j + 0.5) / pixels * side - side / 2;
            turned.at(i, j) =
                static_cast<Kpr8u>(std::lround(bilinear(image, x + u * std::cos(angle) - v * std::sin(angle) - 0.5,
                                                        y + u * std::sin(angle) + v * std::cos(angle) - 0.5)));
        }
    }
    return shrunk(turned, {kSide, kSide});
}

std::vector<Gray> coinPatches(const Gray& coins, Random& random) {
    std::vector<Gray> patches;
    for (const Coin& coin : kCoins) {
        for (int turn = 0; turn < 48; ++turn) {
            const double side = 2.2 * coin.radius * random.between(0.92, 1.1), move = 0.035 * side;
            const double angle = turn % 4 == 0 ? 0 : random.between(0, 6.2831853);
            patches.push_back(patchAt(coins, coin.x + random.between(-move, move), coin.y + random.between(-move, move),
                                      side, angle));
        }
    }
    return patches;
}

// How much of the two boxes together both have.
double overlap(const KprRect& a, const KprRect& b) {
    const double w = std::min(a.x + a.width, b.x + b.width) - std::max(a.x, b.x);
    const double h = std::min(a.y + a.height, b.y + b.height) - std::max(a.y, b.y);
    if (w <= 0 || h <= 0) return 0;
    return w * h / (double(a.width) * a.height + double(b.width) * b.height - w * h);
}

bool showsACoin(const KprRect& box) {
    return std::any_of(std::begin(kCoins), std::end(kCoins), [&](const Coin& c) {
        const int side = static_cast<int>(2.2 * c.radius);
        return overlap(box, {c.x - side / 2, c.y - side / 2, side, side}) > 0.4;
    });
}

// A fair choice of the windows without a coin that the cascade lets pass, and how many there are.
struct Negatives {
    std::vector<Gray> patches;
    std::size_t seen = 0;
};

Negatives windowsThatPass(const Cascade& cascade, const std::vector<Gray>& others, const Gray& coins, Random& random) {
    Negatives out;
    const auto take = [&](const Gray& image, const Found& found) {
        std::size_t place = out.seen++;
        if (place < kNegatives) {
            out.patches.emplace_back(kSide, kSide);
        } else {
            place = random.below(static_cast<unsigned>(out.seen));
            if (place >= kNegatives) return;
        }
        for (int y = 0; y < kSide; ++y) {
            for (int x = 0; x < kSide; ++x)
                out.patches[place].at(x, y) = image.at(found.place.x + x, found.place.y + y);
        }
    };
    for (const Gray& image : others) scanImage(cascade, image, {}, take);
    scanImage(cascade, coins, {}, [&](const Gray& image, const Found& found) {
        if (!showsACoin(found.box)) take(image, found);
    });
    return out;
}

// ---- features

struct Rectangle {
    KprRect rect;
    float weight;
};
using Feature = std::vector<Rectangle>;

// Halves, thirds, a centre in its surroundings, and a checkerboard of four: a whole that counts -1, and parts that
// count as much as makes a plain area 0.
Feature randomFeature(Random& random) {
    static const int columns[] = {2, 1, 3, 1, 3, 4, 2}, rows[] = {1, 2, 1, 3, 3, 4, 2};
    const unsigned kind = random.below(7);
    const int across = columns[kind], down = rows[kind];
    const int w = across * (1 + static_cast<int>(random.below(static_cast<unsigned>(kSide / across - 1)) + 1));
    const int h = down * (1 + static_cast<int>(random.below(static_cast<unsigned>(kSide / down - 1)) + 1));
    const int x = static_cast<int>(random.below(static_cast<unsigned>(kSide - w + 1)));
    const int y = static_cast<int>(random.below(static_cast<unsigned>(kSide - h + 1)));
    const int cw = w / across, ch = h / down;
    const Rectangle whole = {{x, y, w, h}, -1};
    switch (kind) {
        case 0:
            return {whole, {{x, y, cw, h}, 2}};
        case 1:
            return {whole, {{x, y, w, ch}, 2}};
        case 2:
            return {whole, {{x + cw, y, cw, h}, 3}};
        case 3:
            return {whole, {{x, y + ch, w, ch}, 3}};
        case 4:
            return {whole, {{x + cw, y + ch, cw, ch}, 9}};
        case 5:
            return {whole, {{x + cw, y + ch, 2 * cw, 2 * ch}, 4}};
        default:
            return {whole, {{x, y, cw, ch}, 2}, {{x + cw, y + ch, cw, ch}, 2}};
    }
}

// A patch as the library sees a window: its table of sums and its deviation.
struct Sample {
    Image<Kpr32s> sums{kSide + 1, kSide + 1};
    float norm = 0;

    explicit Sample(const Gray& patch) {
        Image<Kpr64f> squares(kSide + 1, kSide + 1);
        kpriSqrIntegral_8u32s64f_C1R(patch.data(), patch.step(), sums.data(), sums.step(), squares.data(),
                                     squares.step(), patch.size(), 0, 0);
        kpriRectStdDev_32s32f_C1R(sums.data(), sums.step(), squares.data(), squares.step(), &norm, sizeof norm, {1, 1},
                                  {0, 0, kSide, kSide});
    }

    // In units of the deviation, as thresholds are. In a plain window nothing is below any threshold, as the library
    // has it, unless it is below 0.
    float value(const Feature& feature) const {
        float total = 0;
        for (const auto& [r, weight] : feature) {
            total += weight * static_cast<float>(sums.at(r.x, r.y) - sums.at(r.x + r.width, r.y) -
                                                 sums.at(r.x, r.y + r.height) + sums.at(r.x + r.width, r.y + r.height));
        }
        if (norm == 0) return total < 0 ? -1e9F : 1e9F;
        return total / norm;
    }
};

// ---- boosting

struct Column {
    Feature feature;
    std::vector<float> values;              // one for each sample
    std::vector<unsigned short> ascending;  // samples by value
};

struct Stump {
    double error = 1e300;
    std::size_t column = 0;
    float threshold = 0, below = 0, above = 0;
};

// The threshold that leaves the least squared error between labels (1 and -1) and the means of both sides.
void tryColumn(const Column& column, std::size_t index, const std::vector<double>& weights,
               const std::vector<double>& labels, double total, double totalLabels, Stump& best) {
    double sum = 0, sumLabels = 0;
    for (std::size_t i = 0; i + 1 < column.ascending.size(); ++i) {
        const std::size_t sample = column.ascending[i], next = column.ascending[i + 1];
        sum += weights[sample];
        sumLabels += weights[sample] * labels[sample];
        if (column.values[sample] == column.values[next]) continue;
        const double rest = total - sum, restLabels = totalLabels - sumLabels;
        if (sum < 1e-9 || rest < 1e-9) continue;
        const double error = total - sumLabels * sumLabels / sum - restLabels * restLabels / rest;
        if (error >= best.error) continue;
        best = {error, index, (column.values[sample] + column.values[next]) / 2, static_cast<float>(sumLabels / sum),
                static_cast<float>(restLabels / rest)};
    }
}

void append(Stage& stage, const Stump& stump, const Feature& feature) {
    for (const auto& [r, weight] : feature) {
        for (int v : {r.x, r.y, r.width, r.height}) stage.features.push_back(v);
        stage.weights.push_back(weight);
    }
    stage.counts.push_back(static_cast<int>(feature.size()));
    stage.thresholds.push_back(stump.threshold);
    stage.below.push_back(stump.below);
    stage.above.push_back(stump.above);
}

Stage trainStage(const std::vector<Sample>& coins, const std::vector<Sample>& others,
                 const std::vector<Feature>& features) {
    const std::size_t count = coins.size() + others.size();
    const auto sample = [&](std::size_t i) -> const Sample& {
        return i < coins.size() ? coins[i] : others[i - coins.size()];
    };
    std::vector<Column> columns;
    for (const Feature& feature : features) {
        Column column{feature, std::vector<float>(count), std::vector<unsigned short>(count)};
        for (std::size_t i = 0; i < count; ++i) column.values[i] = sample(i).value(feature);
        std::iota(column.ascending.begin(), column.ascending.end(), static_cast<unsigned short>(0));
        std::stable_sort(column.ascending.begin(), column.ascending.end(),
                         [&](auto a, auto b) { return column.values[a] < column.values[b]; });
        columns.push_back(std::move(column));
    }

    std::vector<double> labels(count, -1), weights(count, 0.5 / static_cast<double>(others.size()));
    std::fill_n(labels.begin(), coins.size(), 1.0);
    std::fill_n(weights.begin(), coins.size(), 0.5 / static_cast<double>(coins.size()));
    std::vector<float> sums(count);
    Stage stage;
    for (int round = 0; round < kMostStumps; ++round) {
        const double total = std::accumulate(weights.begin(), weights.end(), 0.0);
        const double totalLabels = std::inner_product(weights.begin(), weights.end(), labels.begin(), 0.0);
        Stump best;
        for (std::size_t k = 0; k < columns.size(); ++k) {
            tryColumn(columns[k], k, weights, labels, total, totalLabels, best);
        }
        append(stage, best, columns[best.column].feature);
        for (std::size_t i = 0; i < count; ++i) {
            const float vote = columns[best.column].values[i] < best.threshold ? best.below : best.above;
            sums[i] += vote;
            weights[i] *= std::exp(-labels[i] * vote);
        }
        for (double& weight : weights) weight /= total;

        std::vector<float> kept(sums.begin(), sums.begin() + static_cast<std::ptrdiff_t>(coins.size()));
        std::sort(kept.begin(), kept.end());
        // A little below the last that must pass: the library adds the same numbers, but rounds products otherwise.
        stage.threshold = kept[static_cast<std::size_t>((1 - kWantedHits) * static_cast<double>(kept.size()))] - 0.001F;
        const auto passes = std::count_if(sums.begin() + static_cast<std::ptrdiff_t>(coins.size()), sums.end(),
                                          [&](float s) { return s >= stage.threshold; });
        if (round >= 2 && static_cast<double>(passes) <= kWantedPasses * static_cast<double>(others.size())) break;
    }
    return stage;
}

std::vector<Sample> samplesOf(const std::vector<Gray>& patches) { return {patches.begin(), patches.end()}; }

void train(const std::string& photos, const std::string& out) {
    Random random;
    const Gray coins = tour::readGray(photos + "/coins.png");
    std::vector<Gray> others;
    for (const char* name : kOthers) others.push_back(tour::readGray(photos + "/" + name));
    const std::vector<Sample> positives = samplesOf(coinPatches(coins, random));
    std::vector<Feature> features;
    for (int i = 0; i < kFeatures; ++i) features.push_back(randomFeature(random));

    Cascade cascade{{kSide, kSide}, {}};
    for (int stage = 0; stage < kMostStages; ++stage) {
        const Negatives negatives = windowsThatPass(cascade, others, coins, random);
        std::printf("%2d stages: %zu windows without a coin pass\n", stage, negatives.seen);
        if (negatives.patches.size() < 10) break;
        cascade.stages.push_back(trainStage(positives, samplesOf(negatives.patches), features));
    }
    writeCascade(out, cascade, "Coins, learnt by train_coins.");

    const Score score = scoreOf(detect(cascade, coins));
    std::printf("coins.png: %d of 24 coins, %d false alarms\n", score.found, score.falseAlarms);
    for (std::size_t i = 0; i < others.size(); ++i) {
        std::printf("%s: %zu false alarms\n", kOthers[i], detect(cascade, others[i]).size());
    }
}

}  // namespace
}  // namespace detect

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: train_coins PHOTOS_DIR OUT.cascade\n");
        return 2;
    }
    try {
        detect::train(argv[1], argv[2]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "train_coins: %s\n", error.what());
        return 1;
    }
    return 0;
}
