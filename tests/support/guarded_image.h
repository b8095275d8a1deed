// An image with every trap: its last byte lies against an inaccessible page (or its first byte after one), the bytes
// between rows bear a pattern that must survive, and nothing is aligned beyond the element.
#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/random.h"

namespace test {

// Memory of exactly `size` bytes between two inaccessible pages, flush against the one after it or the one before it.
enum class Guard { After, Before };

class GuardedBytes {
  public:
    GuardedBytes(std::size_t size, Guard guard) {
        const std::size_t inner = (size + kPage - 1) / kPage * kPage;
        mapped_ = inner + 2 * kPage;
        void* map = mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (map == MAP_FAILED) throw std::bad_alloc();
        base_ = static_cast<char*>(map);
        setAccessible(true);
        data_ = base_ + kPage + (guard == Guard::After ? inner - size : 0);
    }
    GuardedBytes(GuardedBytes&& other) noexcept
        : base_(std::exchange(other.base_, nullptr)), data_(other.data_), mapped_(other.mapped_) {}
    GuardedBytes& operator=(GuardedBytes&&) = delete;
    ~GuardedBytes() {
        if (base_ != nullptr) munmap(base_, mapped_);
    }

    char* data() const { return data_; }

    void setAccessible(bool accessible) {
        const int rights = accessible ? PROT_READ | PROT_WRITE : PROT_NONE;
        if (mprotect(base_ + kPage, mapped_ - 2 * kPage, rights) != 0) throw std::bad_alloc();
    }

  private:
    static constexpr std::size_t kPage = 4096;

    char* base_;
    char* data_;
    std::size_t mapped_;
};

// Equal bits, or both NaN.
template <typename T>
bool same(T a, T b) {
    if constexpr (std::is_floating_point_v<T>) {
        if (std::isnan(a) && std::isnan(b)) return true;
    }
    return std::memcmp(&a, &b, sizeof(T)) == 0;
}

template <typename T>
class GuardedImage {
  public:
    GuardedImage(KprSize size, int channels, int padding, Guard guard)
        : size_(size),
          channels_(channels),
          rowBytes_(static_cast<std::ptrdiff_t>(sizeof(T)) * size.width * channels),
          step_(static_cast<int>(rowBytes_ + padding)),
          total_(step_ * std::ptrdiff_t{size.height - 1} + rowBytes_),
          bytes_(static_cast<std::size_t>(total_), guard) {
        for (std::ptrdiff_t i = 0; i < total_; ++i) bytes_.data()[i] = pattern(i);
    }

    // One channel, random padding (none at all one time in four: rows without gaps are a case of their own), guarded at
    // a random side.
    GuardedImage(KprSize size, Random& random, int channels = 1)
        : GuardedImage(size, channels, random.oneIn(4) ? 0 : static_cast<int>(sizeof(T)) * random.range(1, 70),
                       random.oneIn(4) ? Guard::Before : Guard::After) {}

    T* data() { return reinterpret_cast<T*>(bytes_.data()); }
    int step() const { return step_; }
    KprSize size() const { return size_; }
    T* row(int y) { return reinterpret_cast<T*>(bytes_.data() + std::ptrdiff_t{y} * step_); }
    T& at(int x, int y, int channel = 0) { return row(y)[x * channels_ + channel]; }

    GuardedImage& fill(Random& random, bool wild = false) {
        forEach([&](T& pixel) { pixel = random.pixel<T>(wild); });
        return *this;
    }

    template <typename Function>
    void forEach(Function function) {
        for (int y = 0; y < size_.height; ++y) {
            for (int x = 0; x < size_.width * channels_; ++x) function(row(y)[x]);
        }
    }

    // All bytes, those between rows too.
    std::vector<char> snapshot() const { return {bytes_.data(), bytes_.data() + total_}; }

    // The bytes between rows are as they were made.
    bool gapsIntact() const {
        for (int y = 0; y + 1 < size_.height; ++y) {
            for (std::ptrdiff_t i = y * std::ptrdiff_t{step_} + rowBytes_; i < (y + 1) * std::ptrdiff_t{step_}; ++i) {
                if (bytes_.data()[i] != pattern(i)) return false;
            }
        }
        return true;
    }

  private:
    static char pattern(std::ptrdiff_t i) { return static_cast<char>(0xa5 ^ (i * 29)); }

    KprSize size_;
    int channels_;
    std::ptrdiff_t rowBytes_;
    int step_;
    std::ptrdiff_t total_;
    GuardedBytes bytes_;
};

// Widths and heights at which kernels change their way: around every vector length, and long rows.
inline const std::vector<KprSize>& awkwardSizes() {
    static const std::vector<KprSize> sizes = [] {
        std::vector<KprSize> all;
        for (int width :
             {1, 2, 3, 5, 7, 8, 9, 15, 16, 17, 23, 31, 32, 33, 47, 63, 64, 65, 95, 127, 128, 129, 200, 257, 1031}) {
            for (int height : {1, 2, 5}) all.push_back({width, height});
        }
        all.push_back({1, 70});
        all.push_back({19, 67});
        return all;
    }();
    return sizes;
}

// Sizes of photographs and their like, at which groups of rows end, rings come round, rows have more columns than a
// byte counts and sums outgrow narrow lanes. For reduced rounds: the largest has 300000 pixels.
inline const std::vector<KprSize>& photographSizes() {
    static const std::vector<KprSize> sizes = {{640, 1}, {256, 1},  {640, 3},  {1100, 7},
                                               {5, 300}, {67, 131}, {512, 66}, {641, 479}};
    return sizes;
}

// Both lists, for tests that look at every size once.
inline std::vector<KprSize> allSizes() {
    std::vector<KprSize> sizes = awkwardSizes();
    sizes.insert(sizes.end(), photographSizes().begin(), photographSizes().end());
    return sizes;
}

// Expects `expected(x, y, channel)` at every element and nothing written between the rows.
template <typename T, typename Expected>
void expectImage(GuardedImage<T>& image, Expected expected, int channels = 1) {
    EXPECT_TRUE(image.gapsIntact()) << "bytes between rows were written";
    for (int y = 0; y < image.size().height; ++y) {
        for (int x = 0; x < image.size().width; ++x) {
            for (int c = 0; c < channels; ++c) {
                const T wanted = expected(x, y, c);
                const T got = image.at(x, y, c);
                if (same(got, wanted)) continue;
                ADD_FAILURE() << "at x " << x << ", y " << y << ", channel " << c << " of " << image.size().width
                              << " x " << image.size().height << ": " << +got << ", expected " << +wanted;
                return;
            }
        }
    }
}

}  // namespace test
