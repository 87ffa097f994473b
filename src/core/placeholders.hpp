// Texts that stand for no answer. Callers compare against them, so every
// family spells them from here.
#pragma once

#include <string_view>

namespace vesk {

inline constexpr char kNoAnswer[] = "---";          // no address or version
inline constexpr char kNoAddress[] = "0.0.0.0";
inline constexpr char kNoMac[] = "000000000000";
inline constexpr char kUnknown[] = "unknown";
// The PPP daemon's peer before the link negotiates addresses: neither a DNS
// server nor a real gateway.
inline constexpr std::string_view kPppPlaceholderPeer = "10.64.64.68";

} // namespace vesk
