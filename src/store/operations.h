// The operations of the output library: all that a conversion asks of the store that it writes, and all
// that the panes ask of it when they read it back. Two implementations stand behind it, the store on disk
// and the trace; a third feeds several at once.
//
// Object model: session, stores, folders, items, attachments. A created item is one object that answers to
// RDOMail and to the typed interface of its kind; RDOMail carries what all kinds share.
//
// Failures: an operation on a null reference raises OutputFailure(E_POINTER); an operation that fails
// raises OutputFailure with its negative result. A typed query on an item of another kind gives a null
// reference and is no failure. A null text and an empty text are the same.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "store/format/classes.h"
#include "store/format/failures.h"
#include "text/calendar.h"
#include "text/code_page.h"
#include "text/text.h"

namespace velmora::output {

// ---------------------------------------------------------------------------------------- failures

enum class ResultCode : std::uint32_t {
  S_OK = 0,
  E_NOINTERFACE = 0x80004002,
  E_POINTER = 0x80004003,
  E_FAIL = 0x80004005,
  E_OUTOFMEMORY = 0x8007000E,
  E_INVALIDARG = 0x80070057,
  MAPI_E_NOT_FOUND = 0x8004010F,
  MAPI_E_COLLISION = 0x80040604,
  STG_E_WRITEFAULT = 0x8003001D,  ///< the store could not be written
  STG_E_READFAULT = 0x8003001E,   ///< the store, or the content handed over, could not be read
  STG_E_MEDIUMFULL = 0x80030070,  ///< no space left for the store
};

/// What a failing operation raises.
class OutputFailure : public std::exception {
 public:
  explicit OutputFailure(ResultCode code, std::string information = {}, std::optional<Failure> cause = {})
      : code_(code), information_(std::move(information)), cause_(std::move(cause)) {}
  ResultCode Code() const { return code_; }
  /// What happened below the operations, where that is the reason.
  const std::optional<Failure>& Cause() const { return cause_; }
  /// The error information of the object, for the command line's messages; may be empty.
  const std::string& Information() const { return information_; }
  const char* what() const noexcept override {
    return information_.empty() ? "an operation of the output library failed" : information_.c_str();
  }

 private:
  ResultCode code_;
  std::string information_;
  std::optional<Failure> cause_;
};

/// What happened, as the one value that failures are: the cause below, or what the operation says itself.
inline Failure CauseOf(const OutputFailure& failure) {
  const bool isFull = failure.Code() == ResultCode::STG_E_MEDIUMFULL;
  const auto kind = isFull ? FailureKind::kFull : FailureKind::kInputOutput;
  return failure.Cause().value_or(Failure{kind, {}, {}, failure.what()});
}

/// True for a failure of the store itself rather than of one operation on it: what could not be written now
/// cannot be written later either, so a frame that gives up one field or one item lets it pass and the run
/// ends.
inline bool IsStoreFailure(const OutputFailure& failure) {
  return failure.Code() == ResultCode::STG_E_WRITEFAULT || failure.Code() == ResultCode::STG_E_MEDIUMFULL;
}

/// A counted reference to an object of the library. Using a null one raises E_POINTER; two references are
/// equal when they are the same object.
template <class T>
class Ref {
 public:
  Ref() = default;
  Ref(std::nullptr_t) {}  // NOLINT: a null reference is written as nullptr
  template <class U>
  Ref(std::shared_ptr<U> object) : object_(std::move(object)) {}  // NOLINT: an object is its reference

  T* operator->() const {
    if (object_ == nullptr) throw OutputFailure(ResultCode::E_POINTER);
    return object_.get();
  }
  T& operator*() const { return *operator->(); }
  explicit operator bool() const { return object_ != nullptr; }
  void Release() { object_.reset(); }
  const std::shared_ptr<T>& Object() const { return object_; }
  friend bool operator==(const Ref& a, const Ref& b) { return a.object_ == b.object_; }

 private:
  std::shared_ptr<T> object_;
};

// ---------------------------------------------------------------------------------------- values

/// UTC, in whole seconds.
using text::OleDate;

enum class FieldType { Text, Date, Flag, Number, Number16 };

/// Number and Number16 both travel as std::int32_t; a Number16 keeps its low 16 bits, signed.
using FieldValue = std::variant<text::Text, OleDate, bool, std::int32_t>;

/// What a read answers: the value (empty text, date 0.0, false, 0 where the field is absent) and whether
/// the field was ever written. On an item not yet saved "written" tells a field never written from one
/// written with the empty text; after Save, and on an item read back, it tells whether the field is there.
struct FieldRead {
  FieldValue value;
  bool written = false;
  const text::Text& AsText() const { return std::get<text::Text>(value); }
};

enum class ItemInterface { RDOMail, RDOContactItem, RDOTaskItem, RDOAppointmentItem, RDOJournalItem, RDONoteItem };

// clang-format off
/// Every field in the order in which the library's interfaces declare them:
/// X(interface, enumerator, name, type, readable by a caller of the system).
#define VELMORA_OUTPUT_FIELDS(X) \
  X(RDOMail, Subject, "Subject", Text, true) \
  X(RDOMail, AlternateRecipientAllowed, "AlternateRecipientAllowed", Flag, true) \
  X(RDOMail, AutoForwarded, "AutoForwarded", Flag, true) \
  X(RDOMail, BCC, "BCC", Text, true) \
  X(RDOMail, BillingInformation, "BillingInformation", Text, true) \
  X(RDOMail, Body, "Body", Text, true) \
  X(RDOMail, Categories, "Categories", Text, true) \
  X(RDOMail, CC, "CC", Text, true) \
  X(RDOMail, Companies, "Companies", Text, true) \
  X(RDOMail, ConversationTopic, "ConversationTopic", Text, true) \
  X(RDOMail, DeleteAfterSubmit, "DeleteAfterSubmit", Flag, true) \
  X(RDOMail, FlagDueBy, "FlagDueBy", Date, false) \
  X(RDOMail, FlagIcon, "FlagIcon", Number, false) \
  X(RDOMail, FlagRequest, "FlagRequest", Text, true) \
  X(RDOMail, FlagStatus, "FlagStatus", Number, true) \
  X(RDOMail, HTMLBody, "HTMLBody", Text, true) \
  X(RDOMail, Importance, "Importance", Number, true) \
  X(RDOMail, Mileage, "Mileage", Text, true) \
  X(RDOMail, NoAging, "NoAging", Flag, false) \
  X(RDOMail, OriginatorDeliveryReportRequested, "OriginatorDeliveryReportRequested", Flag, true) \
  X(RDOMail, ReadReceiptRequested, "ReadReceiptRequested", Flag, true) \
  X(RDOMail, ReceivedTime, "ReceivedTime", Date, true) \
  X(RDOMail, RecipientReassignmentProhibited, "RecipientReassignmentProhibited", Flag, true) \
  X(RDOMail, ReminderOverrideDefault, "ReminderOverrideDefault", Flag, true) \
  X(RDOMail, ReminderSet, "ReminderSet", Flag, true) \
  X(RDOMail, ReminderTime, "ReminderTime", Date, false) \
  X(RDOMail, SenderEmailAddress, "SenderEmailAddress", Text, true) \
  X(RDOMail, SenderEmailType, "SenderEmailType", Text, true) \
  X(RDOMail, SenderName, "SenderName", Text, true) \
  X(RDOMail, Sensitivity, "Sensitivity", Number, true) \
  X(RDOMail, Sent, "Sent", Flag, false) \
  X(RDOMail, SentOn, "SentOn", Date, false) \
  X(RDOMail, SentOnBehalfOfName, "SentOnBehalfOfName", Text, true) \
  X(RDOMail, SentOnBehalfOfEmailAddress, "SentOnBehalfOfEmailAddress", Text, true) \
  X(RDOMail, SentOnBehalfOfEmailType, "SentOnBehalfOfEmailType", Text, true) \
  X(RDOMail, To, "To", Text, true) \
  X(RDOMail, UnRead, "UnRead", Flag, false) \
  X(RDOMail, RTFBody, "RTFBody", Text, false) \
  X(RDOContactItem, Account, "Account", Text, true) \
  X(RDOContactItem, Anniversary, "Anniversary", Date, true) \
  X(RDOContactItem, AssistantName, "AssistantName", Text, true) \
  X(RDOContactItem, AssistantTelephoneNumber, "AssistantTelephoneNumber", Text, true) \
  X(RDOContactItem, Birthday, "Birthday", Date, true) \
  X(RDOContactItem, Business2TelephoneNumber, "Business2TelephoneNumber", Text, true) \
  X(RDOContactItem, BusinessAddress, "BusinessAddress", Text, true) \
  X(RDOContactItem, BusinessAddressCity, "BusinessAddressCity", Text, true) \
  X(RDOContactItem, BusinessAddressCountry, "BusinessAddressCountry", Text, true) \
  X(RDOContactItem, BusinessAddressPostalCode, "BusinessAddressPostalCode", Text, true) \
  X(RDOContactItem, BusinessAddressPostOfficeBox, "BusinessAddressPostOfficeBox", Text, true) \
  X(RDOContactItem, BusinessAddressState, "BusinessAddressState", Text, true) \
  X(RDOContactItem, BusinessAddressStreet, "BusinessAddressStreet", Text, true) \
  X(RDOContactItem, BusinessFaxNumber, "BusinessFaxNumber", Text, true) \
  X(RDOContactItem, BusinessHomePage, "BusinessHomePage", Text, true) \
  X(RDOContactItem, BusinessTelephoneNumber, "BusinessTelephoneNumber", Text, true) \
  X(RDOContactItem, CallbackTelephoneNumber, "CallbackTelephoneNumber", Text, true) \
  X(RDOContactItem, CarTelephoneNumber, "CarTelephoneNumber", Text, true) \
  X(RDOContactItem, Children, "Children", Text, true) \
  X(RDOContactItem, CompanyMainTelephoneNumber, "CompanyMainTelephoneNumber", Text, true) \
  X(RDOContactItem, CompanyName, "CompanyName", Text, true) \
  X(RDOContactItem, ComputerNetworkName, "ComputerNetworkName", Text, true) \
  X(RDOContactItem, CustomerID, "CustomerID", Text, true) \
  X(RDOContactItem, Department, "Department", Text, true) \
  X(RDOContactItem, Email1Address, "Email1Address", Text, true) \
  X(RDOContactItem, Email1AddressType, "Email1AddressType", Text, true) \
  X(RDOContactItem, Email2Address, "Email2Address", Text, true) \
  X(RDOContactItem, Email2AddressType, "Email2AddressType", Text, true) \
  X(RDOContactItem, Email2DisplayName, "Email2DisplayName", Text, true) \
  X(RDOContactItem, Email3Address, "Email3Address", Text, true) \
  X(RDOContactItem, Email3AddressType, "Email3AddressType", Text, true) \
  X(RDOContactItem, Email3DisplayName, "Email3DisplayName", Text, true) \
  X(RDOContactItem, FirstName, "FirstName", Text, true) \
  X(RDOContactItem, FTPSite, "FTPSite", Text, true) \
  X(RDOContactItem, FullName, "FullName", Text, true) \
  X(RDOContactItem, Gender, "Gender", Number16, false) \
  X(RDOContactItem, GovernmentIDNumber, "GovernmentIDNumber", Text, true) \
  X(RDOContactItem, Hobby, "Hobby", Text, true) \
  X(RDOContactItem, Home2TelephoneNumber, "Home2TelephoneNumber", Text, true) \
  X(RDOContactItem, HomeAddress, "HomeAddress", Text, true) \
  X(RDOContactItem, HomeAddressCity, "HomeAddressCity", Text, true) \
  X(RDOContactItem, HomeAddressCountry, "HomeAddressCountry", Text, true) \
  X(RDOContactItem, HomeAddressPostalCode, "HomeAddressPostalCode", Text, true) \
  X(RDOContactItem, HomeAddressPostOfficeBox, "HomeAddressPostOfficeBox", Text, true) \
  X(RDOContactItem, HomeAddressState, "HomeAddressState", Text, true) \
  X(RDOContactItem, HomeAddressStreet, "HomeAddressStreet", Text, true) \
  X(RDOContactItem, HomeFaxNumber, "HomeFaxNumber", Text, true) \
  X(RDOContactItem, HomeTelephoneNumber, "HomeTelephoneNumber", Text, true) \
  X(RDOContactItem, IMAddress, "IMAddress", Text, true) \
  X(RDOContactItem, Initials, "Initials", Text, true) \
  X(RDOContactItem, InternetFreeBusyAddress, "InternetFreeBusyAddress", Text, true) \
  X(RDOContactItem, ISDNNumber, "ISDNNumber", Text, true) \
  X(RDOContactItem, JobTitle, "JobTitle", Text, true) \
  X(RDOContactItem, Language, "Language", Text, true) \
  X(RDOContactItem, LastName, "LastName", Text, true) \
  X(RDOContactItem, MailingAddress, "MailingAddress", Text, true) \
  X(RDOContactItem, ManagerName, "ManagerName", Text, true) \
  X(RDOContactItem, MiddleName, "MiddleName", Text, true) \
  X(RDOContactItem, MobileTelephoneNumber, "MobileTelephoneNumber", Text, true) \
  X(RDOContactItem, NickName, "NickName", Text, true) \
  X(RDOContactItem, OfficeLocation, "OfficeLocation", Text, true) \
  X(RDOContactItem, OrganizationalIDNumber, "OrganizationalIDNumber", Text, true) \
  X(RDOContactItem, OtherAddress, "OtherAddress", Text, true) \
  X(RDOContactItem, OtherAddressCity, "OtherAddressCity", Text, true) \
  X(RDOContactItem, OtherAddressCountry, "OtherAddressCountry", Text, true) \
  X(RDOContactItem, OtherAddressPostalCode, "OtherAddressPostalCode", Text, true) \
  X(RDOContactItem, OtherAddressPostOfficeBox, "OtherAddressPostOfficeBox", Text, true) \
  X(RDOContactItem, OtherAddressState, "OtherAddressState", Text, true) \
  X(RDOContactItem, OtherAddressStreet, "OtherAddressStreet", Text, true) \
  X(RDOContactItem, OtherFaxNumber, "OtherFaxNumber", Text, true) \
  X(RDOContactItem, OtherTelephoneNumber, "OtherTelephoneNumber", Text, true) \
  X(RDOContactItem, PagerNumber, "PagerNumber", Text, true) \
  X(RDOContactItem, PersonalHomePage, "PersonalHomePage", Text, true) \
  X(RDOContactItem, PrimaryTelephoneNumber, "PrimaryTelephoneNumber", Text, true) \
  X(RDOContactItem, Profession, "Profession", Text, true) \
  X(RDOContactItem, RadioTelephoneNumber, "RadioTelephoneNumber", Text, true) \
  X(RDOContactItem, ReferredBy, "ReferredBy", Text, true) \
  X(RDOContactItem, Spouse, "Spouse", Text, true) \
  X(RDOContactItem, Suffix, "Suffix", Text, true) \
  X(RDOContactItem, TelexNumber, "TelexNumber", Text, true) \
  X(RDOContactItem, Title, "Title", Text, true) \
  X(RDOContactItem, TTYTDDTelephoneNumber, "TTYTDDTelephoneNumber", Text, true) \
  X(RDOContactItem, User1, "User1", Text, true) \
  X(RDOContactItem, User2, "User2", Text, true) \
  X(RDOContactItem, User3, "User3", Text, true) \
  X(RDOContactItem, User4, "User4", Text, true) \
  X(RDOContactItem, YomiCompanyName, "YomiCompanyName", Text, true) \
  X(RDOContactItem, YomiFirstName, "YomiFirstName", Text, true) \
  X(RDOContactItem, YomiLastName, "YomiLastName", Text, true) \
  X(RDOContactItem, Email1DisplayName, "Email1DisplayName", Text, true) \
  X(RDOTaskItem, Complete, "Complete", Flag, true) \
  X(RDOTaskItem, DateCompleted, "DateCompleted", Date, true) \
  X(RDOTaskItem, TaskAccepted, "TaskAccepted", Flag, false) \
  X(RDOTaskItem, DueDate, "DueDate", Date, true) \
  X(RDOTaskItem, Owner, "Owner", Text, true) \
  X(RDOTaskItem, SchedulePlusPriority, "SchedulePlusPriority", Text, true) \
  X(RDOTaskItem, StartDate, "StartDate", Date, true) \
  X(RDOTaskItem, Status, "Status", Number, true) \
  X(RDOAppointmentItem, AllDayEvent, "AllDayEvent", Flag, true) \
  X(RDOAppointmentItem, BusyStatus, "BusyStatus", Number, false) \
  X(RDOAppointmentItem, AppointmentDuration, "Duration", Number, false) \
  X(RDOAppointmentItem, End, "End", Date, true) \
  X(RDOAppointmentItem, ReminderSignalTime, "ReminderSignalTime", Date, false) \
  X(RDOAppointmentItem, ResponseRequested, "ResponseRequested", Flag, true) \
  X(RDOAppointmentItem, AppointmentStart, "Start", Date, true) \
  X(RDOAppointmentItem, Location, "Location", Text, true) \
  X(RDOJournalItem, DocPosted, "DocPosted", Flag, true) \
  X(RDOJournalItem, DocPrinted, "DocPrinted", Flag, true) \
  X(RDOJournalItem, DocRouted, "DocRouted", Flag, true) \
  X(RDOJournalItem, DocSaved, "DocSaved", Flag, true) \
  X(RDOJournalItem, JournalDuration, "Duration", Number, false) \
  X(RDOJournalItem, JournalStart, "Start", Date, true) \
  X(RDOJournalItem, JournalType, "Type", Text, true) \
  X(RDONoteItem, Width, "Width", Number, true) \
  X(RDONoteItem, Height, "Height", Number, true) \
  X(RDONoteItem, Color, "Color", Number, true)
// clang-format on

enum class Field : std::uint16_t {
#define VELMORA_FIELD(interface, enumerator, name, type, readable) enumerator,
  VELMORA_OUTPUT_FIELDS(VELMORA_FIELD)
#undef VELMORA_FIELD
};

struct FieldInfo {
  Field field;
  ItemInterface interface;
  const char* name;  ///< the operation's name, as the trace writes it
  FieldType type;
  bool readable;
};

inline constexpr FieldInfo kFields[] = {
#define VELMORA_FIELD(interface, enumerator, name, type, readable) \
  {Field::enumerator, ItemInterface::interface, name, FieldType::type, readable},
    VELMORA_OUTPUT_FIELDS(VELMORA_FIELD)
#undef VELMORA_FIELD
};
inline constexpr std::size_t kFieldCount = std::size(kFields);

constexpr const FieldInfo& InfoOf(Field field) { return kFields[static_cast<std::size_t>(field)]; }

/// The interface through which items of a kind are written.
constexpr ItemInterface InterfaceOf(ItemKind kind) {
  switch (kind) {
    case ItemKind::kContact:
      return ItemInterface::RDOContactItem;
    case ItemKind::kTask:
      return ItemInterface::RDOTaskItem;
    case ItemKind::kAppointment:
    case ItemKind::kMeeting:
      return ItemInterface::RDOAppointmentItem;
    case ItemKind::kJournal:
      return ItemInterface::RDOJournalItem;
    case ItemKind::kNote:
      return ItemInterface::RDONoteItem;
    case ItemKind::kMail:
      break;
  }
  return ItemInterface::RDOMail;
}

/// The typed interface that an item of this message class answers to; RDOMail when it has none of its own.
constexpr ItemInterface TypedInterfaceOf(text::TextView messageClass) {
  return InterfaceOf(KindOfClass(messageClass).value_or(ItemKind::kMail));
}

/// Of a longer subject a store keeps so many UTF-16 units.
inline constexpr std::size_t kLongestSubject = 255;

using velmora::DefaultFolder;

/// The kind argument of RDOFolders::Add: not given, a container class, or a default folder kind.
using FolderType = std::variant<std::monostate, text::Text, std::int32_t>;

/// Bytes of an attachment or a picture, as the caller holds them until Add returns.
class ContentSource {
 public:
  virtual ~ContentSource() = default;
  virtual std::uint64_t Size() const = 0;
  /// Reads up to out.size() bytes at `offset`; returns the number delivered, short only at the end.
  /// Raises OutputFailure(STG_E_READFAULT) when the bytes cannot be had.
  virtual std::size_t ReadAt(std::uint64_t offset, std::span<std::byte> out) const = 0;
};

// ---------------------------------------------------------------------------------------- items

class RDOMail;

class RDOAttachments {
 public:
  virtual ~RDOAttachments() = default;
  /// Attaches a content by value. The display name is the attachment's file name too.
  virtual void Add(const ContentSource& content, text::TextView displayName) = 0;
  /// Attaches another item of the same library as an embedded message, as it stands now.
  virtual void Add(const Ref<RDOMail>& item, text::TextView displayName) = 0;
  virtual std::int32_t Count() const = 0;
};

/// An item that offers Save.
class RDOMessageBase {
 public:
  virtual ~RDOMessageBase() = default;
  /// Commits the item to the store. It may be changed and saved again.
  virtual void Save() = 0;
};

/// Attachments of an item and of all messages within it.
struct AttachmentTotals {
  std::uint64_t files = 0;
  std::uint64_t messages = 0;
};

class RDOMail : public RDOMessageBase {
 public:
  /// Writes a field. The value's alternative must be that of the field's type (E_INVALIDARG otherwise), and
  /// the item must answer to the field's interface (E_NOINTERFACE otherwise).
  virtual void Put(Field field, const FieldValue& value) = 0;

  /// Writes a text field with the text that carries these bytes, one to a character (text::CodePage::Lossless).
  virtual void PutBytes(Field field, std::string_view bytes) { Put(field, text::CodePage::Lossless().Decode(bytes)); }

  /// Reads a field, by the same conditions. Every field reads back, whether or not the system reads it.
  virtual FieldRead Get(Field field) const = 0;

  /// Does this object answer to the interface? RDOMail always.
  virtual bool Answers(ItemInterface interface) const = 0;

  virtual Ref<RDOAttachments> Attachments() = 0;

  /// Takes the item out of its folder. The object stays usable for what holds a reference to it.
  virtual void Delete() = 0;

  /// A new item that answers this one; this one keeps icon and last verb of a replied or forwarded item.
  virtual Ref<RDOMail> Reply() = 0;
  virtual Ref<RDOMail> Forward() = 0;

  /// RDOContactItem alone (E_NOINTERFACE otherwise): the contact's picture.
  virtual void AddPicture(const ContentSource& content) = 0;

  // What the panes read.
  virtual text::Text MessageClass() const = 0;
  virtual std::int32_t Size() const = 0;  ///< message size in bytes
  virtual std::int32_t AttachmentCount() const = 0;

  /// Of an item that is in its store; nothing where the library keeps no items.
  virtual AttachmentTotals SavedAttachments() const { return {}; }
};

/// Interface query on an item: the item itself, or null where it does not answer to the interface.
inline Ref<RDOMail> Query(const Ref<RDOMail>& item, ItemInterface interface) {
  return item && item->Answers(interface) ? item : Ref<RDOMail>();
}

class RDOItems {
 public:
  virtual ~RDOItems() = default;
  virtual std::int32_t Count() const = 0;
  /// A new, unsaved item of that message class; any class text will do.
  virtual Ref<RDOMail> Add(text::TextView messageClass) = 0;
  /// The saved items in the order of their first save; null at the end.
  virtual Ref<RDOMail> GetFirst() = 0;
  virtual Ref<RDOMail> GetNext() = 0;
};

// ---------------------------------------------------------------------------------------- folders

class RDOFolder;

class RDOFolders {
 public:
  virtual ~RDOFolders() = default;
  /// Creates a child folder. An empty name gives E_INVALIDARG, one that is there MAPI_E_COLLISION.
  virtual Ref<RDOFolder> Add(text::TextView name, const FolderType& type) = 0;
  /// The child folder of that name, letter case ignored; null when there is none.
  virtual Ref<RDOFolder> Item(text::TextView name) = 0;
  /// The child folders in order of creation.
  virtual std::int32_t Count() const = 0;
  virtual Ref<RDOFolder> At(std::int32_t index) = 0;
};

/// Interface query on a folder; every folder answers to it.
class RDOFolder2 {
 public:
  virtual ~RDOFolder2() = default;
  /// Marks the folder as the store's default folder of that kind and gives it the kind's container class.
  virtual void SetAsDefaultFolder(DefaultFolder kind) = 0;
  /// A second marker that the set-up writes as 1; never read.
  virtual void PutDefaultFolderFlag(std::int32_t flag) = 0;
};

class RDOFolder {
 public:
  virtual ~RDOFolder() = default;
  virtual Ref<RDOItems> Items() = 0;
  virtual Ref<RDOFolders> Folders() = 0;
  virtual Ref<RDOFolder2> QueryFolder2() = 0;

  // What the panes read.
  virtual text::Text Name() const = 0;
  virtual text::Text ContainerClass() const = 0;
};

// ---------------------------------------------------------------------------------------- session

class RDOStore {
 public:
  virtual ~RDOStore() = default;
  /// The top of the visible folder tree.
  virtual Ref<RDOFolder> IPMRootFolder() = 0;
};

class RDOStores {
 public:
  virtual ~RDOStores() = default;
  /// The store added last.
  virtual Ref<RDOStore> DefaultStore() = 0;
  /// Creates the new store file and mounts it in the session. `path` is a path in the program's text form
  /// (platform::TextOfPath). Raises STG_E_WRITEFAULT, STG_E_MEDIUMFULL or MAPI_E_COLLISION.
  virtual Ref<RDOStore> AddPSTStore(text::TextView path, text::TextView displayName) = 0;
  /// Mounts a finished store for reading. `path` as above; raises STG_E_READFAULT.
  virtual Ref<RDOStore> OpenPSTStore(text::TextView path) = 0;
};

class RDOSession {
 public:
  virtual ~RDOSession() = default;
  virtual void Logon(text::TextView profileName) = 0;
  virtual Ref<RDOStores> Stores() = 0;
  /// The default store's default folder of a kind; null when it has none.
  virtual Ref<RDOFolder> GetDefaultFolder(DefaultFolder kind) = 0;
  /// The folder at `\\Store name\Folder\Subfolder`; null when there is none. Names compare without regard
  /// to case; an empty component is not found; the path of the store alone is its top.
  virtual Ref<RDOFolder> GetFolderFromPath(text::TextView path) = 0;
};

class ProfileList {
 public:
  virtual ~ProfileList() = default;
  /// True when a profile of that name exists.
  virtual bool Item(text::TextView name) = 0;
  /// Creates a profile and returns its name; one that exists is returned as it is.
  virtual text::Text Add(text::TextView name) = 0;
};

class MAPIUtils {
 public:
  virtual ~MAPIUtils() = default;
  virtual text::Text CurrentProfileName() = 0;
};

/// A table of a folder that has no room for all of its values: rows are there, but some show less than the items hold.
struct FullTable {
  text::Text folder;  ///< name
  std::uint64_t valuesLeftOut = 0;
};

/// Makes the three creatable classes. A class that is not available gives a null reference. Closing: when
/// the last reference to a session and its objects goes, its stores are sealed.
class OutputLibrary {
 public:
  virtual ~OutputLibrary() = default;
  virtual Ref<ProfileList> CreateProfileList() = 0;
  virtual Ref<RDOSession> CreateRDOSession() = 0;
  virtual Ref<MAPIUtils> CreateMAPIUtils() = 0;
};

}  // namespace velmora::output
