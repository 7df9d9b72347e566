// Insertion, removal, concatenation of two texts and of lists, splitting.

#include <algorithm>

#include "strings/family.h"

namespace bench {
namespace {

template <class T>
void insertRemoveRows(Suite& suite) {
    const Must must = Must::sizes(1.3, 1.0, 1.0);
    runFamily(suite, {std::string("Insert") + kWidth<T>, "8 elements", must}, Insert{},
              [](Size size) {
                  return makeCases<T>(
                      size, {.argLen = 8, .dstPerElement = 1}, [](Draft<T>& draft, Random& random) {
                          writeText(draft.src, draft.len, Language::English, random);
                          writeText(draft.arg, draft.argLen, Language::English, random);
                          draft.job->at = draft.len / 2;
                      });
              });
    runFamily(
        suite, {std::string("Remove") + kWidth<T>, "a quarter", must}, Remove{}, [](Size size) {
            return makeCases<T>(size, {.dstPerElement = 1}, [](Draft<T>& draft, Random& random) {
                writeText(draft.src, draft.len, Language::English, random);
                draft.job->at = draft.len / 3;
                draft.job->count = draft.len / 4;
            });
        });
}

template <class T>
void concatRows(Suite& suite) {
    runFamily(
        suite, {std::string("Concat") + kWidth<T>, "two of the size", {}}, Concat{}, [](Size size) {
            return makeCases<T>(size, {.argAsLong = true, .dstPerElement = 1},
                                [](Draft<T>& draft, Random& random) {
                                    writeText(draft.src, draft.len, Language::English, random);
                                    writeText(draft.arg, draft.len, Language::English, random);
                                });
        });
}

// The lengths of the pieces of a list, half to one and a half times the mean: 16 KiB of text.
std::vector<int> pieceLengths(int mean) {
    Random random(7);
    std::vector<int> lengths(static_cast<std::size_t>(std::clamp(16384 / mean, 16, 1000)));
    for (int& length : lengths) length = random.between(mean - mean / 2, mean + mean / 2);
    return lengths;
}

template <class T>
Cases<ListJob<T>> listCases(int mean) {
    Random random(8);
    const std::vector<int> lengths = pieceLengths(mean);
    const std::size_t count = lengths.size();
    const std::size_t room = count * static_cast<std::size_t>(2 * mean + 2);
    Arena sources(room * sizeof(T) + count * 32);
    Arena tables(count * (sizeof(T*) + sizeof(int)) + 64);
    Arena outputs(room * sizeof(T) + 4096);
    outputs.take<char>(1104, 0);
    const T** const pieces = tables.take<const T*>(count, 0);
    int* const sizes = tables.take<int>(count, 0);
    std::size_t total = count;
    for (std::size_t i = 0; i < count; ++i) {
        T* const piece = sources.take<T>(static_cast<std::size_t>(lengths[i]), 0);
        writeText(piece, lengths[i], Language::English, random);
        pieces[i] = piece;
        sizes[i] = lengths[i];
        total += static_cast<std::size_t>(lengths[i]);
    }
    Cases<ListJob<T>> cases;
    cases.jobs = {{pieces, sizes, static_cast<int>(count), ',', outputs.take<T>(total, 0)}};
    cases.storage = {sources.block(), tables.block(), outputs.block()};
    cases.output = outputs.output();
    cases.outputBytes = outputs.outputBytes();
    return cases;
}

template <class T>
Cases<SplitJob<T>> splitCases(int mean) {
    Random random(9);
    const std::vector<int> lengths = pieceLengths(mean);
    const std::size_t count = lengths.size();
    const int room = mean + mean / 2;
    Arena source(count * static_cast<std::size_t>(room + 1) * sizeof(T) + 4096);
    Arena tables(count * (sizeof(T*) + sizeof(int)) + 64);
    Arena outputs(count * (static_cast<std::size_t>(room) * sizeof(T) + 16) + 4096);
    outputs.take<char>(1104, 0);
    int total = 0;
    for (const int length : lengths) total += length + 1;
    T* const text = source.take<T>(static_cast<std::size_t>(total), 0);
    T** const slots = tables.take<T*>(count, 0);
    int* const sizes = tables.take<int>(count, 0);
    T* end = text;
    for (std::size_t i = 0; i < count; ++i) {
        writeText(end, lengths[i], Language::English, random);
        end[lengths[i]] = ',';
        end += lengths[i] + 1;
        slots[i] = outputs.take<T>(static_cast<std::size_t>(room), 0);
        sizes[i] = room;
    }
    Cases<SplitJob<T>> cases;
    cases.jobs = {{text, total - 1, ',', slots, sizes, static_cast<int>(count)}};
    cases.storage = {source.block(), tables.block(), outputs.block()};
    cases.output = outputs.output();
    cases.outputBytes = outputs.outputBytes();
    return cases;
}

template <class T>
void listRows(Suite& suite) {
    struct Piece {
        int mean;
        double concat;
        double split8;
        double split16;
    };
    for (const Piece& piece : {Piece{4, 1.0, 1.4, 1.3}, Piece{12, 1.4, 2.2, 2},
                               Piece{60, 1.2, 1.4, 3}, Piece{1000, 0.95, 1.0, 5}}) {
        double bytes = 0;
        for (const int length : pieceLengths(piece.mean)) bytes += length * double{sizeof(T)};
        const auto row = [&](const char* name, double must) {
            return Row{.family = name + std::string(kWidth<T>),
                       .variant = "pieces of " + std::to_string(piece.mean),
                       .size = "list",
                       .bytes = bytes,
                       .mustRatio = must};
        };
        const Row concat = row("Concat_D2L", piece.concat);
        const Row concatC = row("ConcatC_D2L", piece.concat);
        const Row split = row("SplitC_D2L", sizeof(T) == 1 ? piece.split8 : piece.split16);
        if (suite.wants(concat))
            suite.run(concat, listCases<T>(piece.mean), ConcatList{}, Everyone{});
        if (suite.wants(concatC))
            suite.run(concatC, listCases<T>(piece.mean), ConcatCList{}, Everyone{});
        if (suite.wants(split)) suite.run(split, splitCases<T>(piece.mean), SplitC{}, Everyone{});
    }
}

}  // namespace

void editRows(Suite& suite) {
    insertRemoveRows<Zel8u>(suite);
    insertRemoveRows<Zel16u>(suite);
    concatRows<Zel8u>(suite);
    concatRows<Zel16u>(suite);
    listRows<Zel8u>(suite);
    listRows<Zel16u>(suite);
}

}  // namespace bench
