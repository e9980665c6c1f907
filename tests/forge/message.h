// Messages with all that hangs on them: bodies, recipients, attachments, embedded messages.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "forge/context.h"
#include "forge/names.h"
#include "forge/property.h"
#include "forge/store.h"

namespace velmora::forge {

struct Message;

enum class RecipientKind : std::uint8_t { kTo = 1, kCc = 2, kBcc = 3 };

struct Recipient {
  std::u16string name = {};
  std::u16string address = {};
  RecipientKind kind = RecipientKind::kTo;
  PropertyList properties = {};  ///< any others, a column each; they replace what the fields above give
};

/// An object of another program: a storage, and what the program keeps in sub-nodes of its own.
struct OleObject {
  Bytes storage;
  std::vector<Bytes> parts = {};  ///< sub-nodes 0x803F, 0x805F, ... of the storage's node
  Place place = Place::kAuto;     ///< of the storage
};

struct Attachment {
  std::u16string name = {};                      ///< 3707, and 3704 unless `shortName` is given
  std::u16string shortName = {};                 ///< 3704
  std::u16string displayName = {};               ///< 3001
  std::u16string mimeType = {};                  ///< 370E
  std::u16string contentId = {};                 ///< 3712
  Bytes data = {};                               ///< 3701
  Place place = Place::kAuto;                    ///< of the data
  std::shared_ptr<const Message> embedded = {};  ///< in place of data
  std::optional<OleObject> object = {};          ///< in place of data
  PropertyList properties = {};                  ///< any others; they replace what the fields above give
  bool bare = false;                             ///< only what is given, no method, size or position
  ContextOptions context = {};
};

struct Message {
  std::u16string messageClass = u"IPM.Note";       ///< 001A, none if empty
  std::u16string subject = {};                     ///< 0037, none if empty
  std::optional<std::uint8_t> subjectPrefix = {};  ///< length of "Re: " and the like, marked ahead of the subject
  std::optional<std::u16string> plain = {};        ///< 1000
  std::optional<Bytes> html = {};                  ///< 1013 as bytes
  std::optional<Bytes> rtf = {};                   ///< 1009 in its container, see FormRtf
  Place plainPlace = Place::kAuto;
  Place htmlPlace = Place::kAuto;
  Place rtfPlace = Place::kAuto;
  std::u16string senderName = {};                 ///< 0C1A and 0042
  std::u16string senderAddress = {};              ///< 0C1F and 0065, of type SMTP
  std::vector<Recipient> recipients = {};         ///< the recipient table, and the display texts that are not given
  std::u16string displayTo = {};                  ///< 0E04
  std::u16string displayCc = {};                  ///< 0E03
  std::u16string displayBcc = {};                 ///< 0E02
  std::optional<FileTime> submitted = {};         ///< 0039
  std::optional<FileTime> delivered = {};         ///< 0E06
  std::uint32_t flags = 1;                        ///< 0E07
  std::optional<std::uint32_t> importance = {};   ///< 0017
  std::optional<std::uint32_t> sensitivity = {};  ///< 0036
  std::vector<std::u16string> categories = {};    ///< the named property "Keywords"
  std::vector<Attachment> attachments = {};
  PropertyList properties = {};            ///< any others, named ones too; they replace what the fields give
  std::optional<std::uint32_t> size = {};  ///< 0E08; otherwise the true one
  bool bare = false;  ///< only what is given: no flags, size, times of creation and change, search key
  ContextOptions context = {};
};

struct WrittenMessage {
  Bid bidData = 0;
  Bid bidSub = 0;
  std::uint64_t size = 0;   ///< of all data of the message
  PropertyList properties;  ///< what was written, with ids resolved
};

/// The property context of a message as it would be written, but for the size.
PropertyList MessageProperties(NameMap& names, const Message& message);

/// The sub-node of an attachment that holds its object.
inline constexpr Nid kObjectNode = 0x80003F;

/// Writes a message with its sub-nodes; the caller adds the node. Sub-nodes stand in ascending order: the
/// attachment table 0x671, the recipient table 0x692, attachments from 0x8025, large values from 0x803F.
WrittenMessage WriteMessage(Store& store, NameMap& names, const Message& message);

}  // namespace velmora::forge
