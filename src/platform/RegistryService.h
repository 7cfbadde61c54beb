#pragma once

namespace norvane {

// The kinds of service that the hardware registry is searched for.
enum class RegistryService { IOBlockStorageDriver, IOAccelerator, AppleSmartBattery };

}  // namespace norvane
