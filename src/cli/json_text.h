// A report as the text of one JSON object, and the fields that the reports of both conversions have.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "cli/report_frame.h"
#include "conversion/run_report.h"

namespace velmora::cli {

using Json = nlohmann::ordered_json;

/// Puts the object together field by field and the long lists element by element, a line each: as one tree of
/// values they would take many times the memory of the text.
class JsonText {
 public:
  void Add(std::string_view name, const Json& value) { Begin(name).append(value.dump()); }

  template <class Elements, class Form>
  void AddList(std::string_view name, const Elements& elements, Form form, const std::optional<Json>& last = {}) {
    Begin(name).push_back('[');
    const char* separator = "\n    ";
    const auto add = [&](const Json& element) {
      text_.append(separator).append(element.dump());
      separator = ",\n    ";
    };
    for (const auto& element : elements) add(form(element));
    if (last) add(*last);
    text_.push_back(']');
  }

  /// What was read and where it went.
  void AddStores(const ReportFrame& frame, engine::StoreKind kind, const std::optional<FormatId>& format);

  /// How the run ended, and the end of the object.
  std::string Finish(const ReportFrame& frame);

 private:
  std::string& Begin(std::string_view name) {
    return text_.append(text_.empty() ? "{\n  \"" : ",\n  \"").append(name).append("\": ");
  }

  std::string text_;
};

}  // namespace velmora::cli
