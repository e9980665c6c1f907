// The demo store, whose trees are damaged: what people see first.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "forge/demo_store.h"
#include "output/kinds/conversion.h"

namespace velmora::kinds {
namespace {

using output::Field;

class Demo : public testing::TestWithParam<forge::DemoState> {};

TEST_P(Demo, BringsTheFieldsThatAreKnownByTheirNames) {
  Conversion conversion(forge::ForgeDemoStore(GetParam()), "demo.ost");
  for (const auto& task : ItemsOf(conversion.Folder(u"Tasks"))) {
    EXPECT_EQ(task->Get(Field::Owner).AsText(), u"Vera Lindqvist");
    EXPECT_TRUE(task->Get(Field::DueDate).written);
  }
  for (const auto& appointment : ItemsOf(conversion.Folder(u"Calendar"))) {
    EXPECT_EQ(appointment->Get(Field::Location).AsText(), u"Room Nordlys");
    EXPECT_TRUE(appointment->Get(Field::AppointmentStart).written);
  }
  EXPECT_EQ(ItemsOf(conversion.Folder(u"Contacts"))[0]->Get(Field::Email1Address).AsText(), u"tomas@ibarra.example");
  EXPECT_EQ(ItemsOf(conversion.Folder(u"Journal"))[0]->Get(Field::JournalType).AsText(), u"Phone call");
  EXPECT_EQ(std::get<std::int32_t>(ItemsOf(conversion.Folder(u"Notes"))[0]->Get(Field::Color).value), 3);
}

INSTANTIATE_TEST_SUITE_P(States, Demo, testing::Values(forge::DemoState::kSound, forge::DemoState::kDamaged),
                         [](const auto& test) {
                           return std::string(test.param == forge::DemoState::kSound ? "Sound" : "Damaged");
                         });

}  // namespace
}  // namespace velmora::kinds
