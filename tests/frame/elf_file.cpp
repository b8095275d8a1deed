#include "tests/frame/elf_file.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace test {
namespace {

template <typename T>
std::vector<T> records(const std::vector<std::uint8_t>& bytes, std::uint64_t offset, std::uint64_t size) {
    std::vector<T> out(size / sizeof(T));
    std::memcpy(out.data(), bytes.data() + offset, out.size() * sizeof(T));
    return out;
}

}  // namespace

ElfFile::ElfFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    bytes_.assign(std::istreambuf_iterator<char>(file), {});
    if (bytes_.size() < sizeof(Elf64_Ehdr) || std::memcmp(bytes_.data(), ELFMAG, SELFMAG) != 0) {
        throw std::runtime_error("not an ELF file: " + path);
    }
    const auto header = records<Elf64_Ehdr>(bytes_, 0, sizeof(Elf64_Ehdr)).front();
    segments_ = records<Elf64_Phdr>(bytes_, header.e_phoff, header.e_phnum * sizeof(Elf64_Phdr));
    sections_ = records<Elf64_Shdr>(bytes_, header.e_shoff, header.e_shnum * sizeof(Elf64_Shdr));
    dynamic_ = section<Elf64_Dyn>(SHT_DYNAMIC);
    relocations_ = section<Elf64_Rela>(SHT_RELA);
    exchanged_ = symbols(SHT_DYNSYM);
    all_ = symbols(SHT_SYMTAB);
}

template <typename T>
std::vector<T> ElfFile::section(std::uint32_t type) const {
    std::vector<T> out;
    for (const Elf64_Shdr& s : sections_) {
        if (s.sh_type != type) continue;
        const auto part = records<T>(bytes_, s.sh_offset, s.sh_size);
        out.insert(out.end(), part.begin(), part.end());
    }
    return out;
}

std::map<std::string, Symbol> ElfFile::symbols(std::uint32_t type) const {
    std::map<std::string, Symbol> out;
    for (const Elf64_Shdr& s : sections_) {
        if (s.sh_type != type) continue;
        const char* names = reinterpret_cast<const char*>(bytes_.data() + sections_[s.sh_link].sh_offset);
        for (const auto& symbol : records<Elf64_Sym>(bytes_, s.sh_offset, s.sh_size)) {
            const std::string name = names + symbol.st_name;
            if (name.empty()) continue;
            out[name] = {symbol.st_value, static_cast<unsigned char>(ELF64_ST_TYPE(symbol.st_info)),
                         static_cast<unsigned char>(ELF64_ST_BIND(symbol.st_info)), symbol.st_shndx != SHN_UNDEF};
        }
    }
    return out;
}

const Elf64_Phdr* ElfFile::segment(std::uint32_t type) const {
    const auto found = std::find_if(segments_.begin(), segments_.end(), [&](auto& s) { return s.p_type == type; });
    return found == segments_.end() ? nullptr : &*found;
}

const Elf64_Phdr* ElfFile::loaded(std::uint64_t address) const {
    const auto holds = [&](auto& s) {
        return s.p_type == PT_LOAD && address >= s.p_vaddr && address - s.p_vaddr < s.p_memsz;
    };
    const auto found = std::find_if(segments_.begin(), segments_.end(), holds);
    return found == segments_.end() ? nullptr : &*found;
}

bool ElfFile::readOnlyAfterLoad(std::uint64_t address) const {
    const Elf64_Phdr* relro = segment(PT_GNU_RELRO);
    const bool frozen = relro != nullptr && address >= relro->p_vaddr && address - relro->p_vaddr < relro->p_memsz;
    return frozen || (loaded(address)->p_flags & PF_W) == 0;
}

std::vector<std::uint64_t> ElfFile::dynamic(std::int64_t tag) const {
    std::vector<std::uint64_t> values;
    for (const Elf64_Dyn& entry : dynamic_) {
        if (entry.d_tag == tag) values.push_back(entry.d_un.d_val);
    }
    return values;
}

std::string ElfFile::dynamicString(std::uint64_t offset) const {
    return reinterpret_cast<const char*>(at(dynamic(DT_STRTAB).at(0)) + offset);
}

const std::uint8_t* ElfFile::at(std::uint64_t address) const {
    const Elf64_Phdr* segment = loaded(address);
    if (segment == nullptr) throw std::runtime_error("address outside the loaded segments");
    return bytes_.data() + segment->p_offset + (address - segment->p_vaddr);
}

std::map<std::uint32_t, std::uint32_t> ElfFile::properties() const {
    std::map<std::uint32_t, std::uint32_t> out;
    const Elf64_Phdr* note = segment(PT_GNU_PROPERTY);
    if (note == nullptr) return out;
    // One note: its header (12 bytes) and name ("GNU"), then properties of type, size and value, padded to 8 bytes.
    for (std::uint64_t offset = note->p_offset + 16; offset + 12 <= note->p_offset + note->p_filesz; offset += 16) {
        const auto words = records<std::uint32_t>(bytes_, offset, 12);
        out[words[0]] = words[2];
    }
    return out;
}

std::vector<std::string> exportList() {
    return {
#define KPR_EXPORT(name) #name,
#include "frame/exports.inc"
#undef KPR_EXPORT
    };
}

}  // namespace test
