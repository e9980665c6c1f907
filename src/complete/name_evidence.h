// What a map of names proves that is hurt or lost in part.
//
// The map tells each name twice: in the stream of entries, and in a bucket, which has the hash of a text and not its
// place. So an entry counts if its blocks are whole, or if its bucket tells the same; where the stream is gone the
// buckets stand in for it, a text being the one that has the hash. A stream that lacks most names of the buckets is
// that of something else. Nothing tells the sets twice: those that are hurt count as far as another version has them,
// or as sets that are published.
//
// No store gives an identifier twice. So older versions of the map tell of the names that it had then; one that says
// otherwise of any identifier is not of this store's numbering, and nothing of it counts.
#pragma once

#include <map>
#include <set>
#include <vector>

#include "complete/live_store.h"
#include "store/messaging/tables/name_streams.h"
#include "store/messaging/tables/named_properties.h"

namespace velmora::complete {

class NameEvidence {
 public:
  /// `store` must outlive it.
  explicit NameEvidence(const LiveStore& store) : store_(store) {}

  /// Reads a version of the map; the newest comes first.
  void Add(const ndb::NodeTrees& map);

  /// By identifiers.
  using Names = std::map<std::uint16_t, messaging::AnyPropertyName>;
  Names Settle() const;

 private:
  struct Stream {
    Bytes bytes = {};
    bool isProven = false;  ///< all of it is there and whole, whatever became of the record that leads to it
  };
  struct Version {
    Stream sets;
    Stream entries;
    Stream texts;
    std::set<messaging::NameEntry> buckets = {};
    bool areBucketsProven = false;
  };
  struct Told {
    messaging::NameEntry entry;     ///< as in the stream
    messaging::NameEntry inBucket;  ///< as it would stand in a bucket
    text::Text text = {};
  };

  std::optional<messaging::Uid> SetOf(const Version& version, std::uint16_t number) const;
  Names NamesOf(const Version& version) const;
  static std::vector<Told> ReadEntries(const Version& version);
  /// Whether most of the names in the buckets, numbers or texts, are among those of the streams.
  static bool AgreesWithBuckets(const Version& version, const std::vector<Told>& told, bool texts);

  const LiveStore& store_;
  std::vector<Version> versions_;
};

}  // namespace velmora::complete
