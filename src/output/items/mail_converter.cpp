// The converter of mails. The first rule that fits a record takes it:
//
//  1. 0042, the sender: field, and the from of the mail's row in the item list.
//  2. 0E04, the recipients: field, and the to and subject of the row.
//  3. Without a To before it, the first record above 0E04 fills the row instead (docs/fidelity.md#list-row).
//  4. A row of the table in Apply. Any other record is dropped.
#include <chrono>
#include <string>

#include "output/items/item_converters.h"
#include "output/items/value_readers.h"

namespace velmora::items {
namespace {

using engine::ListField;
using output::Field;

/// "month /day /year", without leading zeros.
text::Text ListDate(output::OleDate date) {
  const text::DateParts parts = PartsOf(date);
  return text::Decimal(parts.month) + u" /" + text::Decimal(parts.day) + u" /" + text::Decimal(parts.year);
}

/// Writes one record into one mail.
class MailWriter {
 public:
  MailWriter(recovery::ConversionScope& scope, const recovery::MessageBlock& block, const PropertyRecord& record,
             const output::Ref<output::RDOMail>& item)
      : scope_(scope), block_(block), record_(record), item_(item), position_(block.Position(record.dwValueHnid)) {}

  void Apply() {
    recovery::MailState& mail = *scope_.mail;
    const std::uint32_t id = LongIdOf(scope_, record_.wPropId);
    if (id == 0x0042) return ApplySender();
    if (id == 0x0E04) return ApplyTo();
    if (id > 0x0E04 && !mail.toSeen && !mail.subjectShown) return ShowRowWithoutTo();
    // clang-format off
    switch (id) {
      case 0x0E06: return ApplyReceivedTime();
      case 0x0039: return item_->Put(Field::SentOn, Time());
      case 0x0E03: return item_->Put(Field::CC, HeapString());
      case 0x1080: return ApplyAnswered();
      case 0x0036: return ApplySensitivity();
      case 0x0017: return ApplyUnlessSeen(Field::Importance, mail.importanceSeen, 3);
      case 0x1095: return ApplyUnlessSeen(Field::FlagIcon, mail.flagIconSeen, 7);
      case 0x0023: return item_->Put(Field::OriginatorDeliveryReportRequested, Flag());
      case 0x0029: return item_->Put(Field::ReadReceiptRequested, Flag());
      case 0x0E01: return item_->Put(Field::DeleteAfterSubmit, Flag());
      case 0x8012: return ApplyCategories();
      case 0x8105: return item_->Put(Field::FlagDueBy, Time());
      case 0x8503: return item_->Put(Field::ReminderSet, Flag());
      case 0x8101: return item_->Put(Field::FlagStatus, Number());
      case 0x0E07: return ApplyMessageFlags();
      default: return;
    }
    // clang-format on
  }

 private:
  void ApplySender() {
    scope_.mail->fromSeen = true;
    const text::Text text = HeapString();
    item_->Put(Field::SentOnBehalfOfName, text);
    item_->Put(Field::SenderName, text);
    Show(ListField::kFrom, text);
  }

  void ApplyTo() {
    scope_.mail->toSeen = true;
    if (!scope_.mail->fromSeen) Show(ListField::kFrom, {});
    const text::Text text = HeapString();
    item_->Put(Field::To, text);
    Show(ListField::kTo, text);
    ShowSubject();
  }

  void ShowRowWithoutTo() {
    scope_.mail->subjectShown = true;
    if (!scope_.mail->fromSeen) Show(ListField::kFrom, {});
    ShowSubject();
  }

  void ApplyReceivedTime() {
    const output::OleDate date = Time();
    item_->Put(Field::ReceivedTime, date);
    Show(ListField::kDate, ListDate(date));
  }

  /// The icon of the mail says whether it was answered; the answers themselves are not kept.
  void ApplyAnswered() {
    if (record_.dwValueHnid == 0x105) item_->Reply();
    if (record_.dwValueHnid == 0x106) item_->Forward();
  }

  /// The message walk has put the record's own value into the working value just before, so a record that holds
  /// the start value, or 333, is never written (docs/fidelity.md#seen-values); and so below.
  void ApplySensitivity() {
    std::uint16_t& seen = scope_.mail->sensitivitySeen;
    if (seen == 333 || seen == 4) return;
    if (record_.dwValueHnid < 4) item_->Put(Field::Sensitivity, Number());
    seen = static_cast<std::uint16_t>(record_.dwValueHnid);
  }

  void ApplyUnlessSeen(Field field, std::uint16_t& seen, std::uint16_t startValue) {
    if (seen == 333 || seen == startValue) return;
    item_->Put(field, Number());
    seen = static_cast<std::uint16_t>(record_.dwValueHnid);
  }

  void ApplyCategories() {
    const text::Text text = ReadStringValue(block_, *scope_.codePage, record_.wPropType, position_);
    if (!text.empty()) item_->Put(Field::Categories, text);
  }

  /// Every mail is created as a sent one. A read mail becomes unsent, but for one in the folder of sent mails
  /// (docs/fidelity.md#sent).
  void ApplyMessageFlags() {
    const bool read = (record_.dwValueHnid & 1) != 0;
    if (!read) return;
    item_->Put(Field::UnRead, false);
    if (!text::EqualIgnoringCase(scope_.currentFolderName, u"sent")) item_->Put(Field::Sent, false);
  }

  text::Text HeapString() const {
    return ReadHeapString(scope_, block_, record_.wPropType, position_, record_.dwValueHnid);
  }
  output::OleDate Time() const { return ReadTimeValue(block_, record_.wPropType, position_); }
  bool Flag() const { return FlagOf(record_.dwValueHnid); }
  std::int32_t Number() const { return static_cast<std::int32_t>(record_.dwValueHnid); }
  void Show(ListField field, text::TextView text) const {
    scope_.run->Say(engine::FieldListed{field, text::Text(text)});
  }
  void ShowSubject() const { Show(ListField::kSubject, item_->Get(Field::Subject).AsText()); }

  recovery::ConversionScope& scope_;
  const recovery::MessageBlock& block_;
  const PropertyRecord& record_;
  const output::Ref<output::RDOMail>& item_;
  const std::uint32_t position_;
};

}  // namespace

void MailConverter::ApplyProperty(recovery::ConversionScope& scope, const recovery::MessageBlock& block,
                                  const PropertyRecord& record, const output::Ref<output::RDOMail>& item) {
  MailWriter(scope, block, record, item).Apply();
}

std::optional<Field> MailConverter::FieldOf(const recovery::ConversionScope& scope,
                                            const PropertyRecord& record) const {
  // clang-format off
  switch (LongIdOf(scope, record.wPropId)) {
    case 0x0042: return Field::SenderName;
    case 0x0E04: return Field::To;
    case 0x0E03: return Field::CC;
    case 0x0E06: return Field::ReceivedTime;
    case 0x0039: return Field::SentOn;
    case 0x8012: return Field::Categories;
    case 0x8105: return Field::FlagDueBy;
    default: return std::nullopt;
  }
  // clang-format on
}

}  // namespace velmora::items
