#pragma once

#include "documents/Settings.h"
#include "platform/files/FileStatus.h"
#include "platform/metadata/ExifHelper.h"
#include "platform/metadata/FileManager.h"
#include "store/rows/NodeRow.h"

#include <string_view>

namespace tavrin {

/// The values of a row that the sort orders go by: dates, size, shooting date.
class SortingValues {
  public:
    explicit SortingValues(const Settings& settings)
        : readsShootingDates(settings.shouldRetrieveEXIFInformation),
          sumsFolders(settings.shouldCalculateAccurateFolderSize != 0) {}

    /// The contents of this folder are its size.
    [[nodiscard]] bool mustSum(const FileStatus& status) const {
        return sumsFolders && status.kind == FileStatus::Kind::folder;
    }
    [[nodiscard]] bool mayHaveShootingDate(const FileStatus& status, std::string_view name) const {
        return readsShootingDates && status.kind == FileStatus::Kind::file && status.size > 0 &&
               ExifHelper::isImageName(name);
    }
    /// Whether the status tells all of them.
    [[nodiscard]] bool areIn(const FileStatus& status, std::string_view name) const {
        return !mustSum(status) && !mayHaveShootingDate(status, name);
    }
    void put(NodeRow& row, const FileStatus& status) const {
        put(row, status, readsShootingDates ? FileManager::distantPast : 0.0);
    }
    static void put(NodeRow& row, const FileStatus& status, double shootingDate) {
        row.modDate = status.modificationDate;
        row.crDate = status.creationDate;
        row.exif = shootingDate;
        row.size = status.size;
        row.sortingInformationLoaded = true;
    }

  private:
    bool readsShootingDates;
    bool sumsFolders;
};

} // namespace tavrin
