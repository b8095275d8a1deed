// Four lists are one: the public headers, the list of exports, the file's dynamic symbols (held against the list by the
// file's own test) and the names that tests call.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <sstream>

#include "tests/frame/elf_file.h"

namespace {

std::set<std::string> namesIn(const std::string& folder, const std::string& pattern) {
    std::set<std::string> names;
    const std::regex name(pattern);
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(std::string(KPRCV_SOURCE_DIR "/") + folder)) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".h" && extension != ".c" && extension != ".cpp") continue;
        std::ifstream file(entry.path());
        std::stringstream text;
        text << file.rdbuf();
        const std::string content = text.str();
        for (std::sregex_iterator match(content.begin(), content.end(), name), end; match != end; ++match) {
            names.insert((*match)[1].str());
        }
    }
    return names;
}

TEST(Manifest, ListDescends) {
    const auto exports = test::exportList();
    EXPECT_TRUE(std::is_sorted(exports.begin(), exports.end(), std::greater<>()));
}

TEST(Manifest, HeadersDeclareWhatIsExported) {
    const auto exports = test::exportList();
    EXPECT_EQ(namesIn("include", R"((?:KprStatus|KprLibraryVersion\*) (kpri?\w+)\()"),
              std::set<std::string>(exports.begin(), exports.end()));
}

TEST(Manifest, TestsCallWhatIsExported) {
    const auto named = namesIn("tests", R"(\b(kpr(?:i|cv)\w+)\b)");
    for (const std::string& name : test::exportList()) EXPECT_TRUE(named.contains(name)) << "no test calls " << name;
}

}  // namespace
