#include "workflow/panes/store_fixture.h"

namespace velmora::workflow {

StoreFixture::StoreFixture()
    : store_(session_->Stores()->AddPSTStore(u"test.pst", u"Test Converted")),
      finished_(std::make_shared<FinishedStore>(previewSession_, [this](text::TextView) { return session_; })) {}

output::Ref<output::RDOFolder> StoreFixture::AddFolder(text::TextView name, text::TextView containerClass) {
  return store_->IPMRootFolder()->Folders()->Add(name, text::Text(containerClass));
}

output::Ref<output::RDOMail> StoreFixture::AddItem(const output::Ref<output::RDOFolder>& folder,
                                                   text::TextView messageClass, const FieldValues& fields) {
  auto item = folder->Items()->Add(messageClass);
  for (const auto& [field, value] : fields) item->Put(field, value);
  item->Save();
  items_.push_back(item);
  return item;
}

}  // namespace velmora::workflow
