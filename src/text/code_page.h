// 8-bit text of mail stores, to and from UTF-16.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "text/text.h"

namespace velmora::text {

/// One code page. Copies share the converter tables; a CodePage is safe to use from several threads.
class CodePage {
 public:
  /// The page of that name (any name or alias that ICU knows, letter case ignored: "windows-1252",
  /// "shift_jis", "cp932", "65001"); nothing for an unknown name.
  static std::optional<CodePage> Find(std::string_view name);

  /// Windows-1252 with its five undefined bytes mapped to the C1 control codes of the same value: every
  /// byte string goes to UTF-16 and back unchanged. The default, and the carrier of HTML and RTF bodies.
  static const CodePage& Lossless();

  /// Every byte of `bytes` in order; what the page does not define becomes U+FFFD.
  Text Decode(std::string_view bytes) const;

  /// The same, but that a byte which the page does not define becomes what the lossless page has for it, and is counted
  /// in `undefined`.
  Text DecodeKeepingAll(std::string_view bytes, std::uint64_t& undefined) const;

  /// Bytes of `text` in this page; a character that it does not have becomes "?".
  std::string Encode(TextView text) const;

  /// The page's Windows number, as the internet code page property of a message wants it (1252, 932,
  /// 65001, ...); 1252 where there is none.
  int WindowsNumber() const;

  /// The name the page was found by.
  const std::string& Name() const;

 private:
  struct Tables;
  class Lent;
  static std::optional<CodePage> FindAnew(std::string_view name);
  Text DecodeWith(std::string_view bytes, std::uint64_t* undefined) const;
  explicit CodePage(std::shared_ptr<Tables> tables) : tables_(std::move(tables)) {}
  std::shared_ptr<Tables> tables_;
};

}  // namespace velmora::text
