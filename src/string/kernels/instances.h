// The functions that exist once per instruction set. The dispatcher expands the lists to the public
// symbols; the declarations of the instances below are for it and for the tests.
#pragma once

#include "string/kernels/api.h"
#include "zelchmx.h"

// clang-format off
#define ZEL_STRING_EXPORTS(X)                                                                     \
    X(zelsCopy_8u) X(zelsCopy_16s) X(zelsMove_8u) X(zelsMove_16s) X(zelsZero_8u)                  \
    X(zelsFind_8u) X(zelsFind_16u) X(zelsFindRev_8u) X(zelsFindRev_16u) X(zelsFindC_8u)           \
    X(zelsFindC_16u) X(zelsFindRevC_8u) X(zelsFindRevC_16u) X(zelsFindCAny_8u)                    \
    X(zelsFindCAny_16u) X(zelsFindRevCAny_8u) X(zelsFindRevCAny_16u) X(zelsFind_Z_8u)             \
    X(zelsFind_Z_16u) X(zelsFindC_Z_8u) X(zelsFindC_Z_16u) X(zelsCompare_8u)                      \
    X(zelsCompare_16u) X(zelsCompareIgnoreCaseLatin_8u) X(zelsCompareIgnoreCaseLatin_16u)         \
    X(zelsCompareIgnoreCase_16u) X(zelsEqual_8u) X(zelsEqual_16u) X(zelsUppercase_16u)            \
    X(zelsUppercase_16u_I) X(zelsLowercase_16u) X(zelsLowercase_16u_I)                            \
    X(zelsUppercaseLatin_8u) X(zelsUppercaseLatin_16u) X(zelsUppercaseLatin_8u_I)                 \
    X(zelsUppercaseLatin_16u_I) X(zelsLowercaseLatin_8u) X(zelsLowercaseLatin_16u)                \
    X(zelsLowercaseLatin_8u_I) X(zelsLowercaseLatin_16u_I) X(zelsInsert_8u) X(zelsInsert_16u)     \
    X(zelsInsert_8u_I) X(zelsInsert_16u_I) X(zelsRemove_8u) X(zelsRemove_16u)                     \
    X(zelsRemove_8u_I) X(zelsRemove_16u_I) X(zelsReplaceC_8u) X(zelsReplaceC_16u)                 \
    X(zelsConcat_8u) X(zelsConcat_16u) X(zelsConcat_8u_D2L) X(zelsConcat_16u_D2L)                 \
    X(zelsConcatC_8u_D2L) X(zelsConcatC_16u_D2L) X(zelsSplitC_8u_D2L) X(zelsSplitC_16u_D2L)       \
    X(zelsTrimC_8u) X(zelsTrimC_16u) X(zelsTrimC_8u_I) X(zelsTrimC_16u_I) X(zelsTrimCAny_8u)      \
    X(zelsTrimCAny_16u) X(zelsTrimStartCAny_8u) X(zelsTrimStartCAny_16u) X(zelsTrimEndCAny_8u)    \
    X(zelsTrimEndCAny_16u) X(zelsHash_8u32u) X(zelsHash_16u32u) X(zelsHashSJ2_8u32u)              \
    X(zelsHashSJ2_16u32u) X(zelsHashMSCS_8u32u) X(zelsHashMSCS_16u32u) X(zelsConvertUTF_8u16u)    \
    X(zelsConvertUTF_16u8u)
// clang-format on

// One declaration per instance, of the public function's own type.
#define ZEL_DECLARE_EXPORT(name) decltype(::name) name;
#define ZEL_DECLARE_KERNEL(name) decltype(kernels::name) name;
namespace zel::sse2 {
ZEL_STRING_EXPORTS(ZEL_DECLARE_EXPORT)
ZEL_KERNELS(ZEL_DECLARE_KERNEL)
}  // namespace zel::sse2
namespace zel::avx2 {
ZEL_STRING_EXPORTS(ZEL_DECLARE_EXPORT)
ZEL_KERNELS(ZEL_DECLARE_KERNEL)
}  // namespace zel::avx2
namespace zel::avx512 {
ZEL_STRING_EXPORTS(ZEL_DECLARE_EXPORT)
ZEL_KERNELS(ZEL_DECLARE_KERNEL)
}  // namespace zel::avx512
#undef ZEL_DECLARE_EXPORT
#undef ZEL_DECLARE_KERNEL

namespace zel {

enum class Isa { Sse2, Avx2, Avx512 };

/// Whether this processor, and the operating system on it, can run the instance.
bool isSupported(Isa isa);

}  // namespace zel
