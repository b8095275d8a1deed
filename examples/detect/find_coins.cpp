// Finds the coins:  find_coins FILE.cascade PHOTOS_DIR
// Looks for them in every photograph and says what it found and what it took for a coin. Fails where fewer than 22 of
// the 24 coins are found, or anything else is.
#include <cstdio>
#include <exception>

#include "examples/detect/cascade.h"
#include "examples/detect/coins.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: find_coins FILE.cascade PHOTOS_DIR\n");
        return 2;
    }
    try {
        const detect::Cascade cascade = detect::readCascade(argv[1]);
        const std::string photos = std::string(argv[2]) + "/";
        const auto boxesIn = [&](const char* name) { return detect::detect(cascade, tour::readGray(photos + name)); };
        const detect::Score score = detect::scoreOf(boxesIn("coins.png"));
        std::printf("coins.png: %d of 24 coins, %d false alarms\n", score.found, score.falseAlarms);
        bool good = score.found >= 22 && score.falseAlarms == 0;
        for (const char* name :
             {"camera.png", "astronaut.png", "coast.png", "blossom.png", "brick.png", "coffee.png"}) {
            const std::size_t alarms = boxesIn(name).size();
            std::printf("%s: %zu false alarms\n", name, alarms);
            good = good && alarms == 0;
        }
        return good ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "find_coins: %s\n", error.what());
        return 1;
    }
}
