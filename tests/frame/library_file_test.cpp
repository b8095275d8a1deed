// The built file keeps the frame's contract: what it exports, imports and asks of the loader.
#include <gtest/gtest.h>
#include <kprcv.h>
#include <link.h>

#include <cstring>
#include <string_view>

#include "tests/frame/elf_file.h"

namespace {

using test::ElfFile;

const ElfFile& library() {
    static const ElfFile file(KPRCV_LIBRARY_FILE);
    return file;
}

// Where the running process has the library.
std::uint64_t loadBase() {
    std::uint64_t base = 0;
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* out) {
            if (std::strstr(info->dlpi_name, "libkprcvn0.so") != nullptr)
                *static_cast<std::uint64_t*>(out) = info->dlpi_addr;
            return 0;
        },
        &base);
    return base;
}

TEST(LibraryFile, ExportsTheEntriesAndNothingElse) {
    std::vector<std::string> exported;
    for (const auto& [name, symbol] : library().exchanged()) {
        if (symbol.defined) exported.insert(exported.begin(), name);  // a map ascends, the list descends
    }
    EXPECT_EQ(exported, test::exportList());
}

TEST(LibraryFile, ImportsAtMostTwoFunctions) {
    for (const auto& [name, symbol] : library().exchanged()) {
        if (symbol.defined) continue;
        EXPECT_TRUE(name == "__stack_chk_fail" || (name == "kprGetMaxCacheSizeB" && symbol.binding == STB_WEAK))
            << name;
    }
    for (std::uint64_t needed : library().dynamic(DT_NEEDED)) EXPECT_EQ(library().dynamicString(needed), "libc.so.6");
}

// Each entry is one indirect jump through its slot; the slots follow one another in the order of the list, and the
// loader fills each with the address of the body of the same name.
TEST(LibraryFile, EntriesJumpThroughTheirSlots) {
    const std::uint64_t table = library().all().at("arraddr").address;
    std::map<std::uint64_t, Elf64_Rela> relocations;
    for (const Elf64_Rela& r : library().relocations()) relocations[r.r_offset] = r;

    std::uint64_t slot = table;
    for (const std::string& name : test::exportList()) {
        const std::uint64_t entry = library().exchanged().at(name).address;
        const std::uint8_t* code = library().at(entry);
        ASSERT_EQ(std::memcmp(code, "\xf3\x0f\x1e\xfa\xff\x25", 6), 0) << name;  // endbr64; jmp *offset(%rip)
        std::int32_t offset = 0;
        std::memcpy(&offset, code + 6, 4);
        EXPECT_EQ(entry + 10 + static_cast<std::uint64_t>(std::int64_t{offset}), slot) << name;
        ASSERT_TRUE(relocations.contains(slot)) << name;
        EXPECT_EQ(ELF64_R_TYPE(relocations[slot].r_info), R_X86_64_RELATIVE) << name;
        EXPECT_EQ(static_cast<std::uint64_t>(relocations[slot].r_addend), library().all().at("n0_" + name).address)
            << name;
        slot += 8;
    }
    EXPECT_FALSE(library().readOnlyAfterLoad(table));
    EXPECT_FALSE(library().readOnlyAfterLoad(slot - 8));
}

// Everything inside bears the target's tag, so that builds for other targets can live in the same process.
TEST(LibraryFile, InnerSymbolsBearTheTag) {
    const std::set<std::string> untagged = {"_init", "_fini", "arraddr", "memcpy", "memmove", "memset", "memcmp"};
    for (const auto& [name, symbol] : library().all()) {
        if (!symbol.defined || symbol.type != STT_FUNC || library().exchanged().contains(name) ||
            untagged.contains(name))
            continue;
        const bool ofTheStandardLibrary =
            name.starts_with("_ZSt") || name.starts_with("_ZNSt") || name.starts_with("_ZNKSt");
        EXPECT_TRUE(name.starts_with("n0_") || name.find("2n0") != std::string::npos || ofTheStandardLibrary) << name;
    }
}

TEST(LibraryFile, AsksOfTheLoader) {
    EXPECT_EQ(library().dynamicString(library().dynamic(DT_SONAME).at(0)), "libkprcvn0.so");
    EXPECT_TRUE(library().dynamic(DT_FLAGS).at(0) & DF_BIND_NOW);
    EXPECT_TRUE(library().dynamic(DT_INIT_ARRAY).empty());  // nothing is initialised at load
    EXPECT_TRUE(library().dynamic(DT_FINI_ARRAY).empty());
    EXPECT_TRUE(library().dynamic(DT_TEXTREL).empty());
    EXPECT_EQ(library().segment(PT_TLS), nullptr);
    ASSERT_NE(library().segment(PT_GNU_STACK), nullptr);
    EXPECT_FALSE(library().segment(PT_GNU_STACK)->p_flags & PF_X);

    // Of what is relocated, only the slot table stays writable.
    const std::uint64_t table = library().all().at("arraddr").address;
    for (const Elf64_Rela& r : library().relocations()) {
        const bool slot = r.r_offset >= table && r.r_offset < table + 8 * test::exportList().size();
        EXPECT_NE(slot, library().readOnlyAfterLoad(r.r_offset)) << std::hex << r.r_offset;
    }

    const auto properties = library().properties();
    EXPECT_EQ(properties.at(0xc0000002) & 3U, 3U) << "indirect-branch tracking and shadow stack";
    EXPECT_EQ(properties.at(0xc0008002), std::string_view(KPRCV_PROCESSOR) == "x86-64-v4" ? 8U : 4U);
}

TEST(LibraryFile, StartAndEndDoNothing) {
    const auto start = reinterpret_cast<int (*)()>(loadBase() + library().dynamic(DT_INIT).at(0));
    const auto end = reinterpret_cast<void (*)()>(loadBase() + library().dynamic(DT_FINI).at(0));
    EXPECT_EQ(start(), 1);
    end();
    EXPECT_EQ(start(), 1);
}

TEST(LibraryFile, VersionRecord) {
    const KprLibraryVersion* version = kprcvGetLibVersion();
    EXPECT_EQ(version, kprcvGetLibVersion());
    EXPECT_EQ(version->major, 2018);
    EXPECT_EQ(version->minor, 0);
    EXPECT_EQ(version->update, 0);
    EXPECT_EQ(version->revision, 56444);
    EXPECT_EQ(std::memcmp(version->target, "n0\0", 4), 0);
    EXPECT_STREQ(version->libraryName, "kprCV AVX-512F/CD/BW/DQ/VL (n0)");
    EXPECT_STREQ(version->versionText, "2018.0.0 (r56444)");
    EXPECT_STREQ(version->buildDate, "Jul 24 2017");
    EXPECT_TRUE(library().readOnlyAfterLoad(reinterpret_cast<std::uint64_t>(version) - loadBase()));
}

}  // namespace
