// The engine object: the steps of a run, in the order in which the worker calls them.
#pragma once

#include <exception>
#include <memory>
#include <optional>

#include "conversion/run_log.h"
#include "conversion/run_output.h"
#include "conversion/run_report.h"
#include "conversion/run_state.h"
#include "engine/store_scan.h"
#include "platform/file.h"
#include "recovery/recovery_state.h"
#include "store/operations.h"

namespace velmora::conversion {

/// One lives as long as the frame and serves every run; one thread at a time calls it. A step returns no
/// value: its failure shows in `runAborted`, or ends the worker (engine::WorkerEnded). Every step but
/// OpenSource and CloseConversion returns at once while `runEnded` is raised.
class COutLook {
 public:
  /// `state` outlives this object.
  COutLook(RunState& state, OutputFactory makeOutput, platform::SourceOpener openSource = platform::OpenForReading);
  ~COutLook();
  COutLook(const COutLook&) = delete;
  COutLook& operator=(const COutLook&) = delete;

  bool logEnabled = false;

  void OpenSource(const text::Text& path);
  void ProbeFormat();

  /// Makes names, profile, folder and store, and logs on. `destination` is the folder that the user chose,
  /// `name` the source's file name.
  void SetUpConversion(text::Text destination, const text::Text& name);

  void ScanNodePages();
  void ScanBlockPages();
  void RecoverFolders();
  void RecoverOrphans();

  /// Frees what the run holds, deletes the index file, closes source and log and lets the output go. It
  /// assumes nothing about earlier steps.
  void CloseConversion();

  /// In place of all further steps of a run that is stopped: nothing is sent or deleted. The store is sealed
  /// as it is, and what the run holds is freed, so that the next one finds everything as the first did.
  void DropRun();

  /// Forgets the map of named properties, as the worker does behind the last step.
  void FreeNamedPropMap() { recovery_.namedProps.Clear(); }

  /// Says the one notice about a store that can no longer be written, and raises `runAborted`.
  void ReportStoreFailure(const platform::Failure& cause);

  /// Keeps for the report that a step left its work by a failure. The run goes on with the next step.
  void NoteEarlyEnd(const std::exception& failure);

  /// The session of the run, for whoever counts folders before it closes; null outside a run.
  const output::Ref<output::RDOSession>& Session() const { return session_; }

  /// What the recovery holds: the folders and the map of named properties. Both are empty once a run is over.
  const recovery::RecoveryState& Recovery() const { return recovery_; }

  /// Why the store of the last run could not be completed on disk; nothing when it could.
  const std::optional<platform::Failure>& SealFailure() const { return sealFailure_; }

  /// Of the last run, once it is over.
  const RunReport& Report() const { return report_; }

 private:
  /// The names of a run: `number` stands on folder and profile, never on the file.
  void NameOutput(const text::Text& baseFolder, const text::Text& stem, const text::Text& number);
  void CreateOutput(text::Text destination, const text::Text& name);
  void CreateDefaultFolders();
  void WriteLogHeader();
  bool StartComponentSetup();
  void CloseSourceAndLog();
  void CompleteReport();
  void SealOutput();
  void LookAtWhatIsLeft(output::OutputLibrary& library);
  void ReleaseSession();
  void ReleaseStore();

  RunState& state_;
  OutputFactory makeOutput_;
  platform::SourceOpener openSource_;
  RunOutput output_;
  std::optional<platform::Failure> sealFailure_;
  bool storeFailed_ = false;  ///< in this run, before it was sealed

  output::Ref<output::MAPIUtils> utils_;
  output::Ref<output::ProfileList> profiles_;
  output::Ref<output::RDOSession> session_;
  output::Ref<output::RDOStore> targetStore_;

  const recovery::ItemConverters converters_;
  engine::StoreScan scan_;
  std::unique_ptr<const engine::ScannedStore> store_;  ///< from the end of the scans to that of the run
  recovery::RecoveryState recovery_;
  RunReport report_;

  std::unique_ptr<RunLogFile> logHandle_;
  text::Text logText_;  ///< the source's path, for the log
};

/// What an exception tells, as the one value that failures are.
platform::Failure FailureOf(const std::exception& failure);

}  // namespace velmora::conversion
