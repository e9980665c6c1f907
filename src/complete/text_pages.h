// In which code page the 8-bit texts of a store are.
#pragma once

#include <map>
#include <optional>

#include "complete/live_store.h"
#include "store/ltp/property_context.h"
#include "text/code_page.h"

namespace velmora::complete {

/// Answers by what an object tells of itself, then by what most of the store's messages tell, then by what the user
/// said.
class TextPages {
 public:
  /// Looks at a part of the messages of an ANSI store; the texts of other stores are UTF-16.
  TextPages(const LiveStore& source, const text::CodePage& last);

  /// That of the texts of a message: by its code page, its language, its internet code page.
  const text::CodePage& Of(ltp::PropertyContext& message) const;

  /// That of the store.
  const text::CodePage& OfStore() const { return *ofStore_; }

 private:
  const text::CodePage* Find(int windowsNumber) const;

  mutable std::map<int, std::optional<text::CodePage>> pages_;  ///< by Windows number; nothing where there is none
  const text::CodePage& last_;
  const text::CodePage* ofStore_;
};

/// A text of an object, in whichever width it stands there; nothing where it has none.
std::optional<text::Text> ReadText(ltp::PropertyContext& from, PropTag tag, const text::CodePage& page);

}  // namespace velmora::complete
