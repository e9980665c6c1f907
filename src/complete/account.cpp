#include "complete/account.h"

#include <numeric>

namespace velmora::complete {

std::uint64_t Account::NodesFound() const { return std::accumulate(nodes.begin(), nodes.end(), std::uint64_t{0}); }

ItemCounts Account::Totals() const {
  ItemCounts totals;
  for (const auto& [messageClass, counts] : items) {
    totals.live += counts.live;
    totals.whole += counts.whole;
    totals.partial += counts.partial;
    totals.lost += counts.lost;
  }
  return totals;
}

Nid Account::NewIdOf(Nid source) const {
  const auto renamed = newIds.find(source);
  return renamed != newIds.end() ? renamed->second : source;
}

void Account::AddLoss(Loss loss) {
  if (loss.missing.size() > Loss::kMostParts) {
    loss.missingNotListed = loss.missing.size() - Loss::kMostParts;
    loss.missing.resize(Loss::kMostParts);
    loss.missing.shrink_to_fit();
  }
  if (losses.size() < mostLosses) {
    losses.push_back(std::move(loss));
  } else {
    ++lossesNotListed;
  }
}

}  // namespace velmora::complete
