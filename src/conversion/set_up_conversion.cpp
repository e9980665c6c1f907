#include "conversion/out_look.h"
#include "platform/file.h"
#include "platform/path_text.h"
#include "platform/process.h"

namespace velmora::conversion {
namespace {

using engine::NoticeKind;

constexpr text::TextView kProfile = u"VelmoraRepairOutlook";

struct DefaultFolderRow {
  text::TextView name;
  output::DefaultFolder kind;
};

/// In the order of their creation.
constexpr DefaultFolderRow kDefaultFolders[] = {
    {u"Contacts", output::DefaultFolder::kContacts}, {u"Journal", output::DefaultFolder::kJournal},
    {u"Tasks", output::DefaultFolder::kTasks},       {u"Notes", output::DefaultFolder::kNotes},
    {u"Calendar", output::DefaultFolder::kCalendar},
};

/// The source's name up to its first "."; without one there is no left part, and the stem is empty.
text::Text StemOf(const text::Text& name) {
  const std::size_t point = name.find(u'.');
  return point == text::Text::npos ? text::Text() : name.substr(0, point);
}

/// A destination that ends in a backslash is cut at its first one, wherever that stands: a drive's root
/// loses its separator that way, and every longer path with it all that follows the drive. The separators
/// of this platform that end a path say nothing.
text::Text BaseFolderOf(text::Text destination) {
  if (!destination.empty() && destination.back() == u'\\') destination.resize(destination.find(u'\\'));
  while (!destination.empty() && destination.back() == u'/') destination.pop_back();
  return destination;
}

}  // namespace

void COutLook::SetUpConversion(text::Text destination, const text::Text& name) {
  if (state_.run.runEnded) return;
  state_.run.BeginStage(3);
  try {
    CreateOutput(std::move(destination), name);
  } catch (const std::exception& failure) {
    // What was made stays: the profile, the folder, the store.
    CloseSourceAndLog();
    state_.run.Abort({NoticeKind::kComponentFailed, {}, FailureOf(failure)});
  }
}

void COutLook::NameOutput(const text::Text& baseFolder, const text::Text& stem, const text::Text& number) {
  state_.convertedName = stem + u" Converted";
  constexpr auto kSeparator = static_cast<char16_t>(std::filesystem::path::preferred_separator);
  const text::Text folder = baseFolder + kSeparator + state_.convertedName + number;
  scan_.outputFolder = platform::PathOf(folder);
  state_.destinationPath = folder + kSeparator + state_.convertedName + u".pst";
}

void COutLook::CreateOutput(text::Text destination, const text::Text& name) {
  const text::Text baseFolder = BaseFolderOf(std::move(destination));
  const text::Text stem = StemOf(name);

  ReleaseStore();
  ReleaseSession();
  output_ = makeOutput_();
  profiles_ = output_.library->CreateProfileList();
  session_ = output_.library->CreateRDOSession();
  if (!profiles_ || !session_) {
    CloseSourceAndLog();
    if (!StartComponentSetup()) state_.run.Say(engine::Notice{NoticeKind::kComponentMissing, {}, {}});
    CloseConversion();
    throw engine::WorkerEnded{};
  }
  // The name is of no use; that it can be read shows that the library works.
  utils_ = output_.library->CreateMAPIUtils();
  utils_->CurrentProfileName();

  // The name that is tested is always the one before the name that is used.
  text::Text profile(kProfile);
  bool taken = true;
  for (std::uint32_t n = 0; taken; ++n) {
    taken = profiles_->Item(profile);
    profile = text::Text(kProfile) + text::Decimal(n);
    NameOutput(baseFolder, stem, text::Decimal(n));
  }
  profiles_->Add(profile);
  state_.profileName = profile;
  session_->Logon(profile);

  if (const auto made = platform::CreateFolder(scan_.outputFolder); !made) {
    CloseSourceAndLog();
    platform::Failure cause = made.error();
    if (cause.kind == platform::FailureKind::kExists) cause.message = "the folder is there already";
    return state_.run.Abort({NoticeKind::kNoOutputFolder, {}, std::move(cause)});
  }
  try {
    targetStore_ = session_->Stores()->AddPSTStore(state_.destinationPath, state_.convertedName);
    CreateDefaultFolders();
  } catch (const output::OutputFailure& failure) {
    if (!output::IsStoreFailure(failure)) throw;
    CloseSourceAndLog();
    return state_.run.Abort({NoticeKind::kStoreNotMade, {}, FailureOf(failure)});
  }
  state_.logPath = platform::TextOfPath(scan_.outputFolder / "LogInformation.log");
  if (logHandle_ != nullptr) WriteLogHeader();
}

void COutLook::CreateDefaultFolders() {
  for (const DefaultFolderRow& row : kDefaultFolders) {
    const auto folder = session_->Stores()->DefaultStore()->IPMRootFolder()->Folders()->Add(row.name, {});
    const auto folder2 = folder->QueryFolder2();
    folder2->SetAsDefaultFolder(row.kind);
    folder2->PutDefaultFolderFlag(1);
  }
}

void COutLook::WriteLogHeader() {
  logHandle_->Open(platform::PathOf(state_.logPath));
  state_.run.Log(u"Validation Successful");
  state_.run.Log(state_.run.smartScan ? u" in SmartScan Scan\n\n" : u" in Normal Scan\n\n");
  state_.run.Log(u"\r\n\r\nSource File Path:");
  state_.run.Log(logText_);
  state_.run.Log(u"\r\n\r\nDestination File Path:");
  state_.run.Log(state_.destinationPath);
  state_.run.Log(u"\r\n\r\nStart date and time : " + LogTime());
}

bool COutLook::StartComponentSetup() {
  const auto program = platform::ProgramPath();
  if (!program || !platform::StartProgram(program->parent_path() / "Reg.exe")) return false;
  state_.run.Say(engine::Notice{NoticeKind::kRegistering, {}, {}});
  if (state_.closeWindow) {
    state_.skipExitPrompt = true;
    state_.closeWindow();
  }
  return true;
}

}  // namespace velmora::conversion
