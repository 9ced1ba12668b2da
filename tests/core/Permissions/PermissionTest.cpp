#include <gtest/gtest.h>

#include <boost/json/object.hpp>

#include "core/Permissions/PermissionTranslation.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using enum ConsentStatus;

TEST(PermissionTranslation, FollowsEachSourcesOwnNumbers) {
  using Key = VantariKey;
  // Of the values -1, 0, 1, 2, 3, 4, 5.
  const std::vector<std::pair<std::vector<Key::Case>, std::vector<ConsentStatus>>> rows{
      {{Key::locationWhenInUseUsageDescription, Key::locationAlwaysUsageDescription,
        Key::locationAlwaysAndWhenInUseUsageDescription, Key::photoLibraryUsageDescription,
        Key::photoLibraryAddUsageDescription, Key::calendarsUsageDescription, Key::remindersUsageDescription},
       {notDetermined, notDetermined, declined, declined, granted, granted, notDetermined}},
      {{Key::cameraUsageDescription, Key::cameraBroadcastUsageDescription, Key::microphoneUsageDescription,
        Key::microphoneBroadcastUsageDescription, Key::contactsUsageDescription, Key::motionUsageDescription,
        Key::siriUsageDescription, Key::userTrackingUsageDescription, Key::appleMusicUsageDescription},
       {notDetermined, notDetermined, declined, declined, granted, notDetermined, notDetermined}},
      {{Key::userNotificationsUsageDescription},
       {notDetermined, notDetermined, declined, granted, granted, granted, notDetermined}},
      {{Key::homeKitUsageDescription},
       {notDetermined, notDetermined, declined, granted, notDetermined, notDetermined, notDetermined}},
      {{Key::nfcReaderUsageDescription}, {granted, declined, granted, granted, granted, granted, granted}},
      {{Key::custom}, std::vector(7, notDetermined)},
  };
  for (const auto& [keys, expected] : rows) {
    for (const auto key : keys) {
      for (int value = -1; value <= 5; ++value) {
        EXPECT_EQ(consentFromPlatformValue(key, value), expected.at(static_cast<std::size_t>(value + 1)))
            << "key " << static_cast<int>(key) << " value " << value;
      }
    }
  }
  const std::pair<std::optional<std::string>, ConsentStatus> information[] = {
      {std::nullopt, notDetermined}, {"Authorized", granted},       {"Denied", declined},
      {"Restricted", declined},      {"authorized", notDetermined}, {"Limited", notDetermined}};
  for (const auto& [entry, expected] : information) {
    EXPECT_EQ(consentFromInformation(entry), expected) << entry.value_or("none");
  }
}

TEST(Permissions, FollowTheDevice) {
  World world;
  world.start();
  EXPECT_EQ(world.sdk->get(VantariKey::cameraUsageDescription), granted);
  EXPECT_EQ(world.text("NSContactsUsageDescription"), "declined");
  EXPECT_EQ(world.stored().consentGivenType(), GivenType::noAction);
  world.permissions->set(VantariKey::cameraUsageDescription, 1);
  EXPECT_EQ(world.sdk->get(VantariKey::cameraUsageDescription), declined) << "at once";
  world.sdk->settled().wait();
  EXPECT_EQ(world.text("NSCameraUsageDescription"), "declined") << "stored because the device reported the change";
  world.advance(std::chrono::seconds(1));
  EXPECT_EQ(world.uploads().size(), 1u);

  world.permissions->set(VantariKey::cameraUsageDescription, std::unexpected("the bus\nis gone"));
  world.sdk->settled().wait();
  EXPECT_EQ(world.text("NSCameraUsageDescription"), "not_determined");
  EXPECT_TRUE(contains(world.log(), "fetching the permission status: the bus\\nis gone"));
  EXPECT_EQ(world.sdk->checkConsentBy(VantariKey::contactsUsageDescription).get(), declined);
  EXPECT_EQ(world.sdk->get(VantariKey::microphoneUsageDescription), notDetermined) << "not listed, never stored";
  EXPECT_TRUE(world.sdk->set({.permissionId = VantariKey::microphoneUsageDescription}, granted));
  EXPECT_EQ(world.sdk->get(VantariKey::microphoneUsageDescription), granted);
  EXPECT_FALSE(world.sdk->set(AppPermission(), granted));
}

TEST(Permissions, CannotTakeTheNamesOfOtherValues) {
  World world;
  // One at a time: a name that no store takes would keep the others out.
  for (const char* name : {"SUBJECT_ID", "1", ""}) {
    world.server.serve(configurationWith({{"permissions", {{{"permission_id", name}}}}}));
    world.startLater();
    world.sdk->acceptOrReject(true).wait();
    EXPECT_EQ(world.text(key::subjectId), "SUBJECT");
    EXPECT_EQ(world.sdk->get(1), granted);
  }
  EXPECT_FALSE(world.sdk->set({.permissionId = VantariKey("X_AUTH_TOKEN")}, granted));
  EXPECT_EQ(world.text(key::xAuthToken), "secret-token");
}

}  // namespace
}  // namespace quillon::test
