// A program in C++20 that knows both libraries only as installed.
#include <zelchmx.h>
#include <zelcore.h>

#include <array>
#include <iostream>
#include <span>
#include <string_view>

int main() {
    constexpr std::string_view text = "Ωmega";
    std::array<Zel16u, text.size()> units;
    int bytes = text.size(), count = units.size();
    zelsConvertUTF_8u16u(reinterpret_cast<const Zel8u*>(text.data()), &bytes, units.data(), &count,
                         0);
    zelsLowercase_16u_I(units.data(), count);
    for (const Zel16u unit : std::span(units).first(count)) std::cout << std::hex << unit << ' ';
    std::cout << '\n';
    return ownGetNumThreads() >= 1 ? 0 : 1;
}
