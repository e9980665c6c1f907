#include "store/messaging/failures.h"

#include <string>

namespace velmora::messaging {
namespace {

std::string Sentence(const char* what, const platform::Failure& failure) {
  std::string out = what;
  if (!failure.object.empty()) out += " (" + failure.object + ")";
  return failure.message.empty() ? out + "." : out + ": " + failure.message;
}

}  // namespace

void RaiseReadFailure(const platform::Failure& failure) {
  throw output::OutputFailure(output::ResultCode::STG_E_READFAULT, Sentence("The store cannot be read", failure));
}

void RaiseWriteFailure(const platform::Failure& failure) {
  using output::ResultCode;
  switch (failure.kind) {
    case platform::FailureKind::kFull:
      throw output::OutputFailure(ResultCode::STG_E_MEDIUMFULL,
                                  Sentence("There is no space left for the store", failure));
    case platform::FailureKind::kExists:
      throw output::OutputFailure(ResultCode::MAPI_E_COLLISION,
                                  Sentence("A file of that name is already there", failure));
    case platform::FailureKind::kCorrupt:
    case platform::FailureKind::kNotSupported:
      throw output::OutputFailure(ResultCode::E_FAIL, Sentence("The store cannot hold this", failure));
    default:
      throw output::OutputFailure(ResultCode::STG_E_WRITEFAULT, Sentence("The store cannot be written", failure));
  }
}

}  // namespace velmora::messaging
