#include "conversion/run_fixture.h"

#include <algorithm>
#include <cstring>

#include "conversion/notices.h"
#include "platform/path_text.h"

namespace velmora::conversion {
namespace {

using output::Ref;

class RiggedItems : public output::RDOItems {
 public:
  RiggedItems(Ref<output::RDOItems> items, const std::function<void()>& onItem)
      : items_(std::move(items)), onItem_(onItem) {}
  std::int32_t Count() const override { return items_->Count(); }
  Ref<output::RDOMail> Add(text::TextView messageClass) override {
    if (onItem_) onItem_();
    return items_->Add(messageClass);
  }
  Ref<output::RDOMail> GetFirst() override { return items_->GetFirst(); }
  Ref<output::RDOMail> GetNext() override { return items_->GetNext(); }

 private:
  Ref<output::RDOItems> items_;
  const std::function<void()>& onItem_;
};

class RiggedFolder : public output::RDOFolder {
 public:
  RiggedFolder(Ref<output::RDOFolder> folder, const std::function<void()>& onItem)
      : folder_(std::move(folder)), onItem_(onItem) {}
  Ref<output::RDOItems> Items() override { return std::make_shared<RiggedItems>(folder_->Items(), onItem_); }
  Ref<output::RDOFolders> Folders() override { return folder_->Folders(); }
  Ref<output::RDOFolder2> QueryFolder2() override { return folder_->QueryFolder2(); }
  text::Text Name() const override { return folder_->Name(); }
  text::Text ContainerClass() const override { return folder_->ContainerClass(); }

 private:
  Ref<output::RDOFolder> folder_;
  const std::function<void()>& onItem_;
};

class RiggedStores : public output::RDOStores {
 public:
  RiggedStores(Ref<output::RDOStores> stores, const std::optional<output::ResultCode>& failure)
      : stores_(std::move(stores)), failure_(failure) {}
  Ref<output::RDOStore> DefaultStore() override { return stores_->DefaultStore(); }
  Ref<output::RDOStore> AddPSTStore(text::TextView path, text::TextView displayName) override {
    if (failure_) throw output::OutputFailure(*failure_, "the store said no");
    return stores_->AddPSTStore(path, displayName);
  }
  Ref<output::RDOStore> OpenPSTStore(text::TextView path) override { return stores_->OpenPSTStore(path); }

 private:
  Ref<output::RDOStores> stores_;
  const std::optional<output::ResultCode>& failure_;
};

class RiggedSession : public output::RDOSession {
 public:
  RiggedSession(Ref<output::RDOSession> session, const RiggedLibrary& library)
      : session_(std::move(session)), library_(library) {}
  void Logon(text::TextView profileName) override { session_->Logon(profileName); }
  Ref<output::RDOStores> Stores() override {
    return std::make_shared<RiggedStores>(session_->Stores(), library_.storeFailure);
  }
  Ref<output::RDOFolder> GetDefaultFolder(output::DefaultFolder kind) override {
    return Rigged(session_->GetDefaultFolder(kind));
  }
  Ref<output::RDOFolder> GetFolderFromPath(text::TextView path) override {
    return Rigged(session_->GetFolderFromPath(path));
  }

 private:
  Ref<output::RDOFolder> Rigged(Ref<output::RDOFolder> folder) const {
    if (!folder) return nullptr;
    return std::make_shared<RiggedFolder>(std::move(folder), library_.onItem);
  }

  Ref<output::RDOSession> session_;
  const RiggedLibrary& library_;
};

}  // namespace

Ref<output::RDOSession> RiggedLibrary::CreateRDOSession() {
  if (noSession) return nullptr;
  return std::make_shared<RiggedSession>(trace_.CreateRDOSession(), *this);
}

void Recorder::OnEvent(const engine::Event& event) {
  if (const auto* begun = std::get_if<engine::StageBegun>(&event)) {
    said.push_back("stage " + std::to_string(begun->stage));
  } else if (const auto* progress = std::get_if<engine::Progress>(&event)) {
    said.push_back("progress " + std::to_string(progress->percentage));
  } else if (const auto* notice = std::get_if<engine::Notice>(&event)) {
    const NoticeText text = TextOf(*notice);
    said.push_back(text::ToUtf8(text.title) + ": " + text::ToUtf8(text.text));
    causes.push_back(TextOf(notice->cause));
  } else if (std::holds_alternative<engine::ListCleared>(event)) {
    said.push_back("list cleared");
  } else if (std::holds_alternative<engine::Done>(event)) {
    said.push_back("done");
  }
  if (onEvent) onEvent(event);
}

std::vector<std::string> Recorder::Steps() const {
  std::vector<std::string> steps;
  for (const std::string& line : said) {
    if (!line.starts_with("progress")) steps.push_back(line);
  }
  return steps;
}

RunTest::RunTest()
    : folder_(platform::TemporaryFolder::Create().value()),
      outLook_(
          state_,
          [this] {
            return RunOutput{library_,
                             [this] {
                               ++seals_;
                               return sealResult_;
                             },
                             [this] { return fullTables_; }};
          },
          engine::OpenBadDisk(badPlaces_)) {
  StartOver("out");
  state_.run.observer = &recorder_;
}

void RunTest::StartOver(const std::string& destination) {
  destination_ = folder_.Path() / destination;
  std::filesystem::create_directory(destination_);
  recorder_ = {};
  trace_.lines.clear();
  library_ = std::make_shared<RiggedLibrary>(trace_);
  state_.run.runEnded = false;
  state_.run.control.Reset();
}

RunEnd RunTest::Run() {
  state_.destinationPath = platform::TextOfPath(destination_);
  return RunConversion(outLook_, state_);
}

void RunTest::MakeSource(const std::string& name, forge::Encoding encoding) {
  forge::Mailbox box({.encoding = encoding, .client = forge::Client::kOffline});
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox", .containerClass = u"IPF.Note"});
  const forge::Nid old = box.AddFolder({.name = u"Old", .parent = inbox, .containerClass = u"IPF.Note"});
  box.AddMessage(inbox, {.subject = u"First", .plain = u"one"});
  box.AddMessage(old, {.subject = u"Second", .plain = u"two"});
  const std::filesystem::path path = folder_.Path() / name;
  box.Finish().Save(path);
  UseSource(path);
}

void RunTest::UseSource(const std::filesystem::path& path) {
  state_.sourcePath = platform::TextOfPath(path);
  state_.sourceFileName = platform::TextOfPath(path.filename());
}

std::filesystem::path RunTest::WriteFile(const std::string& name, std::string_view bytes) {
  const std::filesystem::path path = folder_.Path() / name;
  std::ofstream(path, std::ios::binary) << bytes;
  return path;
}

std::vector<std::string> RunTest::Output() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(destination_)) {
    names.push_back(std::filesystem::relative(entry.path(), destination_).generic_string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string ReadAll(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::u16string ReadUtf16(const std::filesystem::path& path) {
  const std::string bytes = ReadAll(path);
  std::u16string text(bytes.size() / 2, u'\0');
  std::memcpy(text.data(), bytes.data(), text.size() * 2);
  return text;
}

}  // namespace velmora::conversion
