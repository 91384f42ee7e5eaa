#pragma once

#include <string_view>

// What the benchmarks work on: the kinds of value a record holds.
namespace bench {

inline constexpr std::u16string_view WORD = u"Washington";
inline constexpr std::u16string_view ADDRESS = u"Flat 12, 1600 Old Mill Road, Upper Norwood";
inline constexpr std::u16string_view ACCENTED = u"Fran\u00E7oise M\u00FCller-L\u00F8vstad";
// Small e with a combining acute accent, twice: this has to be composed.
inline constexpr std::u16string_view DECOMPOSED = u"He\u0301le\u0300ne Lefe\u0301vre";
inline constexpr std::u16string_view CYRILLIC =
    u"\u0410\u041B\u0415\u041A\u0421\u0410\u041D\u0414\u0420 \u041A\u0423\u0417\u041D\u0415\u0426";
inline constexpr std::u16string_view MIXED_SCRIPTS =
    u"Tanaka \u7530\u4E2D \u0391\u03BB\u03AD\u03BE\u03B7\u03C2 \u0643\u0631\u064A\u0645 \uAE40";

} // namespace bench
