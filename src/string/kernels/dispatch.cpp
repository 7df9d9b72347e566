// Chooses the instance of every string function, once, when the library is loaded.
//
// Each exported name is an indirect function: the dynamic linker asks its resolver which instance
// to bind, and from then on a call goes straight there, with no table and no test in between. The
// resolvers run while the library is still being relocated, so they touch nothing that needs
// relocation: addresses of hidden functions and the processor's own feature bits. For the same
// reason the build never instruments this file, neither for sanitizers nor for coverage.
#include "string/kernels/instances.h"

namespace zel {

// Instruction sets that come together in every processor that has the last one named: the 512-bit
// instance asks for the byte permutes and compresses, without which it would have nothing to offer
// over 256 bits on the processors concerned.
bool isSupported(Isa isa) {
    __builtin_cpu_init();
    const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
                      __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("popcnt");
    if (isa == Isa::Sse2) return true;
    if (isa == Isa::Avx2) return avx2;
    return avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512dq") &&
           __builtin_cpu_supports("avx512cd") && __builtin_cpu_supports("avx512vbmi") &&
           __builtin_cpu_supports("avx512vbmi2") && __builtin_cpu_supports("gfni") &&
           __builtin_cpu_supports("vpclmulqdq");
}

namespace {

template <typename Function>
Function* choose(Function* sse2, Function* avx2, Function* avx512) {
    if (isSupported(Isa::Avx512)) return avx512;
    if (isSupported(Isa::Avx2)) return avx2;
    return sse2;
}

}  // namespace
}  // namespace zel

// The resolver of a function has C linkage, because the attribute names it by its symbol.
#define ZEL_RESOLVER(symbol, name)                                               \
    extern "C" decltype(&zel::sse2::name) symbol() {                             \
        return zel::choose(zel::sse2::name, zel::avx2::name, zel::avx512::name); \
    }

#define ZEL_EXPORT(name)               \
    ZEL_RESOLVER(resolve_##name, name) \
    extern "C" decltype(zel::sse2::name) name __attribute__((ifunc("resolve_" #name)));

#define ZEL_INTERNAL(name)                                                          \
    ZEL_RESOLVER(resolve_kernel_##name, name)                                       \
    namespace zel::kernels {                                                        \
    decltype(zel::sse2::name) name __attribute__((ifunc("resolve_kernel_" #name))); \
    }

ZEL_STRING_EXPORTS(ZEL_EXPORT)
ZEL_KERNELS(ZEL_INTERNAL)
