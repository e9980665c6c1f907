// Items of the trace. An item lives as long as somebody holds a reference to it: what a run releases costs
// no memory, however many items it creates. Their folder keeps their number.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <unordered_map>

#include "output/trace/json_line.h"
#include "store/operations.h"

namespace velmora::output {

class TraceItem;

/// The saved items of a folder: how many there are, and those that somebody still holds.
class SavedItems {
 public:
  // By the items, as they are saved, deleted and released.
  void Keep(TraceItem* item);
  void Drop(TraceItem* item);
  void Forget(TraceItem* item);

  std::int32_t Count() const { return count_; }

  /// Of those that are held, in the order of their first save, the one behind `place`, whose place goes to `place`;
  /// null at the end. Places count from 1.
  std::shared_ptr<TraceItem> Next(std::uint64_t& place) const;

 private:
  std::int32_t count_ = 0;
  std::uint64_t lastPlace_ = 0;
  std::map<std::uint64_t, TraceItem*> held_;
  std::unordered_map<TraceItem*, std::uint64_t> placeOf_;
};

/// What all objects of one trace share.
struct TraceState {
  TraceSink* sink = nullptr;
  std::int64_t lastItemId = 0;
  std::set<text::Text> profiles;
  text::Text currentProfile;
};

class TraceItem : public RDOMail, public std::enable_shared_from_this<TraceItem> {
 public:
  /// `id` 0: an answer that Reply or Forward made; nobody's trace names it, and nothing of it is traced.
  TraceItem(std::shared_ptr<TraceState> state, std::shared_ptr<SavedItems> siblings, std::int64_t id,
            text::TextView messageClass);
  ~TraceItem() override { siblings_->Forget(this); }

  void Save() override;
  void Put(Field field, const FieldValue& value) override;
  FieldRead Get(Field field) const override;
  bool Answers(ItemInterface interface) const override;
  Ref<RDOAttachments> Attachments() override;
  void Delete() override;
  Ref<RDOMail> Reply() override { return Answer("Reply"); }
  Ref<RDOMail> Forward() override { return Answer("Forward"); }
  void AddPicture(const ContentSource& content) override;
  text::Text MessageClass() const override { return messageClass_; }
  std::int32_t Size() const override;
  std::int32_t AttachmentCount() const override { return attachmentCount_; }

  void AddAttachment(const ContentSource& content, text::TextView displayName);
  void AddAttachment(const Ref<RDOMail>& item, text::TextView displayName);

 private:
  Ref<RDOMail> Answer(std::string_view operation);
  void Trace(std::string line) const;

  std::shared_ptr<TraceState> state_;
  std::shared_ptr<SavedItems> siblings_;  ///< of the folder that the item is in
  std::int64_t id_;
  text::Text messageClass_;
  ItemInterface interface_;
  std::map<Field, FieldValue> fields_;
  std::uint64_t attachedBytes_ = 0;
  std::int32_t attachmentCount_ = 0;
  bool saved_ = false;
  bool deleted_ = false;
};

}  // namespace velmora::output
