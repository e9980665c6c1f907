// Contacts: the names by which they are filed and shown, e-mail addresses as complete sets, addresses.
#include <vector>

#include "store/format/property_tags.h"
#include "store/messaging/items/item_properties.h"
#include "store/messaging/tables/named_properties.h"
#include "store/messaging/values/stored_text.h"

namespace velmora::messaging {
namespace {

using enum PropertySet;
using output::Field;

constexpr PropTag kFileUnder = Named(kAddress, 0x8005, PropType::kString);
constexpr PropTag kFileUnderId = Named(kAddress, 0x8006, PropType::kInteger32);
constexpr PropTag kHasPicture = Named(kAddress, 0x8015, PropType::kBoolean);
constexpr PropTag kPostalAddressId = Named(kAddress, 0x8022, PropType::kInteger32);
constexpr PropTag kEmailList = Named(kAddress, 0x8028, PropType::kMultipleInteger32);
constexpr PropTag kEmailMask = Named(kAddress, 0x8029, PropType::kInteger32);
constexpr PropTag kWebPage = Named(kAddress, 0x802B, PropType::kString);
constexpr PropTag kDistributionListName = Named(kAddress, 0x8053, PropType::kString);
constexpr PropTag kBirthdayLocal = Named(kAddress, 0x80DE, PropType::kTime);
constexpr PropTag kAnniversaryLocal = Named(kAddress, 0x80DF, PropType::kTime);

constexpr PropTag kMailingCountry = 0x3A26001F;
constexpr PropTag kMailingCity = 0x3A27001F;
constexpr PropTag kMailingState = 0x3A28001F;
constexpr PropTag kMailingStreet = 0x3A29001F;
constexpr PropTag kMailingPostalCode = 0x3A2A001F;
constexpr PropTag kMailingPostOfficeBox = 0x3A2B001F;

constexpr std::int32_t kContactIcon = 0x200;
constexpr std::int32_t kDistributionListIcon = 0x202;
constexpr std::int32_t kContactSideEffects = 0x10;

// Values of kFileUnderId.
constexpr std::int32_t kFiledAsLastFirst = 0x8017;
constexpr std::int32_t kFiledByFullName = 0x3001;
constexpr std::int32_t kFiledByCompany = 0x3A16;
constexpr std::int32_t kFiledByText = -1;

struct FiledName {
  text::Text name;
  std::int32_t id = kFiledByText;
};

/// "Last, First" where both are known, else the first name of any sort that there is.
FiledName FiledNameOf(const ItemFields& fields) {
  const text::TextView first = fields.Text(Field::FirstName);
  const text::TextView last = fields.Text(Field::LastName);
  if (!first.empty() && !last.empty()) {
    return {NameOf(text::Text(last) + u", " + text::Text(first)), kFiledAsLastFirst};
  }
  const struct {
    Field field;
    std::int32_t id;
  } kChoices[] = {{Field::FullName, kFiledByFullName},   {Field::LastName, kFiledByText},
                  {Field::FirstName, kFiledByText},      {Field::Subject, kFiledByText},
                  {Field::CompanyName, kFiledByCompany}, {Field::Email1DisplayName, kFiledByText},
                  {Field::Email1Address, kFiledByText}};
  for (const auto& choice : kChoices) {
    if (text::Text name = NameOf(fields.Text(choice.field)); !name.empty()) return {std::move(name), choice.id};
  }
  return {};
}

void PutNames(const ItemFields& fields, PropertyBag& bag) {
  const FiledName filed = FiledNameOf(fields);
  if (filed.name.empty()) return;
  bag.PutText(kFileUnder, filed.name);
  bag.PutInteger32(kFileUnderId, filed.id);
  if (bag.Has(tag::kDisplayName)) return;
  const bool both = filed.id == kFiledAsLastFirst;
  bag.PutName(
      tag::kDisplayName,
      both ? text::Text(fields.Text(Field::FirstName)) + u" " + text::Text(fields.Text(Field::LastName)) : filed.name);
}

struct EmailSlot {
  Field name, type, address;
  PropTag nameTag, typeTag, originalNameTag, entryIdTag;
};

constexpr EmailSlot kEmailSlots[] = {
    {Field::Email1DisplayName, Field::Email1AddressType, Field::Email1Address,
     Named(kAddress, 0x8080, PropType::kString), Named(kAddress, 0x8082, PropType::kString),
     Named(kAddress, 0x8084, PropType::kString), Named(kAddress, 0x8085, PropType::kBinary)},
    {Field::Email2DisplayName, Field::Email2AddressType, Field::Email2Address,
     Named(kAddress, 0x8090, PropType::kString), Named(kAddress, 0x8092, PropType::kString),
     Named(kAddress, 0x8094, PropType::kString), Named(kAddress, 0x8095, PropType::kBinary)},
    {Field::Email3DisplayName, Field::Email3AddressType, Field::Email3Address,
     Named(kAddress, 0x80A0, PropType::kString), Named(kAddress, 0x80A2, PropType::kString),
     Named(kAddress, 0x80A4, PropType::kString), Named(kAddress, 0x80A5, PropType::kBinary)},
};

/// Outlook takes an e-mail address for there only when its set is complete and the list of slots names it.
void PutEmailSets(const ItemFields& fields, PropertyBag& bag) {
  std::vector<std::int32_t> slots;
  std::int32_t mask = 0;
  for (std::int32_t slot = 0; slot < static_cast<std::int32_t>(std::size(kEmailSlots)); ++slot) {
    const EmailSlot& row = kEmailSlots[slot];
    const text::Text address = NameOf(fields.Text(row.address));
    if (address.empty()) continue;
    text::Text type = NameOf(fields.Text(row.type));
    if (type.empty()) bag.PutText(row.typeTag, type = u"SMTP");
    text::Text name = NameOf(fields.Text(row.name));
    if (name.empty()) bag.PutText(row.nameTag, name = address);
    bag.PutText(row.originalNameTag, address);
    bag.PutBytes(row.entryIdTag, OneOffEntryId(name, type, address));
    slots.push_back(slot);
    mask |= 1 << slot;
  }
  if (slots.empty()) return;
  bag.PutIntegers32(kEmailList, slots);
  bag.PutInteger32(kEmailMask, mask);
}

struct AddressParts {
  Field whole, street, city, state, postalCode, country, postOfficeBox;
  PropTag wholeTag;
  std::int32_t id;  ///< value of kPostalAddressId
};

constexpr AddressParts kAddresses[] = {
    {Field::HomeAddress, Field::HomeAddressStreet, Field::HomeAddressCity, Field::HomeAddressState,
     Field::HomeAddressPostalCode, Field::HomeAddressCountry, Field::HomeAddressPostOfficeBox,
     Named(kAddress, 0x801A, PropType::kString), 1},
    {Field::BusinessAddress, Field::BusinessAddressStreet, Field::BusinessAddressCity, Field::BusinessAddressState,
     Field::BusinessAddressPostalCode, Field::BusinessAddressCountry, Field::BusinessAddressPostOfficeBox,
     Named(kAddress, 0x801B, PropType::kString), 2},
    {Field::OtherAddress, Field::OtherAddressStreet, Field::OtherAddressCity, Field::OtherAddressState,
     Field::OtherAddressPostalCode, Field::OtherAddressCountry, Field::OtherAddressPostOfficeBox,
     Named(kAddress, 0x801C, PropType::kString), 3},
};
constexpr const AddressParts& kBusinessAddress = kAddresses[1];

void AppendPart(text::Text& text, text::TextView separator, text::TextView part) {
  if (part.empty()) return;
  if (!text.empty()) text += separator;
  text += part;
}

text::Text ComposedAddress(const ItemFields& fields, const AddressParts& parts) {
  text::Text town(fields.Text(parts.city));
  AppendPart(town, u", ", fields.Text(parts.state));
  AppendPart(town, u" ", fields.Text(parts.postalCode));
  text::Text address(fields.Text(parts.street));
  AppendPart(address, u"\r\n", town);
  AppendPart(address, u"\r\n", fields.Text(parts.country));
  return address;
}

/// The parts of the mailing address, where many readers look for those of the business address.
void PutMailingParts(const ItemFields& fields, const AddressParts& parts, PropertyBag& bag) {
  bag.PutText(kMailingStreet, fields.Text(parts.street));
  bag.PutText(kMailingCity, fields.Text(parts.city));
  bag.PutText(kMailingState, fields.Text(parts.state));
  bag.PutText(kMailingPostalCode, fields.Text(parts.postalCode));
  bag.PutText(kMailingCountry, fields.Text(parts.country));
  bag.PutText(kMailingPostOfficeBox, fields.Text(parts.postOfficeBox));
}

void PutAddresses(const ItemFields& fields, PropertyBag& bag) {
  const text::TextView mailing = fields.Text(Field::MailingAddress);
  const AddressParts* chosen = nullptr;
  for (const AddressParts& parts : kAddresses) {
    text::Text whole(fields.Text(parts.whole));
    if (whole.empty()) bag.PutText(parts.wholeTag, whole = ComposedAddress(fields, parts));
    if (chosen == nullptr && !mailing.empty() && mailing == whole) chosen = &parts;
  }
  if (chosen != nullptr) bag.PutInteger32(kPostalAddressId, chosen->id);
  PutMailingParts(fields, chosen != nullptr ? *chosen : kBusinessAddress, bag);
}

}  // namespace

void CompleteContact(const ItemState& item, bool hasPicture, PropertyBag& bag) {
  const ItemFields& fields = item.fields;
  const bool isList = item.messageClass.ends_with(u"DistList");
  PutNames(fields, bag);
  PutEmailSets(fields, bag);
  PutAddresses(fields, bag);
  bag.PutText(kWebPage, fields.Text(Field::BusinessHomePage));
  if (const auto birthday = fields.Time(Field::Birthday)) bag.PutTime(kBirthdayLocal, *birthday);
  if (const auto anniversary = fields.Time(Field::Anniversary)) bag.PutTime(kAnniversaryLocal, *anniversary);
  if (hasPicture) bag.PutBoolean(kHasPicture, true);
  if (isList) bag.PutText(kDistributionListName, FiledNameOf(fields).name);
  bag.PutInteger32(tag::kIconIndex, isList ? kDistributionListIcon : kContactIcon);
  bag.PutInteger32(kSideEffects, kContactSideEffects);
}

}  // namespace velmora::messaging
