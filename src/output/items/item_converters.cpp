#include "output/items/item_converters.h"

#include "output/items/kind_converter.h"
#include "output/items/mail_converter.h"

namespace velmora::items {

recovery::ItemConverters MakeItemConverters() {
  recovery::ItemConverters converters;
  const auto at = [&converters](recovery::ItemKind kind) -> std::unique_ptr<recovery::ItemConverter>& {
    return converters[static_cast<std::size_t>(kind)];
  };
  at(recovery::ItemKind::kMail) = std::make_unique<MailConverter>();
  for (const KindTables* tables :
       {&kContactTables, &kTaskTables, &kAppointmentTables, &kMeetingTables, &kJournalTables, &kNoteTables}) {
    at(tables->kind) = std::make_unique<KindConverter>(*tables);
  }
  return converters;
}

}  // namespace velmora::items
