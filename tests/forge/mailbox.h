// The high level: a store described by its folders and messages.
//
//   Mailbox box({.format = Format::kAnsi});
//   const Nid inbox = box.AddFolder({.name = u"Inbox"});
//   box.AddMessage(inbox, {.subject = u"Hello", .plain = u"A body"});
//   const Image image = box.Finish();
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "forge/message.h"
#include "forge/names.h"
#include "forge/store.h"
#include "forge/table.h"

namespace velmora::forge {

inline constexpr Nid kStoreNode = 0x21;
inline constexpr Nid kNameMapNode = 0x61;
inline constexpr Nid kRootFolder = 0x122;
inline constexpr Nid kSearchFolder = 0x2223;
inline constexpr Nid kTopFolder = 0x8022;
inline constexpr Nid kSearchRoot = 0x8042;
inline constexpr Nid kDeletedItems = 0x8062;

/// The folders that an offline store has in their place. Its own node names none of them.
inline constexpr Nid kOfflineRoot = 0x20A2;
inline constexpr Nid kOfflineFinder = 0x20E2;
inline constexpr Nid kOfflineTop = 0x2142;
inline constexpr Nid kOfflineDeletedItems = 0x2162;
inline constexpr Nid kOfflineInbox = 0x2182;
inline constexpr Nid kOfflineOutbox = 0x21A2;
inline constexpr Nid kOfflineSentItems = 0x21C2;

/// The key that the entry ids of the store carry.
Bytes RecordKey();

/// The entry id of a folder or message of the store.
Bytes EntryId(Nid nid);

/// The entry id of a member of a distribution list: a contact of the store, or another list.
enum class MemberKind : std::uint8_t { kContact = 0xC3, kList = 0xB4 };
Bytes MemberEntryId(Nid nid, MemberKind kind = MemberKind::kContact);

struct MailboxOptions {
  bool tables = false;   ///< hierarchy, contents and associated contents tables of every folder
  bool base = true;      ///< the store's own node, the root, the top folder and Deleted Items
  bool offline = false;  ///< with the folders of an offline store, and a node of its own that points to none
  PropertyList storeProperties = {};  ///< of the store's own node; they replace what it has
  std::u16string topName = u"Top of Personal Folders";
  bool nameMap = true;           ///< node 0x61
  std::size_t namesAtLeast = 0;  ///< fills the name-to-id map up with names that nothing uses
  bool pairedBuckets = false;    ///< see NameMap::Properties
};

struct FolderSpec {
  std::u16string name;
  Nid parent = kTopFolder;
  std::u16string containerClass = {};  ///< 3613, none if empty
  std::optional<Nid> nid = {};         ///< otherwise the next free one, from 0x8082
  PropertyList properties = {};        ///< any others; they replace what the fields above give
  std::vector<Nid> found = {};         ///< of a search folder (a nid of type 3): the messages that it shows
  ContextOptions context = {};
};

class Mailbox {
 public:
  explicit Mailbox(StoreOptions store = {}, MailboxOptions options = {});
  /// A mailbox that goes to a file while it grows.
  Mailbox(const std::filesystem::path& path, StoreOptions store, MailboxOptions options);

  /// For what the description does not cover: blocks, nodes and pages of any kind.
  Store& store() { return store_; }
  NameMap& names() { return names_; }

  Nid AddFolder(const FolderSpec& folder);

  struct Added {
    Nid nid = 0;
    Bid bidData = 0;
    Bid bidSub = 0;
  };

  /// Adds a message to a folder, which need not exist. Without `nid` it takes the next free one, from
  /// 0x200024; a nid of type 8 makes it an associated message.
  Added AddMessage(Nid folder, const Message& message, std::optional<Nid> nid = {});

  /// Writes the contents tables of a folder that gets no more messages, and forgets their rows.
  void CloseFolder(Nid folder);

  /// Writes folders and name map and gives the store away. The Mailbox is of no use afterwards.
  Image Finish();

 private:
  struct Folder {
    FolderSpec given;
    Nid nid = 0;
    std::vector<Row> messages = {};
    std::vector<Row> associated = {};
    std::uint32_t messageCount = 0;
    std::uint32_t unreadCount = 0;
    std::uint32_t associatedCount = 0;
    std::vector<Nid> children = {};
    bool closed = false;
  };

  void AddBaseFolders();
  void FindChildren();
  void CloseFolder(Folder& folder);
  PropertyList FolderProperties(const Folder& folder) const;
  void WriteFolder(Folder& folder);
  void WriteSearch(const Folder& folder);
  void WriteStoreNode();
  void WriteFixedNodes();

  MailboxOptions options_;
  Store store_;
  NameMap names_;
  std::map<Nid, Folder> folders_;
  Nid nextFolder_ = 0x8082;
  Nid nextMessage_ = 0x200024;
};

}  // namespace velmora::forge
