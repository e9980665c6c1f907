// The wizard and the command line convert alike.
#include <QProcess>
#include <fstream>

#include "forge/demo_store.h"
#include "output/trace/trace_library.h"
#include "workflow/harness.h"
#include "workflow/progress_dlg.h"

namespace velmora::workflow {
namespace {

using namespace resources;

class TraceText : public output::TraceSink {
 public:
  void WriteLine(std::string_view line) override { text += std::string(line) + '\n'; }
  std::string text;  ///< written by the worker; to be read once the run is over
};

class SameTraceTest : public WizardTest, public testing::WithParamInterface<forge::DemoState> {
 protected:
  void SetUp() override {
    machine_.makeOutput = [this] { return conversion::RunOutput{std::make_shared<output::TraceLibrary>(*trace_), {}}; };
    Start();
  }

  std::filesystem::path MakeFolder(const char* name) {
    std::filesystem::create_directory(machine_.folder.Path() / name);
    return machine_.folder.Path() / name;
  }

  std::string TraceOfTheWizard(const std::filesystem::path& source) {
    Press(kBrowseStartId);
    PickInDialog(PathToQt(source));
    Press(kBrowseId);
    Press(kNextId);
    PickInDialog(PathToQt(MakeFolder("wizard")));
    Press(kBrowseId);
    Press(kNextId);
    EXPECT_TRUE(Comes([this] { return Control<QWidget>(kFinishId).isEnabled(); }, 60000));
    return trace_->text;
  }

  std::string TraceOfTheCommandLine(const std::filesystem::path& source) {
    const std::filesystem::path trace = machine_.folder.Path() / "trace.jsonl";
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_CONFIG_HOME", PathToQt(machine_.folder.Path()));
    program.setProcessEnvironment(environment);
    program.start(VELMORA_CONVERT,
                  {"--quiet", "--trace", PathToQt(trace), PathToQt(source), PathToQt(MakeFolder("command line"))});
    EXPECT_TRUE(program.waitForFinished(60000)) << program.errorString().toStdString();
    EXPECT_EQ(program.readAllStandardError().toStdString(), "");
    std::ifstream file(trace, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::shared_ptr<TraceText> trace_ = std::make_shared<TraceText>();
};

TEST_P(SameTraceTest, TheWizardMakesTheTraceOfTheCommandLine) {
  const auto source = machine_.folder.Path() / "demo.ost";
  forge::ForgeDemoStore(GetParam()).Save(source);
  const std::string shown = TraceOfTheWizard(source);
  EXPECT_GT(std::count(shown.begin(), shown.end(), '\n'), 200);
  EXPECT_EQ(shown, TraceOfTheCommandLine(source));
}

INSTANTIATE_TEST_SUITE_P(DemoStores, SameTraceTest,
                         testing::Values(forge::DemoState::kSound, forge::DemoState::kDamaged),
                         [](const auto& each) { return each.param == forge::DemoState::kSound ? "Sound" : "Damaged"; });

}  // namespace
}  // namespace velmora::workflow
