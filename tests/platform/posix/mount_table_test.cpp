#include "platform/posix/mount_table.h"

#include <gtest/gtest.h>

namespace velmora::platform {
namespace {

std::vector<Volume> Parse(std::string_view table) {
  return ParseMountTable(
      table, [](std::string_view device) { return device == "8:17"; },
      [](const std::filesystem::path& path) { return path != "/etc/hosts"; });
}

TEST(MountTable, ListsUsersVolumesSortedAndOnce) {
  const std::vector<Volume> expected = {{"/", false}, {"/home", false}, {"/media/stick 1", true}};
  EXPECT_EQ(Parse("22 1 0:20 / /sys rw - sysfs sysfs rw\n"
                  "23 1 0:21 / /proc rw - proc proc rw\n"
                  "24 1 0:5 / /dev/pts rw - devpts devpts rw\n"
                  "25 1 0:22 / /run rw - tmpfs tmpfs rw\n"
                  "30 1 8:17 / /media/stick\\0401 rw - vfat /dev/sdb1 rw\n"
                  "28 1 8:2 / /home rw - ext4 /dev/sda2 rw\n"
                  "29 1 8:3 / /home rw - ext4 /dev/sda3 rw\n"
                  "27 0 8:1 / / rw - ext4 /dev/sda1 rw\n"
                  "31 1 8:1 /x /etc/hosts rw - ext4 /dev/sda1 rw\n"
                  "broken line\n"),
            expected);
}

TEST(MountTable, ARemovableVolumeCountsWhereverItIsMounted) {
  const std::vector<Volume> expected = {{"/run/media/me/STICK", true}};
  EXPECT_EQ(Parse("30 1 8:17 / /run/media/me/STICK rw - vfat /dev/sdb1 rw\n"), expected);
}

TEST(MountTable, TheTypeDecidesAndNotThePlace) {
  const std::vector<Volume> expected = {
      {"/", false}, {"/media/me/OLD", false}, {"/mnt", false}, {"/run/media/me/DISK", false}, {"/srv/share", false}};
  EXPECT_EQ(Parse("1 0 0:1 / / rw - overlay overlay rw\n"
                  "2 1 8:33 / /run/media/me/DISK rw shared:5 master:1 - exfat /dev/sdc1 rw\n"
                  "3 1 8:34 / /media/me/OLD rw - ntfs3 /dev/sdc2 rw\n"
                  "4 1 0:40 / /srv/share rw - nfs4 server:/share rw\n"
                  "5 1 8:2 / /mnt rw - btrfs /dev/sda2 rw\n"
                  "6 1 0:41 / /tmp rw - tmpfs tmpfs rw\n"
                  "7 1 7:1 / /snap/core/1 ro - squashfs /dev/loop1 ro\n"
                  "8 1 0:42 / /var/lib/docker/overlay2/x/merged rw - overlay overlay rw\n"
                  "9 1 8:1 / /boot/efi rw - vfat /dev/sda1 rw\n"
                  "10 1 0:43 / /firmware rw - efivarfs efivarfs rw\n"
                  "11 1 0:44 / /chroot/proc rw - proc proc rw\n"
                  "12 1 0:45 / /chroot/sys rw - sysfs sysfs rw\n"
                  "13 1 0:46 / /chroot/dev rw - devtmpfs devtmpfs rw\n"
                  "14 1 8:2 / /no type rw\n"),
            expected);
}

TEST(MountTable, WhatIsMountedOverAVolumeHidesIt) {
  EXPECT_EQ(Parse("1 0 8:2 / /mnt rw - ext4 /dev/sda2 rw\n2 1 0:9 / /mnt rw - tmpfs tmpfs rw\n"),
            std::vector<Volume>{});
}

TEST(MountTable, AFolderWhoseNameBeginsLikeASystemTreeIsNone) {
  const std::vector<Volume> expected = {{"/developers", false}};
  EXPECT_EQ(Parse("28 1 8:2 / /developers rw - ext4 /dev/sda2 rw\n"), expected);
}

}  // namespace
}  // namespace velmora::platform
