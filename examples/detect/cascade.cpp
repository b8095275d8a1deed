#include "examples/detect/cascade.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iomanip>
#include <numeric>
#include <sstream>
#include <stdexcept>

namespace detect {
namespace {

void requireOk(const char* what, KprStatus status) {
    if (status != kprStatusOk) throw std::runtime_error(std::string(what) + " returned " + std::to_string(status));
}

}  // namespace

// ---- the file

Cascade readCascade(const std::string& path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error("cannot read " + path);
    std::stringstream text;
    for (std::string line; std::getline(file, line);) text << line.substr(0, line.find('#')) << '\n';

    const auto next = [&](auto& value) {
        if (!(text >> value)) throw std::runtime_error(path + " ends or is no cascade");
    };
    const auto word = [&](const char* wanted) {
        std::string got;
        next(got);
        if (got != wanted) throw std::runtime_error(path + ": '" + got + "' where '" + wanted + "' should be");
    };
    Cascade cascade;
    word("cascade");
    next(cascade.window.width);
    next(cascade.window.height);
    for (std::string got; text >> got;) {
        if (got != "stage") throw std::runtime_error(path + ": '" + got + "' where 'stage' should be");
        Stage stage;
        int count = 0;
        next(stage.threshold);
        next(count);
        for (int i = 0; i < count; ++i) {
            next(stage.thresholds.emplace_back());
            next(stage.below.emplace_back());
            next(stage.above.emplace_back());
            next(stage.counts.emplace_back());
            for (int k = 0; k < stage.counts.back(); ++k) {
                for (int v = 0; v < 4; ++v) next(stage.features.emplace_back());
                next(stage.weights.emplace_back());
            }
        }
        cascade.stages.push_back(stage);
    }
    return cascade;
}

void writeCascade(const std::string& path, const Cascade& cascade, const std::string& comment) {
    std::ofstream file(path);
    file << std::setprecision(9) << "# " << comment << "\ncascade " << cascade.window.width << ' '
         << cascade.window.height << '\n';
    for (const Stage& stage : cascade.stages) {
        file << "stage " << stage.threshold << ' ' << stage.counts.size() << '\n';
        std::size_t rectangle = 0;
        for (std::size_t i = 0; i < stage.counts.size(); ++i) {
            file << stage.thresholds[i] << ' ' << stage.below[i] << ' ' << stage.above[i] << ' ' << stage.counts[i];
            for (int k = 0; k < stage.counts[i]; ++k, ++rectangle) {
                file << ' ';
                for (int v = 0; v < 4; ++v) file << ' ' << stage.features[4 * rectangle + v];
                file << ' ' << stage.weights[rectangle];
            }
            file << '\n';
        }
    }
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

// ---- the library's blocks

Blocks::Blocks(const Cascade& cascade, KprSize windows) {
    for (const Stage& stage : cascade.stages) {
        const int count = static_cast<int>(stage.counts.size());
        int size = 0;
        requireOk("HaarClassifierGetSize",
                  kpriHaarClassifierGetSize(kpr32f, windows, stage.counts.data(), count, &size));
        Block block{std::vector<Kpr8u>(size), stage.threshold};
        requireOk("HaarClassifierInit",
                  kpriHaarClassifierInit_32f(block.state(), stage.features.data(), stage.weights.data(),
                                             stage.thresholds.data(), stage.below.data(), stage.above.data(),
                                             stage.counts.data(), count));
        blocks_.push_back(std::move(block));  // the memory itself does not move
    }
}

int Blocks::apply(const Image<Kpr32s>& sums, const Image<Kpr32f>& norm, Gray& mask) {
    int left = mask.width * mask.height;
    for (Block& block : blocks_) {
        if (left == 0) break;
        requireOk("ApplyHaarClassifier",
                  kpriApplyHaarClassifier_32s32f_C1R(sums.data(), sums.step(), norm.data(), norm.step(), mask.data(),
                                                     mask.step(), mask.size(), &left, block.threshold, block.state()));
    }
    return left;
}

// ---- scales

Gray shrunk(const Gray& image, KprSize to) {
    Image<Kpr32s> sums(image.width + 1, image.height + 1);
    requireOk("Integral",
              kpriIntegral_8u32s_C1R(image.data(), image.step(), sums.data(), sums.step(), image.size(), 0));
    const auto edges = [](int from, int count) {
        std::vector<int> at(static_cast<std::size_t>(count) + 1);
        for (int i = 0; i <= count; ++i) at[i] = static_cast<int>(std::int64_t{from} * i / count);
        return at;
    };
    const std::vector<int> columns = edges(image.width, to.width), rows = edges(image.height, to.height);
    Gray out(to.width, to.height);
    for (int y = 0; y < to.height; ++y) {
        const Kpr32s* const upper = sums.from(0, rows[y]);
        const Kpr32s* const lower = sums.from(0, rows[y + 1]);
        for (int x = 0; x < to.width; ++x) {
            const int x0 = columns[x], x1 = columns[x + 1], area = (x1 - x0) * (rows[y + 1] - rows[y]);
            out.at(x, y) = static_cast<Kpr8u>((lower[x1] - lower[x0] - upper[x1] + upper[x0] + area / 2) / area);
        }
    }
    return out;
}

void scanImage(const Cascade& cascade, const Gray& image, const Scan& scan, const Visit& visit) {
    const KprSize window = cascade.window;
    for (float side = scan.smallest;; side *= scan.growth) {
        const float scale = side / static_cast<float>(window.width);
        const KprSize size = {static_cast<int>(static_cast<float>(image.width) / scale),
                              static_cast<int>(static_cast<float>(image.height) / scale)};
        const KprSize windows = {size.width - window.width + 1, size.height - window.height + 1};
        if (windows.width < 1 || windows.height < 1) break;

        const Gray small = shrunk(image, size);
        Image<Kpr32s> sums(size.width + 1, size.height + 1);
        Image<Kpr64f> squares(size.width + 1, size.height + 1);
        requireOk("SqrIntegral", kpriSqrIntegral_8u32s64f_C1R(small.data(), small.step(), sums.data(), sums.step(),
                                                              squares.data(), squares.step(), size, 0, 0));
        Image<Kpr32f> norm(windows.width, windows.height);
        requireOk("RectStdDev",
                  kpriRectStdDev_32s32f_C1R(sums.data(), sums.step(), squares.data(), squares.step(), norm.data(),
                                            norm.step(), windows, {0, 0, window.width, window.height}));
        Gray mask(windows.width, windows.height);
        std::fill(mask.pixels.begin(), mask.pixels.end(), Kpr8u{1});
        if (Blocks(cascade, windows).apply(sums, norm, mask) == 0) continue;

        const auto inImage = [](int v, int from, int to) {
            return static_cast<int>(std::lround(static_cast<double>(v) * to / from));
        };
        for (int y = 0; y < windows.height; ++y) {
            for (int x = 0; x < windows.width; ++x) {
                if (mask.at(x, y) == 0) continue;
                const int left = inImage(x, size.width, image.width), top = inImage(y, size.height, image.height);
                visit(small, {{left, top, inImage(x + window.width, size.width, image.width) - left,
                               inImage(y + window.height, size.height, image.height) - top},
                              {x, y}});
            }
        }
    }
}

// ---- groups

std::vector<KprRect> grouped(const std::vector<KprRect>& boxes, int least) {
    const auto alike = [](const KprRect& a, const KprRect& b) {
        const float near = 0.3F * static_cast<float>(std::min(a.width, b.width));
        const auto apart = [](int a0, int a1, int b0, int b1) {
            return std::abs(static_cast<float>(a0 + a1 - b0 - b1)) / 2;
        };
        return apart(a.x, a.x + a.width, b.x, b.x + b.width) <= near &&
               apart(a.y, a.y + a.height, b.y, b.y + b.height) <= near && 2 * a.width <= 3 * b.width &&
               2 * b.width <= 3 * a.width;
    };
    // Each box's group is that of the first box that it is alike, followed to the end.
    std::vector<std::size_t> parent(boxes.size());
    std::iota(parent.begin(), parent.end(), std::size_t{0});
    const auto root = [&](std::size_t i) {
        while (parent[i] != i) i = parent[i] = parent[parent[i]];
        return i;
    };
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        for (std::size_t k = 0; k < i; ++k) {
            if (alike(boxes[i], boxes[k])) parent[root(i)] = root(k);
        }
    }
    struct Sum {
        double x = 0, y = 0, width = 0, height = 0;
        int count = 0;
    };
    std::vector<Sum> sums(boxes.size());
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        Sum& sum = sums[root(i)];
        sum.x += boxes[i].x;
        sum.y += boxes[i].y;
        sum.width += boxes[i].width;
        sum.height += boxes[i].height;
        ++sum.count;
    }
    std::vector<KprRect> out;
    for (const Sum& s : sums) {
        const auto mean = [&](double total) { return static_cast<int>(std::lround(total / s.count)); };
        if (s.count >= least) out.push_back({mean(s.x), mean(s.y), mean(s.width), mean(s.height)});
    }
    return out;
}

std::vector<KprRect> detect(const Cascade& cascade, const Gray& image, const Scan& scan, int least) {
    std::vector<KprRect> boxes;
    scanImage(cascade, image, scan, [&](const Gray&, const Found& found) { boxes.push_back(found.box); });
    return grouped(boxes, least);
}

}  // namespace detect
