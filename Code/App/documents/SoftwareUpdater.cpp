#include "documents/SoftwareUpdater.h"

#include "platform/desktop/SystemVersion.h"
#include "support/application/DebugLog.h"
#include "support/values/VersionComparison.h"

namespace tavrin {

const UpdateFeedItem*
SoftwareUpdater::bestValidUpdateInAppcast(const std::vector<UpdateFeedItem>& items) const {
    const UpdateFeedItem* best = nullptr;
    for (const UpdateFeedItem& item : items) {
        debugLog("version {} minimum {}", item.version, item.minimumSystemVersion);
        if (item.version.empty() || !hostSupportsItem(item))
            continue;
        if (!best || VersionComparison::compareVersion(item.version, best->version) == 1)
            best = &item;
    }
    return best;
}

bool SoftwareUpdater::hostSupportsItem(const UpdateFeedItem& item) const {
    return item.minimumSystemVersion.empty() ||
           VersionComparison::standardCompareVersion(item.minimumSystemVersion, systemVersion) != 1;
}

bool SoftwareUpdater::isNewer(const UpdateFeedItem& item) const {
    return VersionComparison::compareVersion(version, item.version) == -1;
}

std::string SoftwareUpdater::systemVersionString() { return SystemVersion::asText(); }

} // namespace tavrin
