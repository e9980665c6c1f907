// The mail profiles of a user: names in a small file of the configuration folder.
#pragma once

#include <filesystem>
#include <vector>

#include "store/operations.h"

namespace velmora::messaging {

/// Reads the file at each call, so that two runs see each other's profiles, and replaces it as a whole.
class ProfileFile : public output::ProfileList {
 public:
  /// The folder is made when the first profile is added.
  explicit ProfileFile(std::filesystem::path configFolder) : folder_(std::move(configFolder)) {}

  /// Names compare without regard to case.
  bool Item(text::TextView name) override;

  /// E_INVALIDARG for an empty name and for one with a control character, STG_E_WRITEFAULT or
  /// STG_E_MEDIUMFULL when the file cannot be replaced; the old list stands then.
  text::Text Add(text::TextView name) override;

 private:
  std::vector<text::Text> Read() const;
  void Write(const std::vector<text::Text>& names) const;

  std::filesystem::path folder_;
};

}  // namespace velmora::messaging
