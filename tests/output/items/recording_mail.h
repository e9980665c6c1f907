// An item and an observer that write down, in one log, what a converter does.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "engine/run.h"
#include "store/operations.h"
#include "text/text.h"

namespace velmora::items::testing {

using Log = std::vector<std::string>;

/// Forms: 'text', date 43831.25, true, -5.
inline std::string Form(const output::FieldValue& value) {
  struct Forms {
    std::string operator()(const text::Text& text) const { return "'" + text::ToUtf8(text) + "'"; }
    std::string operator()(output::OleDate date) const {
      std::string days = std::to_string(date.days);
      days.erase(days.find_last_not_of('0') + 1);
      if (days.back() == '.') days.pop_back();
      return "date " + days;
    }
    std::string operator()(bool flag) const { return flag ? "true" : "false"; }
    std::string operator()(std::int32_t number) const { return std::to_string(number); }
  };
  return std::visit(Forms{}, value);
}

/// Logs "Subject='abc'", "Reply", "Forward". Fields keep what was written, as the operations tell.
class RecordingMail : public output::RDOMail {
 public:
  explicit RecordingMail(Log& log) : log_(log) {}

  /// From now on a read of a text field answers "written, and empty", as an unhelpful library would.
  void AnswerEveryReadWithWrittenAndEmpty() { emptyAndWritten_ = true; }

  /// From now on each write of the field fails.
  void FailPut(output::Field field, output::ResultCode code) { failing_[field] = code; }

  /// Forgets all fields.
  void Reset() { fields_.clear(); }

  void Put(output::Field field, const output::FieldValue& value) override {
    const auto failing = failing_.find(field);
    if (failing != failing_.end()) throw output::OutputFailure(failing->second);
    fields_[field] = value;
    log_.push_back(std::string(output::InfoOf(field).name) + "=" + Form(value));
  }
  output::FieldRead Get(output::Field field) const override {
    if (emptyAndWritten_) return {text::Text(), true};
    const auto held = fields_.find(field);
    if (held == fields_.end()) return {text::Text(), false};
    return {held->second, true};
  }
  output::Ref<output::RDOMail> Reply() override {
    log_.push_back("Reply");
    return std::make_shared<RecordingMail>(log_);
  }
  output::Ref<output::RDOMail> Forward() override {
    log_.push_back("Forward");
    return std::make_shared<RecordingMail>(log_);
  }

  void Save() override { log_.push_back("Save"); }
  void Delete() override { log_.push_back("Delete"); }
  bool Answers(output::ItemInterface) const override { return true; }
  output::Ref<output::RDOAttachments> Attachments() override { return nullptr; }
  void AddPicture(const output::ContentSource&) override { log_.push_back("AddPicture"); }
  text::Text MessageClass() const override { return {}; }
  std::int32_t Size() const override { return 0; }
  std::int32_t AttachmentCount() const override { return 0; }

 private:
  Log& log_;
  bool emptyAndWritten_ = false;
  std::map<output::Field, output::FieldValue> fields_;
  std::map<output::Field, output::ResultCode> failing_;
};

/// Logs each field of the list pane's row: "from 'x'", "to 'x'", "subject 'x'", "date 'x'".
class RowObserver : public engine::RunObserver {
 public:
  explicit RowObserver(Log& log) : log_(log) {}

  void OnEvent(const engine::Event& event) override {
    static const std::map<engine::ListField, std::string> kColumns = {{engine::ListField::kFrom, "from"},
                                                                      {engine::ListField::kTo, "to"},
                                                                      {engine::ListField::kSubject, "subject"},
                                                                      {engine::ListField::kDate, "date"}};
    const auto* listed = std::get_if<engine::FieldListed>(&event);
    log_.push_back(listed == nullptr ? "event " + std::to_string(event.index())
                                     : kColumns.at(listed->field) + " '" + text::ToUtf8(listed->text) + "'");
  }

 private:
  Log& log_;
};

}  // namespace velmora::items::testing
