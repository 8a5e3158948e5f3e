#pragma once

namespace tavrin {

/// Tests of the running system's version. There is no such version here: all answer as on the newest system
/// that they know.
struct MacOSXVersion {
    static constexpr bool isLeopard() { return versionCode >= 0x1050 && versionCode <= 0x105F; }
    static constexpr bool isLeopardOrLater() { return versionCode >= 0x1050; }
    static constexpr bool isTiger() { return !isLeopard(); }
    static constexpr bool isSnowLeopard() { return versionCode >= 0x1060 && versionCode <= 0x106F; }
    static constexpr bool isSnowLeopardOrLater() { return versionCode >= 0x1060; }
    static constexpr bool isLion() { return versionCode >= 0x1070 && versionCode <= 0x107F; }
    static constexpr bool isLionOrLater() { return versionCode >= 0x1070; }
    static constexpr bool isMountainLion() { return versionCode >= 0x1080 && versionCode <= 0x108F; }
    static constexpr bool isMountainLionOrLater() { return versionCode >= 0x1080; }

  private:
    static constexpr int versionCode = 0x1080;
};

} // namespace tavrin
