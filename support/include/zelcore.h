/*
 * libzelcore: the small core library that libzelchmx stands on. It allocates memory and says how
 * many threads may work in parallel. Replace it with one of your own to control either.
 */
#ifndef ZELCORE_H
#define ZELCORE_H

#ifdef __cplusplus
extern "C" {
#endif

/* Allocates a block of at least `len` bytes (len > 0), aligned for any type. Returns null when
 * memory is exhausted. The block is released with zelFree only. */
void* zelMalloc(int len);

/* Releases a block from zelMalloc. A null pointer is accepted and does nothing. */
void zelFree(void* ptr);

/* The number of threads that parallel work may use, at least 1. */
int ownGetNumThreads(void);

#ifdef __cplusplus
}
#endif
#endif
