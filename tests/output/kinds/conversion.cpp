#include "output/kinds/conversion.h"

#include <stdexcept>

#include "conversion/notices.h"
#include "conversion/worker.h"
#include "platform/path_text.h"
#include "store/messaging/pst_library.h"

namespace velmora::kinds {
namespace {

using output::Ref;

class BoxesOf : public engine::RunObserver {
 public:
  void OnEvent(const engine::Event& event) override {
    if (const auto* notice = std::get_if<engine::Notice>(&event))
      said += text::ToUtf8(conversion::TextOf(*notice).text);
  }
  std::string said;
};

}  // namespace

Conversion::Conversion(const forge::Image& source, const std::string& name) {
  const std::filesystem::path path = folder_.path() / name;
  const std::filesystem::path out = folder_.path() / "out";
  source.Save(path);
  std::filesystem::create_directory(out);

  messaging::PstLibraryOptions options;
  options.configFolder = folder_.path() / "config";
  conversion::RunState state;
  BoxesOf boxes;
  state.run.observer = &boxes;
  state.sourcePath = platform::TextOfPath(path);
  state.sourceFileName = text::FromUtf8(name);
  state.destinationPath = platform::TextOfPath(out);
  conversion::COutLook outLook(state, [&] {
    auto library = std::make_shared<messaging::PstLibrary>(options);
    return conversion::RunOutput{library, [library] { return library->Seal(); }};
  });
  const conversion::RunEnd end = RunConversion(outLook, state);
  if (end != conversion::RunEnd::kFinished || state.run.runAborted || !boxes.said.empty()) {
    throw std::runtime_error("the conversion failed: " + boxes.said);
  }
  report_ = outLook.Report();
  store_ = platform::PathOf(state.destinationPath);
  library_ = std::make_unique<messaging::PstLibrary>(options);
}

Ref<output::RDOSession> Conversion::Session() {
  if (!session_) {
    session_ = library_->CreateRDOSession();
    opened_ = session_->Stores()->OpenPSTStore(platform::TextOfPath(store_));
  }
  return session_;
}

Ref<output::RDOFolder> Conversion::Top() {
  Session();
  return opened_->IPMRootFolder();
}

Ref<output::RDOFolder> Conversion::Folder(text::TextView path) {
  Ref<output::RDOFolder> folder = Top();
  while (folder && !path.empty()) {
    const std::size_t end = path.find(u'\\');
    folder = folder->Folders()->Item(path.substr(0, end));
    path = end == text::TextView::npos ? text::TextView() : path.substr(end + 1);
  }
  if (!folder) throw std::runtime_error("no such folder in the new store");
  return folder;
}

Ref<output::RDOFolder> Conversion::DefaultFolder(output::DefaultFolder kind) {
  return Session()->GetDefaultFolder(kind);
}

const std::filesystem::path& Conversion::Pffexport() {
  if (pffexport_.empty()) {
    if (!forge::RunIn(folder_, "pffexport -q -d -m items -t peer '" + store_.string() + "'")) {
      throw std::runtime_error("pffexport failed: " + forge::TextOf(folder_.path() / "output"));
    }
    pffexport_ = folder_.path() / "peer.export" / "Top of Personal Folders";
  }
  return pffexport_;
}

const std::filesystem::path& Conversion::Readpst() {
  if (readpst_.empty()) {
    const std::filesystem::path out = folder_.path() / "read";
    std::filesystem::create_directory(out);
    if (!forge::RunIn(folder_, "readpst -q -j0 -D -r -cv -8 -o read '" + store_.string() + "'")) {
      throw std::runtime_error("readpst failed: " + forge::TextOf(folder_.path() / "output"));
    }
    readpst_ = out;
  }
  return readpst_;
}

std::vector<Ref<output::RDOMail>> ItemsOf(const Ref<output::RDOFolder>& folder) {
  std::vector<Ref<output::RDOMail>> items;
  const auto list = folder->Items();
  for (Ref<output::RDOMail> item = list->GetFirst(); item; item = list->GetNext()) items.push_back(item);
  return items;
}

}  // namespace velmora::kinds
