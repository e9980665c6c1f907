// All of the forge: stores made for tests, sound and damaged, without a line of the code under test.
#pragma once

#include "forge/bytes.h"
#include "forge/checksum.h"
#include "forge/context.h"
#include "forge/encoding.h"
#include "forge/format.h"
#include "forge/heap.h"
#include "forge/image.h"
#include "forge/mailbox.h"
#include "forge/message.h"
#include "forge/names.h"
#include "forge/pages.h"
#include "forge/property.h"
#include "forge/rtf.h"
#include "forge/store.h"
#include "forge/table.h"
