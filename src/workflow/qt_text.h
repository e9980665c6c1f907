// Texts on their way between the engine and the windows.
#pragma once

#include <QString>
#include <filesystem>

#include "platform/path_text.h"
#include "text/text.h"

namespace velmora::workflow {

inline QString ToQt(text::TextView text) { return QString::fromUtf16(text.data(), qsizetype(text.size())); }

inline text::Text FromQt(const QString& text) { return text.toStdU16String(); }

/// A path as text and back; every file name survives, whatever its bytes are.
inline QString PathToQt(const std::filesystem::path& path) { return ToQt(platform::TextOfPath(path)); }

inline std::filesystem::path ToPath(const QString& text) { return platform::PathOf(FromQt(text)); }

}  // namespace velmora::workflow
