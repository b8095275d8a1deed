// The built library as a file: the parts of its ELF image that its contract speaks of.
#pragma once

#include <elf.h>

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace test {

struct Symbol {
    std::uint64_t address;
    unsigned char type;
    unsigned char binding;
    bool defined;
};

class ElfFile {
  public:
    explicit ElfFile(const std::string& path);

    const std::vector<Elf64_Phdr>& segments() const { return segments_; }
    const Elf64_Phdr* segment(std::uint32_t type) const;    // the first of its type, or null
    const Elf64_Phdr* loaded(std::uint64_t address) const;  // the loaded segment that holds the address
    bool readOnlyAfterLoad(std::uint64_t address) const;    // not writable, or within the RELRO range

    std::vector<std::uint64_t> dynamic(std::int64_t tag) const;  // every value of a dynamic tag
    std::string dynamicString(std::uint64_t offset) const;
    const std::vector<Elf64_Rela>& relocations() const { return relocations_; }

    const std::map<std::string, Symbol>& exchanged() const { return exchanged_; }  // .dynsym
    const std::map<std::string, Symbol>& all() const { return all_; }              // .symtab

    const std::uint8_t* at(std::uint64_t address) const;        // the file's bytes for a loaded address
    std::map<std::uint32_t, std::uint32_t> properties() const;  // of the GNU property note

  private:
    template <typename T>
    std::vector<T> section(std::uint32_t type) const;
    std::map<std::string, Symbol> symbols(std::uint32_t type) const;

    std::vector<std::uint8_t> bytes_;
    std::vector<Elf64_Phdr> segments_;
    std::vector<Elf64_Shdr> sections_;
    std::vector<Elf64_Dyn> dynamic_;
    std::vector<Elf64_Rela> relocations_;
    std::map<std::string, Symbol> exchanged_;
    std::map<std::string, Symbol> all_;
};

// The names of frame/exports.inc, in its order.
std::vector<std::string> exportList();

}  // namespace test
