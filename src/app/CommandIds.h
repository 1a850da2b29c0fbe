#pragma once

// The console's command identifiers, kept as the server's administrators' tools number them.

namespace sable::Cmd {

// Rank submenus: the first entry is "no rank", entry k the k-th rank in rank order.
constexpr int kRankNone = 200;
constexpr int kRankLast = 299;

} // namespace sable::Cmd
