#pragma once
// The exported members call through a table of four variants, one for each index of
// ippJumpIndexForMergedLibs: mx, m7, u8, y8. A slot without a variant of its own holds the nearest
// narrower one, so every table is full. Tables are constants; the index is the only state.
#include <array>

#include "ippcore.h"

namespace IppDispatch {

template <typename Member>
using Table = std::array<Member*, 4>;

template <typename Member>
constexpr Table<Member> PlainOnly(Member* plain)
{
    return {plain, plain, plain, plain};
}

template <typename Member>
constexpr Table<Member> WithSse41(Member* plain, Member* sse41)
{
    return {plain, plain, plain, sse41};
}

template <typename Member, typename... Args>
inline IppStatus Call(const Table<Member>& table, Args... args)
{
    return table[ippJumpIndexForMergedLibs & 3](args...);
}

} // namespace IppDispatch
