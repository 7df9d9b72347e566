// std::string_view and std::u16string_view.
#pragma once

#include <cstring>
#include <string_view>

#include "strings/jobs.h"

namespace bench {

struct StringView {
    static constexpr const char* name = "string_view";
    static constexpr Kind kind = Kind::Package;

    template <class T>
    static std::int64_t run(FindC, const Job<T>& j) {
        return position(source(j).find(element(j.value)));
    }
    template <class T>
    static std::int64_t run(FindRevC, const Job<T>& j) {
        return position(source(j).rfind(element(j.value)));
    }
    template <class T>
    static std::int64_t run(FindCAny, const Job<T>& j) {
        return position(source(j).find_first_of(argument(j)));
    }
    template <class T>
    static std::int64_t run(FindRevCAny, const Job<T>& j) {
        return position(source(j).find_last_of(argument(j)));
    }
    template <class T>
    static std::int64_t run(Find, const Job<T>& j) {
        return position(source(j).find(argument(j)));
    }
    template <class T>
    static std::int64_t run(FindRev, const Job<T>& j) {
        return position(source(j).rfind(argument(j)));
    }
    template <class T>
    static int run(Compare, const Job<T>& j) {
        return source(j).compare(view(j.arg, j.len));
    }
    template <class T>
    static int run(Equal, const Job<T>& j) {
        return source(j) == view(j.arg, j.len);
    }
    template <class T>
    static std::int64_t run(TrimC, const Job<T>& j) {
        return trim(j, view(&j.value, 1));
    }
    template <class T>
    static std::int64_t run(TrimCAny, const Job<T>& j) {
        return trim(j, argument(j));
    }

private:
    static std::string_view view(const Zel8u* text, int length) {
        return {reinterpret_cast<const char*>(text), static_cast<std::size_t>(length)};
    }
    static std::u16string_view view(const Zel16u* text, int length) {
        return {reinterpret_cast<const char16_t*>(text), static_cast<std::size_t>(length)};
    }
    template <class T>
    static auto source(const Job<T>& j) {
        return view(j.src, j.len);
    }
    template <class T>
    static auto argument(const Job<T>& j) {
        return view(j.arg, j.argLen);
    }
    static char element(Zel8u value) { return static_cast<char>(value); }
    static char16_t element(Zel16u value) { return static_cast<char16_t>(value); }
    static std::int64_t position(std::size_t at) {
        return at == std::string_view::npos ? -1 : static_cast<std::int64_t>(at);
    }
    template <class T, class View>
    static std::int64_t trim(const Job<T>& j, View set) {
        const auto text = source(j);
        const std::size_t first = text.find_first_not_of(set);
        if (first == text.npos) return 0;
        const std::size_t length = text.find_last_not_of(set) - first + 1;
        std::memcpy(j.dst, j.src + first, length * sizeof(T));
        return static_cast<std::int64_t>(length);
    }
};

}  // namespace bench
