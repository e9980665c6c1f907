// The columns of the usual tables.
#include "forge/table.h"

namespace velmora::forge {

const std::vector<Column>& HierarchyColumns() {
  static const std::vector<Column> columns = {{0x0E30, kBinary}, {0x0E33, kInt64}, {0x0E34, kBinary}, {0x0E38, kInt32},
                                              {0x3001, kString}, {0x3602, kInt32}, {0x3603, kInt32},  {0x360A, kBool},
                                              {0x3613, kString}, {0x6635, kInt32}, {0x6636, kInt32}};
  return columns;
}

const std::vector<Column>& ContentsColumns() {
  static const std::vector<Column> columns = {
      {0x0017, kInt32},  {0x001A, kString}, {0x0036, kInt32},  {0x0037, kString}, {0x0039, kTime},   {0x0042, kString},
      {0x0057, kBool},   {0x0058, kBool},   {0x0070, kString}, {0x0071, kBinary}, {0x0E03, kString}, {0x0E04, kString},
      {0x0E06, kTime},   {0x0E07, kInt32},  {0x0E08, kInt32},  {0x0E17, kInt32},  {0x0E30, kBinary}, {0x0E33, kInt64},
      {0x0E34, kBinary}, {0x0E38, kInt32},  {0x0E3C, kBinary}, {0x0E3D, kBinary}, {0x1097, kInt32},  {0x3008, kTime},
      {0x3013, kBinary}, {0x65C6, kInt32}};
  return columns;
}

const std::vector<Column>& AssociatedColumns() {
  static const std::vector<Column> columns = {
      {0x001A, kString}, {0x0E07, kInt32},  {0x0E17, kInt32},  {0x3001, kString}, {0x6800, kString},
      {0x6803, kBool},   {0x6805, 0x1003},  {0x682F, kString}, {0x7003, kInt32},  {0x7004, kBinary},
      {0x7005, kBinary}, {0x7006, kString}, {0x7007, kInt32}};
  return columns;
}

const std::vector<Column>& SearchColumns() {
  static const std::vector<Column> columns = {
      {0x0017, kInt32}, {0x001A, kString}, {0x0036, kInt32},  {0x0037, kString}, {0x0042, kString}, {0x0057, kBool},
      {0x0058, kBool},  {0x0E03, kString}, {0x0E04, kString}, {0x0E05, kString}, {0x0E06, kTime},   {0x0E07, kInt32},
      {0x0E08, kInt32}, {0x0E17, kInt32},  {0x0E2A, kBool},   {0x3008, kTime},   {0x67F1, kInt32}};
  return columns;
}

const std::vector<Column>& AttachmentColumns() {
  static const std::vector<Column> columns = {{0x0E20, kInt32}, {0x3704, kString}, {0x3705, kInt32}, {0x370B, kInt32}};
  return columns;
}

const std::vector<Column>& RecipientColumns() {
  static const std::vector<Column> columns = {
      {0x0C15, kInt32},  {0x0E0F, kBool},   {0x0FF9, kBinary}, {0x0FFE, kInt32}, {0x0FFF, kBinary}, {0x3001, kString},
      {0x3002, kString}, {0x3003, kString}, {0x300B, kBinary}, {0x3900, kInt32}, {0x39FF, kString}, {0x3A40, kBool}};
  return columns;
}

}  // namespace velmora::forge
