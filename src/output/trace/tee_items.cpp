#include "output/trace/tee_items.h"

namespace velmora::output {
namespace {

class TeeMail : public RDOMail {
 public:
  explicit TeeMail(std::vector<Ref<RDOMail>> targets) : targets_(std::move(targets)) {}

  void Save() override {
    targets_.Each([](RDOMail& item) { item.Save(); });
  }
  void Put(Field field, const FieldValue& value) override {
    targets_.Each([&](RDOMail& item) { item.Put(field, value); });
  }
  FieldRead Get(Field field) const override { return targets_.Primary().Get(field); }
  bool Answers(ItemInterface interface) const override { return targets_.Primary().Answers(interface); }
  Ref<RDOAttachments> Attachments() override;
  void Delete() override {
    targets_.Each([](RDOMail& item) { item.Delete(); });
  }
  Ref<RDOMail> Reply() override {
    return targets_.Make<TeeMail>([](RDOMail& item) { return item.Reply(); });
  }
  Ref<RDOMail> Forward() override {
    return targets_.Make<TeeMail>([](RDOMail& item) { return item.Forward(); });
  }
  void AddPicture(const ContentSource& content) override {
    targets_.Each([&](RDOMail& item) { item.AddPicture(content); });
  }
  text::Text MessageClass() const override { return targets_.Primary().MessageClass(); }
  std::int32_t Size() const override { return targets_.Primary().Size(); }
  std::int32_t AttachmentCount() const override { return targets_.Primary().AttachmentCount(); }
  AttachmentTotals SavedAttachments() const override { return targets_.Primary().SavedAttachments(); }

  const std::vector<Ref<RDOMail>>& Targets() const { return targets_.All(); }

 private:
  TeeTargets<RDOMail> targets_;
};

class TeeAttachments : public RDOAttachments {
 public:
  explicit TeeAttachments(std::vector<Ref<RDOAttachments>> targets) : targets_(std::move(targets)) {}

  void Add(const ContentSource& content, text::TextView displayName) override {
    targets_.Each([&](RDOAttachments& attachments) { attachments.Add(content, displayName); });
  }

  /// The item's own object of each library is attached there.
  void Add(const Ref<RDOMail>& item, text::TextView displayName) override {
    const auto* embedded = dynamic_cast<const TeeMail*>(&*item);
    if (embedded == nullptr) throw OutputFailure(ResultCode::E_INVALIDARG);
    auto next = embedded->Targets().begin();
    targets_.Each([&](RDOAttachments& attachments) {
      if (next == embedded->Targets().end()) throw OutputFailure(ResultCode::E_POINTER);
      attachments.Add(*next++, displayName);
    });
  }

  std::int32_t Count() const override { return targets_.Primary().Count(); }

 private:
  TeeTargets<RDOAttachments> targets_;
};

Ref<RDOAttachments> TeeMail::Attachments() {
  return targets_.Make<TeeAttachments>([](RDOMail& item) { return item.Attachments(); });
}

/// An item read back from the first library alone.
Ref<RDOMail> ReadBack(Ref<RDOMail> item) {
  if (!item) return nullptr;
  return std::make_shared<TeeMail>(std::vector<Ref<RDOMail>>{std::move(item)});
}

}  // namespace

Ref<RDOMail> TeeItems::Add(text::TextView messageClass) {
  return targets_.Make<TeeMail>([&](RDOItems& items) { return items.Add(messageClass); });
}
Ref<RDOMail> TeeItems::GetFirst() { return ReadBack(targets_.Primary().GetFirst()); }
Ref<RDOMail> TeeItems::GetNext() { return ReadBack(targets_.Primary().GetNext()); }

}  // namespace velmora::output
