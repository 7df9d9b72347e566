// The kernels that other parts of the library call.
#include "string/kernels/api.h"

#include "string/kernels/ascii_masks.h"
#include "string/kernels/characters.h"
#include "string/kernels/enclosed.h"
#include "string/kernels/find_any.h"
#include "string/kernels/find_ignore_case.h"
#include "string/kernels/find_string.h"
#include "string/kernels/gather.h"
#include "string/kernels/instances.h"
#include "string/kernels/literals.h"

namespace zel::ZEL_ISA {

namespace {

ZEL_INLINE int orLength(int index, int len) {
    return index == kNotFound ? len : index;
}

}  // namespace

int findByte(const Zel8u* p, int len, Zel8u c) {
    return orLength(findElement(p, len, c), len);
}

int findByteRev(const Zel8u* p, int len, Zel8u c) {
    return findElement<From::End>(p, len, c);
}

int findByte2(const Zel8u* p, int len, Zel8u a, Zel8u b) {
    const Zel8u values[] = {a, b};
    return orLength(firstHit(p, len, EqualsAnyOf<Zel8u, 2>::of(values)), len);
}

int findByte3(const Zel8u* p, int len, Zel8u a, Zel8u b, Zel8u c) {
    const Zel8u values[] = {a, b, c};
    return orLength(firstHit(p, len, EqualsAnyOf<Zel8u, 3>::of(values)), len);
}

int findByteIn(const Zel8u* p, int len, const uint64_t* set) {
    return orLength(firstHit(p, len, ByteClass::fromWords(set)), len);
}

int findByteNotIn(const Zel8u* p, int len, const uint64_t* set) {
    return orLength(firstHit(p, len, NotInClass{ByteClass::fromWords(set)}), len);
}

int findBytes(const Zel8u* p, int len, const Zel8u* needle, int needleLen) {
    return orLength(findString(p, len, needle, needleLen), len);
}

int findBytesIgnoreCaseRev(const Zel8u* p, int len, const Zel8u* needle, int needleLen) {
    return findStringIgnoreCase<From::End>(p, len, needle, needleLen);
}

void gatherBytes(const Zel8u* p, int len, const Zel8u* needle, int needleLen,
                 kernels::Gathered* result) {
    const int first = findString(p, len, needle, needleLen);
    const auto probeAt = [needle](ptrdiff_t i) { return EqualsAnyOf<Zel8u, 1>::of(needle + i); };
    gatherLiteral(p, first, len, needleLen, probeAt, result);
}

void gatherBytesFolded(const Zel8u* p, int len, const Zel8u* needle, int needleLen,
                       kernels::Gathered* result) {
    const int first = findStringIgnoreCase(p, len, needle, needleLen);
    const auto probeAt = [needle](ptrdiff_t i) { return FoldedByte(needle[i]); };
    gatherLiteral(p, first, len, needleLen, probeAt, result);
}

void gatherBytesIn(const Zel8u* p, int len, const uint64_t* set, kernels::Gathered* result) {
    gatherMembers(p, len, set, result);
}

void gatherPairsIn(const Zel8u* p, int len, const uint64_t* first, const uint64_t* second,
                   kernels::Gathered* result) {
    gatherPair(p, len, first, second, result);
}

void gatherShapes(const Zel8u* p, int len, const kernels::Shape* shape, kernels::Gathered* result) {
    gatherShape(p, len, *shape, result);
}

void gatherDoubled(const Zel8u* p, int len, const uint64_t* set, kernels::Gathered* result) {
    gatherDoubledIn(p, len, set, result);
}

void gatherPrefixes(const Zel8u* p, int len, const kernels::PrefixTables* prefix,
                    kernels::Gathered* result) {
    gatherPrefix(p, len, *prefix, result);
}

int64_t boundRuns(const Zel8u* p, int len, const uint64_t* set) {
    return boundOfRuns(p, len, set);
}

int collectRunsOf(const Zel8u* p, int len, const uint64_t* set, ZelRegExpFind* runs, int capacity,
                  int* resume) {
    return collectRuns(p, len, set, runs, capacity, resume);
}

int collectCharacters(const Zel8u* p, int len, const kernels::CharacterPattern* pattern,
                      ZelRegExpFind* matches, int capacity, int* resume) {
    return collectMarked(p, len, *pattern, matches, capacity, resume);
}

bool maskAscii(const Zel8u* p, int len, const kernels::AsciiSets* sets, kernels::TextMasks* masks) {
    return maskAsciiSets(p, len, *sets, *masks);
}

int collectLiterals(const Zel8u* p, int len, const kernels::LiteralSet* set, ZelRegExpFind* matches,
                    int capacity) {
    return collectOfSet(p, len, *set, matches, capacity);
}

int collectEnclosedRuns(const Zel8u* p, int len, const kernels::EnclosedRun* run,
                        ZelRegExpFind* matches, int capacity, int64_t budget) {
    return collectEnclosed(p, len, *run, matches, capacity, budget);
}

}  // namespace zel::ZEL_ISA
