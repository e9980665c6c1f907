#include "workflow/panes/run_message.h"

namespace velmora::workflow {
namespace {

struct Translation {
  using Result = std::optional<RunMessage>;
  Result operator()(const engine::StageBegun& begun) const {
    return RunMessage{MSG_STAGE, begun.stage, begun.stage == kClosingStage ? 1u : 0u, {}};
  }
  Result operator()(const engine::Progress& progress) const {
    return RunMessage{MSG_PROGRESS, progress.percentage, static_cast<std::uint32_t>(progress.phase), {}};
  }
  Result operator()(const engine::ItemsCopied&) const { return {}; }
  Result operator()(const engine::FolderReached& reached) const {
    return RunMessage{MSG_ADD_FOLDER, reached.nid, 0, reached.markerName};
  }
  Result operator()(const engine::FieldListed& listed) const {
    return RunMessage{MSG_LIST_FIELD, static_cast<std::uint32_t>(listed.field), 0, listed.text};
  }
  Result operator()(const engine::AttachmentsListed&) const { return RunMessage{.code = MSG_LIST_ATTACHMENT}; }
  Result operator()(const engine::ListCleared&) const { return RunMessage{.code = MSG_CLEAR_LIST}; }
  Result operator()(const engine::Done&) const { return RunMessage{.code = MSG_DONE}; }
  Result operator()(const engine::FoldersKnown&) const { return {}; }
  Result operator()(const engine::Notice&) const { return {}; }
};

}  // namespace

std::optional<RunMessage> MessageOf(const engine::Event& event) { return std::visit(Translation(), event); }

}  // namespace velmora::workflow
