#include "cli/json_text.h"

namespace velmora::cli {
namespace {

const char* NameOf(engine::StoreKind kind) {
  switch (kind) {
    case engine::StoreKind::kPst:
      return "pst";
    case engine::StoreKind::kOst:
      return "ost";
    case engine::StoreKind::kPab:
      return "pab";
    case engine::StoreKind::kNone:
      break;
  }
  return "";
}

Json NameOf(const std::optional<FormatId>& format) {
  if (!format) return nullptr;
  switch (*format) {
    case FORMAT_ANSI:
      return "ansi";
    case FORMAT_UNICODE:
      return "unicode";
    case FORMAT_UNICODE_4K:
      return "unicode4k";
  }
  return nullptr;
}

}  // namespace

void JsonText::AddStores(const ReportFrame& frame, engine::StoreKind kind, const std::optional<FormatId>& format) {
  Add("source", text::ToUtf8(frame.source));
  Add("destination", text::ToUtf8(frame.destination));
  Add("storeKind", NameOf(kind));
  Add("format", NameOf(format));
}

std::string JsonText::Finish(const ReportFrame& frame) {
  Add("refusal", frame.refusal.empty() ? Json(nullptr) : Json(text::ToUtf8(frame.refusal)));
  Add("seconds", frame.seconds);
  Add("peakRssKiB", frame.peakRssKiB);
  return std::move(text_.append("\n}\n"));
}

}  // namespace velmora::cli
