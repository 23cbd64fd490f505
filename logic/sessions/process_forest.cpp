#include "logic/sessions/process_forest.h"

#include <numeric>

namespace brindle {

ProcessForest::ProcessForest(std::span<const Link> links)
    : links_(links.begin(), links.end()), exists_(links.size()), childrenBegin_(links.size() + 1, 0) {
  firstByPid_.reserve(links_.size());
  for (Index index = 0; index < links_.size(); ++index) {
    exists_[index] = firstByPid_.try_emplace(links_[index].pid, index).second;
  }

  // A counting sort by parent keeps list order and needs no list of its own for each parent.
  constexpr Index kNone = ~Index{0};
  std::vector<Index> parents(links_.size(), kNone);
  for (Index index = 0; index < links_.size(); ++index) {
    const auto parent = exists(index) ? find(links_[index].ppid) : std::nullopt;
    if (parent) {
      parents[index] = *parent;
      ++childrenBegin_[*parent + 1];
    }
  }
  std::partial_sum(childrenBegin_.begin(), childrenBegin_.end(), childrenBegin_.begin());
  children_.resize(childrenBegin_.back());
  std::vector<Index> next = childrenBegin_;
  for (Index index = 0; index < links_.size(); ++index) {
    if (parents[index] != kNone) children_[next[parents[index]]++] = index;
  }
}

std::optional<ProcessForest::Index> ProcessForest::find(std::int32_t pid) const {
  const auto entry = firstByPid_.find(pid);
  if (entry == firstByPid_.end()) return std::nullopt;
  return entry->second;
}

std::span<const ProcessForest::Index> ProcessForest::childrenOf(Index index) const {
  return std::span(children_).subspan(childrenBegin_[index], childrenBegin_[index + 1] - childrenBegin_[index]);
}

void ProcessForest::appendDescendants(Index root, std::uint32_t mark, std::vector<std::uint32_t>& seen,
                                      std::vector<Index>& out) const {
  const auto take = [&](Index parent) {
    for (const Index child : childrenOf(parent)) {
      if (seen[child] == mark) continue;
      seen[child] = mark;
      out.push_back(child);
    }
  };
  std::size_t next = out.size();  // the part of `out` from here on is the queue of the walk
  take(root);
  for (; next < out.size(); ++next) take(out[next]);
}

}  // namespace brindle
