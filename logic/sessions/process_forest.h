// The parent and child relations of one snapshot, looked up by position in the list they were given in.
//
// Used by session building and the quit planner, which walk the trees of tens of thousands of processes: building it
// and walking every tree once is linear. It copies the pids and refers to nothing. Of two entries with one pid only
// the first exists; a forest may hold cycles, which its users must not follow twice.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

namespace brindle {

class ProcessForest {
 public:
  /// A position in the list the forest was built from.
  using Index = std::uint32_t;

  struct Link {
    std::int32_t pid = 0;
    std::int32_t ppid = 0;
  };

  /// Precondition: fewer than 2^32 links.
  explicit ProcessForest(std::span<const Link> links);

  [[nodiscard]] std::size_t size() const { return links_.size(); }
  /// Where `pid` first stands; none when it is not in the list.
  [[nodiscard]] std::optional<Index> find(std::int32_t pid) const;
  /// False for a later entry with a pid that came before.
  [[nodiscard]] bool exists(Index index) const { return exists_[index]; }
  /// The entry that has this one's ppid as its pid, itself included; none when it is not in the list.
  [[nodiscard]] std::optional<Index> parentOf(Index index) const { return find(links_[index].ppid); }
  /// The existing entries whose ppid is this one's pid, in list order. Valid as long as the forest.
  [[nodiscard]] std::span<const Index> childrenOf(Index index) const;

  /// Appends everything below `root`, breadth first, each list of children in list order, to `out`; whatever `seen`
  /// holds `mark` for is left out with all that is below it, and what is appended gets the mark. The root itself is
  /// neither appended nor marked.
  void appendDescendants(Index root, std::uint32_t mark, std::vector<std::uint32_t>& seen,
                         std::vector<Index>& out) const;

 private:
  std::vector<Link> links_;
  std::unordered_map<std::int32_t, Index> firstByPid_;
  std::vector<bool> exists_;
  /// The children of entry i are children_[childrenBegin_[i]] up to, not including, children_[childrenBegin_[i + 1]].
  std::vector<Index> childrenBegin_;
  std::vector<Index> children_;
};

}  // namespace brindle
