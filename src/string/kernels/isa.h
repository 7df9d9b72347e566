// Which instruction set the current translation unit is compiled for.
//
// Every string source is compiled once per instruction set, each time with its own flags and with
// ZEL_ISA naming its namespace: sse2, avx2 or avx512 (see kernels.cmake). All code of such a
// source, helpers included, lives in zel::ZEL_ISA, so that no function compiled for a wide machine
// can stand in for its namesake on a narrow one: inline functions of any other namespace that are
// used here must be forced inline. The test instances_share_no_code checks the objects for that.
//
// A tool that looks at a single file without the build's flags sees the baseline.
#pragma once

#ifndef ZEL_ISA
#define ZEL_ISA sse2
#define ZEL_ISA_SSE2 1
#endif
