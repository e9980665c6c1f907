// The complete conversion: whole objects of one store into another, as they are.
#pragma once

#include "complete/account.h"
#include "engine/proven_store.h"
#include "engine/run.h"
#include "store/messaging/store_writer.h"
#include "text/code_page.h"

namespace velmora::complete {

struct CopyOptions {
  bool hidden = false;   ///< associated messages too; without it the list of categories alone
  bool deleted = false;  ///< messages that are no longer live too, in a folder of their own
  text::CodePage codePage = text::CodePage::Lossless();  ///< of 8-bit texts where nothing in the store tells
};

/// Copies folders and messages of `source` into `target`, an empty store. Says stage 8, ItemsCopied and Progress, and
/// passes a pause point ahead of each message. Whatever cannot be read is in the account, which is kept as the copy
/// goes, so it holds what was done of a copy that ended early. Raises OutputFailure where `target` cannot be written
/// and engine::RunStopped. `target` is not sealed.
void CopyStore(const engine::ProvenStore& source, messaging::StoreWriter& target, const CopyOptions& options,
               engine::RunContext& run, Account& account);

/// Opens what was written afresh and compares it with the source, object by object, into the account's differences.
/// `target` is sealed. Says progress and passes a pause point ahead of each object. Raises FailureError where `target`
/// cannot be opened as a store, and engine::RunStopped; the account is not verified then.
void CompareStores(const engine::ProvenStore& source, const platform::ByteSource& target, const CopyOptions& options,
                   engine::RunContext& run, Account& account);

}  // namespace velmora::complete
