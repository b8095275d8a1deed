// The status-ladder driver. A function's ladder is the list of its checks in order:
//
//     LADDER(kpriAdd_16u32f_C1IMR).nulls().sizes().lengths({0}).multiples({0}).lengths({1, 2}).multiples({2}).run();
//
// The driver makes good arguments from the signature (an image for every pointer, its step when the next argument is an
// integer, a small ROI), then breaks each check alone and each pair, and expects the first failure's status. All memory
// is inaccessible while a call is to fail, so that a read or write before the checks have passed ends the run.
#pragma once

#include <functional>
#include <memory>
#include <tuple>

#include "tests/support/guarded_image.h"

#define LADDER(function) ::test::Ladder(#function, function)

namespace test {

template <typename... A>
class Ladder {
    using Arguments = std::tuple<A...>;
    template <int index>
    using Argument = std::tuple_element_t<index, Arguments>;
    static constexpr int kCount = sizeof...(A);

  public:
    Ladder(const char* name, KprStatus (*function)(A...)) : name_(name), function_(function) { channels({}); }

    // Interleaved channels of the images in their order; one channel where nothing is said.
    Ladder& channels(const std::vector<int>& counts) {
        memory_.clear();
        images_.clear();
        eachIndex([&]<int index>() { prepare<index>(counts); });
        return *this;
    }

    // Another good value than the one made from the signature.
    template <int index>
    Ladder& with(Argument<index> value) {
        std::get<index>(good_) = value;
        return *this;
    }

    // A check of one argument's own value.
    template <int index>
    Ladder& refuses(Argument<index> value, KprStatus status) {
        rungs_.push_back({index, status, [value](Arguments& a) { std::get<index>(a) = value; }});
        return *this;
    }

    // Every pointer but those named, counted from 0 among the pointers.
    Ladder& nulls(const std::vector<int>& optional = {}) {
        int pointer = 0;
        eachIndex([&]<int index>() {
            if constexpr (std::is_pointer_v<Argument<index>>) {
                if (std::find(optional.begin(), optional.end(), pointer++) == optional.end()) {
                    refuses<index>(nullptr, kprStatusNullPtr);
                }
            }
        });
        return *this;
    }

    Ladder& sizes() {
        eachIndex([&]<int index>() {
            using Size = Argument<index>;
            if constexpr (isSize<Size>) {
                for (Size size : {Size{0, 3}, Size{7, 0}, Size{-7, 3}, Size{7, -1}, Size{INT32_MIN, INT32_MIN}}) {
                    refuses<index>(size, kprStatusBadSize);
                }
            }
        });
        return *this;
    }

    // The steps of the images named, counted from 0 among the images: too short for a row, and no multiple.
    Ladder& lengths(const std::vector<int>& images) {
        for (int image : images) {
            for (int step : {rowBytes(image) - 1, 0, -rowBytes(image)}) refuseStep(image, step, kprStatusBadStep);
        }
        return *this;
    }
    Ladder& multiples(const std::vector<int>& images) {
        for (int image : images) refuseStep(image, rowBytes(image) + 1, kprStatusStepNotMultiple);
        return *this;
    }

    // The channel of interest: the integer after the ROI.
    Ladder& coi() {
        eachIndex([&]<int index>() {
            if constexpr (index > 0 && std::is_same_v<Argument<index>, int>) {
                if constexpr (isSize<Argument<index - 1>>) {
                    with<index>(2);
                    for (int coi : {0, 4, -1}) refuses<index>(coi, kprStatusBadCoi);
                }
            }
        });
        return *this;
    }

    void run() {
        expect(kprStatusOk, good_, "good arguments");
        for (auto& memory : memory_) memory.setAccessible(false);
        for (std::size_t i = 0; i < rungs_.size(); ++i) {
            Arguments one = good_;
            rungs_[i].spoil(one);
            expect(rungs_[i].status, one, "rung " + std::to_string(i));
            for (std::size_t j = i + 1; j < rungs_.size(); ++j) {
                if (rungs_[j].argument == rungs_[i].argument) continue;
                Arguments two = one;
                rungs_[j].spoil(two);
                expect(rungs_[i].status, two, "rungs " + std::to_string(i) + " and " + std::to_string(j));
            }
        }
    }

  private:
    static constexpr int kWidth = 7;
    static constexpr int kHeight = 3;

    struct Rung {
        int argument;
        KprStatus status;
        std::function<void(Arguments&)> spoil;
    };
    struct Image {
        int stepArgument;
        int rowBytes;
    };

    template <typename T>
    static constexpr bool isSize = std::is_same_v<T, KprSize> || std::is_same_v<T, KprSizeL>;

    template <typename Function>
    static void eachIndex(Function function) {
        [&]<int... index>(std::integer_sequence<int, index...>) { (function.template operator()<index>(), ...); }
        (std::make_integer_sequence<int, kCount>{});
    }

    template <int index>
    static constexpr bool isImage() {
        if constexpr (index + 1 < kCount && std::is_pointer_v<Argument<index>>) {
            return std::is_integral_v<Argument<index + 1>>;
        }
        return false;
    }

    template <int index>
    void prepare(const std::vector<int>& channels) {
        using T = Argument<index>;
        if constexpr (std::is_pointer_v<T>) {
            const int count = images_.size() < channels.size() ? channels[images_.size()] : 1;
            const int row = static_cast<int>(sizeof(std::remove_pointer_t<T>)) * kWidth * count;
            memory_.emplace_back(static_cast<std::size_t>(row * kHeight), Guard::After);
            std::memset(memory_.back().data(), 0x3f, static_cast<std::size_t>(row * kHeight));
            std::get<index>(good_) = reinterpret_cast<T>(memory_.back().data());
            if constexpr (isImage<index>()) {
                std::get<index + 1>(good_) = row;
                images_.push_back({index + 1, row});
            }
        } else if constexpr (isSize<T>) {
            std::get<index>(good_) = {kWidth, kHeight};
        }
    }

    int rowBytes(int image) const { return images_.at(static_cast<std::size_t>(image)).rowBytes; }

    void refuseStep(int image, int step, KprStatus status) {
        eachIndex([&]<int index>() {
            if constexpr (std::is_integral_v<Argument<index>>) {
                if (images_.at(static_cast<std::size_t>(image)).stepArgument == index) refuses<index>(step, status);
            }
        });
    }

    void expect(KprStatus status, const Arguments& arguments, const std::string& what) {
        EXPECT_EQ(std::apply(function_, arguments), status) << name_ << ", " << what;
    }

    const char* name_;
    KprStatus (*function_)(A...);
    Arguments good_{};
    std::vector<GuardedBytes> memory_;
    std::vector<Image> images_;
    std::vector<Rung> rungs_;
};

}  // namespace test
