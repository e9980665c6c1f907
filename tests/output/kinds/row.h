// The fields of a kind as tables: what a source holds, and where each reader of the new store shows it.
#pragma once

#include <cstdint>
#include <ostream>
#include <span>

#include "store/operations.h"
#include "text/text.h"

namespace velmora::kinds {

enum class Set : std::uint8_t { kTag, kKeywords, kCommon, kAddress, kAppointment, kTask, kLog, kNote };

/// A property by its id or by the number of its name; its type is that of the field.
struct Where {
  Set set = Set::kTag;
  std::uint16_t id = 0;
  friend bool operator==(const Where&, const Where&) = default;
};

constexpr Where Tag(std::uint16_t id) { return {Set::kTag, id}; }
constexpr Where Common(std::uint16_t number) { return {Set::kCommon, number}; }
constexpr Where Address(std::uint16_t number) { return {Set::kAddress, number}; }
constexpr Where Calendar(std::uint16_t number) { return {Set::kAppointment, number}; }
constexpr Where Task(std::uint16_t number) { return {Set::kTask, number}; }
constexpr Where Log(std::uint16_t number) { return {Set::kLog, number}; }
constexpr Where Note(std::uint16_t number) { return {Set::kNote, number}; }
/// The only name that is a text. Its rule goes by the id 0x8012, so that is its id in the forged sources.
inline constexpr Where kKeywords = {Set::kKeywords, 0};

/// The new store holds it under the id, or the name, of the source.
inline constexpr Where kSame = {};
/// It is no property of its own: bits of the message flags.
inline constexpr Where kBits = {Set::kTag, 0x0E07};

/// Set in the place of the value, where the text is the field's own name in « ».
inline constexpr const char* kOwnName = nullptr;
/// In a column of a reader: it has no line for the field. The tests hold the reader to it where the value is the
/// field's own name, which stands nowhere else; a flag, a number or a date may stand there for another field.
inline constexpr const char* kNotShown = nullptr;

struct Row {
  Where source;
  output::Field field;
  /// As people write it: a text, "2021-05-03 12:00:00", "true", "2". A list has one value of 8 characters, the
  /// only one that an 8-bit list carries over unharmed.
  const char* value;
  Where place;
  /// In pffexport's file of the item, or in "file/": the label, "*" for the file's whole text. "label=what is shown"
  /// where that is not the value in the reader's usual form. Among the values that it dumps, every field is found by
  /// its place.
  const char* pffexport;
  /// The whole line of readpst, with % for the value.
  const char* readpst;
};

struct Kind {
  const char* name;
  text::TextView messageClass;
  std::span<const Row> rows;
  const char* peerName;     ///< of an item in pffexport's output
  const char* peerFile;     ///< its file of fields
  const char* readpstFile;  ///< null: readpst leaves out the kind
  friend void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.name; }
};

/// All kinds; a meeting message and a distribution list are kinds of their own here.
std::span<const Kind> Kinds();

std::span<const Row> MailRows();
std::span<const Row> ContactRows();
std::span<const Row> TaskRows();
std::span<const Row> AppointmentRows();
std::span<const Row> MeetingRows();
std::span<const Row> JournalRows();
std::span<const Row> NoteRows();

}  // namespace velmora::kinds
