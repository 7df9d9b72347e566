// PCRE2 as the measure: a compiled pattern and its matches, with every optimisation that could
// change what is tried turned off.
#pragma once

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <string>
#include <utility>
#include <vector>

namespace worlds {

/// Offset and length; (-1, -1) for a group that did not take part.
struct Span {
    int offset = -1;
    int length = -1;
    bool operator==(const Span&) const = default;
};
using Spans = std::vector<Span>;

class Pcre {
public:
    Pcre(const std::string& pattern, const std::string& options, bool utf8) {
        uint32_t flags = PCRE2_NO_AUTO_POSSESS | PCRE2_NO_START_OPTIMIZE | PCRE2_NO_DOTSTAR_ANCHOR;
        for (const char option : options) {
            if (option == 's') flags |= PCRE2_DOTALL;
            if (option == 'm') flags |= PCRE2_MULTILINE;
            if (option == 'i') flags |= PCRE2_CASELESS;
        }
        if (utf8) flags |= PCRE2_UTF;
        PCRE2_SIZE offset;
        code_ = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.data()), pattern.size(), flags,
                              &error_, &offset, compileContext());
        if (code_ != nullptr) data_ = pcre2_match_data_create_from_pattern(code_, nullptr);
    }
    Pcre(Pcre&& other) noexcept
        : code_(std::exchange(other.code_, nullptr)),
          data_(std::exchange(other.data_, nullptr)),
          error_(other.error_) {}
    ~Pcre() {
        pcre2_match_data_free(data_);
        pcre2_code_free(code_);
    }

    bool compiled() const { return code_ != nullptr; }
    int error() const { return error_; }

    /// The whole match and the groups, empty when there is none; false when the search broke off.
    bool match(const char* text, int length, int start, uint32_t flags, Spans& spans) {
        const int count =
            pcre2_match(code_, reinterpret_cast<PCRE2_SPTR>(text), static_cast<PCRE2_SIZE>(length),
                        static_cast<PCRE2_SIZE>(start), flags | PCRE2_NO_UTF_CHECK, data_, nullptr);
        spans.clear();
        if (count == PCRE2_ERROR_NOMATCH) return true;
        if (count < 0) return false;
        const PCRE2_SIZE* const ends = pcre2_get_ovector_pointer(data_);
        const uint32_t pairs = pcre2_get_ovector_count(data_);
        for (uint32_t i = 0; i < pairs; ++i) {
            Span span;
            if (ends[2 * i] != PCRE2_UNSET) {
                span.offset = static_cast<int>(ends[2 * i]);
                span.length = static_cast<int>(ends[2 * i + 1] - ends[2 * i]);
            }
            spans.push_back(span);
        }
        return true;
    }

private:
    static pcre2_compile_context* compileContext() {
        static pcre2_compile_context* const context = [] {
            pcre2_compile_context* const made = pcre2_compile_context_create(nullptr);
            pcre2_set_newline(made, PCRE2_NEWLINE_LF);
            return made;
        }();
        return context;
    }

    pcre2_code* code_ = nullptr;
    pcre2_match_data* data_ = nullptr;
    int error_ = 0;
};

}  // namespace worlds
