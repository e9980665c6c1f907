// The items of the demo store.
#pragma once

#include <string_view>
#include <vector>

#include "forge/message.h"

namespace velmora::forge {

/// A plain mail between the two people of the demo store.
Message DemoMail(std::u16string_view subject, std::u16string_view body);

std::vector<Message> DemoInbox();
std::vector<Message> DemoSent();
std::vector<Message> DemoContacts();
std::vector<Message> DemoAppointments();
std::vector<Message> DemoTasks();
std::vector<Message> DemoJournal();
std::vector<Message> DemoNotes();

}  // namespace velmora::forge
