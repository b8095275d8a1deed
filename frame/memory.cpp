// What the compiler may call on its own, for the copying and clearing of small records: the library has no C library
// to take these from. The kernels do their own copying; nothing here is on a hot path.
#include <cstddef>

using Byte = unsigned char;

#pragma GCC visibility push(hidden)
extern "C" {

void* memcpy(void* dst, const void* src, std::size_t size) {
    void* const start = dst;
    asm volatile("rep movsb" : "+D"(dst), "+S"(src), "+c"(size) : : "memory");
    return start;
}

void* memmove(void* dst, const void* src, std::size_t size) {
    auto* to = static_cast<Byte*>(dst);
    const auto* from = static_cast<const Byte*>(src);
    if (to <= from || to >= from + size) return memcpy(dst, src, size);
    while (size-- != 0) {
        to[size] = from[size];
        asm volatile("" : : : "memory");  // keeps the loop a loop: it must not become a call to itself
    }
    return dst;
}

void* memset(void* dst, int value, std::size_t size) {
    void* const start = dst;
    asm volatile("rep stosb" : "+D"(dst), "+c"(size) : "a"(value) : "memory");
    return start;
}

int memcmp(const void* left, const void* right, std::size_t size) {
    const auto* a = static_cast<const Byte*>(left);
    const auto* b = static_cast<const Byte*>(right);
    for (; size != 0; --size, ++a, ++b) {
        if (*a != *b) return *a < *b ? -1 : 1;
    }
    return 0;
}
}
#pragma GCC visibility pop
