#include "frame/api.h"

namespace n0 {
namespace {

constexpr KprLibraryVersion libraryVersion = {
    2018, 0, 0, 56444, {'n', '0', '\0', '\0'}, "kprCV AVX-512F/CD/BW/DQ/VL (n0)", "2018.0.0 (r56444)", "Jul 24 2017",
};

}  // namespace
}  // namespace n0

const KprLibraryVersion* kprcvGetLibVersion() { return &n0::libraryVersion; }
