#include "store/messaging/failures.h"

#include <string>

namespace velmora::messaging {
namespace {

using output::ResultCode;

[[noreturn]] void RaiseAs(ResultCode code, const char* what, const Failure& failure) {
  std::string sentence = what;
  if (const std::string object = TextOf(failure.object); !object.empty()) sentence += " (" + object + ")";
  sentence += failure.message.empty() ? "." : ": " + failure.message;
  throw output::OutputFailure(code, std::move(sentence), failure);
}

}  // namespace

void RaiseReadFailure(const Failure& failure) {
  RaiseAs(ResultCode::STG_E_READFAULT, "The store cannot be read", failure);
}

void RaiseWriteFailure(const Failure& failure) {
  switch (failure.kind) {
    case FailureKind::kFull:
      RaiseAs(ResultCode::STG_E_MEDIUMFULL, "There is no space left for the store", failure);
    case FailureKind::kExists:
      RaiseAs(ResultCode::MAPI_E_COLLISION, "A file of that name is already there", failure);
    case FailureKind::kCorrupt:
    case FailureKind::kNotSupported:
      RaiseAs(ResultCode::E_FAIL, "The store cannot hold this", failure);
    default:
      RaiseAs(ResultCode::STG_E_WRITEFAULT, "The store cannot be written", failure);
  }
}

}  // namespace velmora::messaging
