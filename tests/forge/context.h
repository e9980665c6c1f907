// Property contexts: a heap with a tree of records, and the sub-nodes of its large values.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "forge/heap.h"
#include "forge/property.h"
#include "forge/store.h"

namespace velmora::forge {

/// How a context departs from what a sound store would have.
struct ContextOptions {
  std::uint8_t heapSignature = 0xEC;
  std::uint8_t clientSignature = 0xBC;
  std::uint8_t treeType = 0xB5;
  std::uint8_t keySize = 2;
  std::uint8_t entrySize = 6;
  std::optional<std::uint8_t> levels = {};     ///< what the tree header claims; the tree stays as it is
  std::optional<std::size_t> rootLength = {};  ///< of the tree header, 8 in a sound context
  std::optional<Hid> userRoot = {};            ///< what the heap names as the tree header
  std::optional<Hid> recordRoot = {};          ///< what the tree header names as the records
  std::vector<Bytes> fillers = {};             ///< allocations between the tree header and the records
  bool keepOrder = false;                      ///< of the properties; otherwise ascending by id
  std::size_t recordsPerLeaf = 447;            ///< more records than this give a tree of two levels
  Nid firstValueNid = 0x803F;                  ///< of the sub-nodes of large values, in steps of 0x20
};

struct Context {
  std::vector<Bytes> blocks;      ///< of the heap, to be added with Store::AddDataBlocks
  std::vector<Subnode> subnodes;  ///< of the large values, whose blocks are in the store already
  std::uint64_t valueBytes = 0;   ///< in those sub-nodes
  std::vector<std::pair<std::uint16_t, std::size_t>> records;  ///< id, and the record's offset in the first block

  /// Bytes of the heap and of the values.
  std::uint64_t DataSize() const;
};

/// Forms a context and puts its large values into the store. Properties with a name have an id here already.
Context FormContext(Store& store, const PropertyList& properties, const ContextOptions& options = {});

/// Overwrites the value word of the record of that id in the formed context; throws std::out_of_range if
/// the context has no such record in its first block.
void SetRecordValue(Context& context, std::uint16_t id, std::uint32_t value);

/// Forms a context, adds it with its sub-nodes and then the node.
void AddContextNode(Store& store, Nid nid, Nid nidParent, const PropertyList& properties,
                    const ContextOptions& options = {});

}  // namespace velmora::forge
