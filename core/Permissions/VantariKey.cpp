#include "quillon/VantariKey.h"

#include <utility>

#include "core/Json/RawValues.h"

namespace quillon {
namespace {

constexpr RawValue<VantariKey::Case> kKeys[] = {
    {VantariKey::locationWhenInUseUsageDescription, "NSLocationWhenInUseUsageDescription"},
    {VantariKey::locationAlwaysUsageDescription, "NSLocationAlwaysUsageDescription"},
    {VantariKey::locationAlwaysAndWhenInUseUsageDescription, "NSLocationAlwaysAndWhenInUseUsageDescription"},
    {VantariKey::cameraUsageDescription, "NSCameraUsageDescription"},
    {VantariKey::microphoneUsageDescription, "NSMicrophoneUsageDescription"},
    {VantariKey::photoLibraryUsageDescription, "NSPhotoLibraryUsageDescription"},
    {VantariKey::photoLibraryAddUsageDescription, "NSPhotoLibraryAddUsageDescription"},
    {VantariKey::contactsUsageDescription, "NSContactsUsageDescription"},
    {VantariKey::calendarsUsageDescription, "NSCalendarsUsageDescription"},
    {VantariKey::remindersUsageDescription, "NSRemindersUsageDescription"},
    {VantariKey::motionUsageDescription, "NSMotionUsageDescription"},
    {VantariKey::healthShareUsageDescription, "NSHealthShareUsageDescription"},
    {VantariKey::healthUpdateUsageDescription, "NSHealthUpdateUsageDescription"},
    {VantariKey::bluetoothPeripheralUsageDescription, "NSBluetoothPeripheralUsageDescription"},
    {VantariKey::bluetoothAlwaysUsageDescription, "NSBluetoothAlwaysUsageDescription"},
    {VantariKey::siriUsageDescription, "NSSiriUsageDescription"},
    {VantariKey::speechRecognitionUsageDescription, "NSSpeechRecognitionUsageDescription"},
    {VantariKey::homeKitUsageDescription, "NSHomeKitUsageDescription"},
    {VantariKey::userTrackingUsageDescription, "NSUserTrackingUsageDescription"},
    {VantariKey::appleMusicUsageDescription, "NSAppleMusicUsageDescription"},
    {VantariKey::faceIDUsageDescription, "NSFaceIDUsageDescription"},
    {VantariKey::cameraBroadcastUsageDescription, "NSCameraBroadcastUsageDescription"},
    {VantariKey::microphoneBroadcastUsageDescription, "NSMicrophoneBroadcastUsageDescription"},
    {VantariKey::userNotificationsUsageDescription, "NSUserNotificationsUsageDescription"},
    {VantariKey::localNetworkUsageDescription, "NSLocalNetworkUsageDescription"},
    {VantariKey::fileProviderDomainUsageDescription, "NSFileProviderDomainUsageDescription"},
    {VantariKey::systemExtensionUsageDescription, "NSSystemExtensionUsageDescription"},
    {VantariKey::nfcReaderUsageDescription, "NFCReaderUsageDescription"},  // the one without "NS"
};

}  // namespace

VantariKey::VantariKey(Case known) : kind_(known), text_(textOf<Case>(kKeys, known)) {}

VantariKey::VantariKey(std::string rawValue)
    : kind_(caseOf<Case>(kKeys, rawValue).value_or(custom)), text_(std::move(rawValue)) {}

}  // namespace quillon
