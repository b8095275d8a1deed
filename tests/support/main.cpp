#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <string>

#include "tests/support/random.h"

namespace test {

std::uint64_t runSeed() {
    static const std::uint64_t seed = [] {
        const char* given = std::getenv("KPRCV_SEED");
        return given != nullptr ? std::stoull(given) : std::random_device{}();
    }();
    return seed;
}

Random::Random() {
    const auto* info = testing::UnitTest::GetInstance()->current_test_info();
    const std::string name = std::string(info->test_suite_name()) + "." + info->name();
    std::seed_seq seeds{runSeed(), std::uint64_t{std::hash<std::string>{}(name)}};
    engine_.seed(seeds);
}

namespace {

class SeedPrinter : public testing::EmptyTestEventListener {
    void OnTestPartResult(const testing::TestPartResult& result) override {
        if (result.failed()) std::cout << "KPRCV_SEED=" << runSeed() << '\n';
    }
};

}  // namespace
}  // namespace test

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new test::SeedPrinter);
    return RUN_ALL_TESTS();
}
